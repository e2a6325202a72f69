// Recovery: one NaN or infinite input sample may spoil the frames that
// carry it, but the block of finite input after it must be finite again;
// filters must not stay poisoned until the host next suspends.
#include <limits>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

CheckResult nanRecovery(const CheckContext& context) {
    Random random(context.seed);
    auto probe = createInstance(context.pluginPath);
    const int parameters = probe->numParams(), inputs = probe->numInputs(), outputs = probe->numOutputs();
    const bool doubles = probe->hasFlag(effFlagsCanDoubleReplacing);
    probe.reset();
    if (inputs == 0) return skip("no inputs");

    constexpr int kBlock = 512;
    const double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    const char* badName[] = {"NaN", "+inf", "-inf"};
    int injected = 0;
    for (const auto& [name, setting] : standardSettings(parameters, random, context.byLevel(1, 4, 16)))
        for (Precision precision : {Precision::Float, Precision::Double}) {
            if (precision == Precision::Double && !doubles) continue;
            auto plugin = createInstance(context.pluginPath, 44100.0f, kBlock);
            applySetting(*plugin, setting);
            for (int b = 0; b < 3; ++b)
                for (int channel = 0; channel < inputs; ++channel) {
                    if (context.level == 1 && channel > 0 && channel != inputs - 1) continue;
                    processBlock(*plugin, noise(inputs, kBlock, 0.5, random), outputs, kBlock, precision);
                    Planar spoiled = noise(inputs, kBlock, 0.5, random);
                    const int at = std::uniform_int_distribution<int>(0, kBlock - 1)(random);
                    spoiled[channel][at] = bad[b];
                    const BlockOutcome hit = processBlock(*plugin, spoiled, outputs, kBlock, precision);
                    ++injected;
                    const std::string where =
                        format("%s, %s, %s in input %d at frame %d: ", name.c_str(),
                               precision == Precision::Float ? "float" : "double", badName[b], channel, at);
                    if (!hit.outside.empty() || !hit.unwritten.empty())
                        return fail(where + (hit.outside.empty() ? hit.unwritten : hit.outside));
                    for (int after = 0; after < 2; ++after) {
                        const BlockOutcome next =
                            processBlock(*plugin, noise(inputs, kBlock, 0.5, random), outputs, kBlock, precision);
                        if (!next.fault.empty()) return fail(where + next.fault);
                        if (auto found = findNonFinite(next.output, false); !found.empty())
                            return fail(where + found +
                                        format(" of the %s block of finite input", after == 0 ? "first" : "second"));
                    }
                }
        }
    return pass(format("%d NaN and infinite samples: finite again from the next block", injected));
}

}  // namespace

void addRecoveryChecks(std::vector<Check>& checks) {
    checks.push_back({"nan-recovery", 1, "finite output within one block after NaN or infinite input", nanRecovery});
}

}  // namespace validate
