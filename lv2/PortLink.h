// The effect as the editor meets it inside an LV2 host's UI: it holds what
// the control ports hold, answers the editor's questions the way the VST
// edition does (normalised values, display texts, the 5.x decoder type), and
// turns the editor's changes into port writes and its gestures into touch
// notifications. The DSP library hears of the editor only through the ports
// the host writes.
#pragma once

#include <lv2/ui/ui.h>

#include <cstdint>

#include "AEffEditor.h"
#include "ControlDescriptions.h"
#include "EditorLink.h"
#include "Lv2Ports.h"

namespace sorvane::lv2 {

class PortLink : public EditorLink {
public:
    // The host's write function with its controller, and its touch feature if it offers one.
    PortLink(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2UI_Touch* touch);

    // The editor that hears of the host's port values, null for none.
    void setEditor(AEffEditor* shown) { editor = shown; }
    // A control port's value from the host: the editor hears of it as it
    // hears of a VST parameter change (the 5.x decoder port as the decoder
    // type's message). Values the editor wrote itself come back unheard.
    void portChanged(std::uint32_t port, float value);

    float getParameter(std::int32_t index) override;
    // The UI finds the head's responses as the plug-in does.
    int headphoneState() override;
    // What the VST edition shows for the engine field the port gives.
    void getParameterDisplay(std::int32_t index, char* text) override;
    // The editor's change: kept, and written to the port in its units.
    void setParameterAutomated(std::int32_t index, float value) override;
    bool beginEdit(std::int32_t index) override { return touch(index, true); }
    bool endEdit(std::int32_t index) override { return touch(index, false); }

    // The editor's size: the host's ui:scaleFactor (0 until it gives one),
    // the user's choice for this UI instance (not saved: the host's session
    // keeps ports, and the choice is no port), and the host's ui:resize.
    void setHostScaleFactor(double factor) { hostFactor = factor; }
    void setResize(const LV2UI_Resize* feature) { resizeFeature = feature; }
    double hostScaleFactor() override { return hostFactor; }
    int editorScaleChoice() override { return scaleChoice; }
    void setEditorScaleChoice(int choice) override { scaleChoice = choice; }
    // Without ui:resize the window still changes: it is the widget the host
    // embeds, and the host sizes its container by it.
    bool resizeEditorWindow(int width, int height) override {
        return !resizeFeature || resizeFeature->ui_resize(resizeFeature->handle, width, height) == 0;
    }

private:
    bool touch(std::int32_t index, bool grabbed);

    LV2UI_Write_Function write;
    LV2UI_Controller controller;
    const LV2UI_Touch* touchFeature;
    AEffEditor* editor = nullptr;
    PortLimits limits[kControls];  // by control, as the bundle declares them
    float trackingState = kTrackingNone;  // as the DSP's tracking_port reports it
    float ports[kControls];        // by control, as the DSP takes the host's values
    float normalised[kNumParams];  // by parameter, as the editor reads them
    double hostFactor = 0.0;
    int scaleChoice = 0;  // automatic
    const LV2UI_Resize* resizeFeature = nullptr;
};

}  // namespace sorvane::lv2
