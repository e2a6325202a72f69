// A switch of n positions side by side: a click (or a drag) selects the
// position under the pointer, value = position / (n - 1). It shows frame
// round(value * (frames - 1)) of a vertical strip.
#pragma once

#include "CControl.h"

class CHorizontalSwitch : public CControl {
public:
    CHorizontalSwitch(const CRect& size, CControlListener* listener, int32_t tag, int32_t subPixmaps,
                      double heightOfOneImage, int32_t maxPositions, CBitmap* background,
                      const CPoint& offset = CPoint(0, 0));

    int32_t getNumSubPixmaps() const { return subPixmaps; }
    int32_t getMaxPositions() const { return maxPositions; }
    // The position under frame x, clamped to the switch.
    int32_t positionAt(double x) const;
    int32_t getFrameIndex() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;

private:
    float valueAt(double x) const;

    int32_t subPixmaps;
    double heightOfOneImage;
    int32_t maxPositions;
    CPoint offset;
};
