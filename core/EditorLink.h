// What the editor asks of the effect it edits, and what it tells it: the
// whole contract between MyEditor and either edition. The VST edition
// answers from its effect, the LV2 UI from the control ports the host sends
// it. The effect speaks to the editor through the editor's setParameter
// (parameter changes, and the messages kEditorSuspend, kEditorResume and
// kFiveDecoderType).
#pragma once

#include <cstdint>

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
};

}  // namespace sorvane
