// What processing costs: subnormal input, and filter histories decaying into
// subnormals after a sound stops, must cost no more than twice ordinary
// noise. Each case is timed several times, interleaved, and the best time of
// each counts, since other work on the machine only ever adds time.
#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <limits>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

constexpr int kBlock = 512;
constexpr int kBlocks = 128;  // frames timed per run: 65536

// Runs whole blocks of `source` (one block, repeated) through the float callback.
class Timer {
public:
    Timer(vsthost::Plugin& plugin, int inputs, int outputs)
        : plugin(plugin), in(inputs, std::vector<float>(kBlock)), out(outputs, std::vector<float>(kBlock)) {}

    void load(const std::vector<std::vector<float>>& source) { in = source; }

    double run(int blocks) {
        const auto start = std::chrono::steady_clock::now();
        for (int b = 0; b < blocks; ++b) {
            inPointers.clear();
            outPointers.clear();
            for (auto& c : in) inPointers.push_back(c.data());
            for (auto& c : out) outPointers.push_back(c.data());
            plugin.processFloatRaw(inPointers.data(), outPointers.data(), kBlock);
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    vsthost::Plugin& plugin;
    std::vector<std::vector<float>> in, out;
    std::vector<float*> inPointers, outPointers;
};

std::vector<std::vector<float>> noiseBlock(int channels, Random& random, bool subnormal) {
    std::vector<std::vector<float>> block(channels, std::vector<float>(kBlock));
    std::uniform_int_distribution<std::uint32_t> mantissa(1, 0x7FFFFF);
    std::uniform_real_distribution<float> uniform(-0.5f, 0.5f);
    for (auto& channel : block)
        for (float& v : channel) {
            if (subnormal) {
                v = std::bit_cast<float>(mantissa(random) | (random() & 1 ? 0x80000000u : 0u));
            } else {
                v = uniform(random);
            }
        }
    return block;
}

CheckResult subnormalCost(const CheckContext& context) {
    Random random(context.seed);
    const int runs = context.byLevel(5, 9, 21);
    auto probe = createInstance(context.pluginPath, 44100.0f, kBlock, false);
    const int parameters = probe->numParams(), inputs = probe->numInputs(), outputs = probe->numOutputs();
    probe.reset();

    double worstRatio = 0;
    std::string worstCase;
    const std::pair<const char*, Setting> settings[] = {{"as created", {}}, {"all 1", Setting(parameters, 1.0f)}};
    for (const auto& [name, setting] : settings) {
        // One instance per case, so each keeps its own state between runs.
        auto normal = createInstance(context.pluginPath, 44100.0f, kBlock);
        auto tiny = createInstance(context.pluginPath, 44100.0f, kBlock);
        auto decay = createInstance(context.pluginPath, 44100.0f, kBlock);
        for (auto* plugin : {normal.get(), tiny.get(), decay.get()}) applySetting(*plugin, setting);
        Timer normalTimer(*normal, inputs, outputs), tinyTimer(*tiny, inputs, outputs), decayTimer(*decay, inputs, outputs);
        normalTimer.load(noiseBlock(inputs, random, false));
        tinyTimer.load(noiseBlock(inputs, random, true));
        // A loud block, then two seconds of silence, by which time a filter
        // without protection holds nothing but subnormals.
        decayTimer.load(noiseBlock(inputs, random, false));
        decayTimer.run(1);
        decayTimer.load(std::vector<std::vector<float>>(inputs, std::vector<float>(kBlock, 0.0f)));
        decayTimer.run(172);

        double best[3] = {std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                          std::numeric_limits<double>::max()};
        for (int r = 0; r < runs; ++r) {
            best[0] = std::min(best[0], normalTimer.run(kBlocks));
            best[1] = std::min(best[1], tinyTimer.run(kBlocks));
            best[2] = std::min(best[2], decayTimer.run(kBlocks));
        }
        const double tinyRatio = best[1] / best[0], decayRatio = best[2] / best[0];
        if (tinyRatio > worstRatio) worstRatio = tinyRatio, worstCase = std::string(name) + ", subnormal input";
        if (decayRatio > worstRatio) worstRatio = decayRatio, worstCase = std::string(name) + ", decay after a sound";
    }
    const std::string figure = format("worst %.2f times the cost of noise (%s), best of %d runs", worstRatio,
                                      worstCase.c_str(), runs);
    if (worstRatio > 2.0) return fail(figure);
    return pass(figure);
}

}  // namespace

void addTimingChecks(std::vector<Check>& checks) {
    checks.push_back({"subnormal-cost", 1, "subnormal input and decays cost at most twice noise", subnormalCost});
}

}  // namespace validate
