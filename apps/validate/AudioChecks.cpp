// Audio: the buffers hosts hand over (sentinel-filled outputs, inputs that
// must survive, in-place channels, one pointer array for both directions),
// sample rates, block sizes, speaker arrangements, and the two callbacks.
#include <algorithm>
#include <cmath>

#include "Check.h"
#include "Harness.h"
#include "SpeakerArrangement.h"

namespace validate {
namespace {

// The channel counts of the record and whether the double callback exists.
struct Shape {
    int parameters, inputs, outputs;
    bool doubles;
};

Shape shapeOf(const std::string& path) {
    auto plugin = createInstance(path, 44100.0f, 1024, false);
    return {plugin->numParams(), plugin->numInputs(), plugin->numOutputs(),
            plugin->hasFlag(effFlagsCanDoubleReplacing)};
}

std::vector<Precision> precisions(const Shape& shape) {
    if (shape.doubles) return {Precision::Float, Precision::Double};
    return {Precision::Float};
}

const char* precisionName(Precision precision) { return precision == Precision::Float ? "float" : "double"; }

// Renders `input` with a fresh instance in `setting`.
BlockOutcome renderFresh(const CheckContext& context, const Setting& setting, const Planar& input, int outputs,
                         Precision precision, int block = 512, Buffers buffers = Buffers::Separate,
                         float rate = 44100.0f) {
    auto plugin = createInstance(context.pluginPath, rate, std::max(block, 1));
    applySetting(*plugin, setting);
    return render(*plugin, input, outputs, fixedBlocks(block), precision, buffers);
}

// A loudness no sane effect reaches from inputs within ±1 in an ordinary setting.
constexpr double kRunaway = 1000.0;

// Renders noise in the standard settings with both callbacks; the first
// fault `faultOf` finds in an outcome, with where it was found, or empty.
template <typename FaultOf>
std::string firstFault(const CheckContext& context, const Shape& shape, std::size_t& settingsTried, FaultOf faultOf) {
    Random random(context.seed);
    const auto settings = standardSettings(shape.parameters, random, context.byLevel(4, 12, 40));
    settingsTried = settings.size();
    for (const auto& [name, setting] : settings)
        for (Precision precision : precisions(shape)) {
            const Planar input = noise(shape.inputs, 2048, 0.5, random);
            const BlockOutcome out = renderFresh(context, setting, input, shape.outputs, precision);
            if (const std::string fault = faultOf(out); !fault.empty())
                return name + ", " + precisionName(precision) + ": " + fault;
        }
    return {};
}

CheckResult outputsWritten(const CheckContext& context) {
    const Shape shape = shapeOf(context.pluginPath);
    std::size_t settings = 0;
    const std::string fault = firstFault(context, shape, settings, [](const BlockOutcome& out) {
        return !out.outside.empty() ? out.outside : out.unwritten;
    });
    if (!fault.empty()) return fail(fault);
    return pass(format("%zu settings, %zu callbacks: every output sample written, nothing outside", settings,
                       precisions(shape).size()));
}

CheckResult inputsUnchanged(const CheckContext& context) {
    const Shape shape = shapeOf(context.pluginPath);
    std::size_t settings = 0;
    const std::string fault =
        firstFault(context, shape, settings, [](const BlockOutcome& out) { return out.inputChanged; });
    if (!fault.empty()) return fail(fault);
    return pass(format("%zu settings: inputs bit-identical after processing", settings));
}

CheckResult sameWithBuffers(const CheckContext& context, Buffers buffers, const char* what) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    const auto settings = standardSettings(shape.parameters, random, context.byLevel(3, 8, 30));
    for (const auto& [name, setting] : settings)
        for (Precision precision : precisions(shape)) {
            const Planar input = noise(shape.inputs, 4096, 0.5, random);
            const BlockOutcome separate = renderFresh(context, setting, input, shape.outputs, precision);
            const BlockOutcome shared = renderFresh(context, setting, input, shape.outputs, precision, 512, buffers);
            const std::string where = name + ", " + precisionName(precision) + ": ";
            if (!separate.fault.empty()) return fail(where + "separate buffers: " + separate.fault);
            if (!shared.fault.empty()) return fail(where + what + ": " + shared.fault);
            if (auto differs = compareSignals(separate.output, shared.output, 1e-7, 1e-6); !differs.empty())
                return fail(where + what + ": " + differs + " (separate buffers give the second)");
        }
    return pass(format("%zu settings: %s give the same output as separate buffers", settings.size(), what));
}

CheckResult inPlace(const CheckContext& context) {
    return sameWithBuffers(context, Buffers::InPlace, "in-place channels");
}

CheckResult sharedPointerArray(const CheckContext& context) {
    return sameWithBuffers(context, Buffers::SharedArray, "one pointer array for both");
}

CheckResult sampleRates(const CheckContext& context) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    std::vector<float> rates = {8000, 44100, 96000, 768000, 44100.5f};
    if (context.level >= 2)
        rates = {8000,     11025,    16000,     22050,    32000,      44100,     48000,    88200,
                 96000,    176400,   192000,    352800,   384000,     705600,    768000,   8000.25f,
                 22050.5f, 44100.5f, 47999.99f, 48000.7f, 96000.001f, 191999.9f, 767999.5f};
    const auto settings = standardSettings(shape.parameters, random, context.byLevel(1, 2, 6));
    for (float rate : rates)
        for (const auto& [name, setting] : settings) {
            const int frames = std::max(4096, static_cast<int>(rate / 10));
            const Planar input = noise(shape.inputs, frames, 0.5, random);
            const BlockOutcome out =
                renderFresh(context, setting, input, shape.outputs, Precision::Float, 1024, Buffers::Separate, rate);
            const std::string where = format("%g Hz, %s: ", rate, name.c_str());
            if (!out.fault.empty()) return fail(where + out.fault);
            if (auto bad = findNonFinite(out.output, false); !bad.empty()) return fail(where + bad);
            if (peak(out.output) > kRunaway) return fail(where + format("output runs away to %g", peak(out.output)));
        }

