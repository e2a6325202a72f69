// Mouse buttons and modifier keys of a pointer event, and what a view did with it.
#pragma once

#include <cstdint>

using CButtonState = uint32_t;
enum : uint32_t {
    kLButton = 1 << 0,
    kMButton = 1 << 1,
    kRButton = 1 << 2,
    kShift = 1 << 3,
    kControl = 1 << 4,
    kAlt = 1 << 5,
};

enum CMouseEventResult {
    kMouseEventNotHandled = 0,
    kMouseEventHandled,
};

// A key as the host hands it over (character, virtual key, modifier bits).
struct CKeyCode {
    int32_t character = 0;
    uint8_t virt = 0;
    uint8_t modifier = 0;
};
