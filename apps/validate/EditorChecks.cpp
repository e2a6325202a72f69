// The editor while the host does other things: closing the instance with
// its editor open, automation from other threads while the editor idles
// (after which the editor must show the final values), and opening and
// closing it again and again while audio runs. The editor lives in the
// host's own X11 window (vsthost::EditorWindow), idled from this thread.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <dirent.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "Check.h"
#include "EditorWindow.h"
#include "Harness.h"

namespace validate {
namespace {

using namespace std::chrono_literals;

// A connection of the check's own for its whole run: a bare X server with no
// client left resets itself and refuses connections meanwhile, which a
// desktop never does.
Display* heldDisplay = nullptr;

// Why the editor checks cannot run, or empty when they can.
std::string editorUnavailable(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath, 44100.0f, 1024, false);
    if (!plugin->hasFlag(effFlagsHasEditor)) return "skipped: no editor";
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) return "skipped: no display";
    if (!heldDisplay) heldDisplay = XOpenDisplay(nullptr);
    if (!heldDisplay) return "skipped: no display (cannot open " + std::string(display) + ")";
    return {};
}

std::unique_ptr<vsthost::EditorWindow> openEditor(vsthost::Plugin& plugin) {
    std::string error;
    auto window = vsthost::EditorWindow::open(plugin, error, "sorvane validate");
    if (!window) throw CheckFailure(error);
    return window;
}

int openFileDescriptors() {
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir)) ++count;
        closedir(dir);
    }
    return count;
}

// Processing on a thread of its own until stopped, noting the first fault.
// Blocks of 256 frames follow each other every millisecond, faster than any
// real-time rate, yet leave the editor's thread and the X server a core.
// With `automate`, every block is preceded by a parameter change, as hosts
// play automation from their audio thread.
class AudioThread {
public:
    AudioThread(vsthost::Plugin& plugin, std::uint64_t seed, bool automate = false)
        : thread([this, &plugin, seed, automate] {
              Random random(seed);
              const int parameters = plugin.numParams();
              while (running.load()) {
                  if (automate && parameters > 0)
                      plugin.setParameter(static_cast<VstInt32>(random() % parameters), randomValue(random));
                  const Planar input = noise(plugin.numInputs(), 256, 0.5, random);
                  const BlockOutcome out = processBlock(plugin, input, plugin.numOutputs(), 256, Precision::Float);
                  std::string bad = out.fault.empty() ? findNonFinite(out.output, false) : out.fault;
                  if (!bad.empty()) {
                      std::lock_guard lock(mutex);
                      if (fault.empty()) fault = bad;
                  }
                  ++blocks;
                  std::this_thread::sleep_for(1ms);
              }
          }) {}
    ~AudioThread() { stop(); }
    std::string stop() {
        running = false;
        if (thread.joinable()) thread.join();
        std::lock_guard lock(mutex);
        return fault;
    }
    long processed() const { return blocks.load(); }

private:
    std::atomic<bool> running{true};
    std::atomic<long> blocks{0};
    std::mutex mutex;
    std::string fault;
    std::thread thread;
};

// The window's pixels as the X server has them, children included.
struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned long> pixels;
};

int ignoreErrors(Display*, XErrorEvent*) { return 0; }

Picture capture(unsigned long window, int width, int height) {
    Picture picture;
    Display* display = XOpenDisplay(nullptr);
    if (!display) return picture;
    auto previous = XSetErrorHandler(ignoreErrors);
    if (XImage* image = XGetImage(display, window, 0, 0, width, height, AllPlanes, ZPixmap)) {
        picture.width = width;
        picture.height = height;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) picture.pixels.push_back(XGetPixel(image, x, y));
        XDestroyImage(image);
    }
    XSync(display, False);
    XSetErrorHandler(previous);
    XCloseDisplay(display);
    return picture;
}

