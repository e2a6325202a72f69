#include "CAnimKnob.h"

#include <algorithm>
#include <cmath>

#include "CBitmap.h"

CAnimKnob::CAnimKnob(const CRect& size, CControlListener* listener, int32_t tag, int32_t subPixmaps,
                     double heightOfOneImage, CBitmap* background, const CPoint& offset)
    : CControl(size, listener, tag, background),
      subPixmaps(std::max(subPixmaps, 1)),
      heightOfOneImage(heightOfOneImage),
      offset(offset) {}

int32_t CAnimKnob::getFrameIndex() const {
    auto index = static_cast<int32_t>(std::lround(double(value) * (subPixmaps - 1)));
    return std::clamp(index, 0, subPixmaps - 1);
}

void CAnimKnob::draw(CDrawContext* context) {
    if (background) background->draw(context, size, CPoint(offset.x, offset.y + getFrameIndex() * heightOfOneImage));
    setDirty(false);
}

CMouseEventResult CAnimKnob::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!(buttons & kLButton)) return kMouseEventNotHandled;
    if (modifierClickTaken(buttons)) return kMouseEventNotHandled;
    beginEdit();
    lastY = where.y;
    dragValue = value;
    return kMouseEventHandled;
}

CMouseEventResult CAnimKnob::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    if (!editing) return kMouseEventNotHandled;
    double range = kDragRange * ((buttons & kShift) ? kFineFactor : 1.0);
    // Accumulate unclamped steps in double so slow fine drags are not lost to rounding.
    dragValue = std::clamp(dragValue + (lastY - where.y) / range, 0.0, 1.0);
    lastY = where.y;
    float before = value;
    setValue(static_cast<float>(dragValue));
    if (value != before) valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CAnimKnob::onMouseUp(CPoint&, const CButtonState&) {
    if (!editing) return kMouseEventNotHandled;
    endEdit();
    return kMouseEventHandled;
}

bool CAnimKnob::onWheel(const CPoint&, float distance, const CButtonState& buttons) {
    float step = kWheelStep * distance / ((buttons & kShift) ? float(kFineFactor) : 1.0f);
    float before = value;
    beginEdit();
    setValue(value + step);
    if (value != before) valueChanged();
    endEdit();
    return true;
}
