// The dispatcher as careless hosts use it: every request, including ones a
// plug-in does not expect, with buffers of zeros where pointers go, and
// out-of-range indices. Afterwards the instance must still process.
#include <vector>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

// Requests a sweep must not send: the close deletes the instance, and an
// editor can only be opened into a window.
bool sweepable(VstInt32 opcode) { return opcode != effClose && opcode != effEditOpen && opcode != effEditClose; }

// Requests whose value carries a pointer.
bool pointerInValue(VstInt32 opcode) {
    return opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement;
}

CheckResult dispatcherSweep(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath);
    const int parameters = plugin->numParams();
    constexpr VstInt32 kLastOpcode = 90;  // past the last VST 2.4 request
    int sent = 0;
    for (VstInt32 index : {0, -1, parameters, 1000})
        for (VstInt32 opcode = 0; opcode <= kLastOpcode; ++opcode) {
            if (!sweepable(opcode)) continue;
            // Zeros as a record, a text, a pointer slot or an arrangement.
            std::vector<std::max_align_t> buffer(4096 / sizeof(std::max_align_t));
            std::vector<std::max_align_t> valueBuffer(4096 / sizeof(std::max_align_t));
            const VstIntPtr value = pointerInValue(opcode) ? reinterpret_cast<VstIntPtr>(valueBuffer.data()) : 0;
            plugin->dispatch(opcode, index, value, buffer.data(), 0.0f);
            ++sent;
        }
    // What the sweep left (a rate of 0, no blocks, empty arrangements) is the
    // host's doing; it sets itself up again and the plug-in must follow.
    plugin->suspend();
    plugin->setSampleRate(44100.0f);
    plugin->setBlockSize(512);
    plugin->resume();
    for (int block = 0; block < 4; ++block) {
        const BlockOutcome out = processBlock(*plugin, noise(plugin->numInputs(), 512, 0.5, random),
                                              plugin->numOutputs(), 512, Precision::Float);
        if (!out.outside.empty()) return fail("afterwards: " + out.outside);
        if (!out.inputChanged.empty()) return fail("afterwards: " + out.inputChanged);
        if (out.unwritten.empty())
            if (auto bad = findNonFinite(out.output, false); !bad.empty()) return fail("afterwards: " + bad);
    }
    return pass(format("%d requests (opcodes 0 to %d, four indices) with zeroed buffers; processes afterwards", sent,
                       kLastOpcode));
}

}  // namespace

void addDispatcherChecks(std::vector<Check>& checks) {
    checks.push_back({"dispatcher-sweep", 2, "every request with zeroed buffers and odd indices", dispatcherSweep});
}

}  // namespace validate