// The next idle must bring the editor to the final values: it must then
// look exactly like an editor opened afresh on the same values. No further
// idle happens before the capture; the wait only lets the X server finish
// drawing what that one idle sent. The idle itself comes a moment after the
// last change, as a host's next idle would, so that what a plug-in settles
// on its own after a change (a network port it opens, say) has settled.
// Empty when it does; `window` is the fresh one afterwards.
std::string differsFromFresh(vsthost::Plugin& plugin, std::unique_ptr<vsthost::EditorWindow>& window) {
    std::this_thread::sleep_for(300ms);
    window->idle();
    std::this_thread::sleep_for(500ms);
    const Picture shown = capture(window->windowId(), window->width(), window->height());
    window.reset();
    window = openEditor(plugin);
    window->runFor(300ms);
    const Picture fresh = capture(window->windowId(), window->width(), window->height());
    if (shown.pixels.empty() || fresh.pixels.empty()) return "cannot read the editor's window";
    int differing = 0, left = shown.width, top = shown.height, right = -1, bottom = -1;
    for (int y = 0; y < shown.height; ++y)
        for (int x = 0; x < shown.width; ++x)
            if (shown.pixels[y * shown.width + x] != fresh.pixels[y * shown.width + x]) {
                ++differing;
                left = std::min(left, x), right = std::max(right, x);
                top = std::min(top, y), bottom = std::max(bottom, y);
            }
    if (!differing) return {};
    return format(
        "after the next idle the editor differs from a fresh one in %d pixels "
        "(x %d..%d, y %d..%d): it does not show the final values",
        differing, left, right, top, bottom);
}

// `count` idles at 30 Hz, each timed in milliseconds; `elapsed` is the
// whole run's wall-clock time, longer than count / 30 s only when idles overrun.
std::vector<double> timedIdles(vsthost::EditorWindow& window, int count, double& elapsed) {
    std::vector<double> idles;
    const auto begin = std::chrono::steady_clock::now();
    auto next = begin;
    for (int i = 0; i < count; ++i, next += 33ms) {
        std::this_thread::sleep_until(next);
        const auto start = std::chrono::steady_clock::now();
        if (!window.idle()) break;
        idles.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return idles;
}

double percentile(std::vector<double> values, double p) {
    if (values.empty()) return 0.0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(p * static_cast<double>(values.size() - 1))];
}

// Dense automation of every parameter, the layout included, from two host
// threads at `rate` changes per second in all, while the editor idles at
// 30 Hz: the display must end at the effect's values. The idle times and
// the run's length against the same run without automation are reported
// (the aim: p99 within 10 ms, the run within 1.5 times); they are figures
// of this machine, not faults.
CheckResult editorStorm(const CheckContext& context) {
    if (auto why = editorUnavailable(context); !why.empty()) return skip(why);
    auto plugin = createInstance(context.pluginPath, 48000.0f, 256);
    const int parameters = plugin->numParams();
    if (parameters == 0) return skip("no parameters");
    auto window = openEditor(*plugin);
    const int idles = context.byLevel(30, 90, 300);
    double quietSeconds = 0.0, stormSeconds = 0.0;
    timedIdles(*window, idles, quietSeconds);

    std::atomic<bool> automating{true};
    std::atomic<long> changes{0};
    const int perThread = std::max(context.stormRate / 2, 1);
    auto automate = [&](std::uint64_t seed) {
        Random random(seed);
        std::uniform_int_distribution<int> index(0, parameters - 1);
        // Changes in bursts of 1 ms, as a host's audio thread sends them per block.
        const int burst = std::max(perThread / 1000, 1);
        const auto period = std::chrono::microseconds(1000000LL * burst / perThread);
        for (auto next = std::chrono::steady_clock::now(); automating.load(); next += period) {
            for (int i = 0; i < burst; ++i) plugin->setParameter(index(random), randomValue(random));
            changes += burst;
            std::this_thread::sleep_until(next);
        }
    };
    std::thread first(automate, context.seed + 1), second(automate, context.seed + 2);
    const std::vector<double> storm = timedIdles(*window, idles, stormSeconds);
    automating = false;
    first.join();
    second.join();
    if (!window->isOpen()) return fail("the editor's window closed by itself");
    const std::string figures = format(
        "%.0f changes/s: idle p50 %.2f ms, p95 %.2f ms, p99 %.2f ms, max %.2f ms; the run %.2fx as long as "
        "without automation",
        static_cast<double>(changes.load()) / stormSeconds, percentile(storm, 0.5), percentile(storm, 0.95),
        percentile(storm, 0.99), percentile(storm, 1.0), stormSeconds / quietSeconds);
    if (auto differs = differsFromFresh(*plugin, window); !differs.empty()) return fail(figures + "; " + differs);
    return pass(figures + "; the display ends at the effect's values");
}

