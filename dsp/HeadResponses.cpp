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

// The directions the stage needs, as the file holds them at its own rate:
// straight ahead, then each pair's left and right speaker.
constexpr int kDirections = 1 + 2 * kPairCount;
double directionDegrees(int d) { return d == 0 ? 0 : (d % 2 ? 1 : -1) * kPairDegrees[(d - 1) / 2]; }

struct FileDirections {
    int rate = 0;
    int length = 0;                                   // taps of every response, delays included
    std::vector<float> ir[kDirections][2];            // [direction][ear]
};

// libmysofa's own handle for one loaded file, closed with it.
struct SofaFile {
    MYSOFA_EASY* easy = nullptr;
    ~SofaFile() {
        if (easy) mysofa_close(easy);
    }
};

// Reads a file once, at its own rate: resampling only the responses used,
// for each session rate, costs far less than resampling every measurement.
std::shared_ptr<const FileDirections> readDirections(const std::string& path, std::string& problem) {
    const auto refuse = [&](const std::string& why) {
        problem = "cannot read " + path + ": " + why;
        return nullptr;
    };
    if (!stampOf(path).exists) return refuse("no such file");
    int err = 0;
    SofaFile file;
    file.easy = static_cast<MYSOFA_EASY*>(std::calloc(1, sizeof(MYSOFA_EASY)));
    if (!file.easy) return refuse(libmysofaReason(MYSOFA_NO_MEMORY));
    file.easy->hrtf = mysofa_load(path.c_str(), &err);
    if (!file.easy->hrtf) return refuse(libmysofaReason(err) + " (libmysofa error " + std::to_string(err) + ")");
    MYSOFA_HRTF& hrtf = *file.easy->hrtf;
    if ((err = mysofa_check(&hrtf)) != MYSOFA_OK)
        return refuse(libmysofaReason(err) + " (libmysofa error " + std::to_string(err) + ")");
    const double rate = hrtf.DataSamplingRate.elements == 1 ? hrtf.DataSamplingRate.values[0] : 0;
    if (!(rate >= 1 && rate <= 1e7) || rate != std::round(rate)) return refuse("no usable sample rate");
    if (hrtf.N == 0 || hrtf.R != 2) return refuse("its responses have no length");
    mysofa_tocartesian(&hrtf);
    file.easy->lookup = mysofa_lookup_init(&hrtf);
    if (!file.easy->lookup) return refuse("inconsistent SOFA data");
    file.easy->neighborhood = mysofa_neighborhood_init_withstepdefine(
        &hrtf, file.easy->lookup, MYSOFA_DEFAULT_NEIGH_STEP_ANGLE, MYSOFA_DEFAULT_NEIGH_STEP_RADIUS);
    file.easy->fir = static_cast<float*>(std::malloc(sizeof(float) * hrtf.N * hrtf.R));
    if (!file.easy->fir) return refuse(libmysofaReason(MYSOFA_NO_MEMORY));

    double distance = 0;
    for (unsigned m = 0; m < hrtf.M; ++m) {
        const float* p = hrtf.SourcePosition.values + 3 * m;
        const double r = std::sqrt(double(p[0]) * p[0] + double(p[1]) * p[1] + double(p[2]) * p[2]);
        if (r > 0 && std::abs(std::asin(p[2] / r)) <= kEarLevelDegrees * kDegree) distance = std::max(distance, r);
    }
    if (!(distance > 0)) return refuse("no measurements at ear level");

    auto read = std::make_shared<FileDirections>();
    read->rate = int(rate);
    const int maxDelay = int(std::lround(rate * 512.0 / 48000));
    std::vector<float> ir[2] = {std::vector<float>(hrtf.N), std::vector<float>(hrtf.N)};
    for (int d = 0; d < kDirections; ++d) {
        float where[3] = {float(directionDegrees(d)), 0, float(distance)};
        mysofa_s2c(where);
        float delay[2] = {0, 0};
        mysofa_getfilter_float(file.easy, where[0], where[1], where[2], ir[0].data(), ir[1].data(), &delay[0], &delay[1]);
        for (int ear = 0; ear < 2; ++ear) {
            const double shift = std::round(double(delay[ear]) * rate);  // libmysofa gives delays in seconds
            if (!std::isfinite(shift) || shift < 0 || shift > maxDelay) return refuse("delays out of range");
            std::vector<float>& out = read->ir[d][ear];
            out.assign(size_t(shift), 0.0f);
            for (float x : ir[ear]) {
                if (!std::isfinite(x)) return refuse("samples that are not finite numbers");
                out.push_back(x);
            }
            read->length = std::max(read->length, int(out.size()));
        }
    }
    for (auto& direction : read->ir)
        for (auto& ear : direction) ear.resize(size_t(read->length), 0.0f);
    return read;
}

