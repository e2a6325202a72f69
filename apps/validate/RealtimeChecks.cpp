// Real-time safety: the audio callbacks must not allocate, free, lock or
// sleep. The counting hooks see every such call the processing thread makes
// while it is inside the plug-in's process entry, and nothing else.
#include <cstdlib>

#include "Check.h"
#include "Harness.h"
#include "RealtimeHooks.h"

namespace validate {
namespace {

std::string describe(const realtime::Counts& c) {
    std::string text;
    auto add = [&](long n, const char* what) {
        if (n) text += (text.empty() ? "" : ", ") + format("%s %ld", what, n);
    };
    add(c.malloc, "malloc");
    add(c.free, "free");
    add(c.newCalls, "new");
    add(c.deleteCalls, "delete");
    add(c.lock, "pthread_mutex_lock");
    add(c.sleep, "sleep");
    return text;
}

// Buffers made once, outside the counted calls.
template <typename S>
struct Buffers {
    std::vector<std::vector<S>> in, out;
    std::vector<S*> inPointers, outPointers;
    Buffers(int inputs, int outputs, int frames, Random& random)
        : in(inputs, std::vector<S>(frames)), out(outputs, std::vector<S>(frames)) {
        std::uniform_real_distribution<double> uniform(-0.5, 0.5);
        for (auto& c : in)
            for (S& v : c) v = static_cast<S>(uniform(random));
        inPointers.resize(inputs);
        outPointers.resize(outputs);
    }
    void point() {
        for (std::size_t c = 0; c < in.size(); ++c) inPointers[c] = in[c].data();
        for (std::size_t c = 0; c < out.size(); ++c) outPointers[c] = out[c].data();
    }
};

CheckResult realtimeSafety(const CheckContext& context) {
    if (!realtime::available()) return skip("counting hooks not available in this build");
    // The hooks must see what a plug-in would call; prove it on ourselves.
    {
        void* (*volatile allocate)(std::size_t) = &std::malloc;
        realtime::start();
        void* p = allocate(16);
        const realtime::Counts seen = realtime::stop();
        std::free(p);
        if (seen.malloc != 1) return skip("counting hooks not reached");
    }

    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath, 44100.0f, 4096);
    const int inputs = plugin->numInputs(), outputs = plugin->numOutputs(), parameters = plugin->numParams();
    const bool doubles = plugin->hasFlag(effFlagsCanDoubleReplacing);
    Buffers<float> floats(inputs, outputs, 4096, random);
    Buffers<double> twice(inputs, outputs, 4096, random);
    std::uniform_int_distribution<int> size(1, 4096), index(0, std::max(parameters - 1, 0)), dice(0, 3);

    const int calls = context.byLevel(500, 4000, 40000);
    int offending = 0;
    realtime::Counts total;
    std::string first;
    for (int i = 0; i < calls; ++i) {
        // Parameter, program and rate changes happen outside the counted calls.
        if (dice(random) == 0 && parameters > 0) plugin->setParameter(index(random), randomValue(random));
        if (i % 500 == 250) {
            plugin->suspend();
            plugin->resume();
        }
        const int frames = i % 3 == 0 ? size(random) : 512;
        const bool useDouble = doubles && i % 2 == 1;
        floats.point();
        twice.point();
        realtime::start();
        if (useDouble)
            plugin->processDoubleRaw(twice.inPointers.data(), twice.outPointers.data(), frames);
        else
            plugin->processFloatRaw(floats.inPointers.data(), floats.outPointers.data(), frames);
        const realtime::Counts c = realtime::stop();
        if (c.total()) {
            ++offending;
            if (first.empty())
                first =
                    format("call %d (%s, %d frames): ", i + 1, useDouble ? "double" : "float", frames) + describe(c);
            total.malloc += c.malloc;
            total.free += c.free;
            total.newCalls += c.newCalls;
            total.deleteCalls += c.deleteCalls;
            total.lock += c.lock;
            total.sleep += c.sleep;
        }
    }
    if (offending) return fail(format("%d of %d calls: ", offending, calls) + describe(total) + "; first " + first);
    return pass(format("%d process calls: no allocation, free, lock or sleep", calls));
}

}  // namespace

void addRealtimeChecks(std::vector<Check>& checks) {
    checks.push_back(
        {"realtime-safety", 1, "no allocation, free, lock or sleep in the audio callbacks", realtimeSafety});
}

}  // namespace validate
