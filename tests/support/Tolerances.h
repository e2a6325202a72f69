// How closely two computations of one value must agree, each named after the
// reason they may differ at all. Exact comparisons need no tolerance.
#pragma once

// A value that should vanish, left with the rounding of terms near 1 cancelling.
constexpr double kCancellationResidue = 1e-16;
// A few roundings of a value near 1: units in the last place of a double.
constexpr double kDoubleRounding = 1e-15;
// Sums of several sines, cosines and powers, each rounded on its own.
constexpr double kTrigRounding = 1e-14;
// The same, after gains of up to 24 dB have scaled the rounding up.
constexpr double kAmplifiedRounding = 1e-13;
// A recursion run over many frames: each frame adds its rounding.
constexpr double kAccumulatedRounding = 1e-12;
// A filter's steady state, as far as its rounded coefficients let it settle.
constexpr double kSettledFilter = 1e-10;
// A coefficient of about 1e-5, rounded relative to its own size.
constexpr double kSmallValueRounding = 1e-18;
// One rounding to single precision, of values near 1.
constexpr double kFloatRounding = 1e-6;
// What an impulse response loses by being cut off after a few thousand frames.
constexpr double kTruncatedTail = 1e-6;
// A control value moved by whole pixels, each step rounded to single precision.
constexpr float kPixelStepRounding = 1e-5f;
