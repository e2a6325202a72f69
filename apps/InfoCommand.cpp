// sorvane info: what a host learns about a plug-in on loading it.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

#include "Commands.h"
#include "Console.h"
#include "HeadResponses.h"
#include "HeadTracker.h"
#include "Plugin.h"
#include "PluginOption.h"
#include "SorvaneProtocol.h"

namespace {

std::string fourCharText(VstInt32 code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>((code >> shift) & 0xff);
        text += (c >= 32 && c < 127) ? c : '.';
    }
    return text;
}

std::string flagNames(VstInt32 flags) {
    static const std::pair<VstInt32, const char*> names[] = {
        {effFlagsHasEditor, "HasEditor"},         {effFlagsCanReplacing, "CanReplacing"},
        {effFlagsProgramChunks, "ProgramChunks"}, {effFlagsIsSynth, "IsSynth"},
        {effFlagsNoSoundInStop, "NoSoundInStop"}, {effFlagsCanDoubleReplacing, "CanDoubleReplacing"}};
    std::string text;
    for (auto [flag, name] : names)
        if (flags & flag) text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
}

const char* categoryName(VstIntPtr category) {
    static const char* const names[] = {"Unknown",     "Effect",         "Synth",  "Analysis",
                                        "Mastering",   "Spacializer",    "RoomFx", "SurroundFx",
                                        "Restoration", "OfflineProcess", "Shell",  "Generator"};
    return category >= 0 && category < 12 ? names[category] : "?";
}

// Whether the plug-in has one of our parameters, by its name.
bool hasParameter(vsthost::Plugin& fx, int ours) {
    for (int i = 0; i < fx.numParams(); ++i)
        if (fx.parameterName(i) == sorvane::kParameters[ours].name) return true;
    return false;
}

void printIdentity(vsthost::Plugin& fx) {
    char id[16];
    std::snprintf(id, sizeof id, "0x%08X", static_cast<unsigned>(fx.uniqueID()));
    const VstIntPtr category = fx.plugCategory();
    std::cout << "Plug-in:         " << fx.path() << '\n'
              << "Name:            " << fx.effectName() << '\n'
              << "Vendor:          " << fx.vendorString() << '\n'
              << "Product:         " << fx.productString() << '\n'
              << "Vendor version:  " << fx.vendorVersion() << '\n'
              << "VST version:     " << fx.vstVersion() << '\n'
              << "Category:        " << category << " (" << categoryName(category) << ")\n"
              << "Unique ID:       '" << fourCharText(fx.uniqueID()) << "' (" << id << ")\n"
              << "Version:         " << fx.version() << '\n'
              << "Inputs:          " << fx.numInputs() << '\n'
              << "Outputs:         " << fx.numOutputs() << '\n'
              << "Flags:           " << fx.flags() << " (" << flagNames(fx.flags()) << ")\n"
              << "Initial delay:   " << fx.initialDelay() << '\n'
              << "Programs:        " << fx.numPrograms() << '\n'
              << "Parameters:      " << fx.numParams() << '\n';
    // Ours plays "Headphones" through the head responses it finds as this does.
    if (hasParameter(fx, kOutput)) {
        const auto responses = sorvane::loadHeadResponses(48000);
        std::cout << "Headphones:      "
                  << (responses->source.empty() ? "plain panning, no head responses" : responses->source) << '\n';
        if (!responses->problem.empty()) std::cout << "                 " << responses->problem << '\n';
    }
    // And it listens for a head tracker here, once "Tracking" is "OSC".
    if (hasParameter(fx, kTracking)) {
        const int port = sorvane::HeadTracker::firstFreePort();
        std::cout << "Head tracking:   OSC over UDP on "
                  << (sorvane::HeadTracker::allInterfaces() ? "all interfaces" : "the loopback interface")
                  << ", ports " << sorvane::HeadTracker::kFirstPort << "-" << sorvane::HeadTracker::kLastPort
                  << "; " << (port ? "a new instance takes " + std::to_string(port) : "every one taken now")
                  << '\n';
    }
}

void printParameters(vsthost::Plugin& fx) {
    std::cout << "\nParameters (index, name, normalised value, display, label):\n";
    for (VstInt32 i = 0; i < fx.numParams(); ++i) {
        char prefix[32];
        std::snprintf(prefix, sizeof prefix, "  %3d  ", i);
        char value[32];
        std::snprintf(value, sizeof value, "%9.6f  ", fx.getParameter(i));
        std::cout << prefix << console::padded(fx.parameterName(i), 15) << value
                  << console::padded(fx.parameterDisplay(i), 15) << fx.parameterLabel(i) << '\n';
    }
}

void printProgramNames(vsthost::Plugin& fx) {
    for (VstInt32 p = 0; p < fx.numPrograms(); ++p)
        std::cout << "    " << p << ": " << fx.programNameIndexed(p) << '\n';
}

void printPrograms(vsthost::Plugin& fx) {
    // Our program tables follow the speaker layout: list each layout's five.
    if (fx.uniqueID() == sorvane::kUniqueId && fx.numParams() > kDecodeMode) {
        std::cout << "\nPrograms of every layout:\n";
        for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout) {
            fx.setParameter(kDecodeMode, sorvane::layoutValue(layout));
            std::cout << "  " << fx.parameterDisplay(kDecodeMode) << ":\n";
            printProgramNames(fx);
        }
        return;
    }
    std::cout << "\nPrograms:\n";
    printProgramNames(fx);
}

int runInfo(const std::string& path) {
    std::string error;
    auto fx = vsthost::Plugin::load(path, error);
    if (!fx) return console::fail("info", error);
    fx->open();
    printIdentity(*fx);
    printParameters(*fx);
    printPrograms(*fx);
    return 0;
}

}  // namespace

void addInfoCommand(CLI::App& app) {
    auto* command =
        app.add_subcommand("info", "Show a plug-in's identity, inputs and outputs, flags, parameters and programs");
    auto path = std::make_shared<std::string>();
    addPluginOption(*command, *path);
    command->callback([path] {
        if (const int status = runInfo(*path); status != 0) throw CLI::RuntimeError(status);
    });
}
