// sorvane: hosts a VST 2.4 plug-in (ours by default) from the command line.
#include <CLI/CLI.hpp>

#include "Commands.h"

int main(int argc, char** argv) {
    CLI::App app{"Sorvane: decode first-order Ambisonic B-format through the Sorvane VST 2.4 plug-in"};
    app.require_subcommand(1);
    int exitCode = 0;
    addInfoCommand(app);
    addRenderCommand(app, exitCode);
    addBenchCommand(app, exitCode);
    addEditCommand(app, exitCode);
    addPresetCommand(app, exitCode);
    addValidateCommand(app, exitCode);
    CLI11_PARSE(app, argc, argv);
    return exitCode;
}
