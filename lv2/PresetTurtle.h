// The factory programs as LV2 presets: each sets the layout and the settings
// a program of that layout loads in the VST edition.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace sorvane::lv2 {

struct Preset {
    std::string uri;
    std::string label;                                  // "5.1: MS Microphones"
    std::vector<std::pair<std::string, float>> values;  // port symbol, value
};

std::vector<Preset> factoryPresets();
std::string presetTurtle(const std::vector<Preset>& presets);

}  // namespace sorvane::lv2
