// Peak and RMS level of every output channel, in dBFS, for the closing table.
#pragma once

#include <cmath>
#include <vector>

class LevelMeter {
public:
    explicit LevelMeter(int channels) : peaks(channels, 0.0), squares(channels, 0.0) {}

    void add(const float* interleaved, long frames) {
        const int n = static_cast<int>(peaks.size());
        for (long f = 0; f < frames; ++f) {
            for (int c = 0; c < n; ++c) {
                const double v = interleaved[f * n + c];
                peaks[c] = std::fmax(peaks[c], std::fabs(v));
                squares[c] += v * v;
            }
        }
        count += frames;
    }

    int channels() const { return static_cast<int>(peaks.size()); }
    long frames() const { return count; }
    double peakDb(int c) const { return toDb(peaks[c]); }
    double rmsDb(int c) const { return count ? toDb(std::sqrt(squares[c] / count)) : -INFINITY; }

    static double toDb(double v) { return v > 0 ? 20 * std::log10(v) : -INFINITY; }

private:
    std::vector<double> peaks, squares;
    long count = 0;
};
