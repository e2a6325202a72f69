// An 8-bit red, green, blue, alpha colour; opaque white unless told otherwise.
#pragma once

#include <cstdint>

struct CColor {
    uint8_t red = 255;
    uint8_t green = 255;
    uint8_t blue = 255;
    uint8_t alpha = 255;

    constexpr CColor() = default;
    constexpr CColor(int red, int green, int blue, int alpha = 255)
        : red(static_cast<uint8_t>(red)),
          green(static_cast<uint8_t>(green)),
          blue(static_cast<uint8_t>(blue)),
          alpha(static_cast<uint8_t>(alpha)) {}

    bool operator==(const CColor&) const = default;
};

inline constexpr CColor kBlackCColor(0, 0, 0, 255);
inline constexpr CColor kWhiteCColor(255, 255, 255, 255);
inline constexpr CColor kTransparentCColor(0, 0, 0, 0);
