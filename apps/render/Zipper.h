// The zipper figure: how much of a steady 1 kHz tone's energy a moving
// control spreads away from it. The energy more than 30 Hz away from 1 kHz
// relative to all of a channel's energy, over the whole render under one
// Blackman window, in dB; for several channels, the worst of those that
// carry sound.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace zipper {

constexpr double kToneHz = 1000;
constexpr double kBandHz = 30;

inline double outsideToneDb(const std::vector<double>& x, double rate) {
    constexpr double pi = 3.141592653589793;
    const std::size_t n = x.size();
    if (n < 2) return -400;
    std::vector<double> w(n);
    double total = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = 2 * pi * static_cast<double>(i) / static_cast<double>(n - 1);
        w[i] = x[i] * (0.42 - 0.5 * std::cos(a) + 0.08 * std::cos(2 * a));
        total += w[i] * w[i];
    }
    if (!(total > 0)) return -400;
    // By Parseval, the bins within the band around the tone against the
    // whole; each bin's phasor turns by multiplication, set exactly every 256 frames.
    double near = 0;
    const double binHz = rate / static_cast<double>(n);
    for (long k = std::lround(std::ceil((kToneHz - kBandHz) / binHz)); k * binHz <= kToneHz + kBandHz; ++k) {
        const double step = 2 * pi * static_cast<double>(k) / static_cast<double>(n);
        const double turnRe = std::cos(step), turnIm = -std::sin(step);
        double re = 0, im = 0, pRe = 1, pIm = 0;
        for (std::size_t i = 0; i < n; ++i) {
            if (i % 256 == 0)
                pRe = std::cos(step * static_cast<double>(i)), pIm = -std::sin(step * static_cast<double>(i));
            re += w[i] * pRe, im += w[i] * pIm;
            const double t = pRe * turnRe - pIm * turnIm;
            pIm = pRe * turnIm + pIm * turnRe, pRe = t;
        }
        near += 2 * (re * re + im * im) / static_cast<double>(n);  // its mirror image too
    }
    return 10 * std::log10(std::max(1 - near / total, 1e-40));
}

inline double worstDb(const std::vector<std::vector<double>>& channels, double rate) {
    double worst = -400;
    for (const auto& channel : channels) {
        double energy = 0;
        for (double s : channel) energy += s * s;
        if (energy > 1e-9) worst = std::max(worst, outsideToneDb(channel, rate));
    }
    return worst;
}

}  // namespace zipper
