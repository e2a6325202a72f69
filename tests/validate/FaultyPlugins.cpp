// A small, well-behaved stereo effect (a gain into a one-pole smoother) that
// can carry one deliberate fault, chosen when it is loaded, for checking that
// `sorvane validate` notices what it claims to notice.
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <thread>

#include <X11/Xlib.h>

#include "VstAbi.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace {

enum class Fault {
    none,
    unwrittenOutput,   // output 1 left as the host gave it
    allocates,         // new[] and delete[] in every process call
    locks,             // takes a mutex in every process call
    stickyNan,         // one NaN poisons the smoother for good
    extraExport,       // exports a helper besides the entry
    changesInput,      // scales its input buffer in place
    walksPointers,     // advances the host's channel pointers per sample
    longText,          // a display text of 40 characters
    negativeFrames,    // loops until the count is reached, so -1 runs away
    noFlush,           // resume keeps the smoother's state
    programUnchecked,  // takes any program number
    slowCreate,        // 150 ms to create
    subnormalOutput,   // lets tiny values through as subnormals
    doubleDiffers,     // the double callback applies another gain
    mixesBlockwise,    // a sum/difference matrix computed channel by channel
    unstableLowRate,   // a coefficient from a frequency, unguarded at low rates
    blockRamp,         // restarts a fade-in at every block
    sharedState,       // one smoother state for every instance
    sleeps,            // sleeps a little in every process call
    needsResume,       // its work buffer exists only from the first resume
    longProgramName,   // a program name of 30 characters
    longVendor,        // a vendor string of 68 characters
    editorLeaks,       // an editor whose display connection outlives it
    doubleSuspend,     // frees its work buffer on every suspend
    threadOutlives,    // a background thread still running once unloaded
    dividesAtOne,      // a make-up gain dividing by 1 - v
    eventsUnchecked,   // reads the first event without looking at the count
    chunkForgets,      // its saved state leaves the smoother out
};

// The names the faults are chosen by, in the order above.
constexpr const char* kFaultNames[] = {
    "none",
    "unwritten_output",
    "allocates",
    "locks",
    "sticky_nan",
    "extra_export",
    "changes_input",
    "walks_pointers",
    "long_text",
    "negative_frames",
    "no_flush",
    "program_unchecked",
    "slow_create",
    "subnormal_output",
    "double_differs",
    "mixes_blockwise",
    "unstable_low_rate",
    "block_ramp",
    "shared_state",
    "sleeps",
    "needs_resume",
    "long_program_name",
    "long_vendor",
    "editor_leaks",
    "double_suspend",
    "thread_outlives",
    "divides_at_one",
    "events_unchecked",
    "chunk_forgets",
};
static_assert(std::size(kFaultNames) == static_cast<std::size_t>(Fault::chunkForgets) + 1);

// One library serves every fault: which one is read from FAULTY_PLUGIN_FAULT
// when the library is loaded. None when unset or unknown.
Fault faultFromEnvironment() {
    const char* wanted = std::getenv("FAULTY_PLUGIN_FAULT");
    for (std::size_t i = 0; wanted && i < std::size(kFaultNames); ++i)
        if (std::strcmp(wanted, kFaultNames[i]) == 0) return static_cast<Fault>(i);
    return Fault::none;
}
const Fault fault = faultFromEnvironment();
bool has(Fault f) { return fault == f; }

constexpr int kChannels = 2;
constexpr int kParams = 2;
constexpr int kPrograms = 3;
const char* const kProgramNames[kPrograms] = {"Unity", "Quiet", "Loud"};
const float kProgramGains[kPrograms] = {0.5f, 0.25f, 1.0f};
// Inputs and states below this are silence: no arithmetic on subnormals.
constexpr double kSilence = 1e-30;

double sharedState[kChannels] = {};  // Fault::sharedState only
std::mutex processLock;              // Fault::locks only

struct Effect {
    AEffect record{};
    float rate = 44100.0f;
    double* work = nullptr;  // Fault::needsResume and Fault::doubleSuspend only
    // Fault::editorLeaks: a plain grey child window in the host's window; its
    // connection is opened on every open and never closed.
    ERect rect{0, 0, 120, 200};
    Display* display = nullptr;
    Window child = 0;
    std::atomic<float> gain{0.5f};    // parameter 0: gain 2v
    std::atomic<float> smooth{0.0f};  // parameter 1: coefficient 0.5 + 0.49v
    std::atomic<int> program{0};
    double state[kChannels] = {};
    float chunk[3] = {};  // the saved state: gain, smoother, program
};

Effect* of(AEffect* e) { return static_cast<Effect*>(e->object); }