// The read responses at `rate`, through libmysofa's resampler: a set of
// just these responses is handed to it as a file's data would be.
bool resampleDirections(const FileDirections& read, int rate, std::vector<double> (&out)[kDirections][2]) {
    const std::size_t count = kDirections * 2 * std::size_t(read.length);
    MYSOFA_HRTF set{};
    set.M = kDirections;
    set.R = 2;
    set.N = unsigned(read.length);
    set.DataIR.values = static_cast<float*>(std::malloc(sizeof(float) * count));
    set.DataIR.elements = unsigned(count);
    set.DataSamplingRate.values = static_cast<float*>(std::malloc(sizeof(float)));
    set.DataSamplingRate.elements = 1;
    bool done = set.DataIR.values && set.DataSamplingRate.values;
    if (done) {
        set.DataSamplingRate.values[0] = float(read.rate);
        float* to = set.DataIR.values;
        for (const auto& direction : read.ir)
            for (const auto& ear : direction) to = std::copy(ear.begin(), ear.end(), to);
        done = mysofa_resample(&set, float(rate)) == MYSOFA_OK;
    }
    if (done)
        for (int d = 0; d < kDirections; ++d)
            for (int ear = 0; ear < 2; ++ear) {
                const float* from = set.DataIR.values + (std::size_t(d) * 2 + ear) * set.N;
                out[d][ear].assign(from, from + set.N);
            }
    std::free(set.DataIR.values);  // the resampler's own, when it made new ones
    std::free(set.DataSamplingRate.values);
    return done;
}

// Prepares one file's responses at `rate`; on refusal returns null and says why in `problem`.
std::shared_ptr<HeadResponses> readFile(const std::string& path, int rate, std::string& problem) {
    // Each file is read once per process and modification.
    static std::mutex mutex;
    static std::map<std::pair<std::string, FileStamp>, std::pair<std::shared_ptr<const FileDirections>, std::string>>
        files;
    std::shared_ptr<const FileDirections> read;
    {
        std::lock_guard lock(mutex);
        auto& [cached, why] = files[{path, stampOf(path)}];
        if (!cached && why.empty()) cached = readDirections(path, why);
        read = cached;
        problem = why;
    }
    if (!read) return nullptr;
    std::vector<double> ears[kDirections][2];
    if (!resampleDirections(*read, rate, ears)) {
        problem = "cannot read " + path + ": its responses cannot be resampled to " + std::to_string(rate) + " Hz";
        return nullptr;
    }
    const int maxTaps = int(std::lround(rate * 512.0 / 48000));

    auto set = std::make_shared<HeadResponses>();
    set->sampleRate = rate;
    set->source = path;
    // Every response is as long as the others (the directions' order: see directionDegrees).
    const size_t length = ears[0][0].size();
    enum { kLeftEar, kRightEar };
    std::vector<std::vector<double>> raw(kBinauralInputs, std::vector<double>(length));
    for (size_t t = 0; t < length; ++t) raw[kCentreInput][t] = (ears[0][kLeftEar][t] + ears[0][kRightEar][t]) / 2;
    for (int p = 0; p < kPairCount; ++p) {
        const auto& toLeft = ears[2 * p + 1];
        const auto& toRight = ears[2 * p + 2];
        for (size_t t = 0; t < length; ++t) {
            const double near = (toLeft[kLeftEar][t] + toRight[kRightEar][t]) / 2;
            const double far = (toLeft[kRightEar][t] + toRight[kLeftEar][t]) / 2;
            raw[2 * p][t] = (near + far) / 2;
            raw[2 * p + 1][t] = (near - far) / 2;
        }
    }
    const size_t taps = std::min(length, size_t(std::max(maxTaps, 1)));
    const size_t fade = taps / 16;
    double centreEnergy = 0;
    for (auto& r : raw) {
        r.resize(taps);
        for (size_t t = 0; t < fade; ++t)
            r[taps - fade + t] *= 0.5 * (1 + std::cos(std::numbers::pi * double(t + 1) / double(fade + 1)));
    }
    for (double x : raw[kCentreInput]) centreEnergy += x * x;
    if (!(centreEnergy > 0) || !std::isfinite(centreEnergy)) {
        problem = "cannot read " + path + ": silent straight ahead";
        return nullptr;
    }
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
        // Scaled so a speaker straight ahead would reach each ear at its own
        // level, as the centre does and as a file's responses are scaled.
        const double near = std::numbers::sqrt2 * std::cos(half), far = std::numbers::sqrt2 * std::sin(half);
        set->response[2 * p] = {float((near + far) / 2)};
        set->response[2 * p + 1] = {float((near - far) / 2)};
    }
    set->response[kCentreInput] = {1.0f};
    return set;
}

std::shared_ptr<const HeadResponses> loadHeadResponses(int sampleRate, const std::string& explicitPath) {
    if (sampleRate <= 0) return panningHeadResponses(sampleRate, "no sample rate (" + std::to_string(sampleRate) + ")");
    // Beyond the rates hosts run at, resampled responses would grow without
    // bound (a response's taps grow with the rate).
    if (sampleRate > kHighestResponseRate)
        return panningHeadResponses(sampleRate, "no head responses above " + std::to_string(kHighestResponseRate) + " Hz");
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
