// sorvane preset: writes and describes the host-exchange files, a program
// (.fxp) or a bank (.fxb), for any VST 2.4 plug-in.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ParameterValues.h"
#include "Plugin.h"
#include "PluginOption.h"
#include "PresetFile.h"
#include "SorvaneProtocol.h"
#include "SpeakerLayouts.h"

namespace {

struct PresetOptions {
    std::string plugin;
    std::string file;
    std::string layout;
    std::string program;
    std::vector<std::string> settings;
};

int fail(const std::string& message) { return console::fail("preset", message); }

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string idText(VstInt32 id) {
    std::string text = "'";
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>((id >> shift) & 0xff);
        text += (c >= 32 && c < 127) ? c : '.';
    }
    return text + "'";
}

int save(const PresetOptions& options) {
    const bool bank = endsWith(options.file, ".fxb");
    if (!bank && !endsWith(options.file, ".fxp"))
        return fail("name the file .fxp (one program) or .fxb (the whole bank): " + options.file);
    std::string error;
    auto plugin = vsthost::Plugin::load(options.plugin, error);
    auto probe = plugin ? vsthost::Plugin::load(options.plugin, error) : nullptr;
    if (!plugin || !probe) return fail(error);
    plugin->open();
    probe->open();
    if (!options.layout.empty()) {
        const SpeakerLayout* layout = findSpeakerLayout(options.layout);
        const int index = findParameter(*plugin, sorvane::kParameters[kDecodeMode].name);
        if (!layout) return fail("unknown layout '" + options.layout + "'; use stereo, 2.1, quad, 5.0 or 5.1");
        if (index < 0) return fail("--layout needs a plug-in with a layout parameter");
        plugin->setParameter(index, layout->layoutValue);
    }
    if (!options.program.empty() && !applyProgram(*plugin, options.program, error)) return fail(error);
    for (const std::string& text : options.settings) {
        ParameterSetting setting;
        if (!parseSetting(*plugin, *probe, text, setting, error)) return fail(error);
        plugin->setParameter(setting.index, setting.value);
    }
    if (!vsthost::writePresetFile(options.file, vsthost::capturePreset(*plugin, bank), error)) return fail(error);
    std::cout << "Wrote " << options.file << '\n';
    return 0;
}

int show(const PresetOptions& options) {
    std::string error;
    vsthost::PresetFile file;
    if (!vsthost::readPresetFile(options.file, file, error)) return fail(error);
    std::cout << "Preset file:     " << options.file << '\n'
              << "Kind:            "
              << (file.bank ? "bank (.fxb), format version " + std::to_string(file.version)
                            : std::string("program (.fxp)"))
              << '\n'
              << "Plug-in ID:      " << idText(file.pluginId) << '\n'
              << "Plug-in version: " << file.pluginVersion << '\n';
    if (file.opaque)
        std::cout << "Holds:           the plug-in's own state, " << file.chunk.size() << " bytes\n";
    else
        std::cout << "Holds:           " << file.programs.size() << " program(s) of parameter values\n";
    if (!file.bank) std::cout << "Name:            " << file.name << '\n';
    if (file.bank) std::cout << "Current program: " << file.currentProgram << '\n';

    // What it sets, read back from the plug-in it belongs to.
    auto plugin = vsthost::Plugin::load(options.plugin, error);
    if (!plugin) return fail(error);
    plugin->open();
    if (!vsthost::applyPreset(*plugin, file, error)) return fail(options.file + ": " + error);
    std::cout << '\n';
    printSettings(*plugin);
    return 0;
}

}  // namespace

void addPresetCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<PresetOptions>();
    CLI::App* preset = app.add_subcommand(
        "preset", "Write or describe a preset file as hosts exchange them: a program (.fxp) or a whole bank (.fxb).");
    preset->require_subcommand(1);

    CLI::App* save = preset->add_subcommand(
        "save",
        "Write the plug-in's state after --layout, --program and each --set (as for render) to FILE:\n"
        ".fxp for the current program, .fxb for the whole bank.");
    addPluginOption(*save, options->plugin);
    save->add_option("file", options->file, "FILE.fxp or FILE.fxb")->required();
    save->add_option("--layout", options->layout, "stereo, 2.1, quad, 5.0 or 5.1");
    save->add_option("--program", options->program, "program number (0-4) or name, in the chosen layout");
    save->add_option("--set", options->settings, "NAME=VALUE, repeatable")->take_all();
    save->callback([options, &exitCode] { exitCode = ::save(*options); });

    CLI::App* show = preset->add_subcommand(
        "show", "Describe a .fxp or .fxb file and list the settings it gives the plug-in it belongs to.");
    addPluginOption(*show, options->plugin);
    show->add_option("file", options->file, "FILE.fxp or FILE.fxb")->required();
    show->callback([options, &exitCode] { exitCode = ::show(*options); });
}
