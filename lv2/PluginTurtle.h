// The Turtle of the bundle's manifest and of the plug-in's description.
#pragma once

#include <string>
#include <vector>

namespace sorvane::lv2 {

// `binary`: the DSP library's file name; `presetUris`: the presets to announce.
std::string manifestTurtle(const std::string& binary, const std::vector<std::string>& presetUris);
std::string pluginTurtle();

}  // namespace sorvane::lv2
