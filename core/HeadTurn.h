// The field turned against the listener's head, between the field's own
// transforms and the decoding (so zoom and the user's rotations stay where
// the user put them in the room while the head turns in it).
//
// A new orientation is not jumped to: the turn glides there along the
// shorter arc over the same time the settings glide, from wherever it is,
// so a tracker's updates at 25 to 100 a second join into one motion. The
// turn's matrix is worked out on a grid of kCellFrames counted from the
// glide's start and moves in a straight line between its points, so the
// output does not depend on how the host cuts its blocks. Looking straight
// ahead and still, it touches nothing.
#pragma once

#include <cstdint>

#include "HeadOrientation.h"

namespace sorvane {

class HeadTurn {
public:
    static constexpr int kCellFrames = 64;

    // From frame `clock` on, towards `head`: gliding over `glideFrames`, or at once.
    void aim(const Quaternion& head, std::int64_t clock, int glideFrames, bool atOnce);
    // Nothing to do: still, and looking straight ahead.
    bool straight() const { return !gliding && to == Quaternion{}; }
    // Turns X, Y and Z of `frames` frames, the first of them frame `first` of the clock.
    void apply(double* X, double* Y, double* Z, int frames, std::int64_t first);
    // Once the clock has passed the glide's end, the turn stands still.
    void settle(std::int64_t clock);

private:
    Quaternion at(std::int64_t frame) const;
    FieldTurn turnAt(std::int64_t frame);

    Quaternion from, to;
    std::int64_t start = 0;
    int length = 1;
    bool gliding = false;
    // The matrix of the grid point last asked for.
    std::int64_t cachedFrame = -1;
    FieldTurn cached{};
};

}  // namespace sorvane
