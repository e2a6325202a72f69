// sorvane validate run on small plug-ins with one deliberate fault each: the
// check about that fault must fail (and say what it found), and a faultless
// plug-in must pass, so the suite's passes on our plug-in mean something.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <sstream>
#include <string>

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

struct ToolRun {
    int status;
    std::string output;
};

ToolRun validate(const std::string& plugin, const std::string& arguments, int level = 1,
                 const std::string& prefix = "", int seed = 1) {
    const std::string command = prefix + "'" + SORVANE_TOOL + "' validate --plugin '" + plugin + "' --level " +
                                std::to_string(level) + " --seed " + std::to_string(seed) + " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return {-1, ""};
    std::string output;
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

// The line a check printed, or empty.
std::string lineOf(const std::string& output, const std::string& check) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if (line.rfind(check + " ", 0) == 0) return line;
    return {};
}

struct Fault {
    const char* plugin;
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
    const ToolRun run = validate(fault.plugin, std::string("--only ") + fault.check, fault.level);
    const std::string line = lineOf(run.output, fault.check);
    ASSERT_FALSE(line.empty()) << run.output;
    EXPECT_NE(line.find(" FAIL "), std::string::npos) << line;
    EXPECT_NE(line.find(fault.detail), std::string::npos) << line;
    EXPECT_EQ(run.status, 1) << run.output;
}

INSTANTIATE_TEST_SUITE_P(
    Validate, FaultyPlugin,
    testing::Values(Fault{FAULTY_UNWRITTEN_OUTPUT, "outputs-written", "output 1 unwritten"},
                    Fault{FAULTY_ALLOCATES, "realtime-safety", "new"},
                    Fault{FAULTY_LOCKS, "realtime-safety", "pthread_mutex_lock"},
                    Fault{FAULTY_STICKY_NAN, "nan-recovery", "of the first block of finite input"},
                    Fault{FAULTY_EXTRA_EXPORT, "exported-symbols", "faultyHelper"},
                    Fault{FAULTY_CHANGES_INPUT, "inputs-unchanged", "input 0 changed"},
                    Fault{FAULTY_WALKS_POINTERS, "shared-pointer-array", "wrote outside the block"},
                    Fault{FAULTY_LONG_TEXT, "parameter-texts", "where the host gives 32"},
                    Fault{FAULTY_NEGATIVE_FRAMES, "zero-negative-frames", "crashed: "},
                    Fault{FAULTY_NO_FLUSH, "suspend-flush", "after suspend/resume"},
                    Fault{FAULTY_PROGRAM_UNCHECKED, "program-out-of-range", "effGetProgram answers"},
                    Fault{FAULTY_SLOW_CREATE, "create-close", "to create (limit 100 ms)"},
                    Fault{FAULTY_SUBNORMAL_OUTPUT, "noise-random-changes", "subnormal"},
                    Fault{FAULTY_DOUBLE_DIFFERS, "float-double", "double gives the second"},
                    Fault{FAULTY_MIXES_BLOCKWISE, "in-place", "in-place channels: output 1 differs"},
                    Fault{FAULTY_UNSTABLE_LOW_RATE, "sample-rates", "8000 Hz"},
                    Fault{FAULTY_BLOCK_RAMP, "block-sizes", "blocks of 1:"},
                    Fault{FAULTY_SHARED_STATE, "instances-independent", "with three other instances busy", 2},
                    Fault{FAULTY_SLEEPS, "realtime-safety", "sleep"},
                    Fault{FAULTY_NEEDS_RESUME, "process-before-resume", "crashed: "},
                    Fault{FAULTY_LONG_PROGRAM_NAME, "program-names", "where the host gives 24"},
                    Fault{FAULTY_DOUBLE_SUSPEND, "open-twice", "crashed: "},
                    Fault{FAULTY_THREAD_OUTLIVES, "library-reload", "crashed: ", 2},
                    Fault{FAULTY_DIVIDES_AT_ONE, "parameter-fuzz", "on output"},
                    Fault{FAULTY_EVENTS_UNCHECKED, "dispatcher-sweep", "crashed: ", 2},
                    Fault{FAULTY_LONG_VENDOR, "load", "vendor: 69 bytes with the terminator where the host gives 64"}),
    [](const testing::TestParamInfo<Fault>& info) {
        std::string name = info.param.check;
        for (char& c : name)
            if (c == '-') c = '_';
        return name + "_" + std::to_string(info.index);
    });

