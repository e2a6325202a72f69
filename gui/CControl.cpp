#include "CControl.h"

#include <algorithm>

#include "CFrame.h"
#include "VSTGUIEditorInterface.h"

CControl::CControl(const CRect& size, CControlListener* listener, int32_t tag, CBitmap* background)
    : CView(size), listener(listener), tag(tag) {
    if (background) setBackground(background);
}

void CControl::setValue(float newValue) {
    newValue = std::clamp(newValue, 0.0f, 1.0f);
    if (newValue == value) return;
    value = newValue;
    setDirty(true);
}

void CControl::setTag(int32_t newTag) {
    if (listener) listener->controlTagWillChange(this);
    tag = newTag;
    if (listener) listener->controlTagDidChange(this);
}

void CControl::valueChanged() {
    if (listener) listener->valueChanged(this);
}

void CControl::beginEdit() {
    if (editing) return;
    editing = true;
    if (listener) listener->controlBeginEdit(this);
    if (frame && frame->getEditor()) frame->getEditor()->beginEdit(tag);
}

void CControl::endEdit() {
    if (!editing) return;
    editing = false;
    if (frame && frame->getEditor()) frame->getEditor()->endEdit(tag);
    if (listener) listener->controlEndEdit(this);
}

bool CControl::modifierClickTaken(const CButtonState& buttons) {
    return listener && (buttons & (kControl | kAlt)) && listener->controlModifierClicked(this, buttons) != 0;
}
