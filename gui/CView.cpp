#include "CView.h"

#include "CBitmap.h"
#include "CDrawContext.h"

CView::CView(const CRect& size) : size(size) {}

CView::~CView() {
    if (background) background->forget();
}

void CView::draw(CDrawContext* context) {
    if (background) background->draw(context, size);
}

void CView::setViewSize(const CRect& newSize) {
    size = newSize;
    setDirty(true);
}

void CView::setBackground(CBitmap* bitmap) {
    if (bitmap == background) return;
    if (bitmap) bitmap->remember();
    if (background) background->forget();
    background = bitmap;
    setDirty(true);
}

CMouseEventResult CView::onMouseDown(CPoint&, const CButtonState&) { return kMouseEventNotHandled; }
CMouseEventResult CView::onMouseMoved(CPoint&, const CButtonState&) { return kMouseEventNotHandled; }
CMouseEventResult CView::onMouseUp(CPoint&, const CButtonState&) { return kMouseEventNotHandled; }
bool CView::onWheel(const CPoint&, float, const CButtonState&) { return false; }
int32_t CView::onKeyDown(CKeyCode&) { return -1; }
int32_t CView::onKeyUp(CKeyCode&) { return -1; }
