// The base of everything a frame shows: a rectangle in frame pixels, an
// optional background bitmap, a dirty flag the frame redraws by, and the
// mouse and key entry points the frame delivers events through.
#pragma once

#include <atomic>

#include "CBaseObject.h"
#include "CButtonState.h"
#include "CRect.h"

class CBitmap;
class CDrawContext;
class CFrame;

class CView : public CBaseObject {
public:
    explicit CView(const CRect& size);
    ~CView() override;

    // Draws the background bitmap (if any) from its top-left corner.
    virtual void draw(CDrawContext* context);

    const CRect& getViewSize() const { return size; }
    virtual void setViewSize(const CRect& newSize);
    double getWidth() const { return size.getWidth(); }
    double getHeight() const { return size.getHeight(); }

    // The view keeps its own reference to the bitmap.
    virtual void setBackground(CBitmap* bitmap);
    CBitmap* getBackground() const { return background; }

    // A dirty view is redrawn at the frame's next idle. Only sets a flag,
    // so it is safe to call from any code path on the editor's thread.
    virtual void setDirty(bool state = true) { dirty.store(state, std::memory_order_relaxed); }
    bool isDirty() const { return dirty.load(std::memory_order_relaxed); }

    // Pointer events, in frame pixels. A view that wants the rest of a
    // gesture (moves and the release) answers kMouseEventHandled on the press.
    virtual CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons);
    virtual CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons);
    virtual CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons);
    virtual bool onWheel(const CPoint& where, float distance, const CButtonState& buttons);
    // Keys: 1 when used, -1 when the host should have the key.
    virtual int32_t onKeyDown(CKeyCode& key);
    virtual int32_t onKeyUp(CKeyCode& key);

    // The frame the view is in, null when it is in none.
    CFrame* getFrame() const { return frame; }
    void setParentFrame(CFrame* parent) { frame = parent; }

protected:
    CRect size;
    CBitmap* background = nullptr;
    CFrame* frame = nullptr;

private:
    std::atomic<bool> dirty{false};
};
