#include "HeadResponses.h"

#include <mysofa.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <mutex>
#include <numbers>

namespace sorvane {

const char* const kDefaultHeadResponsesPath = "/usr/share/libmysofa/default.sofa";

std::string userHeadResponsesPath() {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && *config) return std::string(config) + "/sorvane/hrtf.sofa";
    const char* home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.config/sorvane/hrtf.sofa";
}

namespace {

constexpr double kDegree = std::numbers::pi / 180;
// Measurements this close to ear level count as the horizontal plane.
constexpr double kEarLevelDegrees = 10;

// What a file was when read: a rewritten file is read again.
struct FileStamp {
    bool exists = false;
    long long modified = 0, size = 0;
    auto operator<=>(const FileStamp&) const = default;
};

FileStamp stampOf(const std::string& path) {
    struct stat st {};
    if (path.empty() || ::stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return {};
    return {true, st.st_mtim.tv_sec * 1000000000LL + st.st_mtim.tv_nsec, st.st_size};
}

std::string libmysofaReason(int err) {
    switch (err) {
        case MYSOFA_INVALID_FORMAT: return "not a SOFA file";
        case MYSOFA_UNSUPPORTED_FORMAT: return "a SOFA variant that cannot be read";
        case MYSOFA_NO_MEMORY: return "out of memory";
        case MYSOFA_READ_ERROR: return "read error";
        default: return err > 0 && err < MYSOFA_INVALID_FORMAT ? "cannot be opened" : "inconsistent SOFA data";
    }
}

// Both ears' responses for one direction, its delays already in them.
struct EarPair {
    std::vector<double> left, right;
};

struct SofaFile {
    MYSOFA_EASY* easy = nullptr;
    ~SofaFile() {
        if (easy) mysofa_close(easy);
    }
};

// Reads and prepares one file; on refusal returns null and says why in `problem`.
std::shared_ptr<HeadResponses> readFile(const std::string& path, int rate, std::string& problem) {
    const auto refuse = [&](const std::string& why) {
        problem = "cannot read " + path + ": " + why;
        return nullptr;
    };
    if (!stampOf(path).exists) return refuse("no such file");
    int length = 0, err = 0;
    SofaFile file;
    file.easy = mysofa_open_advanced(path.c_str(), float(rate), &length, &err, false,
                                     MYSOFA_DEFAULT_NEIGH_STEP_ANGLE, MYSOFA_DEFAULT_NEIGH_STEP_RADIUS);
    if (!file.easy) return refuse(libmysofaReason(err) + " (libmysofa error " + std::to_string(err) + ")");
    if (length <= 0) return refuse("its responses have no length");

    const MYSOFA_HRTF& hrtf = *file.easy->hrtf;
    double distance = 0;
    for (unsigned m = 0; m < hrtf.M; ++m) {  // positions are cartesian once opened
        const float* p = hrtf.SourcePosition.values + 3 * m;
        const double r = std::sqrt(double(p[0]) * p[0] + double(p[1]) * p[1] + double(p[2]) * p[2]);
        if (r > 0 && std::abs(std::asin(p[2] / r)) <= kEarLevelDegrees * kDegree) distance = std::max(distance, r);
    }
    if (!(distance > 0)) return refuse("no measurements at ear level");

    const int maxTaps = int(std::lround(rate * 512.0 / 48000));
    std::vector<float> irLeft(length), irRight(length);
    std::string bad;
    const auto lookUp = [&](double azimuth) {
        float where[3] = {float(azimuth), 0, float(distance)};
        mysofa_s2c(where);
        float delayLeft = 0, delayRight = 0;
        mysofa_getfilter_float(file.easy, where[0], where[1], where[2], irLeft.data(), irRight.data(), &delayLeft, &delayRight);
        EarPair ears;
        for (auto [ir, delay, out] : {std::tuple{&irLeft, delayLeft, &ears.left}, {&irRight, delayRight, &ears.right}}) {
            const double shift = std::round(double(delay) * rate);  // libmysofa gives delays in seconds
            if (!std::isfinite(shift) || shift < 0 || shift > maxTaps) bad = "delays out of range";
            else out->assign(size_t(shift), 0.0);
            for (float x : *ir) {
                if (!std::isfinite(x)) bad = "samples that are not finite numbers";
                out->push_back(x);
            }
        }
        return ears;
    };

    auto set = std::make_shared<HeadResponses>();
    set->sampleRate = rate;
    set->source = path;
    const auto at = [](const std::vector<double>& v, size_t t) { return t < v.size() ? v[t] : 0.0; };
    std::vector<std::vector<double>> raw(kBinauralInputs);
    const EarPair front = lookUp(0);
    for (size_t t = 0; t < std::max(front.left.size(), front.right.size()); ++t)
        raw[kCentreInput].push_back((at(front.left, t) + at(front.right, t)) / 2);
    for (int p = 0; p < kPairCount; ++p) {
        const EarPair toLeft = lookUp(kPairDegrees[p]), toRight = lookUp(-kPairDegrees[p]);
        const size_t n = std::max({toLeft.left.size(), toLeft.right.size(), toRight.left.size(), toRight.right.size()});
        for (size_t t = 0; t < n; ++t) {
            const double near = (at(toLeft.left, t) + at(toRight.right, t)) / 2;
            const double far = (at(toLeft.right, t) + at(toRight.left, t)) / 2;
            raw[2 * p].push_back((near + far) / 2);
            raw[2 * p + 1].push_back((near - far) / 2);
        }
    }
    if (!bad.empty()) return refuse(bad);

    size_t taps = 0;
    for (const auto& r : raw) taps = std::max(taps, r.size());
    taps = std::min(taps, size_t(std::max(maxTaps, 1)));
    const size_t fade = taps / 16;
    double centreEnergy = 0;
    for (auto& r : raw) {
        r.resize(taps);
        for (size_t t = 0; t < fade; ++t)
            r[taps - fade + t] *= 0.5 * (1 + std::cos(std::numbers::pi * double(t + 1) / double(fade + 1)));
    }
    for (double x : raw[kCentreInput]) centreEnergy += x * x;
    if (!(centreEnergy > 0) || !std::isfinite(centreEnergy)) return refuse("silent straight ahead");
    const double scale = 1 / std::sqrt(centreEnergy);
    for (int i = 0; i < kBinauralInputs; ++i) {
        set->response[i].resize(taps);
        for (size_t t = 0; t < taps; ++t) set->response[i][t] = float(raw[i][t] * scale);
    }
    return set;
}

struct Candidate {
    std::string path;
    bool askedFor;  // missing counts as a problem
};

std::vector<Candidate> candidates(const std::string& explicitPath) {
    std::vector<Candidate> list;
    if (!explicitPath.empty()) list.push_back({explicitPath, true});
    if (const char* env = std::getenv("SORVANE_SOFA"); env && *env) list.push_back({env, true});
    list.push_back({userHeadResponsesPath(), false});
    list.push_back({kDefaultHeadResponsesPath, true});
    return list;
}

}  // namespace

std::shared_ptr<const HeadResponses> panningHeadResponses(int sampleRate, std::string problem) {
    auto set = std::make_shared<HeadResponses>();
    set->sampleRate = sampleRate;
    set->problem = std::move(problem);
    for (int p = 0; p < kPairCount; ++p) {
        const double folded = std::min(kPairDegrees[p], 180 - kPairDegrees[p]);
        const double half = (90 - folded) / 2 * kDegree;
        const double near = std::cos(half), far = std::sin(half);
        set->response[2 * p] = {float((near + far) / 2)};
        set->response[2 * p + 1] = {float((near - far) / 2)};
    }
    set->response[kCentreInput] = {float(1 / std::numbers::sqrt2)};
    return set;
}

std::shared_ptr<const HeadResponses> loadHeadResponses(int sampleRate, const std::string& explicitPath) {
    if (sampleRate <= 0) return panningHeadResponses(sampleRate, "no sample rate (" + std::to_string(sampleRate) + ")");
    const std::vector<Candidate> list = candidates(explicitPath);
    std::vector<std::pair<std::string, FileStamp>> key;
    for (const Candidate& c : list) key.emplace_back(c.path, stampOf(c.path));

    static std::mutex mutex;
    static std::map<std::pair<int, decltype(key)>, std::shared_ptr<const HeadResponses>> cache;
    std::lock_guard lock(mutex);
    auto& cached = cache[{sampleRate, key}];
    if (cached) return cached;

    std::string firstProblem;
    for (size_t c = 0; c < list.size() && !cached; ++c) {
        if (!list[c].askedFor && !key[c].second.exists) continue;
        std::string problem;
        std::shared_ptr<HeadResponses> set;
        try {
            set = readFile(list[c].path, sampleRate, problem);
        } catch (const std::exception& e) {  // out of memory on a huge file: try the next
            problem = "cannot read " + list[c].path + ": " + e.what();
        }
        if (firstProblem.empty()) firstProblem = problem;
        if (set) {
            set->problem = firstProblem;
            cached = std::move(set);
        }
    }
    if (!cached) cached = panningHeadResponses(sampleRate, firstProblem);
    return cached;
}

}  // namespace sorvane
