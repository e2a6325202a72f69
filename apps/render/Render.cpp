#include "Render.h"
#include "Console.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include <cstdlib>

#include "AudioBuffer.h"
#include "HeadResponses.h"
#include "DemoScene.h"
#include "LevelMeter.h"
#include "ParameterValues.h"
#include "Plugin.h"
#include "PresetFile.h"
#include "Progress.h"
#include "SorvaneProtocol.h"
#include "SoundFiles.h"
#include "SpeakerLayouts.h"

namespace {

using sorvane::kChannelOrderWords;
using sorvane::kHeadphonesOutput;
using sorvane::kOutputWords;
using vsthost::Plugin;

// Our own plug-in is recognised by its layout and channel-order parameters.
const char* const kLayoutName = sorvane::kParameters[kDecodeMode].name;
const char* const kOrderName = sorvane::kParameters[kChannelOrder].name;
const char* const kInputName = sorvane::kParameters[kInput].name;
const char* const kOutputName = sorvane::kParameters[kOutput].name;

// The word of the plug-in's Input setting for an --input value; null for none.
const char* inputWord(const std::string& option) {
    constexpr const char* kOptions[] = {"b-format", "ambix", "n3d"};
    for (int i = 0; i < sorvane::kInputFormats; ++i)
        if (option == kOptions[i]) return sorvane::kInputWords[i];
    return nullptr;
}

// One parameter's automation: breakpoints at frames, normalised values
// between which it moves in a straight line, held before the first and
// after the last.
struct Automation {
    int index = -1;
    std::vector<std::pair<long, float>> points;
    float at(long frame) const {
        if (frame <= points.front().first) return points.front().second;
        for (std::size_t i = 1; i < points.size(); ++i)
            if (frame < points[i].first) {
                const auto [f0, v0] = points[i - 1];
                const auto [f1, v1] = points[i];
                return v0 + (v1 - v0) * static_cast<float>(double(frame - f0) / double(f1 - f0));
            }
        return points.back().second;
    }
};

// NAME=TIME:VALUE,TIME:VALUE,... with times in seconds, increasing, and
// values as --set takes them.
bool parseAutomation(Plugin& plugin, Plugin& probe, const std::string& text, int rate, Automation& automation,
                     std::string& error) {
    const auto eq = text.find('=');
    if (eq == std::string::npos) {
        error = "--automate needs NAME=TIME:VALUE,..., got '" + text + "'";
        return false;
    }
    const std::string name = text.substr(0, eq);
    automation.index = findParameter(plugin, name);
    if (automation.index < 0) {
        error = "--automate: unknown parameter '" + name + "'; the parameters are: " + parameterNames(plugin);
        return false;
    }
    std::size_t from = eq + 1;
    while (from <= text.size()) {
        const std::size_t comma = std::min(text.find(',', from), text.size());
        const std::string point = text.substr(from, comma - from);
        const auto colon = point.find(':');
        char* end = nullptr;
        const double seconds = colon == std::string::npos ? NAN : std::strtod(point.c_str(), &end);
        if (colon == std::string::npos || end != point.c_str() + colon || !(seconds >= 0) || !std::isfinite(seconds)) {
            error = "--automate " + name + ": '" + point + "' is not TIME:VALUE with a time in seconds";
            return false;
        }
        const long frame = std::lround(seconds * rate);
        if (!automation.points.empty() && frame <= automation.points.back().first) {
            error = "--automate " + name + ": the times must increase (" + point + ")";
            return false;
        }
        float value = 0;
        if (!resolveParameterValue(probe, automation.index, point.substr(colon + 1), value, error)) {
            error = "--automate " + name + ": " + error;
            return false;
        }
        automation.points.push_back({frame, value});
        from = comma + 1;
    }
    return true;
}

// Channels written for another plug-in: by default as many as a 7.1 file holds.
constexpr int kDefaultForeignOutputs = 8;
constexpr int kMaxForeignOutputs = 64;

int fail(const std::string& message) { return console::fail("render", message); }

// Where B-format frames come from: a file or the demo scene.
class Source {
public:
    virtual ~Source() = default;
    virtual int sampleRate() const = 0;
    virtual int channels() const = 0;
    virtual long frames() const = 0;
    virtual long read(float* interleaved, long frames) = 0;
};

class FileSource : public Source {
public:
    SoundFileReader reader;
    int sampleRate() const override { return reader.sampleRate(); }
    int channels() const override { return reader.channels(); }
    long frames() const override { return reader.frames(); }
    long read(float* out, long n) override { return reader.read(out, n); }
};

class DemoSource : public Source {
public:
    DemoScene scene;
    int sampleRate() const override { return scene.sampleRate(); }
    int channels() const override { return 4; }
    long frames() const override { return scene.frames(); }
    long read(float* out, long n) override { return scene.read(out, n); }
};

bool samePath(const std::string& a, const std::string& b) {
    std::error_code ec;
    if (std::filesystem::exists(a, ec) && std::filesystem::exists(b, ec)) return std::filesystem::equivalent(a, b, ec);
    return std::filesystem::weakly_canonical(a, ec) == std::filesystem::weakly_canonical(b, ec);
}

// Sets one parameter given in display units or normalised, by name.
bool applyByName(Plugin& plugin, Plugin& probe, const std::string& name, const std::string& value, std::string& error) {
    ParameterSetting setting;
    if (!parseSetting(plugin, probe, name + "=" + value, setting, error)) return false;
    plugin.setParameter(setting.index, setting.value);
    return true;
}

std::string decibels(double dB) {
    if (!std::isfinite(dB)) return "-inf";
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", dB);
    return text;
}

void printLevels(const LevelMeter& meter, const std::vector<const char*>& names) {
    std::printf("\n%-8s %10s %10s\n", "speaker", "peak dBFS", "RMS dBFS");
    for (int c = 0; c < meter.channels(); ++c)
        std::printf("%-8s %10s %10s\n", names[c], decibels(meter.peakDb(c)).c_str(), decibels(meter.rmsDb(c)).c_str());
}

// For the demo scene: where each source landed, as RMS per speaker.
void printSegments(const DemoScene& scene, const std::vector<LevelMeter>& meters,
                   const std::vector<const char*>& names) {
    std::printf("\nDemo scene, RMS dBFS per speaker:\n%-14s", "source");
    for (const char* n : names) std::printf(" %7s", n);
    std::printf("\n");
    for (std::size_t s = 0; s < meters.size(); ++s) {
        std::printf("%-14s", scene.segments()[s].name.c_str());
        for (int c = 0; c < meters[s].channels(); ++c) std::printf(" %7s", decibels(meters[s].rmsDb(c)).c_str());
        std::printf("\n");
    }
}

}  // namespace

