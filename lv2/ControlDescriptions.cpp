#include "ControlDescriptions.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "FactoryPrograms.h"
#include "Units.h"

namespace sorvane::lv2 {

namespace {

Unit unitOf(Kind kind) {
    switch (kind) {
    case Kind::Angle:
    case Kind::Width: return Unit::Degree;
    case Kind::Zoom: return Unit::Percent;
    case Kind::Ambience:
    case Kind::Gain: return Unit::Decibel;
    case Kind::Crossover: return Unit::Hertz;
    case Kind::Pattern: return Unit::Coefficient;
    default: return Unit::None;
    }
}

// A new VST instance: the protocol's defaults, then the first program of the
// default layout, which it loads as it starts.
float startingValue(int parameter) {
    const int layout = layoutOf(kParameters[kDecodeMode].defaultValue);
    const ProgramRecord first = factoryProgram(layout, 0);
    for (std::int32_t sent : programParameters(layout, 0))
        if (sent == parameter) return first.value(sent);
    return kParameters[parameter].defaultValue;
}

ControlDescription describeChoice(const char* symbol, const char* name, std::span<const char* const> words) {
    ControlDescription d;
    d.symbol = symbol;
    d.name = name;
    d.integer = d.enumeration = true;
    d.maximum = static_cast<float>(words.size() - 1);
    for (std::size_t i = 0; i < words.size(); ++i) d.scalePoints.push_back({static_cast<float>(i), words[i]});
    return d;
}

}  // namespace

ControlDescription describeControl(int control) {
    if (control == kFiveDecoderControl)
        return describeChoice(kControlSymbols[control], "5.x Decoder", kFiveDecoderWords);

    const ParameterSpec& parameter = kParameters[control];
    // The front pair's VST name is its current mode; a port needs a fixed one.
    const char* name = parameter.name ? parameter.name : "Front Mode";
    ControlDescription d;
    if (const auto words = choiceWords(parameter.kind); !words.empty()) {
        d = describeChoice(kControlSymbols[control], name, words);
    } else {
        d.symbol = kControlSymbols[control];
        d.name = name;
        d.unit = unitOf(parameter.kind);
        d.integer = parameter.kind == Kind::Crossover;
        const float ends[] = {unitsOf(control, 0.0f), unitsOf(control, 1.0f)};
        d.minimum = std::min(ends[0], ends[1]);
        d.maximum = std::max(ends[0], ends[1]);
        if (parameter.kind == Kind::Ambience) d.scalePoints.push_back({kAmbienceFloorDb, "Off"});
        if (parameter.kind == Kind::Pattern)
            for (float p : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) d.scalePoints.push_back({p, patternWord(p)});
    }
    d.initial = unitsOf(control, startingValue(control));
    return d;
}

}  // namespace sorvane::lv2
