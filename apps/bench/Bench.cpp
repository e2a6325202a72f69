#include "Bench.h"
#include "Console.h"

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

int fail(const std::string& message) { return console::fail("bench", message); }

struct Contender {
    std::string label;
    std::unique_ptr<Plugin> plugin;
    bool hasDouble;
    vsthost::AudioBuffer<float> floatIn, floatOut;
    vsthost::AudioBuffer<double> doubleIn, doubleOut;
    // Frames per second per round, by block size and precision (float, double).
    std::vector<std::vector<double>> rates[2];

    Contender(std::unique_ptr<Plugin> p, std::string name, int outputs, int longestBlock, std::size_t blockSizes)
        : label(std::move(name)),
          plugin(std::move(p)),
          hasDouble(plugin->hasFlag(effFlagsCanDoubleReplacing)),
          floatIn(std::max(plugin->numInputs(), 4), longestBlock),
          floatOut(std::max({plugin->numOutputs(), outputs, 1}), longestBlock),
          doubleIn(std::max(plugin->numInputs(), 4), longestBlock),
          doubleOut(std::max({plugin->numOutputs(), outputs, 1}), longestBlock) {
        std::mt19937 rng(3);
        std::uniform_real_distribution<float> noise(-0.5f, 0.5f);
        for (std::size_t c = 0; c < floatIn.channels(); ++c)
            for (int f = 0; f < longestBlock; ++f) doubleIn[c][f] = floatIn[c][f] = noise(rng);
        rates[0].resize(blockSizes);
        rates[1].resize(blockSizes);
    }

