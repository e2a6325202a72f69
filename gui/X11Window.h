// The frame's window on the X server: its own XCB connection, a child
// window of the host's parent window, and a cairo surface on it. Events are
// read without blocking. Errors come back on our own connection, so nothing
// process-wide (error handlers, thread set-up) is touched, and a broken
// connection closes the window, not the host. Destruction frees every
// server resource.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "CButtonState.h"
#include "CRect.h"

typedef struct _cairo_surface cairo_surface_t;
typedef struct xcb_connection_t xcb_connection_t;

struct WindowEvent {
    enum Type { kExpose, kPress, kRelease, kMotion, kWheel, kGone } type;
    CRect area;    // kExpose
    CPoint where;  // pointer events
    CButtonState buttons = 0;
    float wheel = 0;  // kWheel: +1 up, -1 down
};

class X11Window {
public:
    // Null when no display can be opened or the parent window does not exist.
    static std::unique_ptr<X11Window> create(unsigned long parent, int width, int height);
    ~X11Window();
    X11Window(const X11Window&) = delete;
    X11Window& operator=(const X11Window&) = delete;

    unsigned long getWindowId() const { return window; }
    // False once the window is gone: the host dropped its parent, or the connection broke.
    bool isAlive() const { return alive; }

    // The next queued event, if any; never waits.
    bool nextEvent(WindowEvent& event);
    // Gives the window a new size (the frame's scale changed).
    void resize(int width, int height);
    // Copies the areas of image (same size as the window) onto the window in
    // one go, and waits once for the server to have done it.
    void present(cairo_surface_t* image, const std::vector<CRect>& areas);

private:
    X11Window() = default;

    xcb_connection_t* connection = nullptr;
    unsigned long window = 0;
    cairo_surface_t* surface = nullptr;
    bool alive = true;
};