    // Rate changes between blocks, with and without the suspend hosts should send.
    auto plugin = createInstance(context.pluginPath, 44100.0f, 512);
    applySetting(*plugin, Setting(shape.parameters, 1.0f));
    for (int i = 0; i < context.byLevel(20, 80, 400); ++i) {
        const float rate = rates[std::uniform_int_distribution<std::size_t>(0, rates.size() - 1)(random)];
        if (i % 2) plugin->suspend();
        plugin->setSampleRate(rate);
        if (i % 2) plugin->resume();
        const Planar input = noise(shape.inputs, 512, 0.5, random);
        const BlockOutcome out = processBlock(*plugin, input, shape.outputs, 512, Precision::Float);
        const std::string where = format("after a change to %g Hz%s: ", rate, i % 2 ? " (suspended)" : "");
        if (!out.fault.empty()) return fail(where + out.fault);
        if (auto bad = findNonFinite(out.output, false); !bad.empty()) return fail(where + bad);
    }
    return pass(format("%zu rates from 8 kHz to 768 kHz, %zu settings; rate changes between blocks", rates.size(),
                       settings.size()));
}

CheckResult blockSizes(const CheckContext& context) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    std::vector<int> sizes = {1, 17, 1024, 2027};
    if (context.level >= 2) sizes = {1, 10, 17, 64, 128, 256, 512, 1024, 2027, 4096, 16384};
    const auto settings = standardSettings(shape.parameters, random, context.byLevel(0, 1, 4));
    const int frames = 16384 * 2 + 999;
    for (const auto& [name, setting] : settings) {
        const Planar input = noise(shape.inputs, frames, 0.5, random);
        const BlockOutcome reference = renderFresh(context, setting, input, shape.outputs, Precision::Float, 512);
        if (!reference.fault.empty()) return fail(name + ", blocks of 512: " + reference.fault);
        for (int size : sizes) {
            const BlockOutcome out = renderFresh(context, setting, input, shape.outputs, Precision::Float, size);
            const std::string where = format("%s, blocks of %d: ", name.c_str(), size);
            if (!out.fault.empty()) return fail(where + out.fault);
            if (auto differs = compareSignals(reference.output, out.output, 1e-7, 1e-6); !differs.empty())
                return fail(where + differs + " (blocks of 512 give the second)");
        }
        // A different size on every call, up to the maximum announced.
        auto plugin = createInstance(context.pluginPath, 44100.0f, 4096);
        applySetting(*plugin, setting);
        std::uniform_int_distribution<int> anySize(1, 4096);
        const BlockOutcome out = render(
            *plugin, input, shape.outputs, [&](int) { return anySize(random); }, Precision::Float);
        if (!out.fault.empty()) return fail(name + ", random sizes: " + out.fault);
        if (auto differs = compareSignals(reference.output, out.output, 1e-7, 1e-6); !differs.empty())
            return fail(name + ", random sizes: " + differs);
    }
    return pass(format("%zu fixed sizes from 1 to %d and random sizes, %zu settings: same output", sizes.size(),
                       sizes.back(), settings.size()));
}

