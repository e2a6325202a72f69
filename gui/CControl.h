// A view with a value in 0..1 and a tag (the parameter index it stands
// for). A user's change is reported to the listener; a gesture is bracketed
// by beginEdit/endEdit, which also reach the editor owning the frame so the
// host records one automation gesture.
#pragma once

#include "CControlListener.h"
#include "CView.h"

class CControl : public CView {
public:
    CControl(const CRect& size, CControlListener* listener = nullptr, int32_t tag = 0, CBitmap* background = nullptr);

    // Clamped to 0..1; the view is redrawn when the value changes.
    virtual void setValue(float value);
    float getValue() const { return value; }

    int32_t getTag() const { return tag; }
    void setTag(int32_t newTag);

    CControlListener* getListener() const { return listener; }
    void setListener(CControlListener* newListener) { listener = newListener; }

    // Tells the listener that the user changed the value.
    virtual void valueChanged();

    void beginEdit();
    void endEdit();
    bool isEditing() const { return editing; }

protected:
    // True when the listener took a modified click for itself.
    bool modifierClickTaken(const CButtonState& buttons);

    CControlListener* listener;
    int32_t tag;
    float value = 0.0f;
    bool editing = false;
};
