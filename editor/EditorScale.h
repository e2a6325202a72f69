// How large the editor is drawn. Its views keep their 578 x 502 frame
// pixels; the scale says how many screen pixels each one spans.
#pragma once

namespace editor_scale {

constexpr double kFrameWidth = 578.0;
constexpr double kFrameHeight = 502.0;

// A factor a host or the desktop gives is taken only if it is a number
// within 1 .. 4: hosts have been seen to send 0 and stranger values.
constexpr bool usable(double factor) { return factor >= 1.0 && factor <= 4.0; }

// The scale from its sources in order: the user's choice (EditorScaleChoice),
// the host's factor, the desktop's, else 1; made smaller where the window
// would not fit the screen (a size of 0 is no screen), never below 1.
double resolve(int choice, double hostFactor, double desktopFactor, int screenWidth, int screenHeight);

}  // namespace editor_scale
