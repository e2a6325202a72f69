// The two fixed five-speaker matrices of the 5.x layouts. They are measured
// designs, not microphones: each speaker's feed is (w W + x X + y Y) times
// the matrix's gain, summed in that order by the per-frame and the block
// path alike. Every digit of the design is kept, its small left/right
// asymmetries included; Z takes no part.
#pragma once

namespace sorvane {

struct MatrixRow {
    double w, x, y;
};

struct FixedMatrix {
    double gain;
    MatrixRow left, right, centre, leftSurround, rightSurround;
};

inline constexpr FixedMatrix kHeller1 = {
    .gain = 1.40171951577097,
    .left = {0.28205165, 0.24760232, 0.18790454},
    .right = {0.28204229, 0.24758662, -0.18792311},
    .centre = {-0.0488127, -0.02756928, 1.724e-05},
    .leftSurround = {0.44947336, -0.23381746, 0.31911519},
    .rightSurround = {0.44945895, -0.23380219, -0.31911386},
};

// Its centre has no Y weight, but the 0 * Y term stays in the sum: a
// non-finite Y reaches the centre as it always has.
inline constexpr FixedMatrix kHeller2 = {
    .gain = 1.38921598327229,
    .left = {0.21426224, 0.19218459, 0.20409261},
    .right = {0.214264, 0.19218379, -0.20409362},
    .centre = {0.09993309, 0.1557705, 0},
    .leftSurround = {0.44287748, -0.27006948, 0.30405695},
    .rightSurround = {0.44287676, -0.27006941, -0.30405595},
};

}  // namespace sorvane
