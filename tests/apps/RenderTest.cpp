// sorvane render as a user runs it: where sources land, sameness with the
// plug-in driven directly, file formats, and every kind of bad input.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <regex>

#include "AudioBuffer.h"
#include "Plugin.h"
#include "RenderFiles.h"
#include "Sorvane.h"
#include "SorvaneProtocol.h"
#include "Tolerances.h"

namespace fs = std::filesystem;

namespace {

class Render : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() / ("sorvane-render-" + std::to_string(getpid()) + "-" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    std::string path(const std::string& name) const { return (dir / name).string(); }
    ToolRun render(const std::string& args) { return runSorvane("render -q " + args); }

    fs::path dir;
};

double dB(double ratio) { return 20 * std::log10(ratio); }

}  // namespace

TEST_F(Render, SourcesLandWhereTheLayoutPutsThem) {
    writeSound(path("front.wav"), 4, 48000, 9600, planeWave(0, 500, 48000));
    ASSERT_EQ(render(path("front.wav") + " " + path("stereo.wav") + " --layout stereo --program 0").status, 0);
    const Sound stereo = readSound(path("stereo.wav"));
    ASSERT_EQ(stereo.channels, 2);
    for (long f = 0; f < stereo.frames(); ++f) ASSERT_EQ(stereo.at(f, 0), stereo.at(f, 1)) << f;
    EXPECT_GT(stereo.rms(0), 0.1);

    writeSound(path("rear.wav"), 4, 48000, 9600, planeWave(180, 500, 48000));
    ASSERT_EQ(render(path("rear.wav") + " " + path("five.wav") + " --layout 5.0").status, 0);
    const Sound five = readSound(path("five.wav"));
    ASSERT_EQ(five.channels, 5);  // L R C Ls Rs
    EXPECT_GT(dB(five.rms(3) / five.rms(0)), 15.0);
    EXPECT_GT(dB(five.rms(4) / five.rms(1)), 15.0);
    EXPECT_GT(dB(five.rms(3) / five.rms(2)), 15.0);
}

// The file is exactly what the plug-in gives a host calling it block by block.
TEST_F(Render, EqualsThePluginDrivenDirectly) {
    const int block = 300, rate = 44100;
    writeSound(path("in.wav"), 4, rate, 5000, [](long n, float* o) {
        for (int c = 0; c < 4; ++c) o[c] = float(std::sin(0.01 * n * (c + 1)) * 0.4);
    });
    for (const char* precision : {"float", "double"}) {
        const ToolRun run =
            render(path("in.wav") + " " + path("out.wav") +
                   " --layout 5.1 --program 1 --set Rotate=0.3n --set Zoom=0.8n --set 'Zoom Method=0.6n'"
                   " --block 300 --precision " +
                   precision);
        ASSERT_EQ(run.status, 0) << run.output;
        const Sound rendered = readSound(path("out.wav"));
        const Sound input = readSound(path("in.wav"));

        std::string error;
        auto plugin = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
        ASSERT_TRUE(plugin) << error;
        plugin->open();
        plugin->setParameter(kDecodeMode, sorvane::layoutValue(sorvane::kFiveOneLayout));
        plugin->setProgram(1);
        plugin->setParameter(kChannelOrder, 0.0f);  // natural, as the tool asks by default
        plugin->setParameter(kRotate, 0.3f);
        plugin->setParameter(kZoom, 0.8f);
        plugin->setParameter(kZoomMethod, 0.6f);
        plugin->setSampleRate(rate);
        plugin->setBlockSize(block);
        plugin->resume();
        ASSERT_EQ(rendered.channels, 6);
        ASSERT_EQ(rendered.frames(), input.frames());
        const bool doubles = std::string(precision) == "double";
        vsthost::AudioBuffer<double> in(4, block), out(6, block);
        vsthost::AudioBuffer<float> floatIn(4, block), floatOut(6, block);
        for (long start = 0; start < input.frames(); start += block) {
            const long n = std::min<long>(block, input.frames() - start);
            for (long f = 0; f < n; ++f)
                for (int c = 0; c < 4; ++c) floatIn[c][f] = float(in[c][f] = input.at(start + f, c));
            if (doubles)
                plugin->processDouble(in.pointers(), out.pointers(), n);
            else
                plugin->processFloat(floatIn.pointers(), floatOut.pointers(), n);
            for (long f = 0; f < n; ++f)
                for (int c = 0; c < 6; ++c)
                    ASSERT_EQ(rendered.at(start + f, c), doubles ? float(out[c][f]) : floatOut[c][f])
                        << precision << " frame " << start + f << " ch " << c;
        }
    }
}

