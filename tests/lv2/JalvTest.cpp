// The UI in a host we did not write: jalv.gtk3 (through suil's X11-in-GTK
// wrapper) with a JACK server of the test's own on the dummy driver, under
// Xvfb. A knob dragged with xdotool changes the control port: jalv prints
// only the values it sends to a UI, not those a UI writes, so the change is
// heard instead, in what the plug-in plays in jalv (a tone from the front
// through jack_metro, its two stereo feeds recorded with jack_rec). The
// window closes cleanly, twenty times over, without an X error.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sndfile.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "Lv2Ports.h"
#include "PanelPlaces.h"
#include "UiHost.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
namespace ports = sorvane::lv2;
using namespace std::chrono_literals;

pid_t spawn(const std::vector<std::string>& arguments, const std::string& out, const std::string& err) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<char*> argv;
    for (const std::string& a : arguments) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawnp(&pid, argv[0], &files, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&files);
    return pid;
}

// The exit status, or -1 after killing a process that did not end in time.
int waitFor(pid_t pid, std::chrono::seconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            return -1;
        }
        std::this_thread::sleep_for(20ms);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool pollFor(std::chrono::seconds limit, const std::function<bool()>& done) {
    for (const auto end = std::chrono::steady_clock::now() + limit; std::chrono::steady_clock::now() < end;) {
        if (done()) return true;
        std::this_thread::sleep_for(50ms);
    }
    return done();
}

class Jalv : public ::testing::Test {
protected:
    // One JACK server for the suite, on the dummy driver, without real-time
    // scheduling, under a name no other run shares.
    static void SetUpTestSuite() {
        const std::string name = "sorvane-ui-test-" + std::to_string(getpid());
        setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
        setenv("LV2_PATH", fs::path(SORVANE_LV2_BUNDLE).parent_path().c_str(), 1);
        jackd = spawn({"jackd", "--no-realtime", "-n", name, "-d", "dummy", "-r", "48000", "-p", "256"}, "/dev/null",
                      "/dev/null");
        const std::string wait = "jack_wait -w -t 10 -s " + name + " > /dev/null 2>&1";
        serverUp = jackd > 0 && std::system(wait.c_str()) == 0;
    }
    static void TearDownTestSuite() {
        if (jackd > 0) {
            kill(jackd, SIGTERM);
            waitFor(jackd, 10s);
        }
    }

    void SetUp() override {
        ASSERT_TRUE(serverUp) << "jackd did not start";
        ASSERT_TRUE(display) << "these tests need an X server (run them under xvfb-run)";
        dir = fs::temp_directory_path() / ("sorvane-jalv-" + std::to_string(getpid()));
        fs::create_directories(dir);
    }
    void TearDown() override {
        if (jalv > 0) waitFor(jalv, 0s);
        if (display) XCloseDisplay(display);
        fs::remove_all(dir);
    }

    std::string out() const { return (dir / "out.txt").string(); }
    std::string err() const { return (dir / "err.txt").string(); }

    // jalv.gtk3 with our UI, printing the control values it holds.
    void launch() {
        jalv = spawn({"jalv.gtk3", "--print-controls", ports::kPluginUri}, out(), err());
        ASSERT_GT(jalv, 0);
        ASSERT_TRUE(pollFor(15s, [&] { return findEditor(); })) << "no editor in jalv's window\n" << readFile(err());
    }

    // The editor's window (a leaf at the editor's size) in jalv's top-level
    // window named after the plug-in; sets `top` too.
    bool findEditor() {
        editor = top = 0;
        const std::function<Window(Window)> leaf = [&](Window w) -> Window {
            Window root, parent, *children = nullptr;
            unsigned count = 0;
            if (!XQueryTree(display, w, &root, &parent, &children, &count)) return 0;
            Window found = 0;
            for (unsigned i = 0; i < count && !found; ++i) found = leaf(children[i]);
            if (children) XFree(children);
            XWindowAttributes a;
            if (!found && count == 0 && XGetWindowAttributes(display, w, &a) && a.width == 578 && a.height == 502 &&
                a.map_state == IsViewable)
                found = w;
            return found;
        };
        Window root, parent, *children = nullptr;
        unsigned count = 0;
        XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
        for (unsigned i = 0; i < count && !editor; ++i) {
            char* name = nullptr;
            if (XFetchName(display, children[i], &name) && std::string(name) == "Sorvane") {
                top = children[i];
                editor = leaf(top);
            }
            if (name) XFree(name);
        }
        if (children) XFree(children);
        return editor != 0;
    }

    // What a window manager's close button sends.
    int close() {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = top;
        event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(display, top, False, NoEventMask, &event);
        XFlush(display);
        const int status = waitFor(jalv, 15s);
        jalv = -1;
        return status;
    }

