#include "ParameterValues.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

namespace {

constexpr int kGridSteps = 1000;

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

bool resolveParameterValue(vsthost::Plugin& probe, int index, const std::string& valueText,
                           float& normalised, std::string& error) {
    const std::string text = trim(valueText);
    const std::string name = probe.parameterName(index);

    // Normalised: "0.75n".
    if (text.size() > 1 && (text.back() == 'n' || text.back() == 'N')) {
        char* end = nullptr;
        const double v = std::strtod(text.c_str(), &end);
        if (end == text.c_str() + text.size() - 1) {
            if (!(v >= 0.0 && v <= 1.0)) {
                error = name + "=" + text + ": a normalised value must lie within 0 and 1";
                return false;
            }
            normalised = static_cast<float>(v);
            return true;
        }
    }

    DisplayProbe display(probe, index);
    std::vector<float> grid(kGridSteps + 1);
    std::vector<std::string> texts(kGridSteps + 1);
    for (int i = 0; i <= kGridSteps; ++i) {
        grid[i] = static_cast<float>(i) / kGridSteps;
        texts[i] = display.at(grid[i]);
    }

    // A word the display shows: the middle of the first stretch showing it.
    const std::string word = canonicalWord(text);
    for (int i = 0; i <= kGridSteps; ++i) {
        if (canonicalWord(texts[i]) != word) continue;
        int last = i;
        while (last < kGridSteps && canonicalWord(texts[last + 1]) == word) ++last;
        normalised = simplestWithin(grid[i], grid[last]);
        return true;
    }

    // A number in the display's units.
    const std::optional<double> wanted = leadingNumber(text);
    std::vector<std::optional<double>> numbers(kGridSteps + 1);
    double low = INFINITY, high = -INFINITY;
    for (int i = 0; i <= kGridSteps; ++i) {
        numbers[i] = leadingNumber(texts[i]);
        if (numbers[i]) low = std::min(low, *numbers[i]), high = std::max(high, *numbers[i]);
    }
    if (!wanted) {
        std::vector<std::string> words;
        for (const std::string& t : texts)
            if (!leadingNumber(t) && std::find(words.begin(), words.end(), t) == words.end()) words.push_back(t);
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

    // Where does the display read `wanted` (to its last digit)? -1 below, 0 on, +1 above.
    auto side = [&](float v) {
        const std::string t = display.at(v);
        const std::optional<double> n = leadingNumber(t);
        if (!n) return 2;
        const double tol = displayTolerance(t) * (1 + 1e-9);
        return *n < *wanted - tol ? -1 : (*n > *wanted + tol ? 1 : 0);
    };
    auto sideOnGrid = [&](int i) {
        if (!numbers[i]) return 2;
        const double tol = displayTolerance(texts[i]) * (1 + 1e-9);
        return *numbers[i] < *wanted - tol ? -1 : (*numbers[i] > *wanted + tol ? 1 : 0);
    };

    // Find one v that displays the wanted number: on the grid, or by bisection
    // between two neighbours that straddle it.
    std::optional<float> hit;
    for (int i = 0; i <= kGridSteps && !hit; ++i)
        if (sideOnGrid(i) == 0) hit = grid[i];
    for (int i = 0; i < kGridSteps && !hit; ++i) {
        const int a = sideOnGrid(i), b = sideOnGrid(i + 1);
        if (std::abs(a) != 1 || std::abs(b) != 1 || a == b) continue;
        float lo = grid[i], hi = grid[i + 1];
        for (int k = 0; k < 40 && !hit; ++k) {
            const float mid = 0.5f * (lo + hi);
            const int s = side(mid);
            if (s == 0) hit = mid;
            else if (s == a) lo = mid;
            else hi = mid;
        }
    }
    if (!hit) {
        char range[128];
        std::snprintf(range, sizeof range, "%s=%s is out of range (%g to %g %s)", name.c_str(), text.c_str(), low,
                      high, probe.parameterLabel(index).c_str());
        error = range;
        return false;
    }

    // Widen to the whole stretch that displays it and take its middle.
    auto edge = [&](float inside, int direction) {
        int i = direction > 0 ? static_cast<int>(std::floor(inside * kGridSteps)) + 1
                              : static_cast<int>(std::ceil(inside * kGridSteps)) - 1;
        for (; i >= 0 && i <= kGridSteps && sideOnGrid(i) == 0; i += direction) inside = grid[i];
        if (i < 0 || i > kGridSteps) return inside;
        float in = inside, out = grid[i];
        for (int k = 0; k < 40; ++k) {
            const float mid = 0.5f * (in + out);
            (side(mid) == 0 ? in : out) = mid;
        }
        return in;
    };
    const float from = edge(*hit, -1), to = edge(*hit, +1);
    const double quarter = 0.25 * (to - from);
    normalised = simplestWithin(from + quarter, to - quarter);
    return true;
}

bool parseSetting(vsthost::Plugin& plugin, vsthost::Plugin& probe, const std::string& text,
                  ParameterSetting& setting, std::string& error) {
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
