// Turns "NAME=VALUE" from the command line into a parameter index and a
// normalised value, for any VST 2.4 plug-in. NAME is a parameter's name (or
// its number); VALUE is either normalised with an "n" suffix ("0.75n") or
// given in the units the plug-in's own display shows: a number ("30",
// "-6dB", "120Hz") or one of the words it shows ("Focus", "Cardioid").
//
// Values in display units are found by asking a scratch instance of the
// plug-in for its display texts, so no plug-in needs to be known in advance.
#pragma once

#include <string>

#include "Plugin.h"

struct ParameterSetting {
    int index = -1;
    float value = 0;
};

// Finds a parameter by name (case-insensitive) or number; -1 when unknown.
int findParameter(vsthost::Plugin& plugin, const std::string& name);
std::string parameterNames(vsthost::Plugin& plugin);

// `probe` is a scratch instance whose parameters this call may change.
bool resolveParameterValue(vsthost::Plugin& probe, int index, const std::string& value, float& normalised,
                           std::string& error);

bool parseSetting(vsthost::Plugin& plugin, vsthost::Plugin& probe, const std::string& text, ParameterSetting& setting,
                  std::string& error);

// Selects a program by number or by name among the current layout's; false
// with the names on offer in `error` when there is none such.
bool applyProgram(vsthost::Plugin& plugin, const std::string& wanted, std::string& error);

// The current program and every parameter's name, display and label.
void printSettings(vsthost::Plugin& plugin);
