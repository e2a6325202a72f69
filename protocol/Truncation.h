// Float to int as the crossover and rate conversions need it: truncation
// toward zero, saturating instead of undefined for values out of range.
#pragma once

#include <climits>
#include <cmath>

inline int truncateToInt(float value) {
    if (std::isnan(value)) return 0;
    if (value >= 2147483648.0f) return INT_MAX;
    if (value <= -2147483648.0f) return INT_MIN;
    return static_cast<int>(value);
}
