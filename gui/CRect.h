// A rectangle in frame pixels: left and top inclusive, right and bottom
// exclusive, doubles so that layouts can be computed without rounding.
#pragma once

#include <algorithm>

#include "CPoint.h"

using CCoord = double;  // a coordinate or length in pixels

struct CRect {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    CRect() = default;
    CRect(double left, double top, double right, double bottom) : left(left), top(top), right(right), bottom(bottom) {}
    // Origin and size.
    CRect(const CPoint& origin, const CPoint& size)
        : left(origin.x), top(origin.y), right(origin.x + size.x), bottom(origin.y + size.y) {}

    double getWidth() const { return right - left; }
    double getHeight() const { return bottom - top; }
    void setWidth(double width) { right = left + width; }
    void setHeight(double height) { bottom = top + height; }
    CPoint getTopLeft() const { return {left, top}; }
    CPoint getCenter() const { return {left + getWidth() / 2.0, top + getHeight() / 2.0}; }

    // Shifts the rectangle by (dx, dy), keeping its size.
    CRect& offset(double dx, double dy) {
        left += dx;
        right += dx;
        top += dy;
        bottom += dy;
        return *this;
    }
    // Places the top-left corner at (x, y), keeping the size.
    CRect& moveTo(double x, double y) { return offset(x - left, y - top); }
    CRect& moveTo(const CPoint& where) { return moveTo(where.x, where.y); }
    CRect& inset(double dx, double dy) {
        left += dx;
        right -= dx;
        top += dy;
        bottom -= dy;
        return *this;
    }

    bool isEmpty() const { return right <= left || bottom <= top; }
    bool pointInside(const CPoint& where) const {
        return where.x >= left && where.x < right && where.y >= top && where.y < bottom;
    }
    bool rectOverlap(const CRect& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    // The common part of both rectangles (empty when they do not meet).
    CRect intersect(const CRect& other) const {
        CRect r(std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom));
        if (r.isEmpty()) r = CRect();
        return r;
    }
    // The smallest rectangle holding both; an empty side is ignored.
    CRect unite(const CRect& other) const {
        if (isEmpty()) return other;
        if (other.isEmpty()) return *this;
        return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
                std::max(bottom, other.bottom)};
    }
    bool operator==(const CRect&) const = default;
};
