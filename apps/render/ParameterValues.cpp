#include "ParameterValues.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "Console.h"
#include "SorvaneProtocol.h"
#include "Units.h"

namespace {

constexpr int kGridSteps = 1000;  // display samples taken across 0..1

std::string trim(const std::string& s) {
    const auto first = s.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

// Case-insensitive, and a trailing full stop is optional ("Omni" = "Omni.").
std::string canonicalWord(std::string s) {
    s = trim(s);
    while (!s.empty() && s.back() == '.') s.pop_back();
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

// The leading number of a text, if it starts with one ("-6.00dB" gives -6).
std::optional<double> leadingNumber(const std::string& text) {
    const std::string t = trim(text);
    if (t.empty()) return std::nullopt;
    char* end = nullptr;
    const double v = std::strtod(t.c_str(), &end);
    if (end == t.c_str() || !std::isfinite(v)) return std::nullopt;
    return v;
}

// Half a step of the display's last digit: "12.5" 0.05, "-6.00" 0.005, "120" 0.5.
double displayTolerance(const std::string& text) {
    const std::string t = trim(text);
    const auto dot = t.find('.');
    if (dot == std::string::npos) return 0.5;
    int decimals = 0;
    for (std::size_t i = dot + 1; i < t.size() && std::isdigit(static_cast<unsigned char>(t[i])); ++i) ++decimals;
    return 0.5 * std::pow(10.0, -decimals);
}

// The simplest decimal inside [lo, hi]: a value typed as 0 should land on the
// exact middle (0.5), not a float a bisection happened to stop at.
float simplestWithin(double lo, double hi) {
    const double mid = 0.5 * (lo + hi);
    for (int digits = 1; digits <= 9; ++digits) {
        const double scale = std::pow(10.0, digits);
        const double rounded = std::round(mid * scale) / scale;
        if (rounded >= lo && rounded <= hi) return static_cast<float>(rounded);
    }
    return static_cast<float>(mid);
}

struct Sample {
    float v;
    std::string text;
};

class DisplayProbe {
public:
    DisplayProbe(vsthost::Plugin& p, int i) : plugin(p), index(i) {}
    std::string at(float v) {
        plugin.setParameter(index, v);
        return plugin.parameterDisplay(index);
    }

private:
    vsthost::Plugin& plugin;
    int index;
};

// A continuous parameter of ours, or the crossover: one that reads a number.
bool takesNumbers(int index) {
    const sorvane::Kind kind = sorvane::kParameters[index].kind;
    return !sorvane::isSelector(kind) || kind == sorvane::Kind::Crossover;
}

}  // namespace

int findParameter(vsthost::Plugin& plugin, const std::string& name) {
    const std::string wanted = canonicalWord(name);
    for (int i = 0; i < plugin.numParams(); ++i)
        if (canonicalWord(plugin.parameterName(i)) == wanted) return i;
    char* end = nullptr;
    const long number = std::strtol(name.c_str(), &end, 10);
    if (!name.empty() && *end == 0 && number >= 0 && number < plugin.numParams()) return static_cast<int>(number);
    return -1;
}

std::string parameterNames(vsthost::Plugin& plugin) {
    std::string names;
    for (int i = 0; i < plugin.numParams(); ++i) names += (i ? ", " : "") + plugin.parameterName(i);
    return names;
}

bool resolveParameterValue(vsthost::Plugin& probe, int index, const std::string& valueText, float& normalised,
                           std::string& error) {
    const std::string text = trim(valueText);
    const std::string name = probe.parameterName(index);

    // Normalised: "0.75n".
    if (text.size() > 1 && (text.back() == 'n' || text.back() == 'N')) {
        char* end = nullptr;
        const double v = std::strtod(text.c_str(), &end);
        if (end == text.c_str() + text.size() - 1) {
            if (!(v >= 0.0 && v <= 1.0)) {
                error = name + "=" + text + ": a normalised value must lie between 0 and 1";
                return false;
            }
            normalised = static_cast<float>(v);
            return true;
        }
    }

    // Ours: a number in the units of a continuous parameter takes the value
    // whose engine field is nearest it, the rule its LV2 edition applies to
    // a port, so both editions render alike.
    if (const auto number = leadingNumber(text);
        number && probe.uniqueID() == sorvane::kUniqueId && index < kNumParams && takesNumbers(index)) {
        const float ends[] = {sorvane::unitsOf(index, 0.0f), sorvane::unitsOf(index, 1.0f)};
        const double low = std::min(ends[0], ends[1]), high = std::max(ends[0], ends[1]);
        if (!(*number >= low && *number <= high)) {
            char range[160];
            std::snprintf(range, sizeof range, "%s=%s is out of range (%g to %g %s)", name.c_str(), text.c_str(), low,
                          high, probe.parameterLabel(index).c_str());
            error = range;
            return false;
        }
        // As single-precision as a port's value.
        normalised = sorvane::nearestNormalised(sorvane::kParameters[index].kind, static_cast<float>(*number));
        return true;
    }

    DisplayProbe display(probe, index);
    std::vector<Sample> samples;
    for (int i = 0; i <= kGridSteps; ++i) {
        const float v = static_cast<float>(i) / kGridSteps;
        samples.push_back({v, display.at(v)});
    }

    // A word the display shows: the middle of the first stretch showing it.
    const std::string word = canonicalWord(text);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (canonicalWord(samples[i].text) != word) continue;
        std::size_t last = i;
        while (last + 1 < samples.size() && canonicalWord(samples[last + 1].text) == word) ++last;
        normalised = simplestWithin(samples[i].v, samples[last].v);
        return true;
    }

    // Where a word meets a number ("Off" beside -35.96 dB), find the number
    // nearest the word, so the end of the numeric range is reachable.
    for (std::size_t i = 0; i + 1 < samples.size(); ++i) {
        const bool here = leadingNumber(samples[i].text).has_value();
        if (here == leadingNumber(samples[i + 1].text).has_value()) continue;
        float numeric = here ? samples[i].v : samples[i + 1].v, other = here ? samples[i + 1].v : samples[i].v;
        for (int k = 0; k < 40; ++k) {
            const float mid = 0.5f * (numeric + other);
            if (mid == numeric || mid == other) break;
            (leadingNumber(display.at(mid)) ? numeric : other) = mid;
        }
        samples.insert(samples.begin() + static_cast<long>(i) + 1, {numeric, display.at(numeric)});
        ++i;
    }

    const std::optional<double> wanted = leadingNumber(text);
    double low = INFINITY, high = -INFINITY;
    for (const Sample& s : samples)
        if (auto n = leadingNumber(s.text)) low = std::min(low, *n), high = std::max(high, *n);
    if (!wanted) {
        std::vector<std::string> words;
        for (const Sample& s : samples)
            if (!leadingNumber(s.text) && std::find(words.begin(), words.end(), s.text) == words.end())
                words.push_back(s.text);
        error = "'" + text + "' is not a value of " + name + "; give ";
        if (std::isfinite(low)) {
            char range[96];
            std::snprintf(range, sizeof range, "a number from %g to %g", low, high);
            error += range;
            if (!words.empty()) error += " or ";
        }
        if (!words.empty()) {
            error += "one of:";
            for (const std::string& w : words) error += " \"" + w + "\"";
        }
        error += " (or a normalised value such as 0.5n)";
        return false;
    }
    if (!std::isfinite(low)) {
        error = name + " shows no numbers; use a normalised value such as 0.5n";
        return false;
    }

    // Where does a display read `wanted` (to its last digit)? -1 below, 0 on, +1 above, 2 not a number.
    auto sideOf = [&](const std::string& t) {
        const std::optional<double> n = leadingNumber(t);
        if (!n) return 2;
        const double tol = displayTolerance(t) * (1 + 1e-9);
        return *n < *wanted - tol ? -1 : (*n > *wanted + tol ? 1 : 0);
    };
    auto side = [&](float v) { return sideOf(display.at(v)); };

    // One v that displays the wanted number: a sample, or found by bisection
    // between two neighbours that straddle it.
    std::optional<float> hit;
    std::size_t at = 0;
    for (std::size_t i = 0; i < samples.size() && !hit; ++i)
        if (sideOf(samples[i].text) == 0) hit = samples[i].v, at = i;
    for (std::size_t i = 0; i + 1 < samples.size() && !hit; ++i) {
        const int a = sideOf(samples[i].text), b = sideOf(samples[i + 1].text);
        if (std::abs(a) != 1 || std::abs(b) != 1 || a == b) continue;
        float lo = samples[i].v, hi = samples[i + 1].v;
        for (int k = 0; k < 40 && !hit; ++k) {
            const float mid = 0.5f * (lo + hi);
            const int s = side(mid);
            if (s == 0)
                hit = mid, at = i;
            else
                (s == a ? lo : hi) = mid;
        }
    }
    if (!hit) {
        char range[160];
        std::snprintf(range, sizeof range, "%s=%s is out of range (%g to %g %s)", name.c_str(), text.c_str(), low, high,
                      probe.parameterLabel(index).c_str());
        error = range;
        return false;
    }

    // Widen to the whole stretch that displays it and take its middle.
    auto edge = [&](int direction) {
        float inside = *hit;
        long i = static_cast<long>(at) + direction;
        while (i >= 0 && i < static_cast<long>(samples.size()) &&
               (direction > 0 ? samples[i].v <= inside : samples[i].v >= inside))
            i += direction;
        for (; i >= 0 && i < static_cast<long>(samples.size()) && sideOf(samples[i].text) == 0; i += direction)
            inside = samples[i].v;
        if (i < 0 || i >= static_cast<long>(samples.size())) return inside;
        float out = samples[i].v;
        for (int k = 0; k < 40; ++k) {
            const float mid = 0.5f * (inside + out);
            if (mid == inside || mid == out) break;
            (side(mid) == 0 ? inside : out) = mid;
        }
        return inside;
    };
    const float from = edge(-1), to = edge(+1);
    const double quarter = 0.25 * (to - from);
    normalised = simplestWithin(from + quarter, to - quarter);
    return true;
}

bool parseSetting(vsthost::Plugin& plugin, vsthost::Plugin& probe, const std::string& text, ParameterSetting& setting,
                  std::string& error) {
    const auto eq = text.find('=');
    if (eq == std::string::npos) {
        error = "--set needs NAME=VALUE, got '" + text + "'";
        return false;
    }
    const std::string name = trim(text.substr(0, eq));
    setting.index = findParameter(plugin, name);
    if (setting.index < 0) {
        error = "unknown parameter '" + name + "'; the parameters are: " + parameterNames(plugin);
        return false;
    }
    return resolveParameterValue(probe, setting.index, text.substr(eq + 1), setting.value, error);
}

bool applyProgram(vsthost::Plugin& plugin, const std::string& wanted, std::string& error) {
    char* end = nullptr;
    const long number = std::strtol(wanted.c_str(), &end, 10);
    if (!wanted.empty() && *end == 0) {
        if (number < 0 || number >= plugin.numPrograms()) {
            error = "program " + wanted + " does not exist (0 to " + std::to_string(plugin.numPrograms() - 1) + ")";
            return false;
        }
        plugin.setProgram(number);
        return true;
    }
    std::string names;
    for (int i = 0; i < plugin.numPrograms(); ++i) {
        const std::string name = plugin.programNameIndexed(i);
        if (name == wanted) {
            plugin.setProgram(i);
            return true;
        }
        names += (i ? "\", \"" : "\"") + name;
    }
    error = "unknown program '" + wanted + "'; the programs of this layout are: " + names + "\"";
    return false;
}

void printSettings(vsthost::Plugin& plugin) {
    std::printf("Settings (program %d, \"%s\"):\n", plugin.program(), plugin.programName().c_str());
    for (int i = 0; i < plugin.numParams(); ++i)
        std::printf("  %s %s [%s]\n", console::padded(plugin.parameterName(i), 14).c_str(),
                    console::padded(plugin.parameterDisplay(i), 14).c_str(), plugin.parameterLabel(i).c_str());
}
