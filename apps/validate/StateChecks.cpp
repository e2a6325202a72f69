// The saved state of a plug-in that declares its programs as chunks: what a
// session saves (the bank chunk) must bring a fresh instance to exactly the
// same parameter values and the same output. A host preset (the program
// chunk) may leave some parameters alone (settings that describe the track
// rather than the sound): those must keep the value they had, and with them
// set as saved, the output must be the same.
#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

std::vector<unsigned char> chunkOf(vsthost::Plugin& plugin, bool isPreset) {
    void* data = nullptr;
    const VstIntPtr size = plugin.getChunk(&data, isPreset);
    if (size <= 0 || !data) throw CheckFailure(format("effGetChunk (%s) gave no chunk", isPreset ? "program" : "bank"));
    return {static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size};
}

// `before` holds the restored instance's values before the chunk came.
std::string compareState(vsthost::Plugin& saved, vsthost::Plugin& restored, const std::vector<float>& before,
                         Random& random, bool isPreset) {
    int restoredCount = 0, differedCount = 0;
    for (int k = 0; k < saved.numParams(); ++k) {
        const float want = saved.getParameter(k), got = restored.getParameter(k);
        differedCount += before[k] != want;
        if (got == want) {
            restoredCount += before[k] != want;
            continue;
        }
        if (!isPreset || got != before[k])
            return format("parameter %d reads %g after restoring, %g when saved", k, got, want);
        restored.setParameter(k, want);  // left alone by the preset: set as saved to compare the sound
    }
    if (isPreset && differedCount > 0 && restoredCount == 0) return "the program chunk restored no parameter";
    if (!isPreset && saved.program() != restored.program())
        return format("program %d after restoring, %d when saved", restored.program(), saved.program());
    const Planar input = noise(saved.numInputs(), 2048, 0.5, random);
    const BlockOutcome a = render(saved, input, saved.numOutputs(), fixedBlocks(512), Precision::Float);
    const BlockOutcome b = render(restored, input, restored.numOutputs(), fixedBlocks(512), Precision::Float);
    if (!a.fault.empty() || !b.fault.empty()) return a.fault.empty() ? b.fault : a.fault;
    const std::string difference = compareSignals(a.output, b.output, 0.0, 0.0);
    return difference.empty() ? std::string() : "output differs after restoring: " + difference;
}

CheckResult stateRoundTrip(const CheckContext& context) {
    Random random(context.seed);
    auto probe = createInstance(context.pluginPath);
    if (!probe->hasFlag(effFlagsProgramChunks)) return skip("the plug-in keeps no chunks");
    const int rounds = context.byLevel(3, 10, 40);
    std::uniform_int_distribution<int> program(0, std::max(0, probe->numPrograms() - 1));
    for (int round = 0; round < rounds; ++round) {
        for (bool isPreset : {false, true}) {
            auto saved = createInstance(context.pluginPath);
            saved->setProgram(program(random));
            applySetting(*saved, randomSetting(saved->numParams(), random));
            std::vector<unsigned char> chunk = chunkOf(*saved, isPreset);
            auto restored = createInstance(context.pluginPath);
            applySetting(*restored, randomSetting(restored->numParams(), random));
            std::vector<float> before;
            for (int k = 0; k < restored->numParams(); ++k) before.push_back(restored->getParameter(k));
            if (restored->setChunk(chunk.data(), static_cast<VstInt32>(chunk.size()), isPreset) != 1)
                return fail(format("effSetChunk refused the %s chunk effGetChunk gave", isPreset ? "program" : "bank"));
            if (auto fault = compareState(*saved, *restored, before, random, isPreset); !fault.empty())
                return fail(std::string(isPreset ? "program" : "bank") + " chunk: " + fault);
        }
    }
    return pass(format("%d bank and program chunks restored exactly", rounds));
}

}  // namespace

void addStateChecks(std::vector<Check>& checks) {
    checks.push_back(
        {"state-chunk", 1, "saved chunks bring a fresh instance to the same values and output", stateRoundTrip});
}

}  // namespace validate
