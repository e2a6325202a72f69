// The effect as the editor meets it inside an LV2 host's UI: it holds what
// the control ports hold, answers the editor's questions the way the VST
// effect does (normalised values, display texts, the 5.x decoder type), and
// turns the editor's changes into port writes and its gestures into touch
// notifications. It processes no audio and owns no engine: the DSP library
// hears of the editor only through the ports the host writes.
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

#include "AudioEffectX.h"
#include "ControlDescriptions.h"
#include "Lv2Ports.h"

namespace sorvane::lv2 {

class PortEffect : public AudioEffectX {
public:
    // The host's write function with its controller, and its touch feature if it offers one.
    PortEffect(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2UI_Touch* touch);

    // A control port's value from the host: the editor hears of it as it
    // hears of a VST parameter change (the 5.x decoder port as the decoder
    // type's message). Values the editor wrote itself come back unheard.
    void portChanged(std::uint32_t port, float value);

    // The editor's change: kept, and written to the port in its units.
    void setParameterAutomated(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    // What the VST effect shows for the engine field the port gives.
    void getParameterDisplay(VstInt32 index, char* text) override;
    bool beginEdit(VstInt32 index) override { return touch(index, true); }
    bool endEdit(VstInt32 index) override { return touch(index, false); }

    void processReplacing(float**, float**, VstInt32) override {}

private:
    bool touch(VstInt32 index, bool grabbed);

    LV2UI_Write_Function write;
    LV2UI_Controller controller;
    const LV2UI_Touch* touchFeature;
    PortLimits limits[kControls];  // by control, as the bundle declares them
    float ports[kControls];        // by control, as the DSP takes the host's values
    float normalised[kNumParams];  // by parameter, as the editor reads them
};

}  // namespace sorvane::lv2
