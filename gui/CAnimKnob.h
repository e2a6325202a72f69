// A knob drawn from a vertical film strip of n frames: it shows frame
// round(value * (n - 1)). Dragging up raises the value (200 pixels for the
// whole range, ten times finer with Shift); the wheel steps it.
#pragma once

#include "CControl.h"

class CAnimKnob : public CControl {
public:
    CAnimKnob(const CRect& size, CControlListener* listener, int32_t tag, int32_t subPixmaps, double heightOfOneImage,
              CBitmap* background, const CPoint& offset = CPoint(0, 0));

    int32_t getNumSubPixmaps() const { return subPixmaps; }
    double getHeightOfOneImage() const { return heightOfOneImage; }
    // The strip frame the current value shows.
    int32_t getFrameIndex() const;

    void draw(CDrawContext* context) override;
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, float distance, const CButtonState& buttons) override;

    static constexpr double kDragRange = 200.0;  // pixels for the full range
    static constexpr double kFineFactor = 10.0;  // Shift divides the speed by this
    static constexpr float kWheelStep = 0.05f;

private:
    int32_t subPixmaps;
    double heightOfOneImage;
    CPoint offset;
    double lastY = 0;
    double dragValue = 0;
};
