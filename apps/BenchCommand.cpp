// sorvane bench: command-line options of the throughput comparison.
#include "Commands.h"
#include "PluginOption.h"
#include "bench/Bench.h"

void addBenchCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<BenchOptions>();
    CLI::App* bench = app.add_subcommand(
        "bench",
        "Measure the processing throughput of one or more VST 2.4 plug-ins (ours by default) in one run,\n"
        "alternating between them in rounds, for the float and the double callback. Prints frames per\n"
        "second, nanoseconds per frame, the real-time factor at 48 kHz, the spread over rounds and the\n"
        "ratio of each plug-in to the first.");
    bench->add_option("--plugin", options->plugins, "plug-in to measure, repeatable (first is the reference)")
        ->take_all();
    bench->add_option("--seconds", options->seconds, "measuring time per layout")->capture_default_str();
    bench->add_option("--block", options->block, "frames per process call")->capture_default_str();
    bench->add_option("--layout", options->layouts, "stereo, 2.1, quad, 5.0, 5.1; repeatable")->take_all();
    bench->callback([options, &exitCode] {
        if (options->plugins.empty()) options->plugins.push_back(defaultPluginPath());
        exitCode = runBench(*options);
    });
}
