#include "CFrame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "CDrawContext.h"
#include "X11Window.h"

namespace {

// Areas that overlap become their common bounding box, so no pixel is drawn
// or copied twice in one redraw.
void mergeOverlapping(std::vector<CRect>& areas) {
    for (bool merged = true; merged;) {
        merged = false;
        for (std::size_t i = 0; i < areas.size() && !merged; ++i)
            for (std::size_t j = i + 1; j < areas.size() && !merged; ++j)
                if (areas[i].rectOverlap(areas[j])) {
                    areas[i] = areas[i].unite(areas[j]);
                    areas.erase(areas.begin() + static_cast<long>(j));
                    merged = true;
                }
    }
}

}  // namespace

CFrame::CFrame(const CRect& size, void* systemWindow, VSTGUIEditorInterface* editor, double scale)
    : CView(size), editor(editor), scale(scale) {
    if (systemWindow) {
        window = X11Window::create(reinterpret_cast<uintptr_t>(systemWindow), deviceLength(size.getWidth(), scale),
                                   deviceLength(size.getHeight(), scale));
    }
}

void CFrame::setScale(double newScale) {
    if (newScale == scale || !(newScale > 0)) return;
    scale = newScale;
    if (window) window->resize(deviceLength(size.getWidth(), scale), deviceLength(size.getHeight(), scale));
    if (image) cairo_surface_destroy(image);
    image = nullptr;
    allDirty = true;
}

CPoint CFrame::toFramePixels(const CPoint& device) const { return CPoint(device.x / scale, device.y / scale); }

// Every frame pixel the device area touches.
CRect CFrame::toFramePixels(const CRect& device) const {
    return CRect(std::floor(device.left / scale), std::floor(device.top / scale), std::ceil(device.right / scale),
                 std::ceil(device.bottom / scale));
}

CFrame::~CFrame() {
    releaseMouseView();
    removeAll(true);
    window.reset();
    if (image) cairo_surface_destroy(image);
}

void CFrame::remember() {
    CView::remember();
    if (claimPending) ++viewClaims;
    claimPending = false;
}

void CFrame::forget() {
    claimPending = false;
    // Only the views' claims left: nobody holds the frame any more.
    if (--nbReference <= viewClaims) delete this;
}

bool CFrame::addView(CView* view) {
    if (!view || isChild(view)) return false;
    view->remember();
    views.push_back(view);
    view->setParentFrame(this);
    invalidRect(view->getViewSize());
    view->setDirty(true);
    claimPending = true;
    return true;
}

bool CFrame::removeView(CView* view, bool withForget) {
    claimPending = false;
    auto it = std::find(views.begin(), views.end(), view);
    if (it == views.end()) return false;
    views.erase(it);
    invalidRect(view->getViewSize());
    if (view == mouseView) releaseMouseView();
    view->setParentFrame(nullptr);
    if (withForget) view->forget();
    return true;
}

void CFrame::removeAll(bool withForget) {
    while (!views.empty()) removeView(views.back(), withForget);
}

bool CFrame::isChild(CView* view) const { return view && std::find(views.begin(), views.end(), view) != views.end(); }

CView* CFrame::getView(int32_t index) const {
    return index >= 0 && index < getNbViews() ? views[size_t(index)] : nullptr;
}

void CFrame::setBackgroundColor(const CColor& color) {
    backgroundColor = color;
    allDirty = true;
}

unsigned long CFrame::getWindowId() const { return window ? window->getWindowId() : 0; }
bool CFrame::isOpen() const { return window && window->isAlive(); }

void CFrame::setDirty(bool state) {
    CView::setDirty(state);
    if (state) allDirty = true;
}

void CFrame::invalidRect(const CRect& rect) {
    CRect area = rect.intersect(size);
    if (!area.isEmpty()) invalid.push_back(area);
}

void CFrame::drawRect(CDrawContext* context, const CRect& updateRect) {
    CRect area = updateRect.intersect(size);
    if (area.isEmpty()) return;
    context->saveGlobalState();
    context->setClipRect(area);
    context->setFillColor(backgroundColor);
    context->drawRect(area, kDrawFilled);
    // A copy: a view's draw must not be able to upset the iteration.
    std::vector<CView*> order = views;
    for (CView* view : order) {
        if (!view->getViewSize().rectOverlap(area)) continue;
        context->saveGlobalState();
        context->setClipRect(view->getViewSize());
        view->draw(context);
        context->restoreGlobalState();
    }
    context->restoreGlobalState();
}

void CFrame::draw(CDrawContext* context) { drawRect(context, size); }

