#include "EditorWindow.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <thread>

namespace vsthost {

namespace {

// The map is complete once the server says so; a plug-in's child window
// opened before that would still show, but tests and screenshots want the
// window on screen when open() returns.
void waitForMap(Display* display, Window window) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    XEvent event;
    while (std::chrono::steady_clock::now() < deadline) {
        if (XCheckTypedWindowEvent(display, window, MapNotify, &event)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

}  // namespace

EditorWindow::EditorWindow(Plugin& plugin, Display* display) : plugin(plugin), display(display) {}

std::unique_ptr<EditorWindow> EditorWindow::open(Plugin& plugin, std::string& error, const std::string& title) {
    ERect rect{};
    if (!(plugin.flags() & effFlagsHasEditor) || !plugin.editorRect(rect)) {
        error = plugin.path() + " has no editor";
        return nullptr;
    }
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (width <= 0 || height <= 0) {
        error = plugin.path() + ": the editor asks for an empty window";
        return nullptr;
    }
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        error = "cannot open the X display (is DISPLAY set?)";
        return nullptr;
    }

    std::unique_ptr<EditorWindow> self(new EditorWindow(plugin, display));
    self->windowWidth = width;
    self->windowHeight = height;
    const int screen = DefaultScreen(display);
    self->window = XCreateSimpleWindow(display, RootWindow(display, screen), 0, 0, unsigned(width), unsigned(height), 0,
                                       BlackPixel(display, screen), BlackPixel(display, screen));
    XSelectInput(display, self->window, StructureNotifyMask);
    self->setSize(width, height);
    // The close button sends a message instead of killing the connection.
    const std::string name = title.empty() ? plugin.effectName() : title;
    XStoreName(display, self->window, name.c_str());
    Atom deleteMessage = XInternAtom(display, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(display, self->window, &deleteMessage, 1);
    self->deleteMessage = deleteMessage;

    XMapWindow(display, self->window);
    XSync(display, False);
    waitForMap(display, self->window);

    EditorWindow* window = self.get();
    plugin.onSizeWindow([window](int w, int h) {
        if (!window->resizable || w <= 0 || h <= 0) return false;
        window->setSize(w, h);
        return true;
    });
    // Plug-ins answer effEditOpen inconsistently (many say 0 and open all
    // the same), so the answer is kept for whoever checks it, not obeyed.
    self->openResult = plugin.openEditor(reinterpret_cast<void*>(self->window));
    self->editorOpen = true;
    self->idle();  // the first paint
    return self;
}

// A fixed size, like the editor's, until the editor asks for another.
void EditorWindow::setSize(int width, int height) {
    XSizeHints* hints = XAllocSizeHints();
    hints->flags = PMinSize | PMaxSize;
    hints->min_width = hints->max_width = width;
    hints->min_height = hints->max_height = height;
    XSetWMNormalHints(display, window, hints);
    XFree(hints);
    if (width != windowWidth || height != windowHeight) XResizeWindow(display, window, unsigned(width), unsigned(height));
    XSync(display, False);
    windowWidth = width;
    windowHeight = height;
}

EditorWindow::~EditorWindow() {
    close();
    XCloseDisplay(display);
}

void EditorWindow::close() {
    plugin.onSizeWindow(nullptr);
    if (editorOpen) {
        editorOpen = false;
        plugin.closeEditor();
    }
    if (window) {
        XDestroyWindow(display, window);
        XSync(display, False);
        window = 0;
    }
}

void EditorWindow::handleEvents() {
    while (window && XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.xany.window != window) continue;
        if (event.type == ClientMessage && static_cast<unsigned long>(event.xclient.data.l[0]) == deleteMessage) {
            close();
        } else if (event.type == DestroyNotify) {
            // Someone else destroyed it: the editor's child window went with it.
            window = 0;
            close();
        }
    }
}

bool EditorWindow::idle() {
    handleEvents();
    if (!window) return false;
    plugin.idleEditor();
    return true;
}

bool EditorWindow::runFor(std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    auto next = std::chrono::steady_clock::now();
    while (!stopRequested.load() && idle()) {
        next += kIdleInterval;
        if (next >= end) break;
        std::this_thread::sleep_until(next);
    }
    return isOpen();
}

void EditorWindow::run() {
    auto next = std::chrono::steady_clock::now();
    while (!stopRequested.load() && idle()) {
        next += kIdleInterval;
        std::this_thread::sleep_until(next);
    }
}

}  // namespace vsthost
