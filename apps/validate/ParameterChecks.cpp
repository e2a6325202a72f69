// Parameters and programs: fuzzed values in and out of 0..1 with processing
// between, every text within the host's buffer, program names in every
// state the parameters can put the plug-in in, random program changes, and
// program numbers out of range.
#include <algorithm>
#include <cmath>
#include <set>

#include "Check.h"
#include "Harness.h"

namespace validate {
namespace {

// Room a host gives for a parameter's name, label or display text. The
// VST 2.4 nominal limit is 8 characters; hosts have long given more.
constexpr std::size_t kParameterTextRoom = 32;

std::string checkBlock(vsthost::Plugin& plugin, Random& random, int frames, bool finite) {
    const Planar input = noise(plugin.numInputs(), frames, 0.5, random);
    const BlockOutcome out = processBlock(plugin, input, plugin.numOutputs(), frames, Precision::Float);
    if (!out.fault.empty()) return out.fault;
    return finite ? findNonFinite(out.output, false) : std::string();
}

CheckResult parameterFuzz(const CheckContext& context) {
    Random random(context.seed);
    const int changes = context.byLevel(500, 5000, 50000);
    auto plugin = createInstance(context.pluginPath);
    const int parameters = plugin->numParams();
    if (parameters == 0) return skip("no parameters");
    std::uniform_int_distribution<int> index(0, parameters - 1), often(0, 7);

    // In range: exactly 0, exactly 1 and everything between; the output stays finite.
    for (int i = 0; i < changes; ++i) {
        const int k = index(random);
        const float v = randomValue(random);
        plugin->setParameter(k, v);
        const float got = plugin->getParameter(k);
        if (!std::isfinite(got)) return fail(format("parameter %d set to %g reads back %g", k, v, got));
        if (often(random) == 0)
            if (auto fault = checkBlock(*plugin, random, 64, true); !fault.empty())
                return fail(format("after parameter %d = %g: ", k, v) + fault);
    }
    for (int k = 0; k < parameters; ++k) {
        const float got = plugin->getParameter(k);
        if (!(got >= 0.0f && got <= 1.0f))
            return fail(format("after values in 0..1 only, parameter %d reads %g", k, got));
    }

    // Out of range: no crash, outputs still written; once the values are back
    // in range the output is finite again within a block.
    const float wild[] = {-1.0f, -0.001f, 1.001f, 1.5f, 2.0f, 10.0f, -10.0f, 1e6f, -1e6f};
    auto outside = createInstance(context.pluginPath);
    for (int i = 0; i < changes; ++i) {
        const int k = index(random);
        const float v = often(random) < 4 ? wild[random() % std::size(wild)] : randomValue(random);
        outside->setParameter(k, v);
        outside->getParameter(k);
        if (often(random) == 0)
            if (auto fault = checkBlock(*outside, random, 64, false); !fault.empty())
                return fail(format("after parameter %d = %g: ", k, v) + fault);
    }
    // Indices no host should use, which a plug-in must still survive.
    for (VstInt32 k : {-1, parameters, parameters + 1, 1000, -1000})
        for (float v : {0.0f, 0.5f, 1.0f}) {
            outside->setParameter(k, v);
            outside->getParameter(k);
        }
    applySetting(*outside, randomSetting(parameters, random));
    checkBlock(*outside, random, 512, false);
    if (auto fault = checkBlock(*outside, random, 512, true); !fault.empty())
        return fail("values back in 0..1, the second block: " + fault);
    return pass(format("%d changes in 0..1, %d with values out of it, indices out of range; processing between",
                       changes, changes));
}

CheckResult parameterTexts(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath);
    const int parameters = plugin->numParams();
    std::size_t longest = 0;
    int asked = 0;
    std::vector<float> values = {0.0f, 0.25f, 0.5f, 0.75f, 1.0f, -1.0f, 2.0f, 1e6f};
    for (int i = 0; i < context.byLevel(4, 16, 64); ++i) values.push_back(randomValue(random));
    for (int k = 0; k < parameters; ++k) {
        const float original = plugin->getParameter(k);
        for (float v : values) {
            plugin->setParameter(k, v);
            for (VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
                const TextAnswer answer = askText(*plugin, opcode, k, 0, kParameterTextRoom);
                ++asked;
                const char* what = opcode == effGetParamName    ? "name"
                                   : opcode == effGetParamLabel ? "label"
                                                                : "display";
                if (!answer.fault.empty())
                    return fail(format("parameter %d at %g, %s \"%s\": ", k, v, what, answer.text.c_str()) +
                                answer.fault);
                if (opcode == effGetParamName && answer.text.empty())
                    return fail(format("parameter %d has no name", k));
                longest = std::max(longest, answer.text.size() + 1);
            }
        }
        plugin->setParameter(k, original);
    }
    // Indices a host should never ask for must not make the plug-in write out of bounds.
    for (VstInt32 k : {-1, parameters, parameters + 1, 1000})
        for (VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
            const TextAnswer answer = askText(*plugin, opcode, k, 0, kParameterTextRoom);
            if (!answer.fault.empty()) return fail(format("parameter %d (out of range): ", k) + answer.fault);
        }
    return pass(format("%d texts terminated within %zu bytes, longest %zu with its terminator (nominal 9)", asked,
                       kParameterTextRoom, longest));
}

CheckResult programNames(const CheckContext& context) {
    auto plugin = createInstance(context.pluginPath);
    const int parameters = plugin->numParams(), programs = plugin->numPrograms();
    if (programs == 0) return skip("no programs");
    std::set<std::string> names;
    int states = 0;
    auto readAll = [&](const std::string& state) -> std::string {
        ++states;
        for (int p = 0; p < programs; ++p) {
            const TextAnswer indexed = askText(*plugin, effGetProgramNameIndexed, p, 0, kVstMaxProgNameLen);
            if (!indexed.fault.empty()) return format("%s, program %d by index: ", state.c_str(), p) + indexed.fault;
            if (indexed.written) names.insert(indexed.text);
        }
        const TextAnswer current = askText(*plugin, effGetProgramName, 0, 0, kVstMaxProgNameLen);
        if (!current.fault.empty()) return state + ", current program: " + current.fault;
        return {};
    };
    if (auto fault = readAll("as created"); !fault.empty()) return fail(fault);
    // Any parameter may choose another list of programs (a layout, a mode).
    for (int k = 0; k < parameters; ++k) {
        const float original = plugin->getParameter(k);
        for (float v : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
            plugin->setParameter(k, v);
            if (auto fault = readAll(format("parameter %d at %g", k, v)); !fault.empty()) return fail(fault);
            for (int p = 0; p < programs; ++p) {
                plugin->setProgram(p);
                const TextAnswer current = askText(*plugin, effGetProgramName, 0, 0, kVstMaxProgNameLen);
                if (!current.fault.empty())
                    return fail(format("parameter %d at %g, program %d chosen: ", k, v, p) + current.fault);
            }
            plugin->setProgram(0);
        }
        plugin->setParameter(k, original);
    }
    // A renamed program reads back within the limit.
    plugin->setProgramName("Renamed by the validator");
    if (auto fault = readAll("after renaming"); !fault.empty()) return fail(fault);
    return pass(format("%zu distinct program names in %d states, all within %d bytes", names.size(), states,
                       static_cast<int>(kVstMaxProgNameLen)));
}

CheckResult programChanges(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath);
    const int programs = plugin->numPrograms(), parameters = plugin->numParams();
    if (programs == 0) return skip("no programs");
    const int changes = context.byLevel(200, 2000, 20000);
    std::uniform_int_distribution<int> program(0, programs - 1), dice(0, 9), frames(1, 512),
        index(0, std::max(parameters - 1, 0));
    for (int i = 0; i < changes; ++i) {
        const int p = program(random);
        plugin->setProgram(p);
        if (plugin->program() != p)
            return fail(format("program %d chosen, effGetProgram answers %d", p, plugin->program()));
        if (dice(random) < 3 && parameters > 0) plugin->setParameter(index(random), randomValue(random));
        if (dice(random) < 5)
            if (auto fault = checkBlock(*plugin, random, frames(random), true); !fault.empty())
                return fail(format("after program %d: ", p) + fault);
    }
    return pass(format("%d random program changes with parameter changes and processing", changes));
}

