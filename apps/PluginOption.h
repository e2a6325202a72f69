// The --plugin option shared by the subcommands that load a plug-in.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

inline const char* defaultPluginPath() { return SORVANE_DEFAULT_PLUGIN; }

inline CLI::Option* addPluginOption(CLI::App& command, std::string& path) {
    path = defaultPluginPath();
    return command.add_option("--plugin", path, "VST 2.4 plug-in to load")->capture_default_str();
}
