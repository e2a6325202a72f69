// What the Turtle says of each control port, derived from the parameter
// protocol: name, unit, range, default, scale points. Values are in the
// units a user reads, the same numbers the DSP side turns into engine fields.
#pragma once

#include <string>
#include <vector>

#include "Lv2Ports.h"

namespace sorvane::lv2 {

enum class Unit { None, Degree, Percent, Decibel, Hertz, Coefficient };

struct ScalePoint {
    float value;
    std::string label;
};

struct ControlDescription {
    std::string symbol;
    std::string name;
    Unit unit = Unit::None;
    float minimum = 0, maximum = 0, initial = 0;
    bool integer = false;      // whole numbers only (choices, hertz)
    bool enumeration = false;  // only the scale points are valid
    std::vector<ScalePoint> scalePoints;
};

ControlDescription describeControl(int control);

}  // namespace sorvane::lv2