int runRender(const RenderOptions& options) {
    if (options.files.empty() || options.files.size() > 2)
        return fail("give an output file, optionally after an input file");
    const bool demo = options.files.size() == 1;
    const std::string outPath = options.files.back();
    if (options.block < 1 || options.block > 1 << 20) return fail("--block must be between 1 and 1048576");
    if (options.precision != "float" && options.precision != "double")
        return fail("--precision must be float or double");
    if (options.bits != 0 && options.bits != 16 && options.bits != 24 && options.bits != 32)
        return fail("--bits must be 16, 24 or 32");
    if (!majorFormatFor(outPath))
        return fail("unknown output format for " + outPath + " (use .wav, .w64, .aiff, .flac, .caf or .rf64)");

    // The source.
    std::unique_ptr<Source> source;
    std::string error;
    if (demo) {
        if (!options.input.empty()) return fail("--input applies to an input file, not the demo scene");
        source = std::make_unique<DemoSource>();
    } else {
        if (samePath(options.files[0], outPath)) return fail("the output file is the input file: " + outPath);
        auto file = std::make_unique<FileSource>();
        if (!file->reader.open(options.files[0], error)) return fail(error);
        source = std::move(file);
    }
    const int inChannels = source->channels();
    if (inChannels != 3 && inChannels != 4)
        return fail("the input has " + std::to_string(inChannels) +
                    " channels; B-format needs 3 (W, X, Y) or 4 (W, X, Y, Z)");
    if (source->sampleRate() <= 0) return fail("the input has no usable sample rate");

    // A file of head responses goes to the plug-in by the variable it reads;
    // one it could not use is an error here rather than a quiet fallback.
    if (!options.sofa.empty()) {
        const auto responses = sorvane::loadHeadResponses(source->sampleRate(), options.sofa);
        if (!responses->problem.empty()) return fail(responses->problem);
        setenv("SORVANE_SOFA", options.sofa.c_str(), 1);
    }

    // The plug-in, and a scratch instance for reading values in display units.
    std::unique_ptr<Plugin> plugin = Plugin::load(options.plugin, error);
    if (!plugin) return fail(error);
    std::unique_ptr<Plugin> probe = Plugin::load(options.plugin, error);
    if (!probe) return fail(error);
    plugin->open();
    probe->open();
    if (plugin->numInputs() < 3)
        return fail("the plug-in has " + std::to_string(plugin->numInputs()) + " inputs; B-format needs at least 3");

    // Settings in a fixed order: preset, layout, program, then each --set as given.
    if (!options.preset.empty()) {
        vsthost::PresetFile preset;
        if (!vsthost::readPresetFile(options.preset, preset, error) || !vsthost::applyPreset(*plugin, preset, error))
            return fail(error);
    }
    const bool ours = findParameter(*plugin, kLayoutName) >= 0 && findParameter(*plugin, kOrderName) >= 0;
    const SpeakerLayout* layout = nullptr;
    if (!options.layout.empty()) {
        layout = findSpeakerLayout(options.layout);
        if (!layout) return fail("unknown layout '" + options.layout + "'; use stereo, 2.1, quad, 5.0 or 5.1");
        if (!ours) return fail(std::string("--layout needs a plug-in with a \"") + kLayoutName + "\" parameter");
        plugin->setParameter(findParameter(*plugin, kLayoutName), layout->layoutValue);
    }
    if (!options.program.empty() && !applyProgram(*plugin, options.program, error)) return fail(error);
    // Our channel order defaults to natural unless a preset brought its own;
    // a plug-in without the parameter has none to set unless one is asked for.
    if ((ours && options.preset.empty()) || !options.channelOrder.empty()) {
        const std::string order = options.channelOrder.empty() ? "natural" : options.channelOrder;
        if (order != "natural" && order != "5.1") return fail("--channel-order must be natural or 5.1");
        if (!ours) return fail(std::string("--channel-order needs a plug-in with a \"") + kOrderName + "\" parameter");
        if (!applyByName(*plugin, *probe, kOrderName,
                         order == "natural" ? kChannelOrderWords[0] : kChannelOrderWords[1], error))
            return fail(error);
    }
    if (!options.input.empty()) {
        const auto dialect = inputWord(options.input);
        if (!dialect) return fail("--input must be b-format, ambix or n3d");
        if (findParameter(*plugin, kInputName) < 0)
            return fail(std::string("--input needs a plug-in with an \"") + kInputName + "\" parameter");
        if (!applyByName(*plugin, *probe, kInputName, dialect, error)) return fail(error);
    }
    if (options.outputs != 0 && ours)
        return fail("--outputs is for other plug-ins; ours writes the layout's channels (see --channel-order)");
    if (options.outputs < 0 || options.outputs > plugin->numOutputs())
        return fail("--outputs must be between 1 and the plug-in's " + std::to_string(plugin->numOutputs()) +
                    " outputs");
    std::vector<Automation> automations;
    for (const std::string& text : options.automations) {
        Automation automation;
        if (!parseAutomation(*plugin, *probe, text, source->sampleRate(), automation, error)) return fail(error);
        automations.push_back(automation);
    }
    for (const std::string& s : options.settings) {
        ParameterSetting setting;
        if (!parseSetting(*plugin, *probe, s, setting, error)) return fail(error);
        plugin->setParameter(setting.index, setting.value);
    }

    // What comes out: our layouts by name and order, other plug-ins all outputs.
    OutputChannels out;
    if (ours) {
        const std::string shown = plugin->parameterDisplay(findParameter(*plugin, kLayoutName));
        layout = findSpeakerLayout(shown);
        if (!layout) return fail("the plug-in shows an unknown layout \"" + shown + "\"");
        const bool fiveOne = plugin->parameterDisplay(findParameter(*plugin, kOrderName)) == kChannelOrderWords[1];
        const int output = findParameter(*plugin, kOutputName);
        const bool ears = output >= 0 && plugin->parameterDisplay(output) == kOutputWords[kHeadphonesOutput];
        out = ears ? earChannels() : outputChannels(*layout, fiveOne);
    } else {
        // Channels named by number; the first eight unless --outputs says.
        static const std::vector<std::string> numbers = [] {
            std::vector<std::string> n;
            for (int c = 1; c <= kMaxForeignOutputs; ++c) n.push_back(std::to_string(c));
            return n;
        }();
        const int n = options.outputs ? options.outputs : std::min(plugin->numOutputs(), kDefaultForeignOutputs);
        for (int c = 0; c < n && c < kMaxForeignOutputs; ++c) out.names.push_back(numbers[c].c_str());
    }
    const int outChannels = static_cast<int>(out.names.size());
    const int hostOutputs = std::max(plugin->numOutputs(), outChannels);
    if (outChannels < 1) return fail("the plug-in has no outputs");
    if (!options.quiet) printSettings(*plugin);

    OutputFormat format;
    format.channels = outChannels;
    format.sampleRate = source->sampleRate();
    format.bits = options.bits;
    format.speakerBits = out.speakerBits;
    SoundFileWriter writer;
    if (!writer.open(outPath, format, error)) return fail(error);

    // Another plug-in is offered the channels it is asked for, as a host
    // would; ours follows its layout and channel order instead.
    // Ours hears how many channels the file has: with three, the dialect's
    // horizontal subset (W, X, Y; or W, Y, X in the ACN orders).
    if (ours && inChannels == 3) offerArrangement(*plugin, 3, plugin->numOutputs());
    if (!ours && options.outputs > 0 && !offerArrangement(*plugin, 4, options.outputs) && !options.quiet)
        std::fprintf(stderr,
                     "sorvane render: the plug-in answers no to 4 inputs and %d outputs (rendering all the same)\n",
                     options.outputs);
    plugin->setSampleRate(static_cast<float>(source->sampleRate()));
    plugin->setBlockSize(options.block);
    plugin->resume();

    const int block = options.block;
    const int hostInputs = std::max(plugin->numInputs(), 4);
    std::vector<float> interleavedIn(static_cast<std::size_t>(block) * inChannels);
    std::vector<float> interleavedOut(static_cast<std::size_t>(block) * outChannels);
    vsthost::AudioBuffer<float> floatIn(hostInputs, block), floatOut(hostOutputs, block);
    vsthost::AudioBuffer<double> doubleIn(hostInputs, block), doubleOut(hostOutputs, block);
    const bool useDouble = options.precision == "double";

    LevelMeter meter(outChannels);
    const DemoScene* scene = demo ? &static_cast<DemoSource*>(source.get())->scene : nullptr;
    std::vector<LevelMeter> segmentMeters;
    if (scene) segmentMeters.assign(scene->segments().size(), LevelMeter(outChannels));
    Progress progress(source->frames(), !options.quiet);
    long done = 0;

    for (;;) {
        // Automation lands at the frames it names: a block ends at the next breakpoint.
        long wanted = block;
        for (const Automation& a : automations) {
            plugin->setParameter(a.index, a.at(done));
            for (const auto& point : a.points)
                if (point.first > done) {
                    wanted = std::min(wanted, point.first - done);
                    break;
                }
        }
        const long n = source->read(interleavedIn.data(), wanted);
        if (n <= 0) break;
        for (long f = 0; f < n; ++f) {
            const float* in = &interleavedIn[f * inChannels];
            // The channels as they are: the plug-in reads them in the dialect it is set to.
            const float frame[4] = {in[0], in[1], in[2], inChannels == 4 ? in[3] : 0.0f};
            for (int c = 0; c < 4; ++c) {
                floatIn[c][f] = frame[c];
                doubleIn[c][f] = frame[c];
            }
        }
        if (useDouble) {
            auto ins = doubleIn.pointers(), outs = doubleOut.pointers();
            plugin->processDoubleRaw(ins.data(), outs.data(), static_cast<VstInt32>(n));
            for (long f = 0; f < n; ++f)
                for (int c = 0; c < outChannels; ++c)
                    interleavedOut[f * outChannels + c] = static_cast<float>(doubleOut[c][f]);
        } else {
            auto ins = floatIn.pointers(), outs = floatOut.pointers();
            plugin->processFloatRaw(ins.data(), outs.data(), static_cast<VstInt32>(n));
            for (long f = 0; f < n; ++f)
                for (int c = 0; c < outChannels; ++c) interleavedOut[f * outChannels + c] = floatOut[c][f];
        }
        meter.add(interleavedOut.data(), n);
        if (scene) {
            for (long f = 0; f < n; ++f) {
                const long at = done + f;
                for (std::size_t s = 0; s < segmentMeters.size(); ++s) {
                    const auto& seg = scene->segments()[s];
                    if (at >= seg.start && at < seg.start + seg.length)
                        segmentMeters[s].add(&interleavedOut[f * outChannels], 1);
                }
            }
        }
        if (!writer.write(interleavedOut.data(), n, error)) {
            progress.finish();
            return fail(error);
        }
        done += n;
        progress.update(done);
    }
    progress.finish();
    plugin->suspend();
    if (!writer.commit(error)) return fail(error);

    if (!options.quiet) {
        std::printf("\nWrote %s: %d channels, %d Hz, %ld frames (%.2f s)%s\n", outPath.c_str(), outChannels,
                    source->sampleRate(), done, static_cast<double>(done) / source->sampleRate(),
                    demo ? ", demo scene" : "");
        printLevels(meter, out.names);
        if (scene) printSegments(*scene, segmentMeters, out.names);
    }
    return 0;
}
