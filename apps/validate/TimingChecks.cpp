// What processing costs: subnormal input, and filter histories decaying into
// subnormals after a sound stops, must cost no more than twice ordinary
// noise. Each case is timed several times, interleaved, and the best time of
// each counts, since other work on the machine only ever adds time.
#include <algorithm>
#include <array>
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

// Runs whole blocks of `source` (one block, repeated) through one callback.
template <typename S>
class Timer {
public:
    Timer(vsthost::Plugin& plugin, int inputs, int outputs)
        : plugin(plugin), in(inputs, std::vector<S>(kBlock)), out(outputs, std::vector<S>(kBlock)) {}

    void load(const std::vector<std::vector<S>>& source) { in = source; }

    double run(int blocks) {
        const auto start = std::chrono::steady_clock::now();
        for (int b = 0; b < blocks; ++b) {
            inPointers.clear();
            outPointers.clear();
            for (auto& c : in) inPointers.push_back(c.data());
            for (auto& c : out) outPointers.push_back(c.data());
            if constexpr (sizeof(S) == 4)
                plugin.processFloatRaw(inPointers.data(), outPointers.data(), kBlock);
            else
                plugin.processDoubleRaw(inPointers.data(), outPointers.data(), kBlock);
        }
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    vsthost::Plugin& plugin;
    std::vector<std::vector<S>> in, out;
    std::vector<S*> inPointers, outPointers;
};

// Noise, or random subnormals of the sample type (exponent bits all zero).
template <typename S>
std::vector<std::vector<S>> noiseBlock(int channels, Random& random, bool subnormal) {
    using Bits = std::conditional_t<sizeof(S) == 4, std::uint32_t, std::uint64_t>;
    constexpr Bits kMantissa = sizeof(S) == 4 ? Bits(0x7FFFFF) : Bits(0xFFFFFFFFFFFFFull);
    constexpr Bits kSign = Bits(1) << (sizeof(S) * 8 - 1);
    std::vector<std::vector<S>> block(channels, std::vector<S>(kBlock));
    std::uniform_int_distribution<Bits> mantissa(1, kMantissa);
    std::uniform_real_distribution<S> uniform(S(-0.5), S(0.5));
    for (auto& channel : block)
        for (S& v : channel)
            v = subnormal ? std::bit_cast<S>(Bits(mantissa(random) | (random() & 1 ? kSign : 0))) : uniform(random);
    return block;
}

// Best times of noise, subnormal input, and silence after a sound, in one setting.
template <typename S>
std::array<double, 3> bestTimes(const std::string& path, const Setting& setting, int runs, Random& random) {
    auto normal = createInstance(path, 44100.0f, kBlock);
    auto tiny = createInstance(path, 44100.0f, kBlock);
    auto decay = createInstance(path, 44100.0f, kBlock);
    const int inputs = normal->numInputs(), outputs = normal->numOutputs();
    for (auto* plugin : {normal.get(), tiny.get(), decay.get()}) applySetting(*plugin, setting);
    Timer<S> normalTimer(*normal, inputs, outputs), tinyTimer(*tiny, inputs, outputs),
        decayTimer(*decay, inputs, outputs);
    normalTimer.load(noiseBlock<S>(inputs, random, false));
    tinyTimer.load(noiseBlock<S>(inputs, random, true));
    // A loud block, then two seconds of silence, by which time a filter
    // without protection holds nothing but subnormals.
    decayTimer.load(noiseBlock<S>(inputs, random, false));
    decayTimer.run(1);
    decayTimer.load(std::vector<std::vector<S>>(inputs, std::vector<S>(kBlock, S(0))));
    decayTimer.run(172);

    std::array<double, 3> best;
    best.fill(std::numeric_limits<double>::max());
    for (int r = 0; r < runs; ++r) {
        best[0] = std::min(best[0], normalTimer.run(kBlocks));
        best[1] = std::min(best[1], tinyTimer.run(kBlocks));
        best[2] = std::min(best[2], decayTimer.run(kBlocks));
    }
    return best;
}

CheckResult subnormalCost(const CheckContext& context) {
    Random random(context.seed);
    const int runs = context.byLevel(5, 9, 21);
    auto probe = createInstance(context.pluginPath, 44100.0f, kBlock, false);
    const int parameters = probe->numParams();
    const bool doubles = probe->hasFlag(effFlagsCanDoubleReplacing);
    probe.reset();

    double worstRatio = 0;
    std::string worstCase;
    const std::pair<const char*, Setting> settings[] = {{"as created", {}}, {"all 1", Setting(parameters, 1.0f)}};
    for (const auto& [name, setting] : settings)
        for (bool useDouble : {false, true}) {
            if (useDouble && !doubles) continue;
            const auto best = useDouble ? bestTimes<double>(context.pluginPath, setting, runs, random)
                                        : bestTimes<float>(context.pluginPath, setting, runs, random);
            const std::string where = std::string(name) + (useDouble ? ", double" : ", float");
            if (best[1] / best[0] > worstRatio) worstRatio = best[1] / best[0], worstCase = where + ", subnormal input";
            if (best[2] / best[0] > worstRatio)
                worstRatio = best[2] / best[0], worstCase = where + ", decay after a sound";
        }
    const std::string figure =
        format("worst %.2f times the cost of noise (%s), best of %d runs", worstRatio, worstCase.c_str(), runs);
    if (worstRatio > 2.0) return fail(figure);
    return pass(figure);
}

}  // namespace

void addTimingChecks(std::vector<Check>& checks) {
    checks.push_back({"subnormal-cost", 1, "subnormal input and decays cost at most twice noise", subnormalCost});
}

}  // namespace validate
