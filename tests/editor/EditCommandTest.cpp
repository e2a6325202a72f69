// sorvane edit as a person uses it: the editor comes up in a window of its
// own, and closing that window ends the tool cleanly, whether the window
// manager asks politely or the window is simply destroyed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xlib.h>

#include "CloseRequest.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

class EditCommand : public ::testing::Test {
protected:
    void SetUp() override {
        display = XOpenDisplay(nullptr);
        ASSERT_NE(display, nullptr) << "this test needs an X server (run it under xvfb-run)";
        tool = fork();
        ASSERT_GE(tool, 0);
        if (tool == 0) {
            execl(SORVANE_TOOL_PATH, SORVANE_TOOL_PATH, "edit", "--plugin", SORVANE_PLUGIN_PATH,
                  static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    void TearDown() override {
        if (tool > 0 && !finished) {
            kill(tool, SIGKILL);
            waitpid(tool, nullptr, 0);
        }
        if (display) XCloseDisplay(display);
    }

    // The tool's window, found by its title; 0 when it did not appear.
    unsigned long findWindow() {
        FILE* search = popen("timeout 10 xdotool search --sync --name 'sorvane edit' | head -1", "r");
        unsigned long id = 0;
        if (search) {
            if (std::fscanf(search, "%lu", &id) != 1) id = 0;
            pclose(search);
        }
        return id;
    }

    // The tool's exit status, or -1 when it is still running after a while.
    int exitStatus() {
        for (int i = 0; i < 200; ++i) {
            int status = 0;
            if (waitpid(tool, &status, WNOHANG) == tool) {
                finished = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
        }
        return -1;
    }

    Display* display = nullptr;
    pid_t tool = -1;
    bool finished = false;
};

TEST_F(EditCommand, CloseButtonEndsTheToolCleanly) {
    const unsigned long id = findWindow();
    ASSERT_NE(id, 0u) << "no editor window appeared";
    XWindowAttributes attributes;
    ASSERT_TRUE(XGetWindowAttributes(display, id, &attributes));
    EXPECT_EQ(attributes.width, 578);
    EXPECT_EQ(attributes.height, 502);

    requestClose(display, id);
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(EditCommand, DestroyedWindowEndsTheToolCleanly) {
    const unsigned long id = findWindow();
    ASSERT_NE(id, 0u) << "no editor window appeared";
    XDestroyWindow(display, id);
    XFlush(display);
    EXPECT_EQ(exitStatus(), 0);
}

}  // namespace