void copyText(void* ptr, const char* text) {
    if (ptr) std::snprintf(static_cast<char*>(ptr), 24, "%s", text);
}

VstIntPtr editorRequest(Effect* fx, VstInt32 opcode, void* ptr) {
    switch (opcode) {
    case effEditGetRect:
        if (ptr) *static_cast<ERect**>(ptr) = &fx->rect;
        return 1;
    case effEditOpen:
        fx->display = XOpenDisplay(nullptr);
        if (!fx->display) return 0;
        fx->child = XCreateSimpleWindow(fx->display, reinterpret_cast<Window>(ptr), 0, 0, 200, 120, 0, 0, 0x808080);
        XMapWindow(fx->display, fx->child);
        XFlush(fx->display);
        return 1;
    case effEditClose:
        if (fx->display && fx->child) XDestroyWindow(fx->display, fx->child);
        if (fx->display) XFlush(fx->display);
        fx->child = 0;
        return 0;
    default: return 0;
    }
}

VstIntPtr dispatcher(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    Effect* fx = of(e);
    switch (opcode) {
    case effClose:
        if (!has(Fault::doubleSuspend)) delete[] fx->work;
        delete fx;
        return 1;
    case effSetSampleRate: fx->rate = opt; return 0;
    case effEditGetRect:
    case effEditOpen:
    case effEditClose: return has(Fault::editorLeaks) ? editorRequest(fx, opcode, ptr) : 0;
    case effProcessEvents: {
        if (!has(Fault::eventsUnchecked)) return 0;
        struct Events {
            VstInt32 numEvents;
            VstIntPtr reserved;
            VstInt32* events[2];  // each event starts with its type
        };
        return *static_cast<Events*>(ptr)->events[0];
    }
    case effMainsChanged:
        if (has(Fault::doubleSuspend)) {
            if (value)
                fx->work = new double[256]();
            else
                delete[] fx->work;
        }
        if (has(Fault::needsResume) && value && !fx->work) fx->work = new double[1 << 16]();
        if (!has(Fault::noFlush) && value) fx->state[0] = fx->state[1] = 0.0;
        return 0;
    case effSetProgram:
        if (has(Fault::programUnchecked)) {
            fx->program = static_cast<int>(value);
        } else if (value >= 0 && value < kPrograms) {
            fx->program = static_cast<int>(value);
            fx->gain = kProgramGains[value];
        }
        return 0;
    case effGetProgram: return fx->program;
    case effGetChunk:
        if (!ptr) return 0;
        fx->chunk[0] = fx->gain;
        fx->chunk[1] = fx->smooth;
        fx->chunk[2] = static_cast<float>(fx->program.load());
        *static_cast<void**>(ptr) = fx->chunk;
        return sizeof fx->chunk;
    case effSetChunk: {
        float saved[3];
        if (!ptr || value != sizeof saved) return 0;
        std::memcpy(saved, ptr, sizeof saved);
        fx->program = static_cast<int>(saved[2]);
        fx->gain = saved[0];
        if (!has(Fault::chunkForgets)) fx->smooth = saved[1];
        return 1;
    }
    case effGetProgramName: {
        const int p = fx->program;
        copyText(ptr, p >= 0 && p < kPrograms ? kProgramNames[p] : "");
        return 0;
    }
    case effGetProgramNameIndexed:
        if (index < 0 || index >= kPrograms) return 0;
        if (has(Fault::longProgramName))
            std::snprintf(static_cast<char*>(ptr), 64, "%s, the long-winded version", kProgramNames[index]);
        else
            copyText(ptr, kProgramNames[index]);
        return 1;
    case effGetParamName:
        if (index == 0) copyText(ptr, "Gain");
        if (index == 1) copyText(ptr, "Smooth");
        return 0;
    case effGetParamLabel:
        if (index >= 0 && index < kParams) copyText(ptr, "");
        return 0;
    case effGetParamDisplay:
        if (index < 0 || index >= kParams || !ptr) return 0;
        if (has(Fault::longText))
            std::snprintf(static_cast<char*>(ptr), 64, "%.2f and a great deal of explanation", fx->gain.load());
        else
            std::snprintf(static_cast<char*>(ptr), 24, "%.2f", index == 0 ? fx->gain.load() : fx->smooth.load());
        return 0;
    case effGetEffectName: copyText(ptr, "Faulty"); return 1;
    case effGetVendorString:
        if (has(Fault::longVendor))
            std::snprintf(static_cast<char*>(ptr), 100, "%s",
                          "Tests of a plug-in validator, with a vendor name far too long for it");
        else
            copyText(ptr, "Tests");
        return 1;
    case effGetProductString: copyText(ptr, "Faulty"); return 1;
    case effGetVstVersion: return kVstVersion;
    case effCanBeAutomated: return 1;
    default: return 0;
    }
}