// The same scene in Sorvane's convention and in AmbiX (W at full level,
// channel order W, Y, Z, X) decodes alike; with three channels, in each
// dialect's horizontal subset (W, X, Y and W, Y, X).
TEST_F(Render, AmbiXInputIsReadInItsOwnOrderAndLevels) {
    auto scene = [](long n, float* o) {
        planeWave(70, 300, 48000, 25)(n, o);
        planeWave(-120, 700, 48000, -10)(n, o + 4);
        for (int c = 0; c < 4; ++c) o[c] += o[c + 4];
    };
    for (int channels : {4, 3}) {
        writeSound(path("fuma.wav"), channels, 48000, 4800, [&](long n, float* o) {
            float b[8];
            scene(n, b);
            for (int c = 0; c < channels; ++c) o[c] = b[c];
        });
        writeSound(path("ambix.wav"), channels, 48000, 4800, [&](long n, float* o) {
            float b[8];
            scene(n, b);
            const float acn[4] = {float(b[0] * std::sqrt(2.0)), b[2], channels == 4 ? b[3] : b[1], b[1]};
            for (int c = 0; c < channels; ++c) o[c] = acn[c];
        });
        ASSERT_EQ(render(path("fuma.wav") + " " + path("a.wav") + " --layout quad").status, 0);
        ASSERT_EQ(render("--ambix " + path("ambix.wav") + " " + path("b.wav") + " --layout quad").status, 0);
        const Sound a = readSound(path("a.wav")), b = readSound(path("b.wav"));
        ASSERT_EQ(a.samples.size(), b.samples.size());
        for (std::size_t i = 0; i < a.samples.size(); ++i)
            ASSERT_NEAR(a.samples[i], b.samples[i], kFloatRounding) << channels << " channels, sample " << i;
    }
}

// Automation moves a source from the front to the left; a malformed one is
// refused before anything is written.
TEST_F(Render, AutomationMovesAtTheFramesItNames) {
    writeSound(path("front.wav"), 4, 48000, 9600, planeWave(0, 500, 48000));
    const ToolRun run = render(path("front.wav") + " " + path("pan.wav") +
                               " --layout stereo --set Smoothing=Off --block 1000 --automate Rotate=0.05:0,0.1:90");
    ASSERT_EQ(run.status, 0) << run.output;
    const Sound pan = readSound(path("pan.wav"));
    double startL = 0, startR = 0, endL = 0, endR = 0;
    for (long f = 0; f < 2400; ++f) startL += std::fabs(pan.at(f, 0)), startR += std::fabs(pan.at(f, 1));
    for (long f = 4800; f < 9600; ++f) endL += std::fabs(pan.at(f, 0)), endR += std::fabs(pan.at(f, 1));
    EXPECT_NEAR(startL, startR, 1e-3 * startL) << "in front until 0.05 s";
    EXPECT_GT(endL, 2 * endR) << "on the left from 0.1 s";

    for (auto [automate, reason] : {std::pair{"Nope=0:1", "unknown parameter 'Nope'"},
                                    {"Rotate=0.1:0,0.1:90", "the times must increase"},
                                    {"Rotate=0:0,1:500", "out of range"}}) {
        const ToolRun refused = render(path("front.wav") + " " + path("no.wav") + " --automate " + automate);
        EXPECT_EQ(refused.status, 1) << automate;
        EXPECT_NE(refused.output.find(reason), std::string::npos) << refused.output;
        EXPECT_FALSE(std::filesystem::exists(path("no.wav"))) << automate;
    }
}