CheckResult closeWithEditorOpen(const CheckContext& context) {
    if (auto why = editorUnavailable(context); !why.empty()) return skip(why);
    Random random(context.seed);
    {  // One full cycle first, so that what the libraries keep for good is not counted.
        auto plugin = createInstance(context.pluginPath);
        auto window = openEditor(*plugin);
        window->idle();
    }
    const int descriptors = openFileDescriptors();
    for (int round = 0; round < context.byLevel(2, 5, 20); ++round) {
        auto plugin = createInstance(context.pluginPath);
        auto window = openEditor(*plugin);
        for (int i = 0; i < 5; ++i) {
            window->idle();
            const BlockOutcome out = processBlock(*plugin, noise(plugin->numInputs(), 256, 0.5, random),
                                                  plugin->numOutputs(), 256, Precision::Float);
            if (!out.fault.empty()) return fail(out.fault);
            std::this_thread::sleep_for(5ms);
        }
        plugin->close();  // effClose with the editor still open
        window.reset();   // then the host takes its window down
    }
    // The library stays usable: a new instance opens and closes its editor.
    auto plugin = createInstance(context.pluginPath);
    auto window = openEditor(*plugin);
    window->idle();
    window.reset();
    plugin.reset();
    const int leaked = openFileDescriptors() - descriptors;
    if (leaked > 0) return fail(format("%d file descriptors left open (display connections?)", leaked));
    return pass(
        format("%d instances closed with the editor open and idling; nothing left open", context.byLevel(2, 5, 20)));
}

CheckResult editorOddRequests(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath);
    if (!plugin->hasFlag(effFlagsHasEditor)) return skip("skipped: no editor");
    // Before any window: hosts idle, ask the size, send keys and knob modes,
    // and some close an editor they never opened.
    ERect rect{};
    plugin->editorRect(rect);
    for (int i = 0; i < 5; ++i) plugin->idleEditor();
    plugin->editorKeyDown('a', 0, 0);
    plugin->editorKeyUp('a', 0, 0);
    for (VstInt32 mode = 0; mode < 3; ++mode) plugin->setEditorKnobMode(mode);
    plugin->closeEditor();
    plugin->idleEditor();
    std::string done = "idle, keys, knob modes and close without a window";
    if (editorUnavailable(context).empty()) {
        // Closed twice: once by the host, once more by its window going away.
        auto window = openEditor(*plugin);
        window->idle();
        plugin->closeEditor();
        plugin->idleEditor();
        window.reset();
        window = openEditor(*plugin);
        window->idle();
        // Parameter indices out of range reach the open editor too.
        for (VstInt32 k : {-1, plugin->numParams(), 1000, -1000}) {
            plugin->setParameter(k, 0.5f);
            window->idle();
        }
        window.reset();
        done += "; closed twice; opened again; indices out of range while open";
    }
    const BlockOutcome out = processBlock(*plugin, noise(plugin->numInputs(), 512, 0.5, random), plugin->numOutputs(),
                                          512, Precision::Float);
    if (!out.fault.empty()) return fail("afterwards: " + out.fault);
    return pass(done);
}

