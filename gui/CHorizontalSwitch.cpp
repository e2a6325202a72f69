#include "CHorizontalSwitch.h"

#include <algorithm>
#include <cmath>

#include "CBitmap.h"

CHorizontalSwitch::CHorizontalSwitch(const CRect& size, CControlListener* listener, int32_t tag, int32_t subPixmaps,
                                     double heightOfOneImage, int32_t maxPositions, CBitmap* background,
                                     const CPoint& offset)
    : CControl(size, listener, tag, background),
      subPixmaps(std::max(subPixmaps, 1)),
      heightOfOneImage(heightOfOneImage),
      maxPositions(std::max(maxPositions, 1)),
      offset(offset) {}

int32_t CHorizontalSwitch::positionAt(double x) const {
    double width = size.getWidth();
    if (width <= 0) return 0;
    auto position = static_cast<int32_t>(std::floor((x - size.left) * maxPositions / width));
    return std::clamp(position, 0, maxPositions - 1);
}

float CHorizontalSwitch::valueAt(double x) const {
    if (maxPositions < 2) return 0.0f;
    return static_cast<float>(positionAt(x)) / static_cast<float>(maxPositions - 1);
}

int32_t CHorizontalSwitch::getFrameIndex() const {
    auto index = static_cast<int32_t>(std::lround(double(value) * (subPixmaps - 1)));
    return std::clamp(index, 0, subPixmaps - 1);
}

void CHorizontalSwitch::draw(CDrawContext* context) {
    if (background) background->draw(context, size, CPoint(offset.x, offset.y + getFrameIndex() * heightOfOneImage));
    setDirty(false);
}

CMouseEventResult CHorizontalSwitch::onMouseDown(CPoint& where, const CButtonState& buttons) {
    if (!(buttons & kLButton)) return kMouseEventNotHandled;
    if (modifierClickTaken(buttons)) return kMouseEventNotHandled;
    beginEdit();
    // A click always reports, even on the position already chosen.
    setValue(valueAt(where.x));
    valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CHorizontalSwitch::onMouseMoved(CPoint& where, const CButtonState&) {
    if (!editing) return kMouseEventNotHandled;
    float before = value;
    setValue(valueAt(where.x));
    if (value != before) valueChanged();
    return kMouseEventHandled;
}

CMouseEventResult CHorizontalSwitch::onMouseUp(CPoint&, const CButtonState&) {
    if (!editing) return kMouseEventNotHandled;
    endEdit();
    return kMouseEventHandled;
}