TEST_F(Render, WavFilesCarryTheLayoutsChannelMask) {
    struct Case {
        const char* args;
        int channels;
        unsigned mask;
    };
    const Case cases[] = {
        {"--layout stereo", 2, 0x3}, {"--layout 2.1", 3, 0xB},  {"--layout quad", 4, 0x33},
        {"--layout 5.0", 5, 0x37},   {"--layout 5.1", 6, 0x3F}, {"--layout stereo --channel-order 5.1", 6, 0x3F},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(render(path("demo.wav") + " " + c.args).status, 0) << c.args;
        const std::string bytes = fileBytes(path("demo.wav"));
        const auto fmt = bytes.find("fmt ");
        ASSERT_NE(fmt, std::string::npos);
        auto u16 = [&](std::size_t at) {
            return unsigned((unsigned char)bytes[at]) | unsigned((unsigned char)bytes[at + 1]) << 8;
        };
        const std::size_t body = fmt + 8;
        EXPECT_EQ(u16(body), 0xFFFEu) << "WAVE_FORMAT_EXTENSIBLE";
        EXPECT_EQ(u16(body + 2), unsigned(c.channels)) << c.args;
        EXPECT_EQ(u16(body + 20) | u16(body + 22) << 16, c.mask) << c.args;
    }
}

TEST_F(Render, OtherFormatsAndBitDepthsByRequest) {
    ASSERT_EQ(render(path("demo.flac") + " --layout stereo").status, 0);
    SF_INFO info{};
    SNDFILE* f = sf_open(path("demo.flac").c_str(), SFM_READ, &info);
    ASSERT_TRUE(f);
    sf_close(f);
    EXPECT_EQ(info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_FLAC);
    ASSERT_EQ(render(path("demo16.wav") + " --bits 16").status, 0);
    f = sf_open(path("demo16.wav").c_str(), SFM_READ, &info);
    ASSERT_TRUE(f);
    sf_close(f);
    EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_16);
    EXPECT_EQ(info.samplerate, 48000);
}

TEST_F(Render, DemoSceneShowsWhereEachSourceLands) {
    const ToolRun run = runSorvane("render " + path("demo.wav") + " --layout 5.0");
    ASSERT_EQ(run.status, 0) << run.output;
    for (const char* row : {"front", "left", "rear", "right", "above", "all together"})
        EXPECT_NE(run.output.find(row), std::string::npos) << row;
    EXPECT_NE(run.output.find("peak dBFS"), std::string::npos);
    const Sound s = readSound(path("demo.wav"));
    EXPECT_EQ(s.channels, 5);
    EXPECT_GT(s.frames(), 48000 * 3);
}

// Display units on the command line, printed back as the plug-in shows them.
TEST_F(Render, ValuesInDisplayUnits) {
    const ToolRun run =
        runSorvane("render " + path("o.wav") +
                   " --layout 2.1 --set Width=30 --set 'Zoom Method=focus' --set 'Sub. Gain=-6dB'"
                   " --set 'Sub. Xover=80Hz' --set Rotate=-90 --set Pattern=Hyper-Card --set RearVerb=Off"
                   " --set HiVerb=-12.5 --set Zoom=0.25n");
    ASSERT_EQ(run.status, 0) << run.output;
    for (const char* shown :
         {"Width +30.0°", "Zoom Method +Focus", "Sub. Gain +-6.00dB", "Sub. Xover +80Hz", "Rotate +-90.0°",
          "Pattern +Hyper-Card\\.", "RearVerb +Off", "HiVerb +-12.50dB", "Zoom +-50.0%"})
        EXPECT_TRUE(std::regex_search(run.output, std::regex(shown))) << shown << "\n" << run.output;
}

