// One check of `sorvane validate`: a name, the level from which it runs and
// the function that drives the plug-in and judges what it did.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace validate {

enum class Outcome { Pass, Fail, Skip };

struct CheckResult {
    Outcome outcome;
    std::string detail;  // a figure on success, the first fault otherwise
};

inline CheckResult pass(std::string detail) { return {Outcome::Pass, std::move(detail)}; }
inline CheckResult fail(std::string detail) { return {Outcome::Fail, std::move(detail)}; }
inline CheckResult skip(std::string detail) { return {Outcome::Skip, std::move(detail)}; }

// Thrown anywhere inside a check to fail it with a reason.
struct CheckFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct CheckContext {
    std::string pluginPath;
    int level;              // 1 quick, 2 default, 3 exhaustive
    std::uint64_t seed;     // this check's own seed, derived from --seed and its name
    int stormRate = 20000;  // parameter changes per second in the editor storm
    // The zipper check: a parameter by name, its sweep in display units
    // (FROM:TO) and the input's convention (b-format or ambix); empty: ours.
    std::string zipperParameter, zipperRange, zipperInput;

    // Picks the figure for the current level.
    template <typename T>
    T byLevel(T quick, T standard, T exhaustive) const {
        return level <= 1 ? quick : level == 2 ? standard : exhaustive;
    }
};

struct Check {
    const char* name;
    int level;  // runs at this level and above
    const char* summary;
    CheckResult (*run)(const CheckContext&);
};

// Each area adds its checks, in the order they should run.
void addLifecycleChecks(std::vector<Check>& checks);
void addAudioChecks(std::vector<Check>& checks);
void addTimingChecks(std::vector<Check>& checks);
void addParameterChecks(std::vector<Check>& checks);
void addStateChecks(std::vector<Check>& checks);
void addDispatcherChecks(std::vector<Check>& checks);
void addThreadChecks(std::vector<Check>& checks);
void addEditorChecks(std::vector<Check>& checks);
void addRealtimeChecks(std::vector<Check>& checks);
void addRecoveryChecks(std::vector<Check>& checks);
void addZipperChecks(std::vector<Check>& checks);

}  // namespace validate
