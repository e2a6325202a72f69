#include "PortEffect.h"

#include "ControlDescriptions.h"
#include "PortConversions.h"

namespace sorvane::lv2 {

namespace {
// The LV2 edition's ports carry single-precision samples.
constexpr float kPortBits = 32.0f;
}  // namespace

PortEffect::PortEffect(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2UI_Touch* touch)
    : AudioEffectX(nullptr, 0, kNumParams), write(write), controller(controller), touchFeature(touch) {
    // Where the ports start, until the host says otherwise.
    for (int c = 0; c < static_cast<int>(kControls); ++c) {
        limits[c] = describeControl(c);
        ports[c] = limits[c].initial;
    }
    for (int i = 0; i < kNumParams; ++i) normalised[i] = normalisedValue(i, ports[i]);
}

void PortEffect::portChanged(std::uint32_t port, float value) {
    if (port < kFirstControl || port >= kLatencyPort) return;
    const int control = static_cast<int>(port - kFirstControl);
    value = limits[control].effective(value);  // what the DSP makes of it
    if (ports[control] == value) return;
    ports[control] = value;
    if (control == kFiveDecoderControl) {
        if (editor) editor->setParameter(kFiveDecoderType, fiveDecoderTypeMessage(fiveDecoderField(value)));
        return;
    }
    normalised[control] = normalisedValue(control, value);
    if (editor) editor->setParameter(control, normalised[control]);
}

void PortEffect::setParameterAutomated(VstInt32 index, float value) {
    if (!isParameter(index)) return;
    // The editor goes on showing its control's own value; what it reads back
    // later (a layout's panel being built) is what the port holds.
    const float port = portValue(index, value);
    ports[index] = port;
    normalised[index] = normalisedValue(index, port);
    if (write) write(controller, controlPort(index), sizeof port, 0, &port);
}

float PortEffect::getParameter(VstInt32 index) {
    if (isParameter(index)) return normalised[index];
    if (index == kBitMode) return kPortBits;
    if (index == kFiveDecoderType) return static_cast<float>(fiveDecoderField(ports[kFiveDecoderControl]));
    return 0.0f;
}

void PortEffect::getParameterDisplay(VstInt32 index, char* text) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    const float port = ports[index];
    formatDisplay(kind, isSelector(kind) ? 0.0 : realField(kind, port),
                  isSelector(kind) ? selectorField(kind, port) : 0, text);
}

bool PortEffect::touch(VstInt32 index, bool grabbed) {
    if (!touchFeature || !isParameter(index)) return false;
    touchFeature->touch(touchFeature->handle, controlPort(index), grabbed);
    return true;
}

}  // namespace sorvane::lv2
