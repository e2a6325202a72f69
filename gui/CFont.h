// The four stock fonts the editor names. Text is set in DejaVu Sans
// Condensed, which keeps the longer captions inside a knob's width.
#pragma once

struct CFontDesc {
    const char* family;
    double size;  // pixels per em
    bool bold;
};
using CFontRef = const CFontDesc*;

extern const CFontRef kNormalFontVerySmall;  // value texts
extern const CFontRef kNormalFontSmall;      // captions and the name panel
extern const CFontRef kNormalFontBig;        // panel titles
extern const CFontRef kNormalFontVeryBig;    // overlays
