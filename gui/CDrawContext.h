// Drawing for views: a thin layer over a cairo context that keeps the
// current line width, frame, fill and font colours and font. The context
// works in frame pixels; it does not own the cairo context it wraps. A frame
// drawn at a scale (a HiDPI screen) has cairo scale frame pixels to device
// pixels; edges, points and text are then put on whole device pixels, so
// they stay as sharp as at scale 1, where nothing is moved.
#pragma once

#include "CColor.h"
#include "CFont.h"
#include "CPoint.h"
#include "CRect.h"

typedef struct _cairo cairo_t;

enum CDrawStyle { kDrawStroked = 0, kDrawFilled, kDrawFilledAndStroked };
enum CHoriTxtAlign { kLeftText = 0, kCenterText, kRightText };

class CDrawContext {
public:
    explicit CDrawContext(cairo_t* cairo);
    ~CDrawContext();
    CDrawContext(const CDrawContext&) = delete;
    CDrawContext& operator=(const CDrawContext&) = delete;

    cairo_t* getCairo() const { return cairo; }
    // Device pixels per frame pixel: 1 unless the frame is drawn at a scale.
    double getScale() const;
    // rect with its edges moved to the nearest device pixel edges; as it
    // is at scale 1.
    CRect toDevicePixels(const CRect& rect) const;

    void setLineWidth(double width) { lineWidth = width; }
    double getLineWidth() const { return lineWidth; }
    void setFrameColor(const CColor& color) { frameColor = color; }
    const CColor& getFrameColor() const { return frameColor; }
    void setFillColor(const CColor& color) { fillColor = color; }
    const CColor& getFillColor() const { return fillColor; }
    void setFontColor(const CColor& color) { fontColor = color; }
    const CColor& getFontColor() const { return fontColor; }
    void setFont(CFontRef newFont) { font = newFont ? newFont : kNormalFontSmall; }
    CFontRef getFont() const { return font; }

    // The ellipse inscribed in rect.
    void drawEllipse(const CRect& rect, CDrawStyle style = kDrawStroked);
    // Stroked rectangles lie on the pixels just inside rect.
    void drawRect(const CRect& rect, CDrawStyle style = kDrawStroked);

    // A point fills the single pixel whose top-left corner it names (at a
    // scale, the block of whole device pixels nearest to that pixel);
    // beginDraw and endDraw bracket a run of drawing calls.
    void beginDraw();
    void drawPoint(const CPoint& point, const CColor& color);
    void endDraw();

    // One line of UTF-8 text, vertically centred in rect, in the font
    // colour. Text wider than rect keeps its alignment and overhangs.
    void drawString(const char* text, const CRect& rect, CHoriTxtAlign align = kCenterText);
    double getStringWidth(const char* text);

    // Drawing is limited to rect until the state is restored.
    void saveGlobalState();
    void restoreGlobalState();
    void setClipRect(const CRect& rect);

private:
    void applyFont();

    cairo_t* cairo;
    double lineWidth = 1.0;
    CColor frameColor = kBlackCColor;
    CColor fillColor = kWhiteCColor;
    CColor fontColor = kWhiteCColor;
    CFontRef font = kNormalFontSmall;
    int drawDepth = 0;
};
