// Runs the checks one by one, each in a child process of its own: a plug-in
// that crashes or hangs fails that check and the others still run, and no
// check sees what an earlier one left behind.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <random>
#include <string>

#include "Check.h"
#include "DisplayKeeper.h"
#include "Validate.h"

namespace validate {
namespace {

std::vector<Check> allChecks() {
    std::vector<Check> checks;
    addLifecycleChecks(checks);
    addAudioChecks(checks);
    addTimingChecks(checks);
    addParameterChecks(checks);
    addStateChecks(checks);
    addDispatcherChecks(checks);
    addThreadChecks(checks);
    addEditorChecks(checks);
    addRealtimeChecks(checks);
    addRecoveryChecks(checks);
    addZipperChecks(checks);
    return checks;
}

std::uint64_t checkSeed(std::uint64_t seed, const char* name) {
    std::uint64_t hash = 1469598103934665603ull;  // FNV-1a of the name
    for (const char* c = name; *c; ++c) hash = (hash ^ static_cast<unsigned char>(*c)) * 1099511628211ull;
    return seed ^ hash;
}

CheckResult runCatching(const Check& check, const CheckContext& context) {
    try {
        return check.run(context);
    } catch (const CheckFailure& failure) {
        return fail(failure.what());
    } catch (const std::exception& error) {
        return fail(std::string("validator error: ") + error.what());
    }
}

// The child's answer travels as one outcome letter and the detail text.
void writeResult(int fd, const CheckResult& result) {
    const char letter = result.outcome == Outcome::Pass ? 'P' : result.outcome == Outcome::Fail ? 'F' : 'S';
    std::string message = letter + result.detail;
    const char* data = message.data();
    std::size_t left = message.size();
    while (left > 0) {
        const ssize_t n = write(fd, data, left);
        if (n <= 0) break;
        data += n;
        left -= static_cast<std::size_t>(n);
    }
}

CheckResult runInChild(const Check& check, const CheckContext& context, int timeoutSeconds) {
    int fds[2];
    if (pipe(fds) != 0) return fail("validator error: no pipe");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) return fail("validator error: cannot fork");
    if (child == 0) {
        close(fds[0]);
        const CheckResult result = runCatching(check, context);
        std::fflush(nullptr);
        writeResult(fds[1], result);
        close(fds[1]);
        _exit(0);
    }
    close(fds[1]);
    std::string message;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    bool timedOut = false;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            timedOut = true;
            break;
        }
        pollfd waiting{fds[0], POLLIN, 0};
        if (poll(&waiting, 1, static_cast<int>(left.count())) <= 0) continue;
        char buffer[4096];
        const ssize_t n = read(fds[0], buffer, sizeof buffer);
        if (n <= 0) break;
        message.append(buffer, static_cast<std::size_t>(n));
    }
    close(fds[0]);
    if (timedOut) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);

    if (timedOut) return fail("no answer within " + std::to_string(timeoutSeconds) + " s (hung)");
    if (WIFSIGNALED(status))
        return fail(std::string("crashed: signal ") + std::to_string(WTERMSIG(status)) + " (" +
                    strsignal(WTERMSIG(status)) + ")");
    if (message.empty())  // a sanitizer, or the plug-in calling exit
        return fail("crashed: ended with exit status " + std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) +
                    " before answering");
    const Outcome outcome = message[0] == 'P' ? Outcome::Pass : message[0] == 'S' ? Outcome::Skip : Outcome::Fail;
    return {outcome, message.substr(1)};
}

bool selected(const Check& check, const ValidateOptions& options) {
    if (check.level > options.level) return false;
    if (options.only.empty()) return true;
    for (const auto& part : options.only)
        if (std::strstr(check.name, part.c_str())) return true;
    return false;
}

}  // namespace
}  // namespace validate

int runValidate(const ValidateOptions& options) {
    using namespace validate;
    const std::vector<Check> checks = allChecks();
    if (options.list) {
        for (const Check& check : checks) std::printf("%-26s level %d  %s\n", check.name, check.level, check.summary);
        return 0;
    }

    const std::uint64_t seed = options.seedGiven ? options.seed : std::random_device{}();
    std::printf("Validating %s at level %d, seed %llu\n", options.plugin.c_str(), options.level,
                static_cast<unsigned long long>(seed));
    const int timeout = options.level >= 3 ? 900 : 120;
    const DisplayKeeper keepServerUp;
    int passed = 0, failed = 0, skipped = 0;
    const auto start = std::chrono::steady_clock::now();
    for (const Check& check : checks) {
        if (!selected(check, options)) continue;
        const CheckContext context{options.plugin,     options.level,           checkSeed(seed, check.name),
                                   options.stormRate,  options.zipperParameter, options.zipperRange,
                                   options.zipperInput};
        const CheckResult result =
            options.inProcess ? runCatching(check, context) : runInChild(check, context, timeout);
        const char* word = result.outcome == Outcome::Pass ? "PASS" : result.outcome == Outcome::Fail ? "FAIL" : "SKIP";
        std::printf("%-26s %s  %s\n", check.name, word, result.detail.c_str());
        std::fflush(stdout);
        (result.outcome == Outcome::Pass ? passed : result.outcome == Outcome::Fail ? failed : skipped)++;
        // Nothing else can be judged of a plug-in that cannot even be created.
        if (std::strcmp(check.name, "load") == 0 && result.outcome == Outcome::Fail) break;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%d passed, %d failed, %d skipped in %.1f s\n", passed, failed, skipped, seconds);
    return failed > 0 ? 1 : 0;
}
