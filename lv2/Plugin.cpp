// The LV2 edition's audio side: B-format in on four ports, six speaker feeds
// out, the controls read once per run into the shared processor, which runs
// the block. No allocation, lock or I/O after instantiate.
#include <lv2/core/lv2.h>

#include <cstdint>
#include <new>

#include "ControlDescriptions.h"
#include "Lv2Ports.h"
#include "Processor.h"
#include "Units.h"

namespace {

using namespace sorvane::lv2;

struct Instance {
    sorvane::Processor processor;

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
    self->processor.setSampleRate(static_cast<float>(rate));
    return self;
}

void connectPort(LV2_Handle handle, std::uint32_t port, void* data) {
    auto* self = static_cast<Instance*>(handle);
    if (port < kFirstOutput)
        self->input[port - kFirstInput] = static_cast<const float*>(data);
    else if (port < kFirstControl)
        self->output[port - kFirstOutput] = static_cast<float*>(data);
    else if (port == kLatencyPort)
        self->latency = static_cast<float*>(data);
    else if (const int control = controlOfPort(port); control >= 0)
        self->control[control] = static_cast<const float*>(data);
}

// A fresh start: no history from before the host stopped us.
void activate(LV2_Handle handle) { static_cast<Instance*>(handle)->processor.clearHistory(); }

void readControls(Instance& self) {
    for (int c = 0; c < static_cast<int>(kControls); ++c) {
        if (!self.control[c]) continue;
        const float value = self.limits[c].effective(*self.control[c]);
        if (c == kFiveDecoderControl)
            self.processor.setFiveDecoderType(sorvane::fiveDecoderOfUnits(value));
        else
            self.processor.setUnits(c, value);
    }
}

void run(LV2_Handle handle, std::uint32_t sampleCount) {
    auto& self = *static_cast<Instance*>(handle);
    if (self.latency) *self.latency = 0.0f;
    if (sampleCount == 0) return;
    // Outside the processor's float mode, as the VST edition designs its filters.
    readControls(self);
    self.processor.process(self.input, kInputs, self.output, kOutputs, sampleCount);
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