TEST(Validate, AFaultlessPluginPassesEveryCheckOfTheDefaultLevel) {
    const ToolRun run = validate(FAULTY_NONE, "", 2);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output.find(" FAIL "), std::string::npos) << run.output;
    // It has no editor, so those checks say why they did not run.
    EXPECT_NE(lineOf(run.output, "close-editor-open").find("SKIP  skipped: no editor"), std::string::npos)
        << run.output;
    if (kCountingHooks) {
        EXPECT_NE(lineOf(run.output, "realtime-safety").find(" PASS "), std::string::npos) << run.output;
    }
}

TEST(Validate, ACrashFailsOnlyItsOwnCheck) {
    const ToolRun run = validate(FAULTY_NEGATIVE_FRAMES, "--only zero-negative-frames outputs-written");
    EXPECT_NE(lineOf(run.output, "zero-negative-frames").find("FAIL  crashed"), std::string::npos) << run.output;
    EXPECT_NE(lineOf(run.output, "outputs-written").find(" PASS "), std::string::npos) << run.output;
    EXPECT_EQ(run.status, 1);
}

TEST(Validate, TheSeedMakesTheRandomPartsRepeatable) {
    // The failing frame of the poisoned plug-in is drawn at random.
    const ToolRun first = validate(FAULTY_STICKY_NAN, "--only nan-recovery");
    const ToolRun again = validate(FAULTY_STICKY_NAN, "--only nan-recovery");
    EXPECT_EQ(lineOf(first.output, "nan-recovery"), lineOf(again.output, "nan-recovery"));
    const std::string other = lineOf(validate(FAULTY_STICKY_NAN, "--only nan-recovery", 1, "", 2).output, "nan-recovery");
    EXPECT_NE(other.find(" FAIL "), std::string::npos) << other;
    EXPECT_NE(lineOf(first.output, "nan-recovery"), other);
}

TEST(Validate, LevelsOrderTheChecksAndEachPrintsOneLine) {
    const ToolRun quick = validate(FAULTY_NONE, "");
    const ToolRun standard = validate(FAULTY_NONE, "", 2);
    // Level 1 leaves out what only level 2 adds; both end with the tally.
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

TEST(Validate, EditorChecksFindADisplayConnectionLeftOpen) {
#ifdef XVFB_RUN
    const ToolRun run = validate(FAULTY_EDITOR_LEAKS, "--only editor", 1, std::string(XVFB_RUN) + " -a ");
    for (const char* check : {"close-editor-open", "editor-open-close"})
        EXPECT_NE(lineOf(run.output, check).find("FAIL  "), std::string::npos) << run.output;
    EXPECT_NE(lineOf(run.output, "editor-open-close").find("file descriptors left open"), std::string::npos)
        << run.output;
    // Odd requests and automation while it idles are handled well enough.
    EXPECT_NE(lineOf(run.output, "editor-odd-requests").find(" PASS "), std::string::npos) << run.output;
#else
    GTEST_SKIP() << "no xvfb-run";
#endif
}

TEST(Validate, WithoutADisplayTheEditorChecksSayWhy) {
    const ToolRun run = validate(FAULTY_EDITOR_LEAKS, "--only editor", 1, "env -u DISPLAY ");
    EXPECT_NE(lineOf(run.output, "close-editor-open").find("SKIP  skipped: no display"), std::string::npos)
        << run.output;
    EXPECT_EQ(run.status, 0) << run.output;
}

TEST(Validate, APluginThatCannotBeLoadedStopsTheRun) {
    const ToolRun run = validate("/nonexistent/plug-in.so", "");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(lineOf(run.output, "load").find("FAIL  cannot load"), std::string::npos) << run.output;
    EXPECT_TRUE(lineOf(run.output, "exported-symbols").empty()) << run.output;
}

}  // namespace