void CFrame::idle() {
    claimPending = false;
    if (!window) return;
    WindowEvent event;
    while (window->nextEvent(event)) {
        event.area = toFramePixels(event.area);
        event.where = toFramePixels(event.where);
        switch (event.type) {
        case WindowEvent::kExpose: invalid.push_back(event.area); break;
        case WindowEvent::kPress: onMouseDown(event.where, event.buttons); break;
        case WindowEvent::kMotion: onMouseMoved(event.where, event.buttons); break;
        case WindowEvent::kRelease: onMouseUp(event.where, event.buttons); break;
        case WindowEvent::kWheel: onWheel(event.where, event.wheel, event.buttons); break;
        case WindowEvent::kGone: break;
        }
    }
    redraw();
}

void CFrame::redraw() {
    if (!window || !window->isAlive()) return;
    if (!image) {
        image = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, deviceLength(size.getWidth(), scale),
                                           deviceLength(size.getHeight(), scale));
        allDirty = true;
    }
    std::vector<CRect> areas;
    if (allDirty) {
        areas.push_back(size);
    } else {
        areas.swap(invalid);
        for (CView* view : views)
            if (view->isDirty()) areas.push_back(view->getViewSize());
        mergeOverlapping(areas);
    }
    invalid.clear();
    allDirty = false;
    CView::setDirty(false);
    if (areas.empty()) return;

    cairo_t* cr = cairo_create(image);
    if (scale != 1.0) cairo_scale(cr, scale, scale);
    {
        CDrawContext context(cr);
        // Whole device pixels, so the copy to the window covers every touched pixel.
        for (CRect& area : areas) {
            area = CRect(std::floor(area.left * scale), std::floor(area.top * scale), std::ceil(area.right * scale),
                         std::ceil(area.bottom * scale));
            drawRect(&context, CRect(area.left / scale, area.top / scale, area.right / scale, area.bottom / scale));
        }
    }
    cairo_destroy(cr);
    cairo_surface_flush(image);
    for (CView* view : views) view->setDirty(false);
    window->present(image, areas);
}

CView* CFrame::viewAt(const CPoint& where) const {
    for (auto it = views.rbegin(); it != views.rend(); ++it)
        if ((*it)->getViewSize().pointInside(where)) return *it;
    return nullptr;
}

void CFrame::releaseMouseView() {
    if (!mouseView) return;
    CView* view = mouseView;
    mouseView = nullptr;
    view->forget();
}

CMouseEventResult CFrame::onMouseDown(CPoint& where, const CButtonState& buttons) {
    lastPointer = where;
    lastButtons = buttons;
    releaseMouseView();
    // Topmost first; views that do not take the press let it fall through.
    std::vector<CView*> order(views.rbegin(), views.rend());
    for (CView* view : order) {
        if (!isChild(view) || !view->getViewSize().pointInside(where)) continue;
        // Held while its handler runs: a listener may remove it from the frame.
        view->remember();
        CPoint local = where;
        CMouseEventResult result = view->onMouseDown(local, buttons);
        if (result == kMouseEventHandled && isChild(view)) {
            mouseView = view;  // keeps the reference until the release
            return result;
        }
        view->forget();
        if (result == kMouseEventHandled) return result;
    }
    return kMouseEventNotHandled;
}

CMouseEventResult CFrame::onMouseMoved(CPoint& where, const CButtonState& buttons) {
    lastPointer = where;
    lastButtons = buttons;
    if (!mouseView) return kMouseEventNotHandled;
    CPoint local = where;
    return mouseView->onMouseMoved(local, buttons);
}

CMouseEventResult CFrame::onMouseUp(CPoint& where, const CButtonState& buttons) {
    lastPointer = where;
    lastButtons = buttons & ~(kLButton | kMButton | kRButton);
    if (!mouseView) return kMouseEventNotHandled;
    CView* view = mouseView;
    view->remember();
    CPoint local = where;
    CMouseEventResult result = view->onMouseUp(local, buttons);
    if (view == mouseView) releaseMouseView();
    view->forget();
    return result;
}

bool CFrame::onWheel(const CPoint& where, float distance, const CButtonState& buttons) {
    lastPointer = where;
    std::vector<CView*> order(views.rbegin(), views.rend());
    for (CView* view : order) {
        if (!isChild(view) || !view->getViewSize().pointInside(where)) continue;
        view->remember();
        bool used = view->onWheel(where, distance, buttons);
        view->forget();
        if (used) return true;
    }
    return false;
}

bool CFrame::onWheel(float distance) { return onWheel(lastPointer, distance, lastButtons); }

int32_t CFrame::onKeyDown(CKeyCode& key) {
    CView* view = viewAt(lastPointer);
    return view ? view->onKeyDown(key) : -1;
}

int32_t CFrame::onKeyUp(CKeyCode& key) {
    CView* view = viewAt(lastPointer);
    return view ? view->onKeyUp(key) : -1;
}
