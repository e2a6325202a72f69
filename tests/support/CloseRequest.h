// What a window manager's close button sends a window.
#pragma once

#include <X11/Xlib.h>

inline void requestClose(Display* display, Window window) {
    XEvent event{};
    event.xclient = {ClientMessage, 0, False, display, window, XInternAtom(display, "WM_PROTOCOLS", False), 32, {}};
    event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, window, False, NoEventMask, &event);
    XFlush(display);
}
