// Lifecycle: what a host does to an instance besides feeding it audio —
// creating and closing it, opening it twice, processing before resume or
// with no frames at all, and suspend/resume as the panic flush.
#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <cstring>
#include <thread>

#include "Check.h"
#include "ExportedSymbols.h"
#include "Harness.h"

namespace validate {
namespace {

using Clock = std::chrono::steady_clock;
double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

CheckResult load(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath);
    if (plugin->numOutputs() < 1) return fail(format("%d outputs", plugin->numOutputs()));
    if (plugin->numInputs() < 0 || plugin->numParams() < 0 || plugin->numPrograms() < 0)
        return fail("negative counts in the record");
    if (!plugin->hasFlag(effFlagsCanReplacing) || !plugin->effect()->processReplacing)
        return fail("no processReplacing, which every VST 2.4 host calls");
    if (plugin->hasFlag(effFlagsCanDoubleReplacing) && !plugin->effect()->processDoubleReplacing)
        return fail("double processing flagged but the entry is null");
    const struct {
        VstInt32 opcode;
        std::size_t limit;
        const char* what;
    } texts[] = {{effGetEffectName, kVstMaxEffectNameLen, "effect name"},
                 {effGetVendorString, kVstMaxVendorStrLen, "vendor"},
                 {effGetProductString, kVstMaxProductStrLen, "product"}};
    std::string name;
    for (const auto& t : texts) {
        const TextAnswer answer = askText(*plugin, t.opcode, 0, 0, t.limit);
        if (!answer.fault.empty()) return fail(std::string(t.what) + ": " + answer.fault);
        if (t.opcode == effGetEffectName) name = answer.text;
    }
    return pass(format("'%s', %d in, %d out, %d parameters, %d programs", name.c_str(), plugin->numInputs(),
                       plugin->numOutputs(), plugin->numParams(), plugin->numPrograms()));
}

CheckResult exportedSymbolsOnlyEntry(const CheckContext& context) {
    std::vector<std::string> extra;
    for (const auto& name : exportedSymbols(context.pluginPath))
        if (name != "VSTPluginMain") extra.push_back(name);
    if (extra.empty()) return pass("VSTPluginMain only");
    std::string list;
    for (std::size_t i = 0; i < extra.size() && i < 3; ++i) list += (i ? ", " : "") + extra[i];
    return fail(format("%zu more symbols exported, e.g. %s", extra.size(), list.c_str()));
}

CheckResult createClose(const CheckContext& context) {
    const int count = context.byLevel(10, 100, 1000);
    constexpr double kLimit = 100.0;  // milliseconds per instance
    void* held = nullptr;             // after the first instance the library stays loaded
    double slowest = 0, first = 0;
    for (int i = 0; i < count; ++i) {
        const auto start = Clock::now();
        auto plugin = createInstance(context.pluginPath, 44100.0f, 1024, false);
        const double took = millisecondsSince(start);
        if (i == 0) {
            first = took;
            held = dlopen(context.pluginPath.c_str(), RTLD_NOW | RTLD_LOCAL);
        } else {
            slowest = std::max(slowest, took);
        }
        if (took > kLimit)
            return fail(format("instance %d took %.1f ms to create (limit %.0f ms)", i + 1, took, kLimit));
        const VstIntPtr answer = plugin->close();
        if (answer != 1 && i == 0) return fail(format("effClose answered %ld", static_cast<long>(answer)));
    }
    if (held) dlclose(held);
    return pass(
        format("%d instances, slowest %.2f ms (the first, loading the library, %.2f ms)", count, slowest, first));
}

CheckResult libraryReload(const CheckContext& context) {
    const int count = context.byLevel(3, 10, 50);
    Random random(context.seed);
    int stayedLoaded = 0;
    for (int i = 0; i < count; ++i) {
        auto plugin = createInstance(context.pluginPath);
        const Planar input = noise(plugin->numInputs(), 256, 0.5, random);
        const BlockOutcome block = processBlock(*plugin, input, plugin->numOutputs(), 256, Precision::Float);
        if (!block.fault.empty()) return fail(format("load %d: ", i + 1) + block.fault);
        plugin.reset();  // closes the instance and unloads the library
        if (void* still = dlopen(context.pluginPath.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
            ++stayedLoaded;
            dlclose(still);
        }
        // Some time without the library: anything of it still running (a
        // thread, a timer) now runs into unmapped code.
        std::this_thread::sleep_for(std::chrono::milliseconds(i + 1 == count ? 100 : 10));
    }
    if (stayedLoaded) return pass(format("%d loads with processing; the library cannot be unloaded", count));
    return pass(format("%d loads and unloads with processing, the process carrying on without the library", count));
}

CheckResult openTwice(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath, 48000.0f, 512, false);
    plugin->open();
    plugin->resume();
    plugin->resume();
    plugin->suspend();
    plugin->suspend();
    plugin->resume();
    for (Precision precision : {Precision::Float, Precision::Double}) {
        if (precision == Precision::Double && !plugin->hasFlag(effFlagsCanDoubleReplacing)) continue;
        const Planar input = noise(plugin->numInputs(), 512, 0.5, random);
        const BlockOutcome block = processBlock(*plugin, input, plugin->numOutputs(), 512, precision);
        if (!block.fault.empty()) return fail(block.fault);
        if (auto bad = findNonFinite(block.output, false); !bad.empty()) return fail(bad);
    }
    return pass("effOpen twice, resume twice, suspend twice: processes normally");
}

CheckResult processBeforeResume(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath, 44100.0f, 256, false);
    int written = 0;
    for (Precision precision : {Precision::Float, Precision::Double}) {
        if (precision == Precision::Double && !plugin->hasFlag(effFlagsCanDoubleReplacing)) continue;
        const Planar input = noise(plugin->numInputs(), 256, 0.5, random);
        const BlockOutcome block = processBlock(*plugin, input, plugin->numOutputs(), 256, precision);
        // Before resume a plug-in may leave its outputs alone; anything else is a fault.
        if (!block.outside.empty()) return fail(block.outside);
        if (!block.inputChanged.empty()) return fail(block.inputChanged);
        if (!block.unwritten.empty()) continue;
        ++written;
        if (auto bad = findNonFinite(block.output, false); !bad.empty()) return fail(bad);
    }
    return pass(written ? "processes before resume, finite output" : "no crash; outputs left alone");
}

