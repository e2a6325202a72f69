// The UI library as an LV2 host meets it: found through liblilv from the
// plug-in's description, opened with dlopen, instantiated in a top-level X11
// window of the test's own (ui:parent), offered ui:resize and ui:touch,
// idled through its idle interface and given port values. What it writes
// and touches is recorded; mouse input is played by xdotool.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <lv2/ui/ui.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "CPoint.h"
#include "Lv2Host.h"

// Last: Xlib's macros would clash with names in the headers above.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace lv2_test {

// A window's pixels as 0xRRGGBB, row by row; empty when it cannot be read.
inline std::vector<std::uint32_t> capture(Display* display, Window window, int width, int height) {
    std::vector<std::uint32_t> pixels;
    XSync(display, False);
    XImage* image = XGetImage(display, window, 0, 0, unsigned(width), unsigned(height), AllPlanes, ZPixmap);
    if (!image) return pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) pixels.push_back(std::uint32_t(XGetPixel(image, x, y)) & 0xffffff);
    XDestroyImage(image);
    return pixels;
}

inline void runXdotool(const std::string& arguments) {
    const std::string command = "xdotool " + arguments;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

// Presses at `at` in the window, moves by dy pixels and back, and lets go:
// a knob goes out and returns to exactly where it started.
inline void dragThereAndBack(unsigned long window, const CPoint& at, int dy) {
    const std::string id = std::to_string(window), x = std::to_string(int(at.x));
    runXdotool("mousemove --window " + id + " " + x + " " + std::to_string(int(at.y)) +
               " mousedown 1 mousemove --window " + id + " " + x + " " + std::to_string(int(at.y) + dy) +
               " sleep 0.02 mousemove --window " + id + " " + x + " " + std::to_string(int(at.y)) +
               " sleep 0.02 mouseup 1");
}

inline void clickAt(unsigned long window, const CPoint& at) {
    runXdotool("mousemove --window " + std::to_string(window) + " " + std::to_string(int(at.x)) + " " +
               std::to_string(int(at.y)) + " click 1");
}

class UiHost {
public:
    struct Write {
        std::uint32_t port;
        float value;
    };
    struct Touch {
        std::uint32_t port;
        bool grabbed;
    };

    // The UI library's path from the plug-in's description.
    static std::string binaryOf(const Bundle& bundle) {
        const LilvUIs* uis = lilv_plugin_get_uis(bundle.plugin);
        LilvNode* uri = bundle.node(ports::kUiUri);
        const LilvUI* ui = uis ? lilv_uis_get_by_uri(uis, uri) : nullptr;
        lilv_node_free(uri);
        if (!ui) return "";
        char* path = lilv_file_uri_parse(lilv_node_as_uri(lilv_ui_get_binary_uri(ui)), nullptr);
        std::string binary = path;
        lilv_free(path);
        return binary;
    }

    UiHost(const std::string& binary, Display* display) : display(display) {
        library = dlopen(binary.c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto entry =
            library ? reinterpret_cast<LV2UI_DescriptorFunction>(dlsym(library, "lv2ui_descriptor")) : nullptr;
        descriptor = entry ? entry(0) : nullptr;
        const int screen = DefaultScreen(display);
        parent = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0, 64, 64, 0, 0, 0);
        parentFeature.data = reinterpret_cast<void*>(parent);
        XSelectInput(display, parent, StructureNotifyMask);
        XMapWindow(display, parent);
        for (XEvent event; !XCheckTypedWindowEvent(display, parent, MapNotify, &event);)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ~UiHost() {
        close();
        if (parent) XDestroyWindow(display, parent);
        XSync(display, False);
        if (library) dlclose(library);
    }

    // Instantiates with the given features, null-terminated here.
    LV2UI_Handle instantiate(std::vector<const LV2_Feature*> features, const char* plugin = ports::kPluginUri) {
        features.push_back(nullptr);
        return descriptor->instantiate(descriptor, plugin, SORVANE_LV2_BUNDLE "/", &UiHost::write, this, &widget,
                                       features.data());
    }
    // With the parent window, resize and touch.
    void open() {
        handle = instantiate({&parentFeature, &resizeFeature, &touchFeature});
        ASSERT_TRUE(handle);
        idleInterface = static_cast<const LV2UI_Idle_Interface*>(descriptor->extension_data(LV2_UI__idleInterface));
        ASSERT_TRUE(idleInterface);
        settle();
    }
    void close() {
        if (handle) descriptor->cleanup(handle);
        handle = nullptr;
    }

    void port(int control, float value) {
        descriptor->port_event(handle, ports::controlPort(control), sizeof value, 0, &value);
    }
    int idle() { return idleInterface->idle(handle); }
    // A few idle ticks, so queued input and redraws reach the screen.
    void settle() {
        for (int i = 0; i < 4; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
            idle();
        }
    }
    std::vector<std::uint32_t> capture() { return lv2_test::capture(display, parent, width, height); }

    Display* display;
    void* library = nullptr;
    const LV2UI_Descriptor* descriptor = nullptr;
    Window parent = 0;
    int width = 0, height = 0;  // as the UI asked through ui:resize
    LV2UI_Handle handle = nullptr;
    LV2UI_Widget widget = nullptr;
    const LV2UI_Idle_Interface* idleInterface = nullptr;
    std::vector<Write> writes;
    std::vector<Touch> touches;

    LV2UI_Resize resize{this, [](LV2UI_Feature_Handle self, int w, int h) {
                            auto& host = *static_cast<UiHost*>(self);
                            host.width = w;
                            host.height = h;
                            XResizeWindow(host.display, host.parent, unsigned(w), unsigned(h));
                            XSync(host.display, False);
                            return 0;
                        }};
    LV2UI_Touch touch{this, [](LV2UI_Feature_Handle self, std::uint32_t port, bool grabbed) {
                          static_cast<UiHost*>(self)->touches.push_back({port, grabbed});
                      }};
    LV2_Feature parentFeature{LV2_UI__parent, nullptr};
    LV2_Feature resizeFeature{LV2_UI__resize, &resize};
    LV2_Feature touchFeature{LV2_UI__touch, &touch};

private:
    static void write(LV2UI_Controller self, std::uint32_t port, std::uint32_t size, std::uint32_t protocol,
                      const void* buffer) {
        auto& host = *static_cast<UiHost*>(self);
        EXPECT_EQ(size, sizeof(float));
        EXPECT_EQ(protocol, 0u) << "control ports take plain floats";
        host.writes.push_back({port, *static_cast<const float*>(buffer)});
    }
};

}  // namespace lv2_test
