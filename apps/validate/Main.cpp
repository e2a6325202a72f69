// sorvane-validate: the host-behaviour torture suite as a program of its own,
// started by `sorvane validate`. It is the only program that carries the
// counting hooks for allocation, locks and sleeps (they replace the C
// library's for the whole process), so the other subcommands run on the
// plain C library.
#include <CLI/CLI.hpp>

#include "PluginOption.h"
#include "Validate.h"

int main(int argc, char** argv) {
    ValidateOptions options;
    CLI::App app{kValidateDescription, "sorvane validate"};
    addPluginOption(app, options.plugin);
    app.add_option("--level", options.level, "1 quick, 2 default, 3 exhaustive")
        ->check(CLI::Range(1, 3))
        ->capture_default_str();
    CLI::Option* seed = app.add_option("--seed", options.seed, "seed of the random parts (default: drawn and printed)");
    app.add_option("--only", options.only, "run only the checks whose names contain this text")->take_all();
    app.add_option("--storm-rate", options.stormRate, "parameter changes per second in the editor storm check")
        ->check(CLI::Range(1, 10000000))
        ->capture_default_str();
    app.add_option("--zipper-parameter", options.zipperParameter,
                   "the zipper check's parameter, by name (default for Sorvane: Rotate and the Focus zoom)");
    app.add_option("--zipper-range", options.zipperRange, "its sweep in display units, FROM:TO (e.g. 0:90)");
    app.add_option("--zipper-input", options.zipperInput,
                   "the tone's convention: b-format (W 3 dB down, W X Y Z; the default) or ambix (W Y Z X, SN3D)");
    app.add_flag("--list", options.list, "list the checks and their levels");
    app.add_flag("--in-process", options.inProcess, "run the checks in this process (a crash then ends the run)");
    CLI11_PARSE(app, argc, argv);
    options.seedGiven = seed->count() > 0;
    return runValidate(options);
}