CheckResult programOutOfRange(const CheckContext& context) {
    Random random(context.seed);
    auto plugin = createInstance(context.pluginPath);
    const int programs = plugin->numPrograms(), parameters = plugin->numParams();
    const VstIntPtr beyond[] = {programs, programs + 1, 1000, 0x7FFFFFFF, VstIntPtr(1) << 40};
    for (int p = 0; p < std::max(programs, 1); ++p) {
        if (programs > 0) plugin->setProgram(p);
        const int chosen = plugin->program();
        std::vector<float> values;
        for (int k = 0; k < parameters; ++k) values.push_back(plugin->getParameter(k));
        const std::string name = askText(*plugin, effGetProgramName, 0, 0, kVstMaxProgNameLen).text;
        for (VstIntPtr number : beyond) {
            plugin->setProgram(number);
            if (plugin->program() != chosen)
                return fail(format("program %ld chosen: effGetProgram answers %d, not %d", static_cast<long>(number),
                                   plugin->program(), chosen));
            for (int k = 0; k < parameters; ++k)
                if (plugin->getParameter(k) != values[k])
                    return fail(format("program %ld chosen: parameter %d changed", static_cast<long>(number), k));
            if (askText(*plugin, effGetProgramName, 0, 0, kVstMaxProgNameLen).text != name)
                return fail(format("program %ld chosen: the program name changed", static_cast<long>(number)));
        }
        if (auto fault = checkBlock(*plugin, random, 256, true); !fault.empty()) return fail(fault);
    }
    // Below zero is outside the range too; the dispatcher's signed guard lets
    // such numbers through, so only harmlessness is asked for here.
    for (VstIntPtr number : {VstIntPtr(-1), VstIntPtr(-1000)}) {
        plugin->setProgram(number);
        for (int p = 0; p < programs; ++p) {
            const TextAnswer answer = askText(*plugin, effGetProgramNameIndexed, p, 0, kVstMaxProgNameLen);
            if (!answer.fault.empty())
                return fail(format("after program %ld: ", static_cast<long>(number)) + answer.fault);
        }
        if (auto fault = checkBlock(*plugin, random, 256, true); !fault.empty())
            return fail(format("after program %ld: ", static_cast<long>(number)) + fault);
    }
    return pass(format("numbers %d and above ignored in every program; negative numbers harmless", programs));
}

}  // namespace

void addParameterChecks(std::vector<Check>& checks) {
    checks.push_back({"parameter-fuzz", 1, "values in and out of 0..1 with processing between", parameterFuzz});
    checks.push_back({"parameter-texts", 1, "names, labels and displays terminated within the buffer", parameterTexts});
    checks.push_back({"program-names", 1, "program names in every state the parameters select", programNames});
    checks.push_back({"program-changes", 1, "random program changes with processing", programChanges});
    checks.push_back({"program-out-of-range", 1, "program numbers out of range ignored", programOutOfRange});
}

}  // namespace validate