template <typename S>
std::string nothingFrames(vsthost::Plugin& plugin, VstInt32 frames) {
    const int inputs = plugin.numInputs(), outputs = plugin.numOutputs();
    std::vector<std::vector<S>> in(inputs, std::vector<S>(64, S(0.25))), out(outputs, std::vector<S>(64, S(7)));
    std::vector<S*> inPointers, outPointers;
    for (auto& c : in) inPointers.push_back(c.data());
    for (auto& c : out) outPointers.push_back(c.data());
    const std::vector<S*> inBefore = inPointers, outBefore = outPointers;
    if constexpr (sizeof(S) == 4)
        plugin.processFloatRaw(inPointers.data(), outPointers.data(), frames);
    else
        plugin.processDoubleRaw(inPointers.data(), outPointers.data(), frames);
    const char* type = sizeof(S) == 4 ? "float" : "double";
    if (inPointers != inBefore || outPointers != outBefore)
        return format("%s, %d frames: the channel pointers moved", type, frames);
    for (const auto& c : in)
        for (S v : c)
            if (v != S(0.25)) return format("%s, %d frames: an input changed", type, frames);
    for (const auto& c : out)
        for (S v : c)
            if (v != S(7)) return format("%s, %d frames: an output was written", type, frames);
    return {};
}

CheckResult zeroAndNegativeFrames(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath);
    for (VstInt32 frames : {0, -1, -64, INT_MIN}) {
        if (auto fault = nothingFrames<float>(*plugin, frames); !fault.empty()) return fail(fault);
        if (plugin->hasFlag(effFlagsCanDoubleReplacing))
            if (auto fault = nothingFrames<double>(*plugin, frames); !fault.empty()) return fail(fault);
    }
    return pass("0, -1, -64 and INT_MIN frames leave buffers and pointers alone");
}

