// Writes the bundle's Turtle at build time:
//   sorvane-lv2-turtle BUNDLE_DIR DSP_LIBRARY_FILE_NAME UI_LIBRARY_FILE_NAME
// manifest.ttl, the plug-in's and its editor's description and the presets,
// from the parameter protocol and the factory programs.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Lv2Ports.h"
#include "PluginTurtle.h"
#include "PresetTurtle.h"

namespace {

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
    if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s BUNDLE_DIR DSP_LIBRARY_FILE_NAME UI_LIBRARY_FILE_NAME\n", argv[0]);
        return 2;
    }
    using namespace sorvane::lv2;
    try {
        const std::filesystem::path bundle = argv[1];
        std::filesystem::create_directories(bundle);
        const auto presets = factoryPresets();
        std::vector<std::string> uris;
        for (const Preset& preset : presets) uris.push_back(preset.uri);
        writeFile(bundle / "manifest.ttl", manifestTurtle(argv[2], argv[3], uris));
        writeFile(bundle / kPluginTurtle, pluginTurtle());
        writeFile(bundle / kPresetTurtle, presetTurtle(presets));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: %s\n", argv[0], e.what());
        return 1;
    }
    return 0;
}
