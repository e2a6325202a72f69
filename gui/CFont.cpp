#include "CFont.h"

namespace {
constexpr CFontDesc verySmall{"DejaVu Sans Condensed", 10.0, false};
constexpr CFontDesc small{"DejaVu Sans Condensed", 11.0, false};
constexpr CFontDesc big{"DejaVu Sans Condensed", 13.0, true};
constexpr CFontDesc veryBig{"DejaVu Sans Condensed", 20.0, true};
}  // namespace

const CFontRef kNormalFontVerySmall = &verySmall;
const CFontRef kNormalFontSmall = &small;
const CFontRef kNormalFontBig = &big;
const CFontRef kNormalFontVeryBig = &veryBig;