CheckResult suspendFlush(const CheckContext& context) {
    Random random(context.seed);
    auto probe = createInstance(context.pluginPath);
    const int parameters = probe->numParams(), inputs = probe->numInputs(), outputs = probe->numOutputs();
    probe.reset();
    const auto settings = standardSettings(parameters, random, context.byLevel(2, 6, 20));
    for (const auto& [name, setting] : settings) {
        const Planar loud = noise(inputs, 8192, 0.9, random);
        const Planar test = noise(inputs, 2048, 0.5, random);

        auto used = createInstance(context.pluginPath);
        applySetting(*used, setting);
        BlockOutcome before = render(*used, loud, outputs, fixedBlocks(512), Precision::Float);
        if (!before.fault.empty()) return fail(name + ": " + before.fault);
        used->suspend();
        used->resume();
        const BlockOutcome after = render(*used, test, outputs, fixedBlocks(512), Precision::Float);

        auto fresh = createInstance(context.pluginPath);
        applySetting(*fresh, setting);
        const BlockOutcome reference = render(*fresh, test, outputs, fixedBlocks(512), Precision::Float);
        if (!after.fault.empty() || !reference.fault.empty())
            return fail(name + ": " + (after.fault.empty() ? reference.fault : after.fault));
        if (auto differs = compareSignals(reference.output, after.output, 1e-7, 1e-6); !differs.empty())
            return fail(name + ": after suspend/resume " + differs + "; a fresh instance gives the second value");
    }
    return pass(format("%zu settings: after suspend/resume as a fresh instance", settings.size()));
}

CheckResult instancesIndependent(const CheckContext& context) {
    Random random(context.seed);
    auto reference = createInstance(context.pluginPath);
    const int inputs = reference->numInputs(), outputs = reference->numOutputs();
    const int parameters = reference->numParams();
    const Setting setting = randomSetting(parameters, random);
    const Planar input = noise(inputs, 8192, 0.5, random);
    applySetting(*reference, setting);
    const BlockOutcome expected = render(*reference, input, outputs, fixedBlocks(256), Precision::Float);
    reference.reset();

    auto watched = createInstance(context.pluginPath);
    applySetting(*watched, setting);
    std::vector<std::unique_ptr<vsthost::Plugin>> others;
    for (int i = 0; i < 3; ++i) others.push_back(createInstance(context.pluginPath, 96000.0f, 256));
    Planar got;
    for (int at = 0; at < 8192; at += 256) {
        for (auto& other : others) {
            for (int k = 0; k < parameters; ++k) other->setParameter(k, randomValue(random));
            const Planar loud = noise(inputs, 256, 1.0, random);
            processBlock(*other, loud, outputs, 256, Precision::Float);
            if (at == 4096) {
                other->suspend();
                other->resume();
            }
        }
        const BlockOutcome block = processBlock(*watched, slice(input, at, 256), outputs, 256, Precision::Float);
        if (!block.fault.empty()) return fail(block.fault);
        append(got, block.output);
    }
    if (auto differs = compareSignals(expected.output, got, 1e-9, 0); !differs.empty())
        return fail("with three other instances busy, " + differs);
    return pass("an instance's output is unaffected by three others being changed and processed");
}

}  // namespace

void addLifecycleChecks(std::vector<Check>& checks) {
    checks.push_back({"load", 1, "the entry gives a usable record; identity texts fit", load});
    checks.push_back({"exported-symbols", 1, "only VSTPluginMain exported", exportedSymbolsOnlyEntry});
    checks.push_back({"create-close", 1, "create and close many instances, each within 100 ms", createClose});
    checks.push_back({"open-twice", 1, "effOpen, resume and suspend twice in a row", openTwice});
    checks.push_back({"process-before-resume", 1, "processing before any resume", processBeforeResume});
    checks.push_back({"zero-negative-frames", 1, "0 and negative frame counts", zeroAndNegativeFrames});
    checks.push_back({"suspend-flush", 1, "suspend/resume clears all state (panic flush)", suspendFlush});
    checks.push_back({"library-reload", 2, "load, process and unload the library repeatedly", libraryReload});
    checks.push_back({"instances-independent", 2, "no state shared between instances", instancesIndependent});
}

}  // namespace validate
