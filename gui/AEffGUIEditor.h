// The bridge between the effect's editor slot and the toolkit: an editor
// that shows a CFrame. A concrete editor creates its frame in open() and
// stores it in `frame`; this class answers the host's rectangle request,
// passes idle, keys and the wheel on to the frame, and turns a control's
// edit brackets into the effect's beginEdit/endEdit.
#pragma once

#include <cstdint>

#include "AEffEditor.h"
#include "VSTGUIEditorInterface.h"
#include "VstAbi.h"

class AudioEffect;
class CFrame;

class AEffGUIEditor : public AEffEditor, public VSTGUIEditorInterface {
public:
    // Registers itself as the effect's editor.
    explicit AEffGUIEditor(void* effect);
    ~AEffGUIEditor() override;

    AudioEffect* getEffect() override { return effect; }
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
    // The knob mode is one setting for the whole process.
    bool setKnobMode(VstInt32 mode) override;
    static int32_t getKnobMode() { return knobMode; }

    void setParameter(VstInt32 index, float value) override;

    // Redraws everything at the next idle.
    virtual void draw(ERect* area);
    virtual void doIdleStuff();
    virtual bool beforeSizeChange(const ERect& newSize, const ERect& oldSize);

    bool beginEdit(int32_t index) override;
    bool endEdit(int32_t index) override;

protected:
    ERect rect{};
    CFrame* frame = nullptr;
    uint32_t lastTicks = 0;
    bool inIdleStuff = false;

private:
    static inline int32_t knobMode = 0;
};
