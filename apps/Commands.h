// The subcommands of the sorvane tool; each lives in its own file and adds
// itself to the application here.
#pragma once

#include <CLI/CLI.hpp>

// Registers "info": identity, buses, flags, parameters and programs of a plug-in.
void addInfoCommand(CLI::App& app);

// Registers "render": B-format file (or demo scene) to speaker feeds; sets exitCode.
void addRenderCommand(CLI::App& app, int& exitCode);
// Registers "bench": throughput of one or more plug-ins; sets exitCode.
void addBenchCommand(CLI::App& app, int& exitCode);
// Registers "validate": host-behaviour torture suite for any VST 2.4 effect; sets exitCode.
void addValidateCommand(CLI::App& app, int& exitCode);
// Registers "edit": the plug-in's editor in a window of its own; sets exitCode.
void addEditCommand(CLI::App& app, int& exitCode);
// Registers "preset": writes and describes .fxp and .fxb files; sets exitCode.
void addPresetCommand(CLI::App& app, int& exitCode);
