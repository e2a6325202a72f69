#include "CDrawContext.h"

#include <cairo.h>

#include <cmath>

namespace {
void setSource(cairo_t* cr, const CColor& c) {
    cairo_set_source_rgba(cr, c.red / 255.0, c.green / 255.0, c.blue / 255.0, c.alpha / 255.0);
}
}  // namespace

CDrawContext::CDrawContext(cairo_t* cairo) : cairo(cairo) { cairo_save(cairo); }

double CDrawContext::getScale() const {
    cairo_matrix_t matrix;
    cairo_get_matrix(cairo, &matrix);
    return matrix.xx;
}

CRect CDrawContext::toDevicePixels(const CRect& rect) const {
    if (getScale() == 1.0) return rect;
    double left = rect.left, top = rect.top, right = rect.right, bottom = rect.bottom;
    cairo_user_to_device(cairo, &left, &top);
    cairo_user_to_device(cairo, &right, &bottom);
    left = std::round(left), top = std::round(top), right = std::round(right), bottom = std::round(bottom);
    cairo_device_to_user(cairo, &left, &top);
    cairo_device_to_user(cairo, &right, &bottom);
    return CRect(left, top, right, bottom);
}

CDrawContext::~CDrawContext() {
    while (drawDepth > 0) endDraw();
    cairo_restore(cairo);
}

void CDrawContext::drawEllipse(const CRect& rect, CDrawStyle style) {
    double w = rect.getWidth(), h = rect.getHeight();
    if (w <= 0 || h <= 0) return;
    cairo_save(cairo);
    cairo_translate(cairo, rect.left + w / 2.0, rect.top + h / 2.0);
    cairo_scale(cairo, w / 2.0, h / 2.0);
    cairo_new_path(cairo);
    cairo_arc(cairo, 0, 0, 1.0, 0, 2 * M_PI);
    cairo_restore(cairo);  // back to pixel units before stroking
    if (style != kDrawStroked) {
        setSource(cairo, fillColor);
        cairo_fill_preserve(cairo);
    }
    if (style != kDrawFilled) {
        setSource(cairo, frameColor);
        cairo_set_line_width(cairo, lineWidth);
        cairo_stroke_preserve(cairo);
    }
    cairo_new_path(cairo);
}

void CDrawContext::drawRect(const CRect& rect, CDrawStyle style) {
    if (rect.isEmpty()) return;
    if (style != kDrawStroked) {
        setSource(cairo, fillColor);
        cairo_rectangle(cairo, rect.left, rect.top, rect.getWidth(), rect.getHeight());
        cairo_fill(cairo);
    }
    if (style != kDrawFilled) {
        double inset = lineWidth / 2.0;
        setSource(cairo, frameColor);
        cairo_set_line_width(cairo, lineWidth);
        cairo_rectangle(cairo, rect.left + inset, rect.top + inset, rect.getWidth() - lineWidth,
                        rect.getHeight() - lineWidth);
        cairo_stroke(cairo);
    }
}

void CDrawContext::beginDraw() {
    cairo_save(cairo);
    ++drawDepth;
}

void CDrawContext::endDraw() {
    if (drawDepth == 0) return;
    --drawDepth;
    cairo_restore(cairo);
}

void CDrawContext::drawPoint(const CPoint& point, const CColor& color) {
    setSource(cairo, color);
    const double scale = getScale();
    if (scale == 1.0) {
        cairo_rectangle(cairo, point.x, point.y, 1.0, 1.0);
        cairo_fill(cairo);
        return;
    }
    double x = point.x, y = point.y;
    cairo_user_to_device(cairo, &x, &y);
    const double side = std::fmax(1.0, std::round(scale));
    cairo_save(cairo);
    cairo_identity_matrix(cairo);
    cairo_rectangle(cairo, std::round(x), std::round(y), side, side);
    cairo_fill(cairo);
    cairo_restore(cairo);
}

void CDrawContext::applyFont() {
    cairo_select_font_face(cairo, font->family, CAIRO_FONT_SLANT_NORMAL,
                           font->bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cairo, font->size);
}

double CDrawContext::getStringWidth(const char* text) {
    if (!text || !*text) return 0;
    cairo_save(cairo);
    applyFont();
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, text, &extents);
    cairo_restore(cairo);
    return extents.x_advance;
}

void CDrawContext::drawString(const char* text, const CRect& rect, CHoriTxtAlign align) {
    if (!text || !*text) return;
    cairo_save(cairo);
    applyFont();
    cairo_font_extents_t font_extents;
    cairo_font_extents(cairo, &font_extents);
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, text, &extents);
    double x = rect.left;
    if (align == kCenterText)
        x = rect.left + (rect.getWidth() - extents.x_advance) / 2.0;
    else if (align == kRightText)
        x = rect.right - extents.x_advance;
    // Centre the font's ascent-to-descent band, on a whole pixel for crisp text.
    double baseline = rect.top + (rect.getHeight() + font_extents.ascent - font_extents.descent) / 2.0;
    setSource(cairo, fontColor);
    if (getScale() == 1.0) {
        x = std::round(x), baseline = std::round(baseline);
    } else {
        cairo_user_to_device(cairo, &x, &baseline);
        x = std::round(x), baseline = std::round(baseline);
        cairo_device_to_user(cairo, &x, &baseline);
    }
    cairo_move_to(cairo, x, baseline);
    cairo_show_text(cairo, text);
    cairo_restore(cairo);
}

void CDrawContext::saveGlobalState() { cairo_save(cairo); }
void CDrawContext::restoreGlobalState() { cairo_restore(cairo); }

void CDrawContext::setClipRect(const CRect& rect) {
    const CRect clip = toDevicePixels(rect);
    cairo_rectangle(cairo, clip.left, clip.top, clip.getWidth(), clip.getHeight());
    cairo_clip(cairo);
}
