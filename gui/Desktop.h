// What the X server tells of the desktop an editor opens on: the scale its
// user chose (the Xft.dpi resource, 96 dots per inch being 100 %) and the
// size of the screen, which no editor window may outgrow. Read through a
// short XCB connection of its own, so nothing process-wide is touched.
#pragma once

#include <string_view>

struct Desktop {
    double dpiScale = 0.0;  // Xft.dpi / 96; 0 when the server has no such resource
    int width = 0;          // the root window's size; 0 when there is no display
    int height = 0;
};

Desktop readDesktop();
// Xft.dpi / 96 from the text of the root window's RESOURCE_MANAGER, 0 without it.
double dpiScaleOf(std::string_view resources);
