#include "PortLink.h"

#include "HeadResponses.h"
#include "TrackingPortValue.h"
#include "Units.h"

namespace sorvane::lv2 {

namespace {
// The LV2 edition's ports carry single-precision samples.
constexpr float kPortBits = 32.0f;
}  // namespace

PortLink::PortLink(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2UI_Touch* touch)
    : write(write), controller(controller), touchFeature(touch) {
    // Where the ports start, until the host says otherwise.
    for (int c = 0; c < static_cast<int>(kControls); ++c) {
        limits[c] = describeControl(c);
        ports[c] = limits[c].initial;
    }
    for (int i = 0; i < kNumParams; ++i) normalised[i] = normalisedOfUnits(i, ports[i]);
}

void PortLink::portChanged(std::uint32_t port, float value) {
    if (port == kTrackingStatePort) {
        trackingState = value;  // the editor reads it at its next idle
        return;
    }
    const int control = controlOfPort(port);
    if (control < 0) return;
    value = limits[control].effective(value);  // what the DSP makes of it
    if (ports[control] == value) return;
    ports[control] = value;
    if (control == kFiveDecoderControl) {
        if (editor) editor->setParameter(kFiveDecoderType, fiveDecoderTypeMessage(fiveDecoderOfUnits(value)));
        return;
    }
    normalised[control] = normalisedOfUnits(control, value);
    if (editor) editor->setParameter(control, normalised[control]);
}

void PortLink::setParameterAutomated(std::int32_t index, float value) {
    if (!isParameter(index)) return;
    // The editor goes on showing its control's own value; what it reads back
    // later (a layout's panel being built) is what the port holds.
    const float port = unitsOf(index, value);
    ports[index] = port;
    normalised[index] = normalisedOfUnits(index, port);
    if (write) write(controller, controlPort(index), sizeof port, 0, &port);
}

float PortLink::getParameter(std::int32_t index) {
    if (isParameter(index)) return normalised[index];
    if (index == kBitMode) return kPortBits;
    if (index == kFiveDecoderType) return static_cast<float>(fiveDecoderOfUnits(ports[kFiveDecoderControl]));
    return 0.0f;
}

void PortLink::getParameterDisplay(std::int32_t index, char* text) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    const float port = ports[index];
    if (index == kTracking && selectorOfUnits(kind, port) == kTrackingOsc)
        return describeTracking(trackingStateOfPortValue(trackingState), static_cast<int>(trackingState), text,
                                kTextRoom);
    formatDisplay(kind, isSelector(kind) ? 0.0 : realOfUnits(kind, port),
                  isSelector(kind) ? selectorOfUnits(kind, port) : 0, text);
}

bool PortLink::touch(std::int32_t index, bool grabbed) {
    if (!touchFeature || !isParameter(index)) return false;
    touchFeature->touch(touchFeature->handle, controlPort(index), grabbed);
    return true;
}

int PortLink::headphoneState() {
    // Read when the editor opens, not in the host's audio thread.
    const auto responses = loadHeadResponses(48000);
    return headphoneStateOf(responses->source, responses->problem);
}

}  // namespace sorvane::lv2
