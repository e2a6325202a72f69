// The bridge between the effect's editor slot and the toolkit: an editor
// that shows a CFrame. A concrete editor creates its frame in open() and
// stores it in `frame`; this class answers the host's rectangle request and
// passes idle, keys and the wheel on to the frame. What a control's edit
// brackets reach is the concrete editor's affair.
#pragma once

#include <cstdint>

#include "AEffEditor.h"
#include "VSTGUIEditorInterface.h"
#include "VstAbi.h"

class CFrame;

class AEffGUIEditor : public AEffEditor, public VSTGUIEditorInterface {
public:
    AEffGUIEditor();
    ~AEffGUIEditor() override;

    CFrame* getFrame() const { return frame; }

    bool getRect(ERect** rect) override;
    bool open(void* ptr) override;
    void close() override;
    // Open while a frame exists.
    bool isOpen() override { return frame != nullptr; }
    // Runs the frame's idle, unless this is a nested call from inside it.
    void idle() override;

    bool onKeyDown(VstKeyCode& keyCode) override;
    bool onKeyUp(VstKeyCode& keyCode) override;
    bool onWheel(float distance) override;
    // Accepted; the knobs follow vertical drags whatever mode a host asks for.
    bool setKnobMode(VstInt32) override { return true; }

    void setParameter(VstInt32 index, float value) override;

    // Redraws everything at the next idle.
    virtual void draw(ERect* area);
    virtual void doIdleStuff();
    virtual bool beforeSizeChange(const ERect& newSize, const ERect& oldSize);

protected:
    ERect rect{};
    CFrame* frame = nullptr;
    uint32_t lastTicks = 0;
    bool inIdleStuff = false;
};
