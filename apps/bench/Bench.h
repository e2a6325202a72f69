// `sorvane bench`: processing throughput of one or more VST 2.4 plug-ins,
// measured in one run, alternating between them in rounds.
#pragma once

#include <string>
#include <vector>

struct BenchOptions {
    std::vector<std::string> plugins;
    std::vector<std::string> layouts;  // empty: each plug-in as it loads
    double seconds = 3.0;
    int block = 512;
};

int runBench(const BenchOptions& options);
