// sorvane validate run on small plug-ins with one deliberate fault each: the
// check about that fault must fail (and say what it found), and a faultless
// plug-in must pass, so the suite's passes on our plug-in mean something.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ToolRun.h"

namespace {

// Sanitizer builds keep the allocator to themselves: the tool cannot count
// allocations there and says so.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kCountingHooks = false;
#else
constexpr bool kCountingHooks = true;
#endif
// Leak-checking builds of the host keep unloaded libraries mapped, so what a
// library leaves running does not crash there.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kLibrariesUnmapped = false;
#else
constexpr bool kLibrariesUnmapped = true;
#endif

// sorvane validate on the faulty plug-in carrying `fault` (a name it knows,
// "none" for none), or on any plug-in given by path.
ToolRun validatePath(const std::string& plugin, const std::string& arguments, int level = 1,
                     const std::string& prefix = "", int seed = 1) {
    return runCommand(prefix + "'" + SORVANE_TOOL + "' validate --plugin '" + plugin + "' --level " +
                      std::to_string(level) + " --seed " + std::to_string(seed) + " " + arguments);
}

ToolRun validate(const std::string& fault, const std::string& arguments, int level = 1, const std::string& prefix = "",
                 int seed = 1) {
    const char* plugin = fault == "extra_export" ? FAULTY_EXTRA_EXPORT_PLUGIN : FAULTY_PLUGIN;
    return validatePath(plugin, arguments, level, "FAULTY_PLUGIN_FAULT=" + fault + " " + prefix, seed);
}

// The line a check printed, or empty.
std::string lineOf(const std::string& output, const std::string& check) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind(check + " ", 0) == 0) return line;
    return {};
}

struct Fault {
    const char* fault;
    const char* check;
    const char* detail;  // a piece of the failing line naming what was found
    int level = 1;       // the level the check runs from
};

std::ostream& operator<<(std::ostream& out, const Fault& fault) { return out << fault.check; }

class FaultyPlugin : public testing::TestWithParam<Fault> {};

TEST_P(FaultyPlugin, TheMatchingCheckFails) {
    const Fault& fault = GetParam();
    if (!kCountingHooks && std::string(fault.check) == "realtime-safety") GTEST_SKIP() << "no counting hooks";
    if (!kLibrariesUnmapped && std::string(fault.check) == "library-reload") GTEST_SKIP() << "libraries stay mapped";
    const ToolRun run = validate(fault.fault, std::string("--only ") + fault.check, fault.level);
    const std::string line = lineOf(run.output, fault.check);
    ASSERT_FALSE(line.empty()) << run.output;
    EXPECT_NE(line.find(" FAIL "), std::string::npos) << line;
    EXPECT_NE(line.find(fault.detail), std::string::npos) << line;
    EXPECT_EQ(run.status, 1) << run.output;
}

INSTANTIATE_TEST_SUITE_P(
    Validate, FaultyPlugin,
    testing::Values(
        Fault{"unwritten_output", "outputs-written", "output 1 unwritten"},
        Fault{"allocates", "realtime-safety", "new"}, Fault{"locks", "realtime-safety", "pthread_mutex_lock"},
        Fault{"sticky_nan", "nan-recovery", "of the first block of finite input"},
        Fault{"extra_export", "exported-symbols", "faultyHelper"},
        Fault{"changes_input", "inputs-unchanged", "input 0 changed"},
        Fault{"walks_pointers", "shared-pointer-array", "wrote outside the block"},
        Fault{"long_text", "parameter-texts", "where the host gives 32"},
        Fault{"no_flush", "suspend-flush", "after suspend/resume"},
        Fault{"program_unchecked", "program-out-of-range", "effGetProgram answers"},
        Fault{"slow_create", "create-close", "to create (limit 100 ms)"},
        Fault{"subnormal_output", "noise-random-changes", "subnormal"},
        Fault{"double_differs", "float-double", "double gives the second"},
        Fault{"mixes_blockwise", "in-place", "in-place channels: output 1 differs"},
        Fault{"unstable_low_rate", "sample-rates", "8000 Hz"}, Fault{"block_ramp", "block-sizes", "blocks of 1:"},
        Fault{"shared_state", "instances-independent", "with three other instances busy", 2},
        Fault{"sleeps", "realtime-safety", "sleep"}, Fault{"needs_resume", "process-before-resume", "crashed: "},
        Fault{"long_program_name", "program-names", "where the host gives 24"},
        Fault{"double_suspend", "open-twice", "crashed: "}, Fault{"thread_outlives", "library-reload", "crashed: ", 2},
        Fault{"divides_at_one", "parameter-fuzz", "on output"},
        Fault{"events_unchecked", "dispatcher-sweep", "crashed: ", 2},
        Fault{"chunk_forgets", "state-chunk", "parameter 1 reads"},
        Fault{"long_vendor", "load", "vendor: 69 bytes with the terminator where the host gives 64"}),
    [](const testing::TestParamInfo<Fault>& info) {
        std::string name = info.param.check;
        for (char& c : name)
            if (c == '-') c = '_';
        return name + "_" + std::to_string(info.index);
    });

