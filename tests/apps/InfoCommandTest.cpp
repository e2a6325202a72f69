// sorvane info as a user runs it: the text it prints and its exit status.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "Sorvane.h"

namespace {

// The output's lines with runs of spaces squeezed to one and the ends trimmed.
std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    std::string line;
    while (std::getline(stream, line)) {
        std::istringstream words(line);
        std::string word, squeezed;
        while (words >> word) squeezed += (squeezed.empty() ? "" : " ") + word;
        result.push_back(squeezed);
    }
    return result;
}

bool hasLine(const std::vector<std::string>& output, const std::string& line) {
    return std::find(output.begin(), output.end(), line) != output.end();
}

// Lines made of an index and at least one more word: parameters and programs.
long countIndexed(const std::vector<std::string>& output, const std::string& separator) {
    return std::count_if(output.begin(), output.end(), [&](const std::string& line) {
        const auto space = line.find(separator);
        return space != std::string::npos && space > 0 && line.find_first_not_of("0123456789") == space;
    });
}

}  // namespace

TEST(InfoCommand, ShowsOurPluginByDefault) {
    const ToolRun run = runSorvane("info");
    ASSERT_EQ(run.status, 0) << run.output;
    const auto out = lines(run.output);
    EXPECT_TRUE(hasLine(out, "Name: Sorvane")) << run.output;
    EXPECT_TRUE(hasLine(out, "Vendor: Tamberlyn"));
    EXPECT_TRUE(hasLine(out, "Unique ID: 'Zrbq' (0x5A726271)"));
    EXPECT_TRUE(hasLine(out, "Inputs: 4"));
    EXPECT_TRUE(hasLine(out, "Outputs: 6"));
    EXPECT_TRUE(hasLine(out, "Category: 5 (Spacializer)"));
    EXPECT_TRUE(
        hasLine(out, "Flags: 4657 (HasEditor, CanReplacing, ProgramChunks, NoSoundInStop, CanDoubleReplacing)"));
    // Every parameter with name, value, display and label.
    EXPECT_TRUE(hasLine(out, "0 Rotate 0.500000 0.0° Degrees")) << run.output;
    EXPECT_TRUE(hasLine(out, "13 Sub. Xover 0.454545 120Hz Hz"));
    EXPECT_TRUE(hasLine(out, "19 Ch. Order 1.000000 5.1 Output"));
    EXPECT_TRUE(hasLine(out, "20 Input 0.000000 B-Format Format"));
    EXPECT_TRUE(hasLine(out, "21 Smoothing 1.000000 On Switch"));
    EXPECT_TRUE(hasLine(out, "22 Output 0.000000 Speakers Monitor"));
    EXPECT_TRUE(hasLine(out, "23 Tracking 0.000000 Off Head"));
    EXPECT_EQ(countIndexed(out, " "), 24);
    EXPECT_TRUE(hasLine(out, "Headphones: /usr/share/libmysofa/default.sofa")) << run.output;
    EXPECT_NE(run.output.find("Head tracking:   OSC over UDP on the loopback interface, ports 7770-7799;"),
              std::string::npos)
        << run.output;
    // Five programs of each of the five layouts.
    for (const char* line : {"0: Stereo XY Microphones", "4: 2.1 MS with 'Verb", "3: Quad XY with MS",
                             "3: 5.0 Heller et. al. 1", "4: 5.1 Heller et. al. 2"})
        EXPECT_TRUE(hasLine(out, line)) << line;
    EXPECT_EQ(countIndexed(out, ": "), 25);
}

TEST(InfoCommand, LoadsAnotherPlugin) {
    const ToolRun run = runSorvane(std::string("info --plugin '") + OTHER_PLUGIN + "'");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(hasLine(lines(run.output), "Name: Probe")) << run.output;
    EXPECT_TRUE(hasLine(lines(run.output), "Inputs: 2"));
    EXPECT_EQ(run.output.find("Programs of every layout"), std::string::npos);
}

TEST(InfoCommand, ReportsAnUnloadablePlugin) {
    const ToolRun run = runSorvane("info --plugin /nonexistent/None.so");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("sorvane info: cannot load /nonexistent/None.so"), std::string::npos) << run.output;
    EXPECT_NE(runSorvane("").status, 0);  // a subcommand is required
}

// A file of head responses that cannot be used is named with its reason, by
// `info` (which then shows the file that plays) and as `render --sofa`'s error.
TEST(InfoCommand, SaysWhichHeadResponsesPlayAndWhyOneWasRefused) {
    const std::string bad = testing::TempDir() + "not-a-head.sofa";
    std::FILE* file = std::fopen(bad.c_str(), "w");
    ASSERT_TRUE(file);
    std::fputs("not a SOFA file\n", file);
    std::fclose(file);
    const ToolRun info = runCommand("SORVANE_SOFA='" + bad + "' '" + SORVANE_TOOL + "' info");
    EXPECT_EQ(info.status, 0) << info.output;
    const auto out = lines(info.output);
    EXPECT_TRUE(hasLine(out, "Headphones: /usr/share/libmysofa/default.sofa")) << info.output;
    EXPECT_NE(info.output.find("cannot read " + bad + ": not a SOFA file"), std::string::npos) << info.output;
    const ToolRun render = runSorvane("render -q " + testing::TempDir() + "ears.wav --sofa " + bad);
    EXPECT_EQ(render.status, 1);
    EXPECT_NE(render.output.find("cannot read " + bad), std::string::npos) << render.output;
    std::remove(bad.c_str());
}
