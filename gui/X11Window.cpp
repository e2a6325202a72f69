#include "X11Window.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cairo-xlib.h>
#include <cairo.h>

namespace {

// Errors on our own connection (a stale parent id, a parent destroyed under
// us) must not end the host. The handler is installed only around the
// requests that can fail, which are waited for, and the previous one is put
// back at once.
int lastError = 0;
int recordError(Display*, XErrorEvent* event) {
    lastError = event->error_code;
    return 0;
}

class TrapErrors {
public:
    explicit TrapErrors(Display* display) : display(display) {
        XSync(display, False);
        lastError = 0;
        previous = XSetErrorHandler(recordError);
    }
    // Waits for the server's answer to everything sent since construction.
    bool failed() {
        XSync(display, False);
        return lastError != 0;
    }
    ~TrapErrors() {
        XSync(display, False);
        XSetErrorHandler(previous);
    }

private:
    Display* display;
    int (*previous)(Display*, XErrorEvent*) = nullptr;
};

CButtonState buttonsOf(unsigned int state, unsigned int pressed) {
    CButtonState buttons = 0;
    if ((state & Button1Mask) || pressed == Button1) buttons |= kLButton;
    if ((state & Button2Mask) || pressed == Button2) buttons |= kMButton;
    if ((state & Button3Mask) || pressed == Button3) buttons |= kRButton;
    if (state & ShiftMask) buttons |= kShift;
    if (state & ControlMask) buttons |= kControl;
    if (state & Mod1Mask) buttons |= kAlt;
    return buttons;
}

}  // namespace

std::unique_ptr<X11Window> X11Window::create(unsigned long parent, int width, int height) {
    if (!parent || width <= 0 || height <= 0) return nullptr;
    Display* display = XOpenDisplay(nullptr);
    if (!display) return nullptr;

    std::unique_ptr<X11Window> self(new X11Window());
    self->display = display;
    XWindowAttributes parentAttributes;
    {
        TrapErrors trap(display);
        Status ok = XGetWindowAttributes(display, parent, &parentAttributes);
        if (trap.failed() || !ok) return nullptr;  // destructor closes the display
        XSetWindowAttributes attributes{};
        attributes.event_mask = ExposureMask | ButtonPressMask | ButtonReleaseMask |
                                PointerMotionMask | StructureNotifyMask;
        attributes.background_pixel = 0;
        attributes.border_pixel = 0;
        attributes.colormap = parentAttributes.colormap;
        self->window = XCreateWindow(display, parent, 0, 0, unsigned(width), unsigned(height), 0,
                                     parentAttributes.depth, InputOutput, parentAttributes.visual,
                                     CWEventMask | CWBackPixel | CWBorderPixel | CWColormap,
                                     &attributes);
        XMapWindow(display, self->window);
        if (trap.failed()) {
            self->window = 0;
            return nullptr;
        }
    }
    self->surface =
        cairo_xlib_surface_create(display, self->window, parentAttributes.visual, width, height);
    XFlush(display);
    return self;
}

X11Window::~X11Window() {
    if (surface) {
        TrapErrors trap(display);  // the window may be gone already
        cairo_surface_finish(surface);
        cairo_surface_destroy(surface);
    }
    if (display) {
        if (window) {
            // Drain what is queued: a DestroyNotify means the server already took it.
            WindowEvent ignored;
            while (alive && nextEvent(ignored)) {
            }
            if (alive) {
                TrapErrors trap(display);
                XDestroyWindow(display, window);
            }
        }
        XCloseDisplay(display);
    }
}

bool X11Window::nextEvent(WindowEvent& event) {
    while (alive && XPending(display) > 0) {
        XEvent x;
        XNextEvent(display, &x);
        if (x.xany.window != window) continue;
        switch (x.type) {
        case Expose:
            event.type = WindowEvent::kExpose;
            event.area = CRect(x.xexpose.x, x.xexpose.y, x.xexpose.x + x.xexpose.width,
                               x.xexpose.y + x.xexpose.height);
            return true;
        case ButtonPress:
        case ButtonRelease: {
            unsigned int button = x.xbutton.button;
            event.where = CPoint(x.xbutton.x, x.xbutton.y);
            if (button == Button4 || button == Button5) {
                if (x.type == ButtonRelease) continue;  // a wheel notch is press + release
                event.type = WindowEvent::kWheel;
                event.wheel = button == Button4 ? 1.0f : -1.0f;
                event.buttons = buttonsOf(x.xbutton.state, 0);
                return true;
            }
            event.type = x.type == ButtonPress ? WindowEvent::kPress : WindowEvent::kRelease;
            event.buttons = buttonsOf(x.xbutton.state, button);
            return true;
        }
        case MotionNotify:
            event.type = WindowEvent::kMotion;
            event.where = CPoint(x.xmotion.x, x.xmotion.y);
            event.buttons = buttonsOf(x.xmotion.state, 0);
            return true;
        case DestroyNotify:
            alive = false;
            event.type = WindowEvent::kGone;
            return true;
        default:
            break;
        }
    }
    return false;
}

void X11Window::present(cairo_surface_t* image, const CRect& area) {
    if (!alive || !surface || area.isEmpty()) return;
    // The host may destroy its window (and ours with it) at any moment.
    TrapErrors trap(display);
    cairo_t* cr = cairo_create(surface);
    cairo_rectangle(cr, area.left, area.top, area.getWidth(), area.getHeight());
    cairo_clip(cr);
    cairo_set_source_surface(cr, image, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
}
