// Zipper noise: a 1 kHz tone under a parameter automated once per block, and
// how much of its energy the moving parameter spreads away from the tone
// (Zipper.h), at blocks of 64 and 512 and set before every frame (the ideal
// a stepped host could reach), for a sweep over 2 s and over 0.25 s, each
// held 1 s before and after. Any plug-in: name the parameter and its range.
#include <cmath>
#include <cstdio>

#include "AudioBuffer.h"
#include "Check.h"
#include "Harness.h"
#include "ParameterValues.h"
#include "SorvaneProtocol.h"
#include "Zipper.h"

namespace validate {
namespace {

constexpr int kRate = 48000;

struct Sweep {
    std::string name;                                        // as the plug-in names the parameter
    std::string from, to;                                    // in its display units
    bool fromLeft = false;                                   // the tone 45 degrees to the left instead of in front
    std::vector<std::pair<std::string, std::string>> setup;  // set first, by name
};

// Worst figure over the plug-in's outputs for one sweep at one block size (1: every frame).
double figure(const CheckContext& context, const Sweep& sweep, double seconds, int block, bool ambix,
              const char* smoothing = nullptr) {
    auto plugin = createInstance(context.pluginPath, static_cast<float>(kRate), block, false);
    auto probe = createInstance(context.pluginPath, static_cast<float>(kRate), block, false);
    std::string error;
    auto setup = sweep.setup;
    if (smoothing) setup.push_back({"Smoothing", smoothing});
    for (const auto& [name, value] : setup) {
        ParameterSetting setting;
        if (!parseSetting(*plugin, *probe, name + "=" + value, setting, error)) throw CheckFailure(error);
        plugin->setParameter(setting.index, setting.value);
    }
    const int index = findParameter(*plugin, sweep.name);
    if (index < 0) throw CheckFailure("no parameter named " + sweep.name);
    float from = 0, to = 0;
    if (!resolveParameterValue(*probe, index, sweep.from, from, error) ||
        !resolveParameterValue(*probe, index, sweep.to, to, error))
        throw CheckFailure(error);
    plugin->setParameter(index, from);
    plugin->resume();

    const int inputs = plugin->numInputs(), outputs = plugin->numOutputs();
    const long frames = std::lround((2 + seconds) * kRate);
    vsthost::AudioBuffer<float> in(std::max(inputs, 4), block), out(outputs, block);
    std::vector<std::vector<double>> rendered(outputs);
    // The tone's W, X, Y in Sorvane's convention; AmbiX carries W at full level, in ACN order.
    const double w = ambix ? 1.0 : 0.7071, x = sweep.fromLeft ? 0.7071 : 1.0, y = sweep.fromLeft ? 0.7071 : 0.0;
    const int xChannel = ambix ? 3 : 1, yChannel = ambix ? 1 : 2;
    for (long at = 0; at < frames; at += block) {
        const int n = static_cast<int>(std::min<long>(block, frames - at));
        const double t = std::clamp((static_cast<double>(at) / kRate - 1) / seconds, 0.0, 1.0);
        plugin->setParameter(index, static_cast<float>(from + (to - from) * t));
        for (int f = 0; f < n; ++f) {
            const double s = std::sin(2 * 3.141592653589793 * 1000 * static_cast<double>(at + f) / kRate);
            in[0][f] = static_cast<float>(w * s);
            in[xChannel][f] = static_cast<float>(x * s);
            in[yChannel][f] = static_cast<float>(y * s);
        }
        plugin->processFloat(in.pointers(), out.pointers(), n);
        for (int c = 0; c < outputs; ++c) {
            for (int f = 0; f < n; ++f)
                if (!std::isfinite(out[c][f])) throw CheckFailure("output " + std::to_string(c) + " not finite");
            rendered[c].insert(rendered[c].end(), out[c].begin(), out[c].begin() + n);
        }
    }
    return zipper::worstDb(rendered, kRate);
}

CheckResult zipperNoise(const CheckContext& context) {
    std::vector<Sweep> sweeps;
    if (!context.zipperParameter.empty()) {
        const auto colon = context.zipperRange.find(':');
        if (colon == std::string::npos) return fail("--zipper-range FROM:TO is needed with --zipper-parameter");
        sweeps.push_back({context.zipperParameter,
                          context.zipperRange.substr(0, colon),
                          context.zipperRange.substr(colon + 1),
                          false,
                          {}});
    } else {
        auto probe = createInstance(context.pluginPath, static_cast<float>(kRate), 512, false);
        if (probe->uniqueID() != sorvane::kUniqueId)
            return skip("name a parameter: --zipper-parameter, --zipper-range");
        // An automated pan and a Focus zoom with the tone to the side, in stereo with its first program.
        sweeps.push_back({"Rotate", "0", "90", false, {{"Dec. Mode", "Stereo"}}});
        sweeps.push_back({"Zoom", "0", "80", true, {{"Dec. Mode", "Stereo"}, {"Zoom Method", "Focus"}}});
    }
    const bool ambix = context.zipperInput == "ambix";
    const bool ours = context.zipperParameter.empty();
    std::string report;
    for (const Sweep& sweep : sweeps)
        for (double seconds : {2.0, 0.25}) {
            char line[240];
            const auto at = [&](int block, const char* smoothing) {
                return figure(context, sweep, seconds, block, ambix, smoothing);
            };
            if (ours)  // the ideal a stepped host could reach has nothing smoothed
                std::snprintf(line, sizeof line,
                              "%s..%s in %g s: every frame %.1f; 64: %.1f (off %.1f); 512: %.1f (off %.1f) dB",
                              sweep.from.c_str(), sweep.to.c_str(), seconds, at(1, "Off"), at(64, "On"), at(64, "Off"),
                              at(512, "On"), at(512, "Off"));
            else
                std::snprintf(line, sizeof line, "%s..%s in %g s: every frame %.1f; 64: %.1f; 512: %.1f dB",
                              sweep.from.c_str(), sweep.to.c_str(), seconds, at(1, nullptr), at(64, nullptr),
                              at(512, nullptr));
            report += (report.empty() ? "" : "; ") + sweep.name + " " + line;
        }
    return pass(report);
}

}  // namespace

void addZipperChecks(std::vector<Check>& checks) {
    checks.push_back({"zipper", 3, "energy a swept parameter spreads away from a 1 kHz tone", zipperNoise});
}

}  // namespace validate
