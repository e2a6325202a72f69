// A position in frame pixels (origin top left, y down).
#pragma once

struct CPoint {
    double x = 0;
    double y = 0;

    CPoint() = default;
    CPoint(double x, double y) : x(x), y(y) {}

    CPoint& offset(double dx, double dy) {
        x += dx;
        y += dy;
        return *this;
    }
    bool operator==(const CPoint&) const = default;
};