void setParameter(AEffect* e, VstInt32 index, float value) {
    if (index == 0) of(e)->gain = value;
    if (index == 1) of(e)->smooth = value;
}

float getParameter(AEffect* e, VstInt32 index) {
    if (index == 0) return of(e)->gain;
    if (index == 1) return of(e)->smooth;
    return 0.0f;
}

template <typename S>
void process(AEffect* e, S** in, S** out, VstInt32 frames) {
    Effect* fx = of(e);
    double gain = 2.0 * fx->gain;
    if (has(Fault::doubleDiffers) && sizeof(S) == 8) gain *= 1.01;
    const double a =
        has(Fault::unstableLowRate) ? 2.0 * 3.141592653589793 * 3000.0 / fx->rate : 0.5 + 0.49 * fx->smooth;
    if (has(Fault::dividesAtOne)) gain *= (1.0 - a) / (1.0 - fx->smooth);
    double* state = has(Fault::sharedState) ? sharedState : fx->state;
    if (has(Fault::sleeps)) std::this_thread::sleep_for(std::chrono::microseconds(1));
    if (has(Fault::mixesBlockwise)) {
        // Sum into output 0 over the whole block, then difference into output 1,
        // reading input 0 again: in place, input 0 is gone by then.
        for (VstInt32 i = 0; i < frames; ++i) out[0][i] = static_cast<S>(0.5 * (in[0][i] + in[1][i]));
        for (VstInt32 i = 0; i < frames; ++i) out[1][i] = static_cast<S>(0.5 * (in[0][i] - in[1][i]));
        return;
    }
    if (has(Fault::allocates)) {
        // Kept where the compiler cannot see it, so the pair is not optimised away.
        static S* volatile scratch;
        scratch = new S[frames > 0 ? frames : 1];
        delete[] scratch;
    }
    std::unique_lock lock(processLock, std::defer_lock);
    if (has(Fault::locks)) lock.lock();
    const bool walks = has(Fault::walksPointers);
    for (VstInt32 i = 0; has(Fault::negativeFrames) ? i != frames : i < frames; ++i) {
        for (int c = 0; c < kChannels; ++c) {
            double x = walks ? *in[c]++ : in[c][i];
            if (!has(Fault::subnormalOutput) && std::fabs(x) < kSilence) x = 0.0;
            double y = a * state[c] + (1.0 - a) * gain * x;
            if (has(Fault::blockRamp) && i < 16) y *= (i + 1) / 16.0;
            if (has(Fault::needsResume)) fx->work[i & 0xFFFF] = y;
            if (!has(Fault::subnormalOutput) && std::fabs(y) < kSilence) y = 0.0;
            state[c] = y;
            if (has(Fault::unwrittenOutput) && c == 1) continue;
            (walks ? *out[c]++ : out[c][i]) = static_cast<S>(y);
        }
        if (has(Fault::changesInput)) in[0][i] *= S(0.5);
    }
    for (int c = 0; c < kChannels && !has(Fault::stickyNan); ++c)
        if (!std::isfinite(state[c])) state[c] = 0.0;
}

}  // namespace

// The one fault that is in the binary itself: a second library from this source.
#ifdef FAULTY_EXTRA_EXPORT
EXPORT int faultyHelper() { return 1; }
#endif

EXPORT AEffect* VSTPluginMain(audioMasterCallback host) {
    if (!host || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) return nullptr;
    if (has(Fault::slowCreate)) std::this_thread::sleep_for(std::chrono::milliseconds(150));
    static bool started = false;
    if (has(Fault::threadOutlives) && !started) {
        started = true;
        std::thread([] {
            for (;;) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }).detach();
    }
    Effect* fx = new (std::nothrow) Effect;
    if (!fx) return nullptr;
    AEffect& r = fx->record;
    r.magic = kEffectMagic;
    r.dispatcher = dispatcher;
    r.setParameter = setParameter;
    r.getParameter = getParameter;
    r.numPrograms = kPrograms;
    r.numParams = kParams;
    r.numInputs = kChannels;
    r.numOutputs = kChannels;
    r.flags = effFlagsCanReplacing | effFlagsCanDoubleReplacing | effFlagsProgramChunks;
    if (has(Fault::editorLeaks)) r.flags |= effFlagsHasEditor;
    r.object = fx;
    r.uniqueID = 0x46617479;
    r.version = 1;
    r.processReplacing = process<float>;
    r.processDoubleReplacing = process<double>;
    return &r;
}
