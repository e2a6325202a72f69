// A control port's value, in the units a user reads, as the engine's field.
// Wherever the VST edition can reach the same setting, the field gets the
// very bits that edition gives it (its conversions compute in single
// precision too), so both editions sound the same.
#pragma once

#include <iterator>

#include "Decoder.h"
#include "EngineFields.h"
#include "SorvaneProtocol.h"
#include "Truncation.h"

namespace sorvane::lv2 {

// The ambience ports' bottom end switches the path off, as the VST knob's does.
constexpr float kAmbienceFloorDb = -kAmbienceRangeDb;

constexpr int choiceCount(Kind kind) {
    switch (kind) {
    case Kind::ZoomMethod: return static_cast<int>(std::size(kZoomMethodWords));
    case Kind::PairMode: return static_cast<int>(std::size(kPairModeWords));
    case Kind::Layout: return kNumLayouts;
    case Kind::Order: return static_cast<int>(std::size(kChannelOrderWords));
    default: return 1;
    }
}

// The nearest of `count` indices, clamped; NaN selects the first.
constexpr int choiceIndex(float value, int count) {
    if (!(value >= 0.5f)) return 0;
    if (value >= static_cast<float>(count - 1)) return count - 1;
    return static_cast<int>(value + 0.5f);
}

// -0 reads as 0, as the VST edition's centre does, so no stage switches on for it.
constexpr double realField(Kind kind, float value) {
    if (kind == Kind::Ambience && !(value > kAmbienceFloorDb)) return kAmbienceOff;
    return value == 0.0f ? 0.0 : static_cast<double>(value);
}

inline int selectorField(Kind kind, float value) {
    switch (kind) {
    case Kind::Crossover: return truncateToInt(value);  // whole hertz
    case Kind::Layout: return kStereoLayout + choiceIndex(value, kNumLayouts);
    default: return choiceIndex(value, choiceCount(kind));
    }
}

// Writes parameter `index`'s engine field from its port value.
inline void applyControl(Decoder& decoder, int index, float value) {
    const Kind kind = kParameters[index].kind;
    const EngineField& field = kEngineFields[index];
    if (isSelector(kind))
        decoder.*field.selector = selectorField(kind, value);
    else
        decoder.*field.real = realField(kind, value);
}

inline int fiveDecoderField(float value) { return choiceIndex(value, static_cast<int>(std::size(kFiveDecoderWords))); }

}  // namespace sorvane::lv2
