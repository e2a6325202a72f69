#include "Bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>

#include "../render/ParameterValues.h"
#include "../render/SpeakerLayouts.h"
#include "AudioBuffer.h"
#include "Plugin.h"
#include "SorvaneProtocol.h"

namespace {

using vsthost::Plugin;
using Clock = std::chrono::steady_clock;

constexpr double kRoundSeconds = 0.05;
constexpr double kReferenceRate = 48000.0;

struct Contender {
    std::string label;
    std::unique_ptr<Plugin> plugin;
    vsthost::AudioBuffer<float> floatIn, floatOut;
    vsthost::AudioBuffer<double> doubleIn, doubleOut;
    std::vector<double> rates[2];  // frames per second per round: float, double

    Contender(std::unique_ptr<Plugin> p, std::string name, int block)
        : label(std::move(name)), plugin(std::move(p)),
          floatIn(std::max(plugin->numInputs(), 4), block), floatOut(std::max(plugin->numOutputs(), 1), block),
          doubleIn(std::max(plugin->numInputs(), 4), block), doubleOut(std::max(plugin->numOutputs(), 1), block) {
        std::mt19937 rng(3);
        std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
        for (std::size_t c = 0; c < floatIn.channels(); ++c)
            for (int f = 0; f < block; ++f) doubleIn[c][f] = floatIn[c][f] = noise(rng);
    }

    // Processes blocks for about one round; gives frames per second.
    double round(bool useDouble, int block) {
        long frames = 0;
        const auto start = Clock::now();
        const auto until = start + std::chrono::duration<double>(kRoundSeconds);
        auto now = start;
        do {
            for (int i = 0; i < 16; ++i) {
                if (useDouble) {
                    auto ins = doubleIn.pointers(), outs = doubleOut.pointers();
                    plugin->processDoubleRaw(ins.data(), outs.data(), block);
                } else {
                    auto ins = floatIn.pointers(), outs = floatOut.pointers();
                    plugin->processFloatRaw(ins.data(), outs.data(), block);
                }
                frames += block;
            }
            now = Clock::now();
        } while (now < until);
        return frames / std::chrono::duration<double>(now - start).count();
    }
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const std::size_t n = v.size();
    return n % 2 ? v[n / 2] : 0.5 * (v[n / 2 - 1] + v[n / 2]);
}

// Half the distance between the upper and lower quartile, relative to the median.
double spread(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const double q1 = v[v.size() / 4], q3 = v[(3 * v.size()) / 4];
    return 0.5 * (q3 - q1) / median(v);
}

int benchOneSetting(const BenchOptions& options, const std::string& layout) {
    std::vector<std::unique_ptr<Contender>> contenders;
    for (const std::string& path : options.plugins) {
        std::string error;
        std::unique_ptr<Plugin> plugin = Plugin::load(path, error);
        if (!plugin) {
            std::fprintf(stderr, "sorvane bench: %s\n", error.c_str());
            return 1;
        }
        plugin->open();
        if (!layout.empty()) {
            const int index = findParameter(*plugin, sorvane::kParameters[kDecodeMode].name);
            const SpeakerLayout* l = findSpeakerLayout(layout);
            if (!l) {
                std::fprintf(stderr, "sorvane bench: unknown layout '%s'; use stereo, 2.1, quad, 5.0 or 5.1\n",
                             layout.c_str());
                return 1;
            }
            if (index >= 0) plugin->setParameter(index, l->layoutValue);
        }
        plugin->setSampleRate(static_cast<float>(kReferenceRate));
        plugin->setBlockSize(options.block);
        plugin->resume();
        std::string name = plugin->effectName();
        if (name.empty()) name = path;
        contenders.push_back(std::make_unique<Contender>(std::move(plugin), name, options.block));
    }

    // Rounds alternate between plug-ins and precisions so that a noisy
    // machine affects every contender alike.
    const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
    int rounds = 0;
    do {
        for (int precision = 0; precision < 2; ++precision)
            for (auto& c : contenders) c->rates[precision].push_back(c->round(precision == 1, options.block));
        ++rounds;
    } while (Clock::now() < end || rounds < 3);

    std::printf("\n%s%s, block %d, %d rounds of %.0f ms each\n", layout.empty() ? "as loaded" : "layout ",
                layout.c_str(), options.block, rounds, kRoundSeconds * 1000);
    std::printf("%-24s %-7s %14s %10s %12s %8s %10s\n", "plug-in", "samples", "frames/s", "ns/frame",
                "x realtime", "spread", "vs first");
    for (int precision = 0; precision < 2; ++precision) {
        const double first = median(contenders.front()->rates[precision]);
        for (auto& c : contenders) {
            const double fps = median(c->rates[precision]);
            std::printf("%-24s %-7s %14.4g %10.2f %12.0f %7.1f%% %9.2fx\n", c->label.c_str(),
                        precision ? "double" : "float", fps, 1e9 / fps, fps / kReferenceRate,
                        100 * spread(c->rates[precision]), fps / first);
        }
    }
    for (auto& c : contenders) c->plugin->suspend();
    return 0;
}

}  // namespace

int runBench(const BenchOptions& options) {
    if (options.plugins.empty()) {
        std::fprintf(stderr, "sorvane bench: no plug-in to measure\n");
        return 1;
    }
    if (options.block < 1 || options.block > 65536) {
        std::fprintf(stderr, "sorvane bench: --block must be between 1 and 65536\n");
        return 1;
    }
    if (!(options.seconds > 0)) {
        std::fprintf(stderr, "sorvane bench: --seconds must be positive\n");
        return 1;
    }
    if (options.layouts.empty()) return benchOneSetting(options, "");
    for (const std::string& layout : options.layouts)
        if (int code = benchOneSetting(options, layout)) return code;
    return 0;
}