CheckResult noisyChanges(const CheckContext& context) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    const int seconds10 = context.byLevel(5, 30, 150);  // tenths of a second per callback
    for (Precision precision : precisions(shape)) {
        auto plugin = createInstance(context.pluginPath, 44100.0f, 512);
        for (int part = 0; part < seconds10; ++part) {
            // Loud, quiet and nearly-subnormal passages in turn.
            const double amplitudes[] = {1.0, 1e-3, 1e-20, 1e-37, 0.0};
            const double amplitude = amplitudes[part % 5];
            const Planar input = noise(shape.inputs, 4410, amplitude, random);
            std::uniform_int_distribution<int> size(1, 512), index(0, std::max(shape.parameters - 1, 0)), changes(1, 3);
            auto between = [&] {
                for (int k = changes(random); k > 0 && shape.parameters > 0; --k)
                    plugin->setParameter(index(random), randomValue(random));
            };
            const BlockOutcome out = render(
                *plugin, input, shape.outputs, [&](int) { return size(random); }, precision, Buffers::Separate,
                between);
            const std::string where = format("%s, input at %g: ", precisionName(precision), amplitude);
            if (!out.fault.empty()) return fail(where + out.fault);
            if (auto bad = findNonFinite(out.output, true, precision); !bad.empty()) return fail(where + bad);
        }
    }
    return pass(
        format("%.1f s of noise per callback with parameter changes between sub-blocks: "
               "no NaN, infinity or subnormal",
               seconds10 / 10.0));
}

CheckResult floatDoubleAgree(const CheckContext& context) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    if (!shape.doubles) return skip("no double-precision callback");
    const auto settings = standardSettings(shape.parameters, random, context.byLevel(4, 12, 40));
    double worst = 0;
    for (const auto& [name, setting] : settings) {
        const Planar input = noise(shape.inputs, 8192, 0.5, random);
        const BlockOutcome single = renderFresh(context, setting, input, shape.outputs, Precision::Float);
        const BlockOutcome twice = renderFresh(context, setting, input, shape.outputs, Precision::Double);
        if (!single.fault.empty()) return fail(name + ", float: " + single.fault);
        if (!twice.fault.empty()) return fail(name + ", double: " + twice.fault);
        // Float rounding of the double result, with room for a float implementation's own rounding.
        if (auto differs = compareSignals(twice.output, single.output, 1e-7, 1e-5); !differs.empty())
            return fail(name + ": float " + differs + " (double gives the second)");
        const double scale = std::max(peak(twice.output), 1e-30);
        worst = std::max(worst, largestDifference(twice.output, single.output).value / scale);
    }
    return pass(format("%zu settings: largest difference %.2g of the peak", settings.size(), worst));
}

