#include "DisplayKeeper.h"

#include <X11/Xlib.h>

#include <cstdlib>

namespace validate {

DisplayKeeper::DisplayKeeper() {
    const char* name = std::getenv("DISPLAY");
    if (name && *name) display = XOpenDisplay(nullptr);
}

DisplayKeeper::~DisplayKeeper() {
    if (display) XCloseDisplay(static_cast<Display*>(display));
}

}  // namespace validate