    // The values jalv printed for a control port as it started.
    std::vector<float> printed(const std::string& symbol) {
        std::vector<float> values;
        const std::string text = readFile(out());
        const std::regex line("^" + symbol + " = (\\S+)$", std::regex::multiline);
        for (std::sregex_iterator m(text.begin(), text.end(), line), end; m != end; ++m)
            values.push_back(std::stof((*m)[1]));
        return values;
    }

    // A second of the plug-in's first two outputs in jalv: the RMS of each.
    std::pair<double, double> recordStereo() {
        const std::string file = (dir / "take.wav").string();
        const std::string command = "jack_rec -f " + file + " -d 1 -b 32 Sorvane:out1 Sorvane:out2 > /dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        SF_INFO info{};
        SNDFILE* sound = sf_open(file.c_str(), SFM_READ, &info);
        if (!sound || info.channels != 2) return {0, 0};
        std::vector<float> frames(2 * std::size_t(info.frames));
        const sf_count_t read = sf_readf_float(sound, frames.data(), info.frames);
        sf_close(sound);
        double left = 0, right = 0;
        for (sf_count_t i = 0; i < read; ++i) {
            left += frames[2 * i] * frames[2 * i];
            right += frames[2 * i + 1] * frames[2 * i + 1];
        }
        return {std::sqrt(left / double(read)), std::sqrt(right / double(read))};
    }

    ::testing::AssertionResult noXError() {
        const std::string text = readFile(err());
        for (const char* sign : {"X Window System error", "BadWindow", "BadMatch", "BadDrawable", "CRITICAL"})
            if (text.find(sign) != std::string::npos) return ::testing::AssertionFailure() << text;
        return ::testing::AssertionSuccess();
    }

    static inline pid_t jackd = -1;
    static inline bool serverUp = false;
    Display* display = XOpenDisplay(nullptr);
    fs::path dir;
    pid_t jalv = -1;
    Window top = 0, editor = 0;
};

}  // namespace

// A tone from the front sounds alike in both stereo feeds; after rotate is
// turned a quarter with the mouse, it sounds from one side.
TEST_F(Jalv, KnobTurnsTheSoundField) {
    launch();
    ASSERT_TRUE(pollFor(10s, [&] { return !printed("rotate").empty(); })) << readFile(out());
    EXPECT_EQ(printed("rotate"), std::vector<float>{0.0f}) << "rotate starts centred";
    const pid_t tone = spawn({"jack_metro", "-n", "tone", "-b", "600", "-f", "500", "-D", "80", "-A", "0.5"},
                             "/dev/null", "/dev/null");
    ASSERT_GT(tone, 0);
    // W and X alike: a source in front (X alone would sound as loud in both
    // feeds from either side, in opposite phase).
    EXPECT_TRUE(pollFor(10s, [] { return std::system("jack_connect tone:600_bpm Sorvane:w 2> /dev/null") == 0; }));
    EXPECT_EQ(std::system("jack_connect tone:600_bpm Sorvane:x"), 0);
    const auto [frontLeft, frontRight] = recordStereo();
    EXPECT_GT(frontLeft, 0.01);
    EXPECT_NEAR(frontLeft / frontRight, 1.0, 0.01);

    // Up by a quarter of the knob's range: a quarter turn.
    const CPoint knob = panel_places::probePoint(panel_places::placeOf(kRotate));
    const std::string id = std::to_string(editor), x = std::to_string(int(knob.x));
    lv2_test::runXdotool("mousemove --window " + id + " " + x + " " + std::to_string(int(knob.y)) +
                         " mousedown 1 mousemove --window " + id + " " + x + " " + std::to_string(int(knob.y) - 50) +
                         " sleep 0.1 mouseup 1");
    std::this_thread::sleep_for(200ms);
    const auto [sideLeft, sideRight] = recordStereo();
    EXPECT_GT(std::max(sideLeft, sideRight), 0.01);
    EXPECT_GT(std::max(sideLeft / sideRight, sideRight / sideLeft), 1.5) << sideLeft << " " << sideRight;

    kill(tone, SIGTERM);
    waitFor(tone, 10s);
    EXPECT_EQ(close(), 0) << readFile(err());
    EXPECT_TRUE(noXError());
}

TEST_F(Jalv, TwentyOpenCloseCycles) {
    for (int cycle = 0; cycle < 20; ++cycle) {
        launch();
        std::this_thread::sleep_for(100ms);
        ASSERT_EQ(close(), 0) << "cycle " << cycle << "\n" << readFile(err());
        ASSERT_TRUE(noXError()) << "cycle " << cycle;
    }
}
