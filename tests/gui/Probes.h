// Test doubles shared by the toolkit suites: a view that reports its
// deletion, a listener and an editor interface that record what they hear,
// and the release of the references a test made.
#pragma once

#include <string>
#include <vector>

#include "CControl.h"
#include "CControlListener.h"
#include "CView.h"
#include "VSTGUIEditorInterface.h"

class DeathProbe : public CView {
public:
    DeathProbe(const CRect& size, bool* deleted) : CView(size), deleted(deleted) {}
    ~DeathProbe() override { *deleted = true; }

private:
    bool* deleted;
};

struct RecordingListener : CControlListener {
    void valueChanged(CControl* control) override {
        changes.push_back(control);
        values.push_back(control->getValue());
    }
    void controlBeginEdit(CControl*) override { events.push_back("begin"); }
    void controlEndEdit(CControl*) override { events.push_back("end"); }
    std::vector<CControl*> changes;
    std::vector<float> values;
    std::vector<std::string> events;
};

struct RecordingEditor : VSTGUIEditorInterface {
    bool beginEdit(int32_t index) override { return record("begin ", index); }
    bool endEdit(int32_t index) override { return record("end ", index); }
    bool record(const char* what, int32_t index) {
        edits.push_back(what + std::to_string(index));
        return true;
    }
    std::vector<std::string> edits;
};

// Drops one reference from each, in order: what the test's owner would do.
template <typename... Objects>
void forgetAll(Objects*... objects) {
    (objects->forget(), ...);
}
