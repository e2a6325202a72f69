// The LV2 edition's audio side: B-format in on four ports, six speaker feeds
// out, the controls read once per run into the shared processor, which runs
// the block. No allocation, lock or I/O in run(): the head tracker's thread,
// started at activate and joined at deactivate, opens and closes its port
// when run() has said whether "Tracking" is on.
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>

#include "ControlDescriptions.h"
#include "HeadTracker.h"
#include "Lv2Ports.h"
#include "TrackingPortValue.h"
#include "Processor.h"
#include "Units.h"

namespace {

using namespace sorvane::lv2;

struct Instance {
    sorvane::Processor processor;
    sorvane::HeadTracker tracker{processor.headMailbox()};

    // Each control's range and starting value, as the bundle declares them.
    PortLimits limits[kControls];

    const float* input[kInputs] = {};
    float* output[kOutputs] = {};
    const float* control[kControls] = {};
    float* latency = nullptr;
    float* trackingState = nullptr;
};

// The block length the host announces (nominal, else its maximum), which
// sizes the headphone stage's partitions; 1024 when it says nothing.
int announcedBlockLength(const LV2_Feature* const* features) {
    const LV2_URID_Map* map = nullptr;
    const LV2_Options_Option* options = nullptr;
    for (int i = 0; features && features[i]; ++i) {
        if (std::strcmp(features[i]->URI, LV2_URID__map) == 0) map = static_cast<const LV2_URID_Map*>(features[i]->data);
        if (std::strcmp(features[i]->URI, LV2_OPTIONS__options) == 0)
            options = static_cast<const LV2_Options_Option*>(features[i]->data);
    }
    if (!map || !options) return 1024;
    const LV2_URID atomInt = map->map(map->handle, LV2_ATOM__Int);
    int nominal = 0, maximum = 0;
    for (const LV2_Options_Option* o = options; o->key; ++o) {
        if (o->type != atomInt || o->size != sizeof(std::int32_t) || !o->value) continue;
        const int value = *static_cast<const std::int32_t*>(o->value);
        if (o->key == map->map(map->handle, LV2_BUF_SIZE__nominalBlockLength)) nominal = value;
        if (o->key == map->map(map->handle, LV2_BUF_SIZE__maxBlockLength)) maximum = value;
    }
    return nominal > 0 ? nominal : maximum > 0 ? maximum : 1024;
}

LV2_Handle instantiate(const LV2_Descriptor*, double rate, const char*, const LV2_Feature* const* features) {
    auto* self = new (std::nothrow) Instance;
    if (!self) return nullptr;
    for (int c = 0; c < static_cast<int>(kControls); ++c) self->limits[c] = describeControl(c);
    // The rate as the VST edition keeps it: a host's float, truncated.
    self->processor.setSampleRate(static_cast<float>(rate));
    self->processor.prepareHeadphones(std::min(announcedBlockLength(features), 8192));
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
    else if (port == kTrackingStatePort)
        self->trackingState = static_cast<float*>(data);
    else if (const int control = controlOfPort(port); control >= 0)
        self->control[control] = static_cast<const float*>(data);
}

// A fresh start: no history from before the host stopped us.
void activate(LV2_Handle handle) {
    auto* self = static_cast<Instance*>(handle);
    self->processor.clearHistory();
    self->tracker.start();
}

void readControls(Instance& self) {
    for (int c = 0; c < static_cast<int>(kControls); ++c) {
        if (!self.control[c]) continue;
        const float value = self.limits[c].effective(*self.control[c]);
        if (c == kFiveDecoderControl)
            self.processor.setFiveDecoderType(sorvane::fiveDecoderOfUnits(value));
        else
            self.processor.setUnits(c, value);
        if (c == kTracking) self.tracker.want(sorvane::selectorOfUnits(sorvane::Kind::Tracking, value) == sorvane::kTrackingOsc);
    }
}


void run(LV2_Handle handle, std::uint32_t sampleCount) {
    auto& self = *static_cast<Instance*>(handle);
    if (self.latency) *self.latency = 0.0f;
    if (self.trackingState) *self.trackingState = trackingPortValue(self.tracker.state(), self.tracker.port());
    if (sampleCount == 0) return;
    // Outside the processor's float mode, as the VST edition designs its filters.
    readControls(self);
    self.processor.process(self.input, kInputs, self.output, kOutputs, sampleCount);
}

void deactivate(LV2_Handle handle) { static_cast<Instance*>(handle)->tracker.stop(); }

void cleanup(LV2_Handle handle) { delete static_cast<Instance*>(handle); }

const void* extensionData(const char*) { return nullptr; }

const LV2_Descriptor kDescriptor = {kPluginUri, instantiate, connectPort, activate,
                                    run,        deactivate,  cleanup,     extensionData};

}  // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}
