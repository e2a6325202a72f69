// `sorvane validate`: a host-behaviour torture suite for any VST 2.4 effect.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ValidateOptions {
    std::string plugin;
    int level = 2;                    // 1 quick, 2 default, 3 exhaustive
    std::uint64_t seed = 0;
    bool seedGiven = false;           // otherwise one is drawn and printed
    std::vector<std::string> only;    // run only checks whose names contain one of these
    bool list = false;                // print the checks instead of running them
    bool inProcess = false;           // no child process per check (for debuggers)
};

// Runs the checks; returns the exit code (1 when any check failed).
int runValidate(const ValidateOptions& options);
