// `sorvane validate`: a host-behaviour torture suite for any VST 2.4 effect.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ValidateOptions {
    std::string plugin;
    int level = 2;  // 1 quick, 2 default, 3 exhaustive
    std::uint64_t seed = 0;
    bool seedGiven = false;         // otherwise one is drawn and printed
    std::vector<std::string> only;  // run only checks whose names contain one of these
    bool list = false;              // print the checks instead of running them
    bool inProcess = false;         // no child process per check (for debuggers)
    int stormRate = 20000;          // parameter changes per second in the editor storm
    std::string zipperParameter, zipperRange, zipperInput;  // see the zipper check
};

inline constexpr const char* kValidateDescription =
    "Put a VST 2.4 effect through what hosts do to it: creation and closing, processing before\n"
    "resume and with odd block sizes and sample rates, sentinel-filled and in-place buffers,\n"
    "parameter and program fuzzing, concurrent automation, real-time safety of the audio\n"
    "callbacks and recovery after NaN input. Each check prints one line (name, PASS/FAIL/SKIP,\n"
    "a figure or the fault found) and runs in a process of its own, so a crash fails only that\n"
    "check. The exit code is 1 when any check failed.";

// Runs the checks; returns the exit code (1 when any check failed).
int runValidate(const ValidateOptions& options);
