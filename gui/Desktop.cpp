#include "Desktop.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <string>

double dpiScaleOf(std::string_view resources) {
    constexpr std::string_view kKey = "Xft.dpi:";
    for (std::size_t start = 0; start < resources.size();) {
        std::size_t end = resources.find('\n', start);
        if (end == std::string_view::npos) end = resources.size();
        const std::string_view line = resources.substr(start, end - start);
        if (line.starts_with(kKey)) {
            const std::string value(line.substr(kKey.size()));
            char* rest = nullptr;
            const double dpi = std::strtod(value.c_str(), &rest);
            return rest != value.c_str() ? dpi / 96.0 : 0.0;
        }
        start = end + 1;
    }
    return 0.0;
}

Desktop readDesktop() {
    Desktop desktop;
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return desktop;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem; ++i) xcb_screen_next(&screens);
    if (screens.rem) {
        const xcb_screen_t* screen = screens.data;
        desktop.width = screen->width_in_pixels;
        desktop.height = screen->height_in_pixels;
        // The whole resource database, up to 4 MB (the length counts 32-bit words).
        const auto cookie = xcb_get_property(connection, 0, screen->root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING,
                                             0, 1u << 20);
        if (xcb_get_property_reply_t* reply = xcb_get_property_reply(connection, cookie, nullptr)) {
            desktop.dpiScale = dpiScaleOf(std::string_view(static_cast<const char*>(xcb_get_property_value(reply)),
                                                           static_cast<std::size_t>(xcb_get_property_value_length(reply))));
            std::free(reply);
        }
    }
    xcb_disconnect(connection);
    return desktop;
}
