// Small sound files made by the render tests, and reading them back.
#pragma once

#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

struct Sound {
    int channels = 0;
    int rate = 0;
    std::vector<float> samples;  // interleaved
    long frames() const { return channels ? static_cast<long>(samples.size()) / channels : 0; }
    float at(long frame, int channel) const { return samples[frame * channels + channel]; }
    double rms(int channel, long from = 0) const {
        double sum = 0;
        for (long f = from; f < frames(); ++f) sum += double(at(f, channel)) * at(f, channel);
        return std::sqrt(sum / std::max(1L, frames() - from));
    }
};

// Writes `frames` frames; `frame(n, out)` fills one frame of `channels` values.
inline void writeSound(const std::string& path, int channels, int rate, long frames,
                       const std::function<void(long, float*)>& frame, int format = SF_FORMAT_WAV | SF_FORMAT_FLOAT) {
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = rate;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    std::vector<float> one(channels);
    for (long n = 0; n < frames; ++n) {
        frame(n, one.data());
        sf_writef_float(file, one.data(), 1);
    }
    sf_close(file);
}

inline Sound readSound(const std::string& path) {
    Sound s;
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) return s;
    s.channels = info.channels;
    s.rate = info.samplerate;
    s.samples.resize(static_cast<std::size_t>(info.frames) * info.channels);
    sf_readf_float(file, s.samples.data(), info.frames);
    sf_close(file);
    return s;
}

inline std::string fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A plane wave of a sine from an azimuth (degrees) in the plug-in's convention.
inline std::function<void(long, float*)> planeWave(double azimuth, double hz, int rate, double elevation = 0) {
    return [=](long n, float* out) {
        const double pi = 3.141592653589793, s = 0.3 * std::sin(2 * pi * hz * n / rate);
        const double a = azimuth * pi / 180, e = elevation * pi / 180;
        out[0] = float(s / std::sqrt(2.0));
        out[1] = float(s * std::cos(a) * std::cos(e));
        out[2] = float(s * std::sin(a) * std::cos(e));
        out[3] = float(s * std::sin(e));
    };
}
