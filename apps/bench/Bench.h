// `sorvane bench`: processing cost of one or more VST 2.4 plug-ins, each set
// up as asked, measured in one run across block sizes, alternating between
// them in rounds.
#pragma once

#include <string>
#include <vector>

// One plug-in to measure and how to set it up before measuring.
struct BenchPlugin {
    std::string path;
    std::string program;                // number or name; empty: as loaded
    std::vector<std::string> settings;  // NAME=VALUE, as render's --set
    int outputs = 0;                    // >0: offer 4 inputs and this many outputs
};

struct BenchOptions {
    std::vector<BenchPlugin> plugins;
    std::vector<std::string> layouts;  // empty: each plug-in as set up
    double seconds = 2.0;              // per layout and block size
    std::vector<int> blocks = {1, 16, 64, 512, 4096};
};

int runBench(const BenchOptions& options);
