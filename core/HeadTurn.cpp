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

void HeadTurn::apply(double* X, double* Y, double* Z, int frames, std::int64_t first) {
    for (int f = 0; f < frames;) {
        const std::int64_t frame = first + f;
        // The grid points around this frame; a still turn has one matrix throughout.
        const std::int64_t cell = gliding ? start + std::max<std::int64_t>(frame - start, 0) / kCellFrames * kCellFrames : frame;
        const int n = gliding ? static_cast<int>(std::min<std::int64_t>(frames - f, cell + kCellFrames - frame))
                              : frames - f;
        const FieldTurn a = turnAt(cell);
        const FieldTurn b = gliding ? turnAt(cell + kCellFrames) : a;
        for (int k = 0; k < n; ++k) {
            const double t = gliding ? static_cast<double>(frame + k - cell) * (1.0 / kCellFrames) : 0.0;
            double m[3][3];
            for (int r = 0; r < 3; ++r)
                for (int c = 0; c < 3; ++c) m[r][c] = a.m[r][c] + (b.m[r][c] - a.m[r][c]) * t;
            const double x = X[f + k], y = Y[f + k], z = Z[f + k];
            X[f + k] = m[0][0] * x + m[0][1] * y + m[0][2] * z;
            Y[f + k] = m[1][0] * x + m[1][1] * y + m[1][2] * z;
            Z[f + k] = m[2][0] * x + m[2][1] * y + m[2][2] * z;
        }
        f += n;
    }
}

}  // namespace sorvane
