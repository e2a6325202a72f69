#include "X11Window.h"

#include <cairo-xcb.h>
#include <cairo.h>
#include <xcb/xcb.h>

#include <cstdlib>

namespace {

// Replies and errors of XCB are ours to free.
template <typename T>
struct Freed {
    T* p = nullptr;
    ~Freed() { std::free(p); }
    T* operator->() const { return p; }
    explicit operator bool() const { return p != nullptr; }
};

// Waits for one request's outcome; errors come back to us on our own
// connection, so nothing process-wide is touched.
bool succeeded(xcb_connection_t* connection, xcb_void_cookie_t cookie) {
    Freed<xcb_generic_error_t> error{xcb_request_check(connection, cookie)};
    return !error;
}

xcb_visualtype_t* findVisual(xcb_connection_t* connection, xcb_visualid_t id) {
    for (auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection)); screens.rem; xcb_screen_next(&screens))
        for (auto depths = xcb_screen_allowed_depths_iterator(screens.data); depths.rem; xcb_depth_next(&depths))
            for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem; xcb_visualtype_next(&visuals))
                if (visuals.data->visual_id == id) return visuals.data;
    return nullptr;
}

CButtonState buttonsOf(std::uint16_t state, std::uint8_t pressed) {
    CButtonState buttons = 0;
    if ((state & XCB_BUTTON_MASK_1) || pressed == 1) buttons |= kLButton;
    if ((state & XCB_BUTTON_MASK_2) || pressed == 2) buttons |= kMButton;
    if ((state & XCB_BUTTON_MASK_3) || pressed == 3) buttons |= kRButton;
    if (state & XCB_MOD_MASK_SHIFT) buttons |= kShift;
    if (state & XCB_MOD_MASK_CONTROL) buttons |= kControl;
    if (state & XCB_MOD_MASK_1) buttons |= kAlt;
    return buttons;
}

constexpr std::uint8_t kWheelUp = 4, kWheelDown = 5;

}  // namespace

std::unique_ptr<X11Window> X11Window::create(unsigned long parent, int width, int height) {
    if (!parent || width <= 0 || height <= 0) return nullptr;
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    std::unique_ptr<X11Window> self(new X11Window());
    self->connection = connection;  // the destructor disconnects, also after a failure
    if (xcb_connection_has_error(connection)) return nullptr;

    const auto parentWindow = static_cast<xcb_window_t>(parent);
    const auto attributesCookie = xcb_get_window_attributes(connection, parentWindow);
    const auto geometryCookie = xcb_get_geometry(connection, parentWindow);
    Freed<xcb_get_window_attributes_reply_t> attributes{
        xcb_get_window_attributes_reply(connection, attributesCookie, nullptr)};
    Freed<xcb_get_geometry_reply_t> geometry{xcb_get_geometry_reply(connection, geometryCookie, nullptr)};
    if (!attributes || !geometry) return nullptr;  // no such parent
    xcb_visualtype_t* visual = findVisual(connection, attributes->visual);
    if (!visual) return nullptr;

    const xcb_window_t window = xcb_generate_id(connection);
    // In the order of their mask bits: background, border, events, colormap.
    const std::uint32_t values[] = {0, 0,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS |
                                        XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION |
                                        XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                                    attributes->colormap};
    const bool made = succeeded(
        connection, xcb_create_window_checked(
                        connection, geometry->depth, window, parentWindow, 0, 0, static_cast<std::uint16_t>(width),
                        static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, attributes->visual,
                        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values));
    if (!made) return nullptr;
    self->window = window;
    if (!succeeded(connection, xcb_map_window_checked(connection, window))) return nullptr;
    self->surface = cairo_xcb_surface_create(connection, window, visual, width, height);
    xcb_flush(connection);
    return self;
}

X11Window::~X11Window() {
    if (surface) {
        // cairo keeps state per connection; it must go with the connection,
        // or a later connection at the same address would find it stale.
        cairo_device_t* device = cairo_device_reference(cairo_surface_get_device(surface));
        cairo_surface_finish(surface);
        cairo_surface_destroy(surface);
        cairo_device_finish(device);
        cairo_device_destroy(device);
    }
    if (!connection) return;
    if (window && alive) {
        // Drain what is queued: a DestroyNotify means the server already took it.
        WindowEvent ignored;
        while (alive && nextEvent(ignored)) {}
        if (alive) xcb_destroy_window(connection, window);
    }
    xcb_flush(connection);
    xcb_disconnect(connection);
}

bool X11Window::nextEvent(WindowEvent& event) {
    while (alive) {
        Freed<xcb_generic_event_t> x{xcb_poll_for_event(connection)};
        if (!x) {
            // A broken connection closes the editor, never the host.
            if (xcb_connection_has_error(connection)) {
                alive = false;
                event.type = WindowEvent::kGone;
                return true;
            }
            return false;
        }
        switch (x->response_type & 0x7f) {
        case XCB_EXPOSE: {
            const auto* e = reinterpret_cast<xcb_expose_event_t*>(x.p);
            if (e->window != window) continue;
            event.type = WindowEvent::kExpose;
            event.area = CRect(e->x, e->y, e->x + e->width, e->y + e->height);
            return true;
        }
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE: {
            const auto* e = reinterpret_cast<xcb_button_press_event_t*>(x.p);
            if (e->event != window) continue;
            const bool press = (x->response_type & 0x7f) == XCB_BUTTON_PRESS;
            event.where = CPoint(e->event_x, e->event_y);
            if (e->detail == kWheelUp || e->detail == kWheelDown) {
                if (!press) continue;  // a wheel notch is press + release
                event.type = WindowEvent::kWheel;
                event.wheel = e->detail == kWheelUp ? 1.0f : -1.0f;
                event.buttons = buttonsOf(e->state, 0);
                return true;
            }
            event.type = press ? WindowEvent::kPress : WindowEvent::kRelease;
            event.buttons = buttonsOf(e->state, e->detail);
            return true;
        }
        case XCB_MOTION_NOTIFY: {
            const auto* e = reinterpret_cast<xcb_motion_notify_event_t*>(x.p);
            if (e->event != window) continue;
            event.type = WindowEvent::kMotion;
            event.where = CPoint(e->event_x, e->event_y);
            event.buttons = buttonsOf(e->state, 0);
            return true;
        }
        case XCB_DESTROY_NOTIFY: {
            if (reinterpret_cast<xcb_destroy_notify_event_t*>(x.p)->window != window) continue;
            alive = false;
            event.type = WindowEvent::kGone;
            return true;
        }
        default:
            // Errors of requests not waited for (the window gone under a
            // drawing, say) arrive here and need nothing more.
            continue;
        }
    }
    return false;
}

void X11Window::resize(int width, int height) {
    if (!alive || width <= 0 || height <= 0) return;
    const std::uint32_t size[] = {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
    xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    if (surface) cairo_xcb_surface_set_size(surface, width, height);
    xcb_flush(connection);
}

void X11Window::present(cairo_surface_t* image, const std::vector<CRect>& areas) {
    if (!alive || !surface || areas.empty()) return;
    cairo_t* cr = cairo_create(surface);
    for (const CRect& area : areas) cairo_rectangle(cr, area.left, area.top, area.getWidth(), area.getHeight());
    cairo_clip(cr);
    cairo_set_source_surface(cr, image, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    // One round trip, so what the host shows next is what we drew.
    Freed<xcb_get_input_focus_reply_t> done{
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr)};
}
