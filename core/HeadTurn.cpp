#include "HeadTurn.h"

#include <algorithm>

namespace sorvane {

Quaternion HeadTurn::at(std::int64_t frame) const {
    if (!gliding || frame - start >= length) return to;
    if (frame <= start) return from;
    return slerp(from, to, static_cast<double>(frame - start) / length);
}

void HeadTurn::aim(const Quaternion& head, std::int64_t clock, int glideFrames, bool atOnce) {
    if (!atOnce && head == to) return;
    from = atOnce ? head : at(clock);
    to = head;
    start = clock;
    length = std::max(glideFrames, 1);
    gliding = !atOnce && !(from == to);
    cachedFrame = -1;
}

void HeadTurn::settle(std::int64_t clock) {
    if (gliding && clock - start >= length) {
        gliding = false;
        cachedFrame = -1;
    }
}

FieldTurn HeadTurn::turnAt(std::int64_t frame) {
    const std::int64_t key = gliding ? frame : -2;  // a still turn is one matrix
    if (key != cachedFrame) {
        cached = counterTurnOf(at(frame));
        cachedFrame = key;
    }
    return cached;
}

namespace {

// One matrix over a run of frames.
void turnFrames(const FieldTurn& t, double* __restrict X, double* __restrict Y, double* __restrict Z, int frames) {
    const auto& m = t.m;
    for (int f = 0; f < frames; ++f) {
        const double x = X[f], y = Y[f], z = Z[f];
        X[f] = m[0][0] * x + m[0][1] * y + m[0][2] * z;
        Y[f] = m[1][0] * x + m[1][1] * y + m[1][2] * z;
        Z[f] = m[2][0] * x + m[2][1] * y + m[2][2] * z;
    }
}

}  // namespace

void HeadTurn::apply(double* X, double* Y, double* Z, int frames, std::int64_t first) {
    if (!gliding) return turnFrames(turnAt(first), X, Y, Z, frames);
    for (int f = 0; f < frames;) {
        // Between the grid points around this frame, the matrix moves in a straight line.
        const std::int64_t frame = first + f;
        const std::int64_t cell = start + std::max<std::int64_t>(frame - start, 0) / kCellFrames * kCellFrames;
        const int n = static_cast<int>(std::min<std::int64_t>(frames - f, cell + kCellFrames - frame));
        const FieldTurn a = turnAt(cell), b = turnAt(cell + kCellFrames);
        double d[3][3];
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c) d[r][c] = b.m[r][c] - a.m[r][c];
        const auto& m = a.m;
        double* __restrict x = X + f;
        double* __restrict y = Y + f;
        double* __restrict z = Z + f;
        const double offset = static_cast<double>(frame - cell);
        for (int k = 0; k < n; ++k) {
            const double t = (offset + k) * (1.0 / kCellFrames);
            const double x0 = x[k], y0 = y[k], z0 = z[k];
            x[k] = (m[0][0] + d[0][0] * t) * x0 + (m[0][1] + d[0][1] * t) * y0 + (m[0][2] + d[0][2] * t) * z0;
            y[k] = (m[1][0] + d[1][0] * t) * x0 + (m[1][1] + d[1][1] * t) * y0 + (m[1][2] + d[1][2] * t) * z0;
            z[k] = (m[2][0] + d[2][0] * t) * x0 + (m[2][1] + d[2][1] * t) * y0 + (m[2][2] + d[2][2] * t) * z0;
        }
        f += n;
    }
}

}  // namespace sorvane
