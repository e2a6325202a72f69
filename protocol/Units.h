// A parameter's value in the units a user reads (degrees, percent, decibels,
// whole hertz, a pattern from 0 to 1, the index of a choice), both ways
// against the normalised value hosts automate. The LV2 edition's ports carry
// these units, and `sorvane render --set` takes them.
//
// Wherever a normalised value can reach the same engine field, a value in
// units gives the field the very bits the normalised value gives it (the
// normalised conversions compute in single precision too), so both editions
// sound the same. Going the other way, the normalised value of a value in
// units is the one whose engine field is nearest the field the units give.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <span>

#include "SorvaneProtocol.h"
#include "Truncation.h"

namespace sorvane {

// The ambience levels' bottom end switches the path off, as the knob's does.
constexpr float kAmbienceFloorDb = -kAmbienceRangeDb;

// The words of a choice, empty for a continuous parameter or the crossover.
constexpr std::span<const char* const> choiceWords(Kind kind) {
    switch (kind) {
    case Kind::ZoomMethod: return kZoomMethodWords;
    case Kind::PairMode: return kPairModeWords;
    case Kind::Layout: return kLayoutWords;
    case Kind::Order: return kChannelOrderWords;
    case Kind::Input: return kInputWords;
    case Kind::Switch: return kSwitchWords;
    case Kind::Output: return kOutputWords;
    case Kind::Tracking: return kTrackingWords;
    default: return {};
    }
}
constexpr int choiceCount(Kind kind) { return static_cast<int>(choiceWords(kind).size()); }

// The nearest of `count` indices, clamped; NaN selects the first.
constexpr int choiceIndex(float value, int count) {
    if (!(value >= 0.5f)) return 0;
    if (value >= static_cast<float>(count - 1)) return count - 1;
    return static_cast<int>(value + 0.5f);
}

// A continuous engine field from units. -0 reads as 0, as the normalised
// centre does, so no stage switches on for it.
constexpr double realOfUnits(Kind kind, float value) {
    if (kind == Kind::Ambience && !(value > kAmbienceFloorDb)) return kAmbienceOff;
    return value == 0.0f ? 0.0 : static_cast<double>(value);
}

// A choice's engine field (or the crossover's whole hertz) from units.
inline int selectorOfUnits(Kind kind, float value) {
    switch (kind) {
    case Kind::Crossover: return truncateToInt(value);
    case Kind::Layout: return kStereoLayout + choiceIndex(value, kNumLayouts);
    default: return choiceIndex(value, choiceCount(kind));
    }
}

// The 5.x decoder type from its index among kFiveDecoderWords.
constexpr int fiveDecoderOfUnits(float value) {
    return choiceIndex(value, static_cast<int>(std::size(kFiveDecoderWords)));
}

// The value in units that gives a parameter the engine field the normalised value `v` gives it.
inline float unitsOf(int parameter, float v) {
    const Kind kind = kParameters[parameter].kind;
    if (kind == Kind::Ambience && v == 0.0f) return kAmbienceFloorDb;
    if (kind == Kind::Layout) return static_cast<float>(layoutOf(v) - kStereoLayout);
    if (isSelector(kind)) return static_cast<float>(selectorValue(kind, v, 0));
    return static_cast<float>(realValue(kind, v));
}

namespace detail {

// The engine field of a continuous parameter or the crossover, from each side.
inline double fieldOfNormalised(Kind kind, float v) {
    return kind == Kind::Crossover ? crossoverHz(v) : realValue(kind, v);
}
inline double fieldOfUnits(Kind kind, float value) {
    return kind == Kind::Crossover ? selectorOfUnits(kind, value) : realOfUnits(kind, value);
}

}  // namespace detail

// The value in 0 .. 1 whose engine field (a continuous parameter's, or the
// crossover's whole hertz) is nearest `target`, the smallest of equals (so a
// whole hertz maps to where the knob first reaches it).
inline float nearestNormalised(Kind kind, double target) {
    // Every conversion is monotonic in v, and the bit patterns of the floats
    // in 0 .. 1 are in their order: a bisection over the patterns finds the
    // first v whose field reaches the target.
    using detail::fieldOfNormalised;
    const bool rising = fieldOfNormalised(kind, 1.0f) > fieldOfNormalised(kind, 0.0f);
    const auto field = [kind](std::uint32_t bits) { return fieldOfNormalised(kind, std::bit_cast<float>(bits)); };
    const auto reaches = [&](std::uint32_t bits) { return rising ? field(bits) >= target : field(bits) <= target; };
    std::uint32_t below = 0, first = std::bit_cast<std::uint32_t>(1.0f);
    if (reaches(below)) return 0.0f;
    if (!reaches(first)) return 1.0f;
    while (first - below > 1) {
        const std::uint32_t middle = below + (first - below) / 2;
        (reaches(middle) ? first : below) = middle;
    }
    const bool belowNearer = std::fabs(field(below) - target) < std::fabs(field(first) - target);
    return std::bit_cast<float>(belowNearer ? below : first);
}

// The normalised value for a value in units: for a choice, the value of the
// switch position the units select; otherwise the one whose engine field is
// nearest the field the units give.
inline float normalisedOfUnits(int parameter, float value) {
    const Kind kind = kParameters[parameter].kind;
    if (kind == Kind::Layout) return layoutValue(selectorOfUnits(kind, value));
    if (isSelector(kind) && kind != Kind::Crossover)
        return positionValue(selectorOfUnits(kind, value), choiceCount(kind));
    return nearestNormalised(kind, detail::fieldOfUnits(kind, value));
}

}  // namespace sorvane
