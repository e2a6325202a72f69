// The bundle checked by tools we did not write: lv2ls and lv2info list it
// with every port and preset, sord_validate finds its Turtle sound against
// the LV2 vocabularies, and lv2apply renders exactly what `sorvane render`
// renders through Sorvane.so.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>

#include "Lv2Ports.h"
#include "RenderFiles.h"
#include "Sorvane.h"

namespace fs = std::filesystem;
namespace ports = sorvane::lv2;

namespace {

const std::string kLv2Path = fs::path(SORVANE_LV2_BUNDLE).parent_path().string();

ToolRun runLv2Tool(const std::string& arguments) { return runCommand("LV2_PATH='" + kLv2Path + "' " + arguments); }

}  // namespace

TEST(Lv2Tools, ListedWithEveryPortAndPreset) {
    const ToolRun list = runLv2Tool("lv2ls");
    EXPECT_EQ(list.output, std::string(ports::kPluginUri) + "\n");
    const ToolRun info = runLv2Tool(std::string("lv2info ") + ports::kPluginUri);
    ASSERT_EQ(info.status, 0) << info.output;
    EXPECT_NE(info.output.find("http://lv2plug.in/ns/lv2core#hardRTCapable"), std::string::npos);
    EXPECT_NE(info.output.find("Has latency:       yes, reported by port " + std::to_string(ports::kLatencyPort)),
              std::string::npos);

    std::vector<std::string> symbols, want(std::begin(ports::kInputSymbols), std::end(ports::kInputSymbols));
    want.insert(want.end(), std::begin(ports::kOutputSymbols), std::end(ports::kOutputSymbols));
    // The controls and the latency in port order: the settings past the twenty come last.
    for (std::uint32_t port = ports::kFirstControl; port < ports::kPortCount; ++port) {
        const int control = ports::controlOfPort(port);
        want.push_back(control >= 0                  ? ports::kControlSymbols[control]
                       : port == ports::kLatencyPort ? ports::kLatencySymbol
                                                     : ports::kTrackingStateSymbol);
    }
    const std::regex symbol(R"(Symbol:\s+(\S+))");
    for (std::sregex_iterator m(info.output.begin(), info.output.end(), symbol), end; m != end; ++m)
        symbols.push_back((*m)[1]);
    EXPECT_EQ(symbols, want);

    // Every program under its layout (the bundle test plays each one).
    const auto start = info.output.find("Presets:");
    const std::string presets = info.output.substr(start, info.output.find("\n\n", start) - start);
    EXPECT_EQ(std::count(presets.begin(), presets.end(), ':'), 1 + 25) << presets;
    for (const char* label : {"Stereo: XY Microphones", "Quad: MS with XY", "5.1: Heller et. al. 2"})
        EXPECT_NE(presets.find(label), std::string::npos) << label;
}

TEST(Lv2Tools, TurtleValidatesAgainstTheVocabularies) {
    // The vocabularies as lv2-dev lists them, without their manifests: only
    // that package's bundles, whatever other plug-ins the machine carries
    // (theirs may have errors of their own).
    const ToolRun listed = runCommand("dpkg-query -L lv2-dev");
    ASSERT_EQ(listed.status, 0) << listed.output;
    const std::regex vocabulary(R"(^/.*\.lv2/.*\.ttl$)");
    std::string files;
    std::istringstream lines(listed.output);
    for (std::string line; std::getline(lines, line);)
        if (std::regex_search(line, vocabulary) && fs::path(line).filename() != "manifest.ttl")
            files += " '" + line + "'";
    ASSERT_NE(files.find("/schemas.lv2/"), std::string::npos) << listed.output;
    for (const auto& file : fs::directory_iterator(SORVANE_LV2_BUNDLE))
        if (file.path().extension() == ".ttl") files += " '" + file.path().string() + "'";
    const ToolRun check = runCommand("sord_validate" + files);
    EXPECT_EQ(check.status, 0) << check.output;
    EXPECT_TRUE(std::regex_search(check.output, std::regex("Found 0 errors among \\d+ files"))) << check.output;
    EXPECT_EQ(check.output.find("warning"), std::string::npos) << check.output;
}

// The same settings rendered by both editions; the VST edition writes the
// layout's channels, lv2apply all six outputs.
TEST(Lv2Tools, Lv2applyEqualsSorvaneRender) {
#if defined(__SANITIZE_ADDRESS__)
    // The in-process bundle tests run the same library under the sanitizer.
    GTEST_SKIP() << "lv2apply is built without the address sanitizer and cannot load this build's library";
#endif
    const fs::path dir = fs::temp_directory_path() / ("sorvane-lv2apply-" + std::to_string(getpid()));
    fs::create_directories(dir);
    const std::string in = (dir / "in.wav").string(), vst = (dir / "vst.wav").string(),
                      lv2 = (dir / "lv2.wav").string();
    writeSound(in, 4, 48000, 6000, [](long n, float* o) {
        for (int c = 0; c < 4; ++c) o[c] = float(std::sin(0.013 * n * (c + 1) + c) * 0.4);
    });
    const struct {
        const char *render, *controls;
        int channels;
    } cases[] = {
        {"--layout stereo --set Rotate=0.1n --set Tilt=0.375n --set Zoom=0.7n --set 'Zoom Method=Push' "
         "--set RearVerb=0.75n --set HiVerb=0.25n",
         "-c channel_order 0 -c rotate 144 -c tilt 45 -c zoom 40 -c zoom_method 2 -c rear_verb -9 -c hi_verb -27", 2},
        // The 5.1 XY program differs from the ports' defaults only in its surround width.
        {"--layout 5.1 --program 0 --channel-order 5.1 --set Tumble=0.75n --set Zoom=0.25n --set 'Zoom Method=Focus' "
         "--set 'Sub. Gain=0.25n' --set 'Sub. Xover=0.7n'",
         "-c layout 4 -c surround_width 55 -c tumble -90 -c zoom -50 -c zoom_method 3 -c sub_gain -12 "
         "-c sub_crossover 174",
         6},
        // Numbers as asked land on the same engine values in both editions.
        {"--layout stereo --input n3d --set Rotate=30 --set Tilt=-12.5 --set Zoom=25",
         "-c channel_order 0 -c input 2 -c rotate 30 -c tilt -12.5 -c zoom 25", 2},
    };
    for (const auto& c : cases) {
        const ToolRun render = runSorvane("render -q " + in + " " + vst + " " + c.render);
        ASSERT_EQ(render.status, 0) << render.output;
        const ToolRun apply =
            runLv2Tool("lv2apply -i " + in + " -o " + lv2 + " " + c.controls + " " + ports::kPluginUri);
        ASSERT_EQ(apply.status, 0) << apply.output;
        const Sound a = readSound(vst), b = readSound(lv2);
        ASSERT_EQ(a.channels, c.channels);
        ASSERT_EQ(b.channels, 6);
        ASSERT_EQ(b.frames(), a.frames());
        for (long f = 0; f < a.frames(); ++f)
            for (int ch = 0; ch < 6; ++ch)
                ASSERT_EQ(b.at(f, ch), ch < c.channels ? a.at(f, ch) : 0.0f)
                    << c.render << ": frame " << f << " " << ch;
        EXPECT_GT(b.rms(0), 0.01);
    }
    fs::remove_all(dir);
}
