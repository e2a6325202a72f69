// The tool with a plug-in that is not ours: an established decoder from the
// Debian archive (scripts/setup installs it), float callback only, 64 buses.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

#include "RenderFiles.h"
#include "Sorvane.h"

namespace {

const char* const kPeer = "/usr/lib/x86_64-linux-gnu/iem-plugin-suite/vst/libSimpleDecoder.so";

class ForeignPlugin : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(kPeer)) GTEST_SKIP() << "iem-plugin-suite-vst is not installed";
        dir = std::filesystem::temp_directory_path() / ("sorvane-foreign-" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir);
        input = (dir / "in.wav").string();
        writeSound(input, 4, 48000, 4800, planeWave(0, 440, 48000));
    }
    void TearDown() override { std::filesystem::remove_all(dir); }
    std::filesystem::path dir;
    std::string input;
};

}  // namespace

TEST_F(ForeignPlugin, RendersWithoutOurChannelOrderAndWritesTheOutputsAskedFor) {
    const std::string out = (dir / "out.wav").string();
    const ToolRun run =
        runSorvane("render -q '" + input + "' '" + out + "' --plugin '" + kPeer + "' --program 5.1 --outputs 6");
    ASSERT_EQ(run.status, 0) << run.output;
    const Sound sound = readSound(out);
    EXPECT_EQ(sound.channels, 6);
    EXPECT_EQ(sound.frames(), 4800);
    // A source straight ahead reaches the front pair.
    EXPECT_GT(sound.rms(0, 2400), 0.01);
    EXPECT_GT(sound.rms(1, 2400), 0.01);

    const ToolRun refused =
        runSorvane("render -q '" + input + "' '" + out + "' --plugin '" + kPeer + "' --channel-order 5.1");
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.output.find("--channel-order needs a plug-in"), std::string::npos) << refused.output;
}

TEST_F(ForeignPlugin, BenchSaysWhenThereIsNoDoubleCallback) {
    const ToolRun run = runSorvane(std::string("bench --seconds 0.05 --block 64 --plugin '") + SORVANE_PLUGIN_PATH +
                                   "' --plugin '" + kPeer + "' --program Stereo --outputs 2");
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("SimpleDecoder [Stereo]         double  no double-precision callback"), std::string::npos)
        << run.output;
    // Ours has both callbacks, so it gets a double figure.
    EXPECT_NE(run.output.find("Sorvane                        double "), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("Sorvane                        double  no double"), std::string::npos) << run.output;
}
