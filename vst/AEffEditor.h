// The editor as the effect frame sees it: the host's editor requests are
// forwarded here, and the effect reaches its editor through setParameter
// (parameter changes and the messages above the parameter range).
#pragma once

#include "VstAbi.h"

class AudioEffect;

class AEffEditor {
public:
    explicit AEffEditor(AudioEffect* effect = nullptr) : effect(effect) {}
    virtual ~AEffEditor() = default;

    AEffEditor(const AEffEditor&) = delete;
    AEffEditor& operator=(const AEffEditor&) = delete;

    virtual AudioEffect* getEffect() { return effect; }

    // Stores a pointer to the editor's own rectangle; false when there is none.
    virtual bool getRect(ERect** rect) {
        if (rect) *rect = nullptr;
        return false;
    }
    // ptr is the host's parent window (an X11 window id on Linux).
    virtual bool open(void* ptr) {
        systemWindow = ptr;
        return false;
    }
    virtual void close() { systemWindow = nullptr; }
    virtual bool isOpen() { return systemWindow != nullptr; }
    virtual void idle() {}

    virtual bool onKeyDown(VstKeyCode& /*keyCode*/) { return false; }
    virtual bool onKeyUp(VstKeyCode& /*keyCode*/) { return false; }
    virtual bool onWheel(float /*distance*/) { return false; }
    virtual bool setKnobMode(VstInt32 /*mode*/) { return false; }

    // Parameter changes from the effect (0 .. numParams-1) and its messages
    // above that range; an editor that is not open ignores them.
    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}

protected:
    AudioEffect* effect;
    void* systemWindow = nullptr;
};