TEST(Validate, AFaultlessPluginPassesEveryCheckAndEachPrintsOneLine) {
    const ToolRun quick = validate("none", "");
    const ToolRun standard = validate("none", "", 2);
    EXPECT_EQ(standard.status, 0) << standard.output;
    EXPECT_EQ(standard.output.find(" FAIL "), std::string::npos) << standard.output;
    // It has no editor, so those checks say why they did not run.
    EXPECT_NE(lineOf(standard.output, "close-editor-open").find("SKIP  skipped: no editor"), std::string::npos)
        << standard.output;
    if (kCountingHooks) {
        EXPECT_NE(lineOf(standard.output, "realtime-safety").find(" PASS "), std::string::npos) << standard.output;
    }
    // Level 1 leaves out what only level 2 (the default) adds; both end with the tally.
    EXPECT_TRUE(lineOf(quick.output, "instances-independent").empty()) << quick.output;
    EXPECT_FALSE(lineOf(standard.output, "instances-independent").empty()) << standard.output;
    EXPECT_NE(quick.output.find(" passed, 0 failed, "), std::string::npos) << quick.output;
    std::istringstream lines(standard.output);
    int passes = 0, skips = 0;
    for (std::string line; std::getline(lines, line);) {
        passes += line.find("  PASS  ") != std::string::npos;
        skips += line.find("  SKIP  ") != std::string::npos;
    }
    EXPECT_GE(skips, 4);  // the editor checks, for want of an editor
    EXPECT_NE(standard.output.find(std::to_string(passes) + " passed, 0 failed, " + std::to_string(skips) + " skipped"),
              std::string::npos)
        << standard.output;
}

TEST(Validate, ACrashFailsOnlyItsOwnCheck) {
    const ToolRun run = validate("negative_frames", "--only zero-negative-frames outputs-written");
    EXPECT_NE(lineOf(run.output, "zero-negative-frames").find("FAIL  crashed"), std::string::npos) << run.output;
    EXPECT_NE(lineOf(run.output, "outputs-written").find(" PASS "), std::string::npos) << run.output;
    EXPECT_EQ(run.status, 1);
}

TEST(Validate, TheSeedMakesTheRandomPartsRepeatable) {
    // The failing frame of the poisoned plug-in is drawn at random.
    const ToolRun first = validate("sticky_nan", "--only nan-recovery");
    const ToolRun again = validate("sticky_nan", "--only nan-recovery");
    EXPECT_EQ(lineOf(first.output, "nan-recovery"), lineOf(again.output, "nan-recovery"));
    const std::string other = lineOf(validate("sticky_nan", "--only nan-recovery", 1, "", 2).output, "nan-recovery");
    EXPECT_NE(other.find(" FAIL "), std::string::npos) << other;
    EXPECT_NE(lineOf(first.output, "nan-recovery"), other);
}

TEST(Validate, EditorChecksSayWhyWithoutADisplayAndFindAConnectionLeftOpen) {
    const ToolRun headless = validate("editor_leaks", "--only editor", 1, "env -u DISPLAY ");
    EXPECT_NE(lineOf(headless.output, "close-editor-open").find("SKIP  skipped: no display"), std::string::npos)
        << headless.output;
    EXPECT_EQ(headless.status, 0) << headless.output;
#ifdef XVFB_RUN
    const ToolRun run = validate("editor_leaks", "--only editor", 1, std::string(XVFB_RUN) + " -a ");
    for (const char* check : {"close-editor-open", "editor-open-close"})
        EXPECT_NE(lineOf(run.output, check).find("FAIL  "), std::string::npos) << run.output;
    EXPECT_NE(lineOf(run.output, "editor-open-close").find("file descriptors left open"), std::string::npos)
        << run.output;
    // Odd requests and automation while it idles are handled well enough.
    EXPECT_NE(lineOf(run.output, "editor-odd-requests").find(" PASS "), std::string::npos) << run.output;
#else
    GTEST_SKIP() << "no xvfb-run for the part with a display";
#endif
}

TEST(Validate, APluginThatCannotBeLoadedStopsTheRun) {
    const ToolRun run = validatePath("/nonexistent/plug-in.so", "");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(lineOf(run.output, "load").find("FAIL  cannot load"), std::string::npos) << run.output;
    EXPECT_TRUE(lineOf(run.output, "exported-symbols").empty()) << run.output;
}

}  // namespace

// The zipper check measures any plug-in's named parameter, and says what a
// half-given sweep lacks.
TEST(Validate, ZipperFiguresForANamedParameter) {
    const ToolRun named = runCommand(std::string("'") + SORVANE_TOOL +
                                     "' validate --level 3 --only zipper --zipper-parameter Tilt --zipper-range 0:30");
    EXPECT_EQ(named.status, 0) << named.output;
    EXPECT_NE(named.output.find("zipper                     PASS  Tilt 0..30 in 2 s: every frame -"), std::string::npos)
        << named.output;
    EXPECT_NE(validate("none", "--only zipper --zipper-parameter Gain", 3).output.find("--zipper-range FROM:TO"),
              std::string::npos);
}
