// A plug-in's editor in a top-level X11 window of the host's own, as a DAW
// shows it: the window takes the size the editor asks for (effEditGetRect),
// its id goes to effEditOpen as the parent window, and idle() handles the
// window's events and sends effEditIdle. Closing the window (the window
// manager's close button, or the window being destroyed) closes the editor.
//
// Everything here runs on the thread that opened the window, which is the
// editor's thread as far as the plug-in is concerned. The host keeps its own
// display connection; the plug-in opens its own.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "Plugin.h"

struct _XDisplay;

namespace vsthost {

class EditorWindow {
public:
    static constexpr std::chrono::milliseconds kIdleInterval{33};  // about 30 Hz

    // Opens the window and the editor in it; null with a reason in `error`
    // when there is no display or the plug-in has no editor.
    static std::unique_ptr<EditorWindow> open(Plugin& plugin, std::string& error, const std::string& title = "");
    // Closes the editor (if still open), then the window and the display.
    ~EditorWindow();
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;

    // The parent window handed to the plug-in, 0 once closed.
    unsigned long windowId() const { return window; }
    int width() const { return windowWidth; }
    int height() const { return windowHeight; }
    // False once the window was closed (by the user or close()).
    bool isOpen() const { return window != 0; }
    // What the plug-in answered to effEditOpen (hosts go on either way).
    bool openAnswer() const { return openResult; }
    // Whether the window follows the editor's requests for another size.
    void acceptResizing(bool accept) { resizable = accept; }

    // Handles the window's queued events, then one effEditIdle. Never waits.
    // False once the window is closed.
    bool idle();
    // Idles at kIdleInterval for the given time, or until the window closes
    // or stop() is called. False when the window is closed.
    bool runFor(std::chrono::milliseconds duration);
    // Idles at kIdleInterval until the window is closed or stop() is called.
    void run();
    // Any thread: makes run() and runFor() return at their next tick.
    void stop() { stopRequested.store(true); }

    // effEditClose, then the window is destroyed. Safe to call twice.
    void close();

private:
    EditorWindow(Plugin& plugin, _XDisplay* display);
    void handleEvents();
    void setSize(int width, int height);

    Plugin& plugin;
    _XDisplay* display;
    unsigned long window = 0;
    unsigned long deleteMessage = 0;
    int windowWidth = 0;
    int windowHeight = 0;
    bool editorOpen = false;
    bool openResult = false;
    bool resizable = true;
    std::atomic<bool> stopRequested{false};
};

}  // namespace vsthost
