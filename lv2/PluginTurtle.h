// The Turtle of the bundle's manifest and of the plug-in's description.
#pragma once

#include <string>
#include <vector>

namespace sorvane::lv2 {

// `binary` and `uiBinary`: the DSP and UI libraries' file names; `presetUris`:
// the presets to announce.
std::string manifestTurtle(const std::string& binary, const std::string& uiBinary,
                           const std::vector<std::string>& presetUris);
std::string pluginTurtle();

}  // namespace sorvane::lv2
