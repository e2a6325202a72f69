// The saved state of a plug-in that declares its programs as chunks: what a
// session or host preset saves must bring a fresh instance to exactly the
// same parameter values and the same output.
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

std::string compareState(vsthost::Plugin& saved, vsthost::Plugin& restored, Random& random, bool isPreset) {
    for (int k = 0; k < saved.numParams(); ++k)
        if (saved.getParameter(k) != restored.getParameter(k))
            return format("parameter %d reads %g after restoring, %g when saved", k, restored.getParameter(k),
                          saved.getParameter(k));
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
            if (restored->setChunk(chunk.data(), static_cast<VstInt32>(chunk.size()), isPreset) != 1)
                return fail(format("effSetChunk refused the %s chunk effGetChunk gave", isPreset ? "program" : "bank"));
            if (auto fault = compareState(*saved, *restored, random, isPreset); !fault.empty())
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
