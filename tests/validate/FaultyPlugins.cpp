// A small, well-behaved stereo effect (a gain into a one-pole smoother) and,
// one per FAULT, copies of it with a single deliberate fault each, for
// checking that `sorvane validate` notices what it claims to notice.
#include <atomic>
#include <chrono>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

#include "VstAbi.h"

#define FAULT_NONE 0
#define FAULT_UNWRITTEN_OUTPUT 1   // output 1 left as the host gave it
#define FAULT_ALLOCATES 2          // new[] and delete[] in every process call
#define FAULT_LOCKS 3              // takes a mutex in every process call
#define FAULT_STICKY_NAN 4         // one NaN poisons the smoother for good
#define FAULT_EXTRA_EXPORT 5       // exports a helper besides the entry
#define FAULT_CHANGES_INPUT 6      // scales its input buffer in place
#define FAULT_WALKS_POINTERS 7     // advances the host's channel pointers per sample
#define FAULT_LONG_TEXT 8          // a display text of 40 characters
#define FAULT_NEGATIVE_FRAMES 9    // loops until the count is reached, so -1 runs away
#define FAULT_NO_FLUSH 10          // resume keeps the smoother's state
#define FAULT_PROGRAM_UNCHECKED 11 // takes any program number
#define FAULT_SLOW_CREATE 12       // 150 ms to create
#define FAULT_SUBNORMAL_OUTPUT 13  // lets tiny values through as subnormals
#define FAULT_DOUBLE_DIFFERS 14    // the double callback applies another gain
#define FAULT_MIXES_BLOCKWISE 15   // a sum/difference matrix computed channel by channel
#define FAULT_UNSTABLE_LOW_RATE 16 // a coefficient from a frequency, unguarded at low rates
#define FAULT_BLOCK_RAMP 17        // restarts a fade-in at every block
#define FAULT_SHARED_STATE 18      // one smoother state for every instance
#define FAULT_SLEEPS 19            // sleeps a little in every process call
#define FAULT_NEEDS_RESUME 20      // its work buffer exists only from the first resume
#define FAULT_LONG_PROGRAM_NAME 21 // a program name of 30 characters
#define FAULT_LONG_VENDOR 22       // a vendor string of 68 characters
#define FAULT_EDITOR_LEAKS 23      // an editor whose display connection outlives it
#define FAULT_DOUBLE_SUSPEND 24    // frees its work buffer on every suspend
#define FAULT_THREAD_OUTLIVES 25   // a background thread still running once unloaded
#define FAULT_DIVIDES_AT_ONE 26    // a make-up gain dividing by 1 - v
#define FAULT_EVENTS_UNCHECKED 27  // reads the first event without looking at the count

#ifndef FAULT
#define FAULT FAULT_NONE
#endif

#define EXPORT extern "C" __attribute__((visibility("default")))

#if FAULT == FAULT_EDITOR_LEAKS
#include <X11/Xlib.h>
#endif

