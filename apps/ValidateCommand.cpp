// sorvane validate: command-line options of the host-behaviour torture suite.
#include "Commands.h"
#include "PluginOption.h"
#include "validate/Validate.h"

void addValidateCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ValidateOptions>();
    CLI::App* validate = app.add_subcommand(
        "validate",
        "Put a VST 2.4 effect through what hosts do to it: creation and closing, processing before\n"
        "resume and with odd block sizes and sample rates, sentinel-filled and in-place buffers,\n"
        "parameter and program fuzzing, concurrent automation, real-time safety of the audio\n"
        "callbacks and recovery after NaN input. Each check prints one line (name, PASS/FAIL/SKIP,\n"
        "a figure or the fault found) and runs in a process of its own, so a crash fails only that\n"
        "check. The exit code is 1 when any check failed.");
    addPluginOption(*validate, options->plugin);
    validate->add_option("--level", options->level, "1 quick, 2 default, 3 exhaustive")
        ->check(CLI::Range(1, 3))
        ->capture_default_str();
    CLI::Option* seed =
        validate->add_option("--seed", options->seed, "seed of the random parts (default: drawn and printed)");
    validate->add_option("--only", options->only, "run only the checks whose names contain this text")
        ->take_all();
    validate->add_flag("--list", options->list, "list the checks and their levels");
    validate->add_flag("--in-process", options->inProcess,
                       "run the checks in this process (a crash then ends the run)");
    validate->callback([options, seed, &exitCode] {
        options->seedGiven = seed->count() > 0;
        exitCode = runValidate(*options);
    });
}
