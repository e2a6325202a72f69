#include "DemoScene.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kSoloSeconds = 1.2;
constexpr double kTogetherSeconds = 2.0;
constexpr double kLevel = 0.25;

// A raised-cosine fade at both ends of a segment keeps the tones click-free.
double envelope(long n, long length, int rate) {
    const long fade = rate / 50;
    if (n < fade) return 0.5 - 0.5 * std::cos(kPi * n / fade);
    if (n > length - fade) return 0.5 - 0.5 * std::cos(kPi * (length - n) / fade);
    return 1.0;
}

}  // namespace

// Distinct pitches so each source can be told apart by ear as well.
const DemoScene::Source DemoScene::kSources[5] = {
    {"front", 0, 0, 440.0},    {"left", 90, 0, 554.37}, {"rear", 180, 0, 659.25},
    {"right", -90, 0, 783.99}, {"above", 0, 90, 880.0},
};

DemoScene::DemoScene(int sampleRate) : rate(sampleRate) {
    const long solo = std::lround(kSoloSeconds * rate);
    long start = 0;
    for (const Source& s : kSources) {
        parts.push_back({s.name, start, solo});
        start += solo;
    }
    parts.push_back({"all together", start, std::lround(kTogetherSeconds * rate)});
    total = start + parts.back().length;
}

long DemoScene::read(float* out, long count) {
    const long n = std::min(count, total - position);
    for (long i = 0; i < n; ++i, ++position) {
        double W = 0, X = 0, Y = 0, Z = 0;
        for (int s = 0; s < 5; ++s) {
            const Segment& solo = parts[s];
            const Segment& all = parts[5];
            long local;
            long length;
            if (position >= solo.start && position < solo.start + solo.length) {
                local = position - solo.start;
                length = solo.length;
            } else if (position >= all.start) {
                local = position - all.start;
                length = all.length;
            } else {
                continue;
            }
            const Source& src = kSources[s];
            const double signal =
                kLevel * envelope(local, length, rate) * std::sin(2 * kPi * src.frequency * position / rate);
            const double az = src.azimuth * kPi / 180, el = src.elevation * kPi / 180;
            // Plane-wave encoding with W 3 dB down.
            W += signal / std::sqrt(2.0);
            X += signal * std::cos(az) * std::cos(el);
            Y += signal * std::sin(az) * std::cos(el);
            Z += signal * std::sin(el);
        }
        out[4 * i] = static_cast<float>(W);
        out[4 * i + 1] = static_cast<float>(X);
        out[4 * i + 2] = static_cast<float>(Y);
        out[4 * i + 3] = static_cast<float>(Z);
    }
    return n;
}
