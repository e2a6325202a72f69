// How the two ears of a headphone signal differ, as a listener's hearing
// tells a source's side: over the last 4096 frames, the level (dB, left
// over right) between 1 and 4 kHz, and the time (frames, positive when the
// left ear leads) as the lag of the cross-correlation between 200 Hz (above
// a 5.1 sub, which plays the same to both ears) and 1.5 kHz, both from one
// DFT of each ear, at 48 kHz.
#pragma once

#include <cmath>
#include <complex>
#include <vector>

namespace sorvane_test {

struct Interaural {
    double level, time;
};

// `sample(frame, ear)` reads ear 0 (left) or 1 (right) of `frames` frames.
template <typename Sample>
Interaural interaural(Sample&& sample, long frames) {
    constexpr int n = 4096, kLow = 1000 * n / 48000, kHigh = 4000 * n / 48000;
    constexpr int kItdLow = 200 * n / 48000, kItdHigh = 1500 * n / 48000;
    const long from = frames - n;
    std::vector<std::complex<double>> ear[2];
    for (int c = 0; c < 2; ++c)
        for (int k = 0; k <= kHigh; ++k) {
            std::complex<double> sum = 0;
            for (int t = 0; t < n; ++t) sum += double(sample(from + t, c)) * std::polar(1.0, -2 * M_PI * k * t / n);
            ear[c].push_back(sum);
        }
    double left = 0, right = 0;
    for (int k = kLow; k <= kHigh; ++k) left += std::norm(ear[0][k]), right += std::norm(ear[1][k]);
    // The peak to a fraction of a frame: a parabola through it and its neighbours.
    const auto correlation = [&](int tau) {
        double r = 0;
        for (int k = kItdLow; k <= kItdHigh; ++k)
            r += (std::conj(ear[0][k]) * ear[1][k] * std::polar(1.0, 2 * M_PI * k * tau / n)).real();
        return r;
    };
    int peak = -48;
    for (int tau = -47; tau <= 48; ++tau)
        if (correlation(tau) > correlation(peak)) peak = tau;
    const double before = correlation(peak - 1), at = correlation(peak), after = correlation(peak + 1);
    return {10 * std::log10(left / right), peak + 0.5 * (before - after) / (before - 2 * at + after)};
}

}  // namespace sorvane_test
