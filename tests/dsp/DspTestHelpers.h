// Sources, microphones and comparisons shared by the engine's tests.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "Decoder.h"
#include "Tolerances.h"

constexpr double kPi = 3.141592653589793;
const double kSqrt2 = std::sqrt(2.0);

struct Frame {
    double W, X, Y, Z;
};

// A plane wave of unit amplitude from (azimuth, elevation) in degrees, W 3 dB down.
inline Frame planeWave(double az, double el = 0) {
    const double a = az * kPi / 180, e = el * kPi / 180;
    return {1 / kSqrt2, std::cos(a) * std::cos(e), std::sin(a) * std::cos(e), std::sin(e)};
}

// What a first-order microphone of pattern p (0 figure-of-eight, 1 omni) aimed
// along the unit vector `aim` hears of a plane wave from the unit vector `from`.
inline double mic(double p, const Frame& aim, const Frame& from) {
    return p + (1 - p) * (aim.X * from.X + aim.Y * from.Y + aim.Z * from.Z);
}
// The same for horizontal directions, in degrees.
inline double mic(double p, double aim, double az) { return mic(p, planeWave(aim), planeWave(az)); }

// Runs one frame in place; returns the slots written.
inline int process(Decoder& d, Frame& f) { return d.processDecoder(f.W, f.X, f.Y, f.Z); }

// Bit for bit, except that any two NaNs match: which NaN comes out is no part of the sound.
inline bool identical(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}
