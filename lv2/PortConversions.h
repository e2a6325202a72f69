// Both ways between a control port's value (the units a user reads) and the
// VST edition's normalised value, which the editor works in. Neither
// direction has formulas of its own: a port value is the engine field the
// VST edition derives from a normalised value, and the normalised value of a
// port value is found by searching the VST edition's own conversion for the
// engine field the DSP derives from that port value.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "PortValues.h"

namespace sorvane::lv2 {

// The port value that gives a parameter the engine field the VST edition
// derives from the normalised value `v`.
inline float portValue(int parameter, float v) {
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
inline double fieldOfPort(Kind kind, float port) {
    return kind == Kind::Crossover ? selectorField(kind, port) : realField(kind, port);
}

}  // namespace detail

// The normalised value the editor shows for a port value: for a choice, the
// value of the switch position the DSP selects; otherwise the value in 0 .. 1
// whose engine field is nearest the one the DSP takes from the port, the
// smallest of equals (so a whole hertz maps to where the knob first reaches it).
inline float normalisedValue(int parameter, float port) {
    const Kind kind = kParameters[parameter].kind;
    if (kind == Kind::Layout) return layoutValue(selectorField(kind, port));
    if (isSelector(kind) && kind != Kind::Crossover)
        return static_cast<float>(selectorField(kind, port)) / static_cast<float>(choiceCount(kind) - 1);

    // Every conversion is monotonic in v, and the bit patterns of the floats
    // in 0 .. 1 are in their order: a bisection over the patterns finds the
    // first v whose field reaches the target.
    using detail::fieldOfNormalised;
    const double target = detail::fieldOfPort(kind, port);
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

}  // namespace sorvane::lv2
