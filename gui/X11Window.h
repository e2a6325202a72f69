// The frame's window on the X server: its own display connection, a child
// window of the host's parent window, and a cairo surface on it. Events are
// read without blocking; nothing here starts a thread or assumes the host
// initialised Xlib for threads. Destruction frees every server resource.
#pragma once

#include <cstdint>
#include <memory>

#include "CButtonState.h"
#include "CRect.h"

typedef struct _cairo_surface cairo_surface_t;

struct WindowEvent {
    enum Type { kExpose, kPress, kRelease, kMotion, kWheel, kGone } type;
    CRect area;       // kExpose
    CPoint where;     // pointer events
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
    // False once the server destroyed the window (the host dropped its parent).
    bool isAlive() const { return alive; }

    // The next queued event, if any; never waits.
    bool nextEvent(WindowEvent& event);
    // Copies area of image (same size as the window) onto the window.
    void present(cairo_surface_t* image, const CRect& area);

private:
    X11Window() = default;

    struct _XDisplay* display = nullptr;
    unsigned long window = 0;
    cairo_surface_t* surface = nullptr;
    bool alive = true;
};
