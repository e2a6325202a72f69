// sorvane bench: command-line options of the cost comparison. --program and
// --set belong to the --plugin given before them (the first plug-in when
// none is), so each plug-in can be set up on its own terms.
#include "Commands.h"
#include "PluginOption.h"
#include "bench/Bench.h"

namespace {

struct BenchArguments {
    BenchOptions options;
    std::vector<std::string> paths, programs, settings;
    std::vector<int> outputs;
};

// Hands each --program and --set to the plug-in given before it on the line.
std::vector<BenchPlugin> pluginsInOrder(const CLI::App& bench, const BenchArguments& args) {
    std::vector<BenchPlugin> plugins;
    std::size_t path = 0, program = 0, setting = 0, output = 0;
    auto current = [&]() -> BenchPlugin& {
        if (plugins.empty()) plugins.push_back({defaultPluginPath(), {}, {}});
        return plugins.back();
    };
    for (const CLI::Option* option : bench.parse_order()) {
        const std::string name = option->get_name();
        if (name == "--plugin")
            plugins.push_back({args.paths.at(path++), {}, {}});
        else if (name == "--program")
            current().program = args.programs.at(program++);
        else if (name == "--set")
            current().settings.push_back(args.settings.at(setting++));
        else if (name == "--outputs")
            current().outputs = args.outputs.at(output++);
    }
    if (plugins.empty()) current();
    return plugins;
}

}  // namespace

void addBenchCommand(CLI::App& app, int& exitCode) {
    auto args = std::make_shared<BenchArguments>();
    CLI::App* bench = app.add_subcommand(
        "bench",
        "Measure the processing cost of one or more VST 2.4 plug-ins (ours by default) in one run,\n"
        "alternating between them in rounds, for the float and the double callback, at each block\n"
        "size. Prints nanoseconds per frame (median over rounds, with the spread) and each plug-in's\n"
        "time relative to the first.\n\n"
        "Each --plugin may be followed by its own --program (number or name), --set NAME=VALUE (as\n"
        "render takes them, applied after --layout) and --outputs N (the speaker arrangement offered:\n"
        "4 inputs, N outputs; plug-ins that size their work by their buses need it):\n"
        "  sorvane bench --layout 5.1 --set Rotate=30 --plugin other.so --program 5.1 --outputs 6");
    bench->add_option("--plugin", args->paths, "plug-in to measure, repeatable (first is the reference)")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    bench->add_option("--program", args->programs, "program of the plug-in before it (number or name)")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    bench->add_option("--set", args->settings, "NAME=VALUE for the plug-in before it, repeatable")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    bench
        ->add_option("--outputs", args->outputs,
                     "outputs of the plug-in before it: offers it 4 inputs and this many outputs, as a host would")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    bench->add_option("--seconds", args->options.seconds, "measuring time per layout and block size")
        ->capture_default_str();
    bench->add_option("--block", args->options.blocks, "frames per process call, repeatable")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->capture_default_str();
    bench->add_option("--layout", args->options.layouts, "stereo, 2.1, quad, 5.0, 5.1 (ours only); repeatable")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    bench->callback([args, bench, &exitCode] {
        args->options.plugins = pluginsInOrder(*bench, *args);
        exitCode = runBench(args->options);
    });
}