CheckResult threadsWithEditor(const CheckContext& context) {
    if (auto why = editorUnavailable(context); !why.empty()) return skip(why);
    auto plugin = createInstance(context.pluginPath, 48000.0f, 256);
    const int parameters = plugin->numParams();
    auto window = openEditor(*plugin);
    const auto duration = std::chrono::milliseconds(context.byLevel(1000, 3000, 15000));

    std::atomic<bool> automating{true};
    std::atomic<long> changes{0};
    auto automate = [&](std::uint64_t seed) {
        Random random(seed);
        std::uniform_int_distribution<int> index(0, std::max(parameters - 1, 0)), pause(1, 5);
        while (automating.load() && parameters > 0) {
            plugin->setParameter(index(random), randomValue(random));
            ++changes;
            std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
        }
    };
    AudioThread audio(*plugin, context.seed);
    std::thread first(automate, context.seed + 1), second(automate, context.seed + 2);
    const bool stillOpen = window->runFor(duration);
    automating = false;
    first.join();
    second.join();
    const std::string fault = audio.stop();
    if (!stillOpen) return fail("the editor's window closed by itself");
    if (!fault.empty()) return fail("while two threads automated: " + fault);

    if (auto differs = differsFromFresh(*plugin, window); !differs.empty()) return fail(differs);
    return pass(format("%.1f s, %ld changes from two threads, %ld blocks; the next idle shows the final values",
                       std::chrono::duration<double>(duration).count(), changes.load(), audio.processed()));
}

CheckResult editorCycles(const CheckContext& context) {
    if (auto why = editorUnavailable(context); !why.empty()) return skip(why);
    auto plugin = createInstance(context.pluginPath, 48000.0f, 256);
    const int cycles = context.byLevel(20, 100, 1000);
    {
        auto window = openEditor(*plugin);  // what the libraries keep for good
        window->idle();
    }
    const int descriptors = openFileDescriptors();
    AudioThread audio(*plugin, context.seed, true);
    Random random(context.seed + 1);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < cycles; ++i) {
        std::string error;
        auto window = vsthost::EditorWindow::open(*plugin, error, "sorvane validate");
        if (!window)
            return fail(format("cycle %d: %s; %d more file descriptors open than before the first", i + 1,
                               error.c_str(), openFileDescriptors() - descriptors));
        window->idle();
        if (i % 10 == 0)
            plugin->setParameter(static_cast<int>(random() % std::max(plugin->numParams(), 1)), randomValue(random));
        window->idle();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (auto fault = audio.stop(); !fault.empty()) return fail("audio while the editor opened and closed: " + fault);
    // What a running effect holds for one of the parameters set above (a
    // network port, say) is let go at a suspend; what the editors left is not.
    plugin->suspend();
    const int leaked = openFileDescriptors() - descriptors;
    if (leaked > 0) return fail(format("%d file descriptors left open after %d cycles", leaked, cycles));
    return pass(format("%d open/close cycles in %.1f s while %ld automated blocks were processed; nothing left open",
                       cycles, seconds, audio.processed()));
}

}  // namespace

void addEditorChecks(std::vector<Check>& checks) {
    checks.push_back({"close-editor-open", 1, "effClose while the editor is open", closeWithEditorOpen});
    checks.push_back(
        {"editor-odd-requests", 1, "editor requests without a window, and closed twice", editorOddRequests});
    checks.push_back({"threads-editor", 1, "automation from two threads while the editor idles", threadsWithEditor});
    checks.push_back(
        {"editor-storm", 1, "dense automation of every parameter while the editor idles at 30 Hz", editorStorm});
    checks.push_back(
        {"editor-open-close", 1, "editor opened and closed again and again while audio runs", editorCycles});
}

}  // namespace validate