namespace {

constexpr int kChannels = 2;
constexpr int kParams = 2;
constexpr int kPrograms = 3;
const char* const kProgramNames[kPrograms] = {"Unity", "Quiet", "Loud"};
const float kProgramGains[kPrograms] = {0.5f, 0.25f, 1.0f};

#if FAULT == FAULT_SHARED_STATE
double sharedState[kChannels] = {};
#endif

struct Effect {
    AEffect record{};
    float rate = 44100.0f;
    double* work = nullptr;  // FAULT_NEEDS_RESUME and FAULT_DOUBLE_SUSPEND only
#if FAULT == FAULT_EDITOR_LEAKS
    // A plain grey child window in the host's window; its connection is
    // opened on every open and never closed.
    ERect rect{0, 0, 120, 200};
    Display* display = nullptr;
    Window child = 0;
#endif
    std::atomic<float> gain{0.5f};    // parameter 0: gain 2v
    std::atomic<float> smooth{0.0f};  // parameter 1: coefficient 0.5 + 0.49v
    std::atomic<int> program{0};
    double state[kChannels] = {};
};

Effect* of(AEffect* e) { return static_cast<Effect*>(e->object); }

void copyText(void* ptr, const char* text) {
    if (ptr) std::snprintf(static_cast<char*>(ptr), 24, "%s", text);
}

VstIntPtr dispatcher(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    Effect* fx = of(e);
    switch (opcode) {
    case effClose:
#if FAULT != FAULT_DOUBLE_SUSPEND
        delete[] fx->work;
#endif
        delete fx;
        return 1;
    case effSetSampleRate: fx->rate = opt; return 0;
#if FAULT == FAULT_EDITOR_LEAKS
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
#endif
#if FAULT == FAULT_EVENTS_UNCHECKED
    case effProcessEvents: {
        struct Events {
            VstInt32 numEvents;
            VstIntPtr reserved;
            VstInt32* events[2];  // each event starts with its type
        };
        return *static_cast<Events*>(ptr)->events[0];
    }
#endif
    case effMainsChanged:
#if FAULT == FAULT_DOUBLE_SUSPEND
        if (value)
            fx->work = new double[256]();
        else
            delete[] fx->work;
#endif
#if FAULT == FAULT_NEEDS_RESUME
        if (value && !fx->work) fx->work = new double[1 << 16]();
#endif
#if FAULT != FAULT_NO_FLUSH
        if (value) fx->state[0] = fx->state[1] = 0.0;
#endif
        return 0;
    case effSetProgram:
#if FAULT == FAULT_PROGRAM_UNCHECKED
        fx->program = static_cast<int>(value);
#else
        if (value >= 0 && value < kPrograms) {
            fx->program = static_cast<int>(value);
            fx->gain = kProgramGains[value];
        }
#endif
        return 0;
    case effGetProgram: return fx->program;
    case effGetProgramName: {
        const int p = fx->program;
        copyText(ptr, p >= 0 && p < kPrograms ? kProgramNames[p] : "");
        return 0;
    }
    case effGetProgramNameIndexed:
        if (index < 0 || index >= kPrograms) return 0;
#if FAULT == FAULT_LONG_PROGRAM_NAME
        std::snprintf(static_cast<char*>(ptr), 64, "%s, the long-winded version", kProgramNames[index]);
#else
        copyText(ptr, kProgramNames[index]);
#endif
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
#if FAULT == FAULT_LONG_TEXT
        std::snprintf(static_cast<char*>(ptr), 64, "%.2f and a great deal of explanation", fx->gain.load());
#else
        std::snprintf(static_cast<char*>(ptr), 24, "%.2f", index == 0 ? fx->gain.load() : fx->smooth.load());
#endif
        return 0;
    case effGetEffectName: copyText(ptr, "Faulty"); return 1;
#if FAULT == FAULT_LONG_VENDOR
    case effGetVendorString:
        std::snprintf(static_cast<char*>(ptr), 100, "%s", "Tests of a plug-in validator, with a vendor name far too long for it");
        return 1;
#else
    case effGetVendorString: copyText(ptr, "Tests"); return 1;
#endif
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

#if FAULT == FAULT_LOCKS
std::mutex processLock;
#endif

template <typename S>
void process(AEffect* e, S** in, S** out, VstInt32 frames) {
    Effect* fx = of(e);
    double gain = 2.0 * fx->gain;
#if FAULT == FAULT_DOUBLE_DIFFERS
    if (sizeof(S) == 8) gain *= 1.01;
#endif
#if FAULT == FAULT_UNSTABLE_LOW_RATE
    const double a = 2.0 * 3.141592653589793 * 3000.0 / fx->rate;
#else
    const double a = 0.5 + 0.49 * fx->smooth;
#endif
#if FAULT == FAULT_DIVIDES_AT_ONE
    gain *= (1.0 - a) / (1.0 - fx->smooth);
#endif
#if FAULT == FAULT_SHARED_STATE
    double* state = sharedState;
#else
    double* state = fx->state;
#endif
#if FAULT == FAULT_SLEEPS
    std::this_thread::sleep_for(std::chrono::microseconds(1));
#endif
#if FAULT == FAULT_MIXES_BLOCKWISE
    // Sum into output 0 over the whole block, then difference into output 1,
    // reading input 0 again: in place, input 0 is gone by then.
    for (VstInt32 i = 0; i < frames; ++i) out[0][i] = static_cast<S>(0.5 * (in[0][i] + in[1][i]));
    for (VstInt32 i = 0; i < frames; ++i) out[1][i] = static_cast<S>(0.5 * (in[0][i] - in[1][i]));
    return;
#endif
#if FAULT == FAULT_ALLOCATES
    // Kept where the compiler cannot see it, so the pair is not optimised away.
    static S* volatile scratch;
    scratch = new S[frames > 0 ? frames : 1];
    delete[] scratch;
#endif
#if FAULT == FAULT_LOCKS
    std::lock_guard lock(processLock);
#endif
#if FAULT == FAULT_NEGATIVE_FRAMES
    for (VstInt32 i = 0; i != frames; ++i) {
#else
    for (VstInt32 i = 0; i < frames; ++i) {
#endif
        for (int c = 0; c < kChannels; ++c) {
#if FAULT == FAULT_WALKS_POINTERS
            const double x = *in[c]++;
#else
            const double x = in[c][i];
#endif
#if FAULT == FAULT_SUBNORMAL_OUTPUT
            double y = a * state[c] + (1.0 - a) * gain * x;
#else
            // Tiny inputs are silence: no arithmetic on subnormals, no subnormal output.
            double y = a * state[c] + (1.0 - a) * gain * (std::fabs(x) < 1e-30 ? 0.0 : x);
#endif
#if FAULT == FAULT_BLOCK_RAMP
            if (i < 16) y *= (i + 1) / 16.0;
#endif
#if FAULT == FAULT_NEEDS_RESUME
            fx->work[i & 0xFFFF] = y;
#endif
#if FAULT != FAULT_SUBNORMAL_OUTPUT
            if (std::fabs(y) < 1e-30) y = 0.0;
#endif
            state[c] = y;
#if FAULT == FAULT_UNWRITTEN_OUTPUT
            if (c == 1) continue;
#endif
#if FAULT == FAULT_WALKS_POINTERS
            *out[c]++ = static_cast<S>(y);
#else
            out[c][i] = static_cast<S>(y);
#endif
        }
#if FAULT == FAULT_CHANGES_INPUT
        in[0][i] *= S(0.5);
#endif
    }
#if FAULT != FAULT_STICKY_NAN
    for (int c = 0; c < kChannels; ++c)
        if (!std::isfinite(state[c])) state[c] = 0.0;
#endif
}

}  // namespace

#if FAULT == FAULT_EXTRA_EXPORT
EXPORT int faultyHelper() { return 1; }
#endif

EXPORT AEffect* VSTPluginMain(audioMasterCallback host) {
    if (!host || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) return nullptr;
#if FAULT == FAULT_SLOW_CREATE
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
#endif
#if FAULT == FAULT_THREAD_OUTLIVES
    static bool started = false;
    if (!started) {
        started = true;
        std::thread([] {
            for (;;) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }).detach();
    }
#endif
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
    r.flags = effFlagsCanReplacing | effFlagsCanDoubleReplacing;
#if FAULT == FAULT_EDITOR_LEAKS
    r.flags |= effFlagsHasEditor;
#endif
    r.object = fx;
    r.uniqueID = 0x46617479;
    r.version = 1;
    r.processReplacing = process<float>;
    r.processDoubleReplacing = process<double>;
    return &r;
}
