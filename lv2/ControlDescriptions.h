// What the Turtle says of each control port, derived from the parameter
// protocol: name, unit, range, default, scale points. Values are in the
// units a user reads, the same numbers the DSP side turns into engine fields.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "Lv2Ports.h"

namespace sorvane::lv2 {

enum class Unit { None, Degree, Percent, Decibel, Hertz, Coefficient };

struct ScalePoint {
    float value;
    std::string label;
};

// A control port's range and starting value, and what both the DSP and the
// UI make of a value the host writes there. The range is only advice to a
// host, which may write any float: a value past an end acts as that end (an
// infinite gain or a zoom far past 100 % would blow the feeds up), a NaN as
// the starting value.
struct PortLimits {
    float minimum = 0, maximum = 0, initial = 0;
    float effective(float value) const { return std::isnan(value) ? initial : std::clamp(value, minimum, maximum); }
};

struct ControlDescription : PortLimits {
    std::string symbol;
    std::string name;
    Unit unit = Unit::None;
    bool integer = false;      // whole numbers only (choices, hertz)
    bool enumeration = false;  // only the scale points are valid
    std::vector<ScalePoint> scalePoints;
};

ControlDescription describeControl(int control);

}  // namespace sorvane::lv2
