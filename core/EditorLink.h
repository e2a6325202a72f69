// What the editor asks of the effect it edits, and what it tells it: the
// whole contract between MyEditor and either edition. The VST edition
// answers from its effect, the LV2 UI from the control ports the host sends
// it. The effect speaks to the editor through the editor's setParameter
// (parameter changes, and the messages kEditorSuspend, kEditorResume and
// kFiveDecoderType).
#pragma once

#include <cstdint>
#include <string>

namespace sorvane {

class EditorLink {
public:
    virtual ~EditorLink() = default;

    // A parameter's normalised value; for kBitMode the processing precision
    // (32 or 64), for kFiveDecoderType the 5.x decoder type (0, 1 or 2).
    virtual float getParameter(std::int32_t index) = 0;
    // The text a host shows for the parameter's current value.
    virtual void getParameterDisplay(std::int32_t index, char* text) = 0;
    // A user's change on a control: stored, recorded by the host as
    // automation, and told back to the editor.
    virtual void setParameterAutomated(std::int32_t index, float value) = 0;
    // The brackets around a user's gesture on one control.
    virtual bool beginEdit(std::int32_t index) = 0;
    virtual bool endEdit(std::int32_t index) = 0;

    // The editor's size. The factor the host gave for its screen (any
    // value as the host sent it; 0 when it gave none), the user's choice
    // among EditorScaleChoice kept with the instance, and the host's answer
    // when the editor asks for a window of a new size (false: it keeps the
    // old one). Without a host, as in off-screen drawing, there is no factor,
    // the choice is automatic and no window changes size.
    virtual double hostScaleFactor() { return 0.0; }
    virtual int editorScaleChoice() { return 0; }
    virtual void setEditorScaleChoice(int) {}
    virtual bool resizeEditorWindow(int /*width*/, int /*height*/) { return false; }

    // What "Headphones" plays when it cannot play the responses it looks
    // for: kHeadphonesAsAsked, kHeadphonesFileRefused (a file asked for was
    // refused and the next one plays) or kHeadphonesPanning (no file usable).
    virtual int headphoneState() { return kHeadphonesAsAsked; }
    static constexpr int kHeadphonesAsAsked = 0, kHeadphonesFileRefused = 1, kHeadphonesPanning = 2;
    // The state for responses that came from `source` (empty: none) with `problem` (empty: none).
    static int headphoneStateOf(const std::string& source, const std::string& problem) {
        return source.empty() ? kHeadphonesPanning : problem.empty() ? kHeadphonesAsAsked : kHeadphonesFileRefused;
    }
};

}  // namespace sorvane