CheckResult speakerArrangements(const CheckContext& context) {
    Random random(context.seed);
    const Shape shape = shapeOf(context.pluginPath);
    struct Offer {
        VstInt32 inputType, inputs, outputType, outputs;
    };
    const Offer offers[] = {
        {kSpeakerArr40Music, 4, kSpeakerArrStereo, 2},  {kSpeakerArr31Cine, 4, kSpeakerArr51, 6},
        {kSpeakerArr30Cine, 3, kSpeakerArr51, 6},       {kSpeakerArr40Cine, 4, kSpeakerArr40Cine, 4},
        {kSpeakerArr40Music, 4, kSpeakerArr40Music, 4}, {kSpeakerArr30Music, 3, kSpeakerArr50, 5},
        {kSpeakerArr31Cine, 4, kSpeakerArr50, 5},       {kSpeakerArrMono, 1, kSpeakerArrStereo, 2},
    };
    int accepted = 0, tried = 0;
    for (const Offer& offer : offers) {
        if (offer.inputs > shape.inputs || offer.outputs > shape.outputs) continue;
        ++tried;
        auto plugin = createInstance(context.pluginPath, 48000.0f, 512, false);
        vsthost::SpeakerArrangement input(offer.inputType, offer.inputs), output(offer.outputType, offer.outputs);
        const bool yes = plugin->setSpeakerArrangement(input, output);
        accepted += yes;
        VstSpeakerArrangement* ownInput = nullptr;
        VstSpeakerArrangement* ownOutput = nullptr;
        plugin->getSpeakerArrangement(ownInput, ownOutput);
        plugin->resume();
        applySetting(*plugin, randomSetting(shape.parameters, random));
        // Hosts pass the record's channel counts; the declared outputs must be written.
        const std::string where = format("%d in (type %d) to %d out (type %d), %s: ", offer.inputs, offer.inputType,
                                         offer.outputs, offer.outputType, yes ? "accepted" : "refused");
        for (int block = 0; block < 4; ++block) {
            const Planar signal = noise(shape.inputs, 512, 0.5, random);
            BlockOutcome out = processBlock(*plugin, signal, shape.outputs, 512, Precision::Float);
            if (!out.outside.empty()) return fail(where + out.outside);
            if (!out.inputChanged.empty()) return fail(where + out.inputChanged);
            out.output.resize(offer.outputs);  // the sentinel is a NaN: unwritten shows up here
            if (auto bad = findNonFinite(out.output, false); !bad.empty()) return fail(where + bad);
        }
    }
    return pass(format("%d arrangements offered, %d accepted; declared outputs written", tried, accepted));
}

}  // namespace

void addAudioChecks(std::vector<Check>& checks) {
    checks.push_back({"outputs-written", 1, "sentinel-filled outputs are all written", outputsWritten});
    checks.push_back({"inputs-unchanged", 1, "inputs are left as they were", inputsUnchanged});
    checks.push_back({"in-place", 1, "input and output channels in the same memory", inPlace});
    checks.push_back({"shared-pointer-array", 1, "one pointer array for inputs and outputs", sharedPointerArray});
    checks.push_back({"sample-rates", 1, "8 kHz to 768 kHz, fractional rates, changes between blocks", sampleRates});
    checks.push_back({"block-sizes", 1, "1 to 16384 frames and a random size per call", blockSizes});
    checks.push_back(
        {"noise-random-changes", 1, "no NaN, infinity or subnormal under parameter changes", noisyChanges});
    checks.push_back({"float-double", 1, "float and double callbacks agree to float rounding", floatDoubleAgree});
    checks.push_back(
        {"speaker-arrangements", 2, "offered arrangements, declared outputs written", speakerArrangements});
}

}  // namespace validate
