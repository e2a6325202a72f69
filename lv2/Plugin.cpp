// The LV2 edition's audio side: B-format in on four ports, six speaker feeds
// out, the controls read once per run. A run is taken in pieces that fit the
// instance's scratch memory, each read whole before any output is written, so
// a host that processes in place gets the same result. No allocation, lock or
// I/O after instantiate.
#include <lv2/core/lv2.h>

#include <algorithm>
#include <cstdint>
#include <new>

#include "ControlDescriptions.h"
#include "CrossoverSafety.h"
#include "Decoder.h"
#include "FloatModeGuard.h"
#include "Lv2Ports.h"
#include "PortValues.h"
#include "Truncation.h"

namespace {

using namespace sorvane::lv2;

struct Instance {
    static constexpr int kPieceFrames = 256;
    alignas(64) double signal[kInputs][kPieceFrames];
    alignas(64) double feed[kOutputs][kPieceFrames];

    Decoder decoder;
    // The crossover frequency the filters were last designed for.
    int designedFrequency = 0;

    // Each control's range and starting value, as the bundle declares them.
    PortLimits limits[kControls];

    const float* input[kInputs] = {};
    float* output[kOutputs] = {};
    const float* control[kControls] = {};
    float* latency = nullptr;
};

LV2_Handle instantiate(const LV2_Descriptor*, double rate, const char*, const LV2_Feature* const*) {
    auto* self = new (std::nothrow) Instance;
    if (!self) return nullptr;
    for (int c = 0; c < static_cast<int>(kControls); ++c) self->limits[c] = describeControl(c);
    // The rate as the VST edition keeps it: a host's float, truncated.
    self->decoder.sampleRate = truncateToInt(static_cast<float>(rate));
    designCrossover(self->decoder);
    self->designedFrequency = self->decoder.crossoverFrequency;
    return self;
}

void connectPort(LV2_Handle handle, std::uint32_t port, void* data) {
    auto* self = static_cast<Instance*>(handle);
    if (port < kFirstOutput)
        self->input[port - kFirstInput] = static_cast<const float*>(data);
    else if (port < kFirstControl)
        self->output[port - kFirstOutput] = static_cast<float*>(data);
    else if (port < kLatencyPort)
        self->control[port - kFirstControl] = static_cast<const float*>(data);
    else if (port == kLatencyPort)
        self->latency = static_cast<float*>(data);
}

// A fresh start: no history from before the host stopped us.
void activate(LV2_Handle handle) { static_cast<Instance*>(handle)->decoder.clearFilter(); }

float controlValue(const Instance& self, int control) { return self.limits[control].effective(*self.control[control]); }

void readControls(Instance& self) {
    Decoder& decoder = self.decoder;
    for (int i = 0; i < kNumParams; ++i)
        if (self.control[i]) applyControl(decoder, i, controlValue(self, i));
    if (self.control[kFiveDecoderControl])
        decoder.fiveDecoderType = fiveDecoderField(controlValue(self, kFiveDecoderControl));
    // Designing clears the filters' history, so only a new frequency does it.
    if (decoder.crossoverFrequency != self.designedFrequency) {
        designCrossover(decoder);
        self.designedFrequency = decoder.crossoverFrequency;
    }
}

void run(LV2_Handle handle, std::uint32_t sampleCount) {
    auto& self = *static_cast<Instance*>(handle);
    if (self.latency) *self.latency = 0.0f;
    if (sampleCount == 0) return;
    // Outside the float mode below, as the VST edition designs its filters.
    readControls(self);
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;
    Decoder& decoder = self.decoder;
    const BlockKernels& copies = decoder.blockLoops();

    BlockFeeds feeds;
    for (std::uint32_t i = 0; i < kOutputs; ++i) feeds.feed[i] = self.feed[i];
    for (std::uint32_t done = 0; done < sampleCount; done += Instance::kPieceFrames) {
        const int frames = static_cast<int>(std::min<std::uint32_t>(Instance::kPieceFrames, sampleCount - done));
        for (std::uint32_t c = 0; c < kInputs; ++c) {
            if (self.input[c])
                copies.widen(self.input[c] + done, self.signal[c], frames);
            else
                copies.fill(self.signal[c], 0.0, frames);
        }
        const int produced =
            decoder.processBlock(self.signal[0], self.signal[1], self.signal[2], self.signal[3], frames, feeds);
        for (std::uint32_t c = 0; c < kOutputs; ++c) {
            float* out = self.output[c];
            if (!out) continue;
            const double* slot = static_cast<int>(c) < produced ? feeds.slot[c] : nullptr;
            if (slot)
                copies.narrow(slot, out + done, frames);
            else
                copies.silence(out + done, frames);
        }
    }
    // A non-finite input would stay in the crossover's history for good.
    recoverCrossover(decoder);
}

void deactivate(LV2_Handle) {}

void cleanup(LV2_Handle handle) { delete static_cast<Instance*>(handle); }

const void* extensionData(const char*) { return nullptr; }

const LV2_Descriptor kDescriptor = {kPluginUri, instantiate, connectPort, activate,
                                    run,        deactivate,  cleanup,     extensionData};

}  // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}
