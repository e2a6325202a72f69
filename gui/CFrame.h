// The editor's top-level view. It holds the views directly (no nesting),
// draws them in the order they were added over its background colour, and
// delivers pointer events to the topmost view that takes them.
//
// Given a parent window id it opens its own X11 child window and handles
// that window's events and redraws on idle(): queued events are drained
// without blocking, then every dirty view's rectangle is redrawn into an
// off-screen image and copied onto the window. Without a parent window the
// frame is off-screen and can be drawn into any context with drawRect.
//
// Views live in frame pixels whatever the scale. At a scale s (a HiDPI
// screen) the window is s times the frame's size and the frame draws through
// a cairo scale; pointer positions and exposed areas are brought back to
// frame pixels in one place, toFramePixels, as the window's events arrive.
//
// Ownership: addView takes a reference on the view, removeView(view, true)
// drops it. The editor remembers the frame once after each addView and
// never gives those references back; the frame counts them apart, so that
// the forget of its real owner still closes the window and frees the frame
// and its views.
#pragma once

#include <cairo.h>

#include <cmath>
#include <memory>
#include <vector>

#include "CColor.h"
#include "CView.h"

class VSTGUIEditorInterface;
class X11Window;

class CFrame : public CView {
public:
    CFrame(const CRect& size, void* systemWindow, VSTGUIEditorInterface* editor, double scale = 1.0);
    ~CFrame() override;

    void remember() override;
    void forget() override;

    // Adds view on top of the others; false when it is already a child.
    bool addView(CView* view);
    // Takes view out; withForget drops the frame's reference. False when
    // view is not a child (so removing twice is harmless).
    bool removeView(CView* view, bool withForget = true);
    void removeAll(bool withForget = true);
    bool isChild(CView* view) const;
    int32_t getNbViews() const { return static_cast<int32_t>(views.size()); }
    CView* getView(int32_t index) const;

    void setBackgroundColor(const CColor& color);
    const CColor& getBackgroundColor() const { return backgroundColor; }

    VSTGUIEditorInterface* getEditor() const { return editor; }
    // Device pixels per frame pixel; a new scale resizes the window and redraws everything.
    double getScale() const { return scale; }
    void setScale(double newScale);
    // A length in frame pixels as whole device pixels at a scale.
    static int deviceLength(double length, double scale) { return static_cast<int>(std::lround(length * scale)); }
    // The frame's own X11 window, 0 when it has none.
    unsigned long getWindowId() const;
    bool isOpen() const;

    // Marks the whole frame for redrawing at the next idle.
    void setDirty(bool state = true) override;
    void invalidRect(const CRect& rect);
    // Handles queued window events, then redraws what is dirty.
    void idle();
    // Redraws what is dirty into the window now (the first frame, say).
    void redraw();

    // Paints the background and every view meeting updateRect, clipped to it.
    void drawRect(CDrawContext* context, const CRect& updateRect);
    void draw(CDrawContext* context) override;

    // Pointer and key delivery (the window's events arrive here too).
    CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
    CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
    bool onWheel(const CPoint& where, float distance, const CButtonState& buttons) override;
    // Wheel and keys from the host go to the view under the last pointer position.
    bool onWheel(float distance);
    int32_t onKeyDown(CKeyCode& key) override;
    int32_t onKeyUp(CKeyCode& key) override;

private:
    CView* viewAt(const CPoint& where) const;
    CPoint toFramePixels(const CPoint& device) const;
    CRect toFramePixels(const CRect& device) const;
    void releaseMouseView();

    std::vector<CView*> views;
    VSTGUIEditorInterface* editor;
    CColor backgroundColor = kBlackCColor;
    std::unique_ptr<X11Window> window;
    double scale = 1.0;
    cairo_surface_t* image = nullptr;
    std::vector<CRect> invalid;
    bool allDirty = true;
    CView* mouseView = nullptr;
    CPoint lastPointer{-1, -1};
    CButtonState lastButtons = 0;
    int32_t viewClaims = 0;
    bool claimPending = false;
};
