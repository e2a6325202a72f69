// sorvane info as a user runs it: the text it prints and its exit status.
#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>

#include "ToolRun.h"

namespace {

bool hasLine(const std::string& text, const std::string& pattern) {
    return std::regex_search(text, std::regex(pattern, std::regex::multiline));
}

}  // namespace

TEST(InfoCommand, ShowsOurPluginByDefault) {
    const ToolRun run = sorvane("info");
    ASSERT_EQ(run.status, 0) << run.output;
    const std::string& out = run.output;
    EXPECT_TRUE(hasLine(out, "^Name: +Sorvane$")) << out;
    EXPECT_TRUE(hasLine(out, "^Vendor: +Tamberlyn$"));
    EXPECT_TRUE(hasLine(out, "^Unique ID: +'Zrbq' \\(0x5A726271\\)$"));
    EXPECT_TRUE(hasLine(out, "^Inputs: +4$"));
    EXPECT_TRUE(hasLine(out, "^Outputs: +6$"));
    EXPECT_TRUE(hasLine(out, "^Category: +5 \\(Spacializer\\)$"));
    EXPECT_TRUE(hasLine(out, "^Flags: +462[45] \\(.*CanReplacing, NoSoundInStop, CanDoubleReplacing\\)$"));
    // Every parameter with name, value, display and label.
    EXPECT_TRUE(hasLine(out, "^ +0  Rotate +0\\.500000  0\\.0\u00B0 +Degrees$")) << out;
    EXPECT_TRUE(hasLine(out, "^ +13  Sub\\. Xover +0\\.454545  120Hz +Hz$"));
    EXPECT_TRUE(hasLine(out, "^ +19  Ch\\. Order +1\\.000000  5\\.1 +Output$"));
    const std::regex parameterLine("^ +[0-9]+  .+  [-0-9.]+  .+$", std::regex::multiline);
    EXPECT_EQ(std::distance(std::sregex_iterator(out.begin(), out.end(), parameterLine),
                            std::sregex_iterator()),
              20);
    // Five programs of each of the five layouts.
    for (const char* name : {"Stereo XY Microphones", "2.1 MS with 'Verb", "Quad XY with MS",
                             "5.0 Heller et. al. 1", "5.1 Heller et. al. 2"})
        EXPECT_NE(out.find(name), std::string::npos) << name;
    const std::regex programLine("^    [0-4]: .+$", std::regex::multiline);
    EXPECT_EQ(std::distance(std::sregex_iterator(out.begin(), out.end(), programLine),
                            std::sregex_iterator()),
              25);
}

TEST(InfoCommand, LoadsAnotherPlugin) {
    const ToolRun run = sorvane(std::string("info --plugin '") + OTHER_PLUGIN + "'");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(hasLine(run.output, "^Name: +Probe$")) << run.output;
    EXPECT_TRUE(hasLine(run.output, "^Inputs: +2$"));
    EXPECT_EQ(run.output.find("Programs of every layout"), std::string::npos);
}

TEST(InfoCommand, ReportsAnUnloadablePlugin) {
    const ToolRun run = sorvane("info --plugin /nonexistent/None.so");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("sorvane info: cannot load /nonexistent/None.so"), std::string::npos)
        << run.output;
    EXPECT_NE(sorvane("").status, 0);  // a subcommand is required
}