TEST_F(Render, BadInputIsRefusedAndNothingIsLost) {
    writeSound(path("two.wav"), 2, 48000, 100, [](long, float* o) { o[0] = o[1] = 0.1f; });
    writeSound(path("five.wav"), 5, 48000, 100, [](long, float* o) {
        for (int c = 0; c < 5; ++c) o[c] = 0.1f;
    });
    writeSound(path("good.wav"), 4, 48000, 100, planeWave(0, 100, 48000));
    std::ofstream(path("junk.wav")) << "not a sound file";
    std::ofstream(path("keep.wav")) << "an earlier render";
    fs::create_directories(path("locked"));
    fs::permissions(path("locked"), fs::perms::owner_read | fs::perms::owner_exec);

    // Every refusal names its cause and leaves every file as it was.
    const std::pair<std::string, std::string> cases[] = {
        {path("missing.wav") + " " + path("out.wav"), "not found"},
        {path("junk.wav") + " " + path("out.wav"), "cannot read"},
        {path("two.wav") + " " + path("out.wav"), "2 channels"},
        {path("five.wav") + " " + path("out.wav"), "5 channels"},
        {path("good.wav") + " " + path("keep.wav") + " --set Warp=3", "Rotate, Tilt"},
        {path("good.wav") + " " + path("keep.wav") + " --program 'No Such'", "Stereo XY Microphones"},
        {path("good.wav") + " " + path("keep.wav") + " --program 7", "does not exist"},
        {path("good.wav") + " " + path("keep.wav") + " --set Width=120", "out of range"},
        {path("good.wav") + " " + path("keep.wav") + " --set 'Zoom Method=Sideways'", "\"Focus\""},
        {path("good.wav") + " " + path("keep.wav") + " --set Zoom=1.5n", "between 0 and 1"},
        {path("good.wav") + " " + path("keep.wav") + " --layout 7.1", "unknown layout"},
        {path("good.wav") + " " + path("good.wav"), "is the input"},
        {path("good.wav") + " " + path("nowhere/out.wav"), "cannot write"},
    };
    const std::string keep = fileBytes(path("keep.wav")), good = fileBytes(path("good.wav"));
    for (const auto& [args, message] : cases) {
        const ToolRun run = render(args);
        EXPECT_NE(run.status, 0) << args;
        EXPECT_NE(run.output.find(message), std::string::npos) << args << "\n" << run.output;
        EXPECT_EQ(fileBytes(path("keep.wav")), keep) << args;
        EXPECT_EQ(fileBytes(path("good.wav")), good) << args;
        EXPECT_FALSE(fs::exists(path("out.wav")) || fs::exists(path("nowhere/out.wav"))) << args;
    }
    // A directory without write permission (root may write anywhere).
    if (getuid() != 0) {
        const ToolRun run = render(path("good.wav") + " " + path("locked/out.wav"));
        EXPECT_NE(run.status, 0);
        EXPECT_NE(run.output.find("cannot write"), std::string::npos) << run.output;
        EXPECT_FALSE(fs::exists(path("locked/out.wav")));
    }
    // No temporary file was left behind anywhere.
    for (const auto& entry : fs::directory_iterator(dir))
        EXPECT_NE(entry.path().filename().string()[0], '.') << entry.path();
}

TEST_F(Render, FullDiskLeavesNoFileAndKeepsTheOldOne) {
    const std::string small = path("small");
    fs::create_directories(small);
    if (mount("tmpfs", small.c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "cannot mount a small disk here";
    std::ofstream(small + "/out.wav") << "an earlier render";
    const ToolRun run = render(path("small/out.wav") + " --layout 5.1");
    const std::string after = fileBytes(small + "/out.wav");
    std::vector<std::string> left;
    for (const auto& e : fs::directory_iterator(small)) left.push_back(e.path().filename().string());
    umount(small.c_str());
    EXPECT_NE(run.status, 0);
    EXPECT_NE(run.output.find("disk full"), std::string::npos) << run.output;
    EXPECT_EQ(after, "an earlier render");
    EXPECT_EQ(left, std::vector<std::string>{"out.wav"});
}