    // Processes blocks for about one round; gives frames per second. The
    // pointer arrays are refilled before each call (plug-ins may walk them)
    // without allocating, so the host's own cost stays out of the figures.
    double round(bool useDouble, int block) {
        auto floatIns = floatIn.pointers(), floatOuts = floatOut.pointers();
        auto doubleIns = doubleIn.pointers(), doubleOuts = doubleOut.pointers();
        auto floatInWalk = floatIns, floatOutWalk = floatOuts;
        auto doubleInWalk = doubleIns, doubleOutWalk = doubleOuts;
        long frames = 0;
        const auto start = Clock::now();
        const auto until = start + std::chrono::duration<double>(kRoundSeconds);
        auto now = start;
        do {
            for (int i = 0; i < 16; ++i) {
                if (useDouble) {
                    std::copy(doubleIns.begin(), doubleIns.end(), doubleInWalk.begin());
                    std::copy(doubleOuts.begin(), doubleOuts.end(), doubleOutWalk.begin());
                    plugin->processDoubleRaw(doubleInWalk.data(), doubleOutWalk.data(), block);
                } else {
                    std::copy(floatIns.begin(), floatIns.end(), floatInWalk.begin());
                    std::copy(floatOuts.begin(), floatOuts.end(), floatOutWalk.begin());
                    plugin->processFloatRaw(floatInWalk.data(), floatOutWalk.data(), block);
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

// Loads a plug-in and sets it up: layout (where it has ours), program, settings.
std::unique_ptr<Contender> prepare(const BenchPlugin& wanted, const std::string& layout, const BenchOptions& options,
                                   std::string& error) {
    std::unique_ptr<Plugin> plugin = Plugin::load(wanted.path, error);
    if (!plugin) return nullptr;
    std::unique_ptr<Plugin> probe = Plugin::load(wanted.path, error);
    if (!probe) return nullptr;
    plugin->open();
    probe->open();
    if (!layout.empty()) {
        const SpeakerLayout* l = findSpeakerLayout(layout);
        if (!l) {
            error = "unknown layout '" + layout + "'; use stereo, 2.1, quad, 5.0 or 5.1";
            return nullptr;
        }
        const int index = findParameter(*plugin, sorvane::kParameters[kDecodeMode].name);
        if (index >= 0) plugin->setParameter(index, l->layoutValue);
    }
    if (!wanted.program.empty() && !applyProgram(*plugin, wanted.program, error)) return nullptr;
    for (const std::string& text : wanted.settings) {
        ParameterSetting setting;
        if (!parseSetting(*plugin, *probe, text, setting, error)) return nullptr;
        plugin->setParameter(setting.index, setting.value);
    }
    if (wanted.outputs < 0 || wanted.outputs > plugin->numOutputs()) {
        error = "--outputs must be between 1 and the plug-in's " + std::to_string(plugin->numOutputs()) + " outputs";
        return nullptr;
    }
    if (wanted.outputs > 0 && plugin->numInputs() >= 4 && !offerArrangement(*plugin, 4, wanted.outputs))
        std::fprintf(stderr, "sorvane bench: %s answers no to 4 inputs and %d outputs (measured all the same)\n",
                     wanted.path.c_str(), wanted.outputs);
    const int longest = *std::max_element(options.blocks.begin(), options.blocks.end());
    plugin->setSampleRate(static_cast<float>(kReferenceRate));
    plugin->setBlockSize(longest);
    plugin->resume();

    std::string name = plugin->effectName();
    if (name.empty()) name = wanted.path;
    if (!wanted.program.empty())
        name += " [" + wanted.program + "]";
    else if (!layout.empty() && findParameter(*plugin, sorvane::kParameters[kDecodeMode].name) < 0)
        name += " [as loaded]";
    return std::make_unique<Contender>(std::move(plugin), name, wanted.outputs, longest, options.blocks.size());
}

void printTable(const std::vector<std::unique_ptr<Contender>>& contenders, const std::vector<int>& blocks) {
    std::printf("%-30s %-7s", "ns per frame (spread)", "samples");
    for (int b : blocks) std::printf(" %14d", b);
    std::printf("\n");
    for (int precision = 0; precision < 2; ++precision)
        for (const auto& c : contenders) {
            std::printf("%-30s %-7s", c->label.c_str(), precision ? "double" : "float");
            if (precision && !c->hasDouble) {
                std::printf(" no double-precision callback\n");
                continue;
            }
            for (std::size_t b = 0; b < blocks.size(); ++b) {
                const auto& r = c->rates[precision][b];
                std::printf(" %7.2f (%3.0f%%)", 1e9 / median(r), 100 * spread(r));
            }
            std::printf("\n");
        }
    if (contenders.size() < 2) return;
    std::printf("%-30s %-7s", "time relative to the first", "");
    for (int b : blocks) std::printf(" %14d", b);
    std::printf("\n");
    const Contender& first = *contenders.front();
    for (int precision = 0; precision < 2; ++precision) {
        if (precision && !first.hasDouble) continue;
        for (std::size_t i = 1; i < contenders.size(); ++i) {
            const Contender& c = *contenders[i];
            if (precision && !c.hasDouble) continue;
            std::printf("%-30s %-7s", c.label.c_str(), precision ? "double" : "float");
            for (std::size_t b = 0; b < blocks.size(); ++b)
                std::printf(" %13.2fx", median(first.rates[precision][b]) / median(c.rates[precision][b]));
            std::printf("\n");
        }
    }
}

int benchOneSetting(const BenchOptions& options, const std::string& layout) {
    std::vector<std::unique_ptr<Contender>> contenders;
    for (const BenchPlugin& wanted : options.plugins) {
        std::string error;
        auto contender = prepare(wanted, layout, options, error);
        if (!contender) return fail(error);
        contenders.push_back(std::move(contender));
    }

    // Rounds alternate between plug-ins and precisions so that a noisy
    // machine affects every contender alike.
    int rounds = 0;
    for (std::size_t b = 0; b < options.blocks.size(); ++b) {
        const int block = options.blocks[b];
        // As a host does when its buffer size changes: every contender is
        // told the new size, so each can size its work for it.
        for (auto& c : contenders) {
            c->plugin->suspend();
            c->plugin->setBlockSize(block);
            c->plugin->resume();
        }
        const auto end = Clock::now() + std::chrono::duration<double>(options.seconds);
        int blockRounds = 0;
        do {
            for (int precision = 0; precision < 2; ++precision)
                for (auto& c : contenders)
                    if (precision == 0 || c->hasDouble)
                        c->rates[precision][b].push_back(c->round(precision == 1, block));
            ++blockRounds;
        } while (Clock::now() < end || blockRounds < 3);
        rounds += blockRounds;
    }

    std::printf("\n%s%s at %.0f Hz, block sizes across, %d rounds of %.0f ms\n",
                layout.empty() ? "as set up" : "layout ", layout.c_str(), kReferenceRate, rounds, kRoundSeconds * 1000);
    printTable(contenders, options.blocks);
    for (auto& c : contenders) c->plugin->suspend();
    return 0;
}

}  // namespace

int runBench(const BenchOptions& options) {
    if (options.plugins.empty()) return fail("no plug-in to measure");
    if (options.blocks.empty()) return fail("no block size");
    for (int block : options.blocks)
        if (block < 1 || block > 65536) return fail("--block must be between 1 and 65536");
    if (!(options.seconds > 0)) return fail("--seconds must be positive");
    if (options.layouts.empty()) return benchOneSetting(options, "");
    for (const std::string& layout : options.layouts)
        if (int code = benchOneSetting(options, layout)) return code;
    return 0;
}
