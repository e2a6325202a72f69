// Threads: one thread processes while two others automate parameters every
// few milliseconds, as hosts do from their automation and interface threads.
#include <atomic>
#include <chrono>
#include <cmath>
#include <mutex>
#include <thread>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

class FirstFault {
public:
    void set(const std::string& text) {
        std::lock_guard lock(mutex);
        if (fault.empty()) fault = text;
        seen = true;
    }
    bool any() const { return seen; }
    std::string get() {
        std::lock_guard lock(mutex);
        return fault;
    }

private:
    std::mutex mutex;
    std::string fault;
    std::atomic<bool> seen{false};
};

CheckResult threadsParameters(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath, 48000.0f, 256);
    const int parameters = plugin->numParams();
    if (parameters == 0) return skip("no parameters");
    const auto duration = std::chrono::milliseconds(context.byLevel(500, 3000, 15000));
    std::atomic<bool> running{true};
    std::atomic<long> blocks{0}, changes{0};
    FirstFault fault;

    std::thread audio([&] {
        Random random(context.seed);
        while (running.load()) {
            const Planar input = noise(plugin->numInputs(), 256, 0.5, random);
            const BlockOutcome out = processBlock(*plugin, input, plugin->numOutputs(), 256, Precision::Float);
            if (!out.fault.empty())
                fault.set(out.fault);
            else if (auto bad = findNonFinite(out.output, false); !bad.empty())
                fault.set(bad);
            ++blocks;
        }
    });
    // The second thread also changes programs now and then, as a host's
    // interface thread does while automation plays.
    const int programs = plugin->numPrograms();
    auto automate = [&](std::uint64_t seed, bool programChanges) {
        Random random(seed);
        std::uniform_int_distribution<int> index(0, parameters - 1), pause(1, 5), dice(0, 9);
        while (running.load()) {
            if (programChanges && programs > 0 && dice(random) == 0)
                plugin->setProgram(static_cast<VstIntPtr>(random() % programs));
            else
                plugin->setParameter(index(random), randomValue(random));
            ++changes;
            std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
        }
    };
    std::thread first(automate, context.seed + 1, false), second(automate, context.seed + 2, true);
    std::this_thread::sleep_for(duration);
    running = false;
    audio.join();
    first.join();
    second.join();
    if (fault.any()) return fail("while parameters changed from two threads: " + fault.get());

    Random random(context.seed + 3);
    const Planar input = noise(plugin->numInputs(), 256, 0.5, random);
    const BlockOutcome out = processBlock(*plugin, input, plugin->numOutputs(), 256, Precision::Float);
    if (!out.fault.empty()) return fail("afterwards: " + out.fault);
    if (auto bad = findNonFinite(out.output, false); !bad.empty()) return fail("afterwards: " + bad);
    for (int k = 0; k < parameters; ++k)
        if (!std::isfinite(plugin->getParameter(k))) return fail(format("parameter %d reads non-finite", k));
    return pass(format("%.1f s: %ld blocks processed while two threads made %ld parameter and program changes",
                       std::chrono::duration<double>(duration).count(), blocks.load(), changes.load()));
}

}  // namespace

void addThreadChecks(std::vector<Check>& checks) {
    checks.push_back(
        {"threads-parameters", 1, "processing while two threads change parameters and programs", threadsParameters});
}

}  // namespace validate
