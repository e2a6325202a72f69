// .fxp and .fxb files: written by sorvane, built by hand from the format's
// description, damaged, or of another plug-in; and render --preset.
#include <gtest/gtest.h>
#include <unistd.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "Plugin.h"
#include "PresetFile.h"
#include "RenderFiles.h"
#include "Sorvane.h"
#include "SorvaneProtocol.h"

namespace fs = std::filesystem;

namespace {

class Preset : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() / ("sorvane-preset-" + std::to_string(getpid()));
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
    std::string path(const std::string& name) const { return (dir / name).string(); }
    fs::path dir;
};

void writeBytes(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
}

// Big-endian words and four-letter codes, as the format's description lays them out.
void putOne(std::vector<unsigned char>& b, std::uint32_t w) {
    for (int shift = 24; shift >= 0; shift -= 8) b.push_back(static_cast<unsigned char>(w >> shift));
}
void putOne(std::vector<unsigned char>& b, const char (&code)[5]) { b.insert(b.end(), code, code + 4); }
template <typename... Words>
void put(std::vector<unsigned char>& b, const Words&... words) {
    (putOne(b, words), ...);
}

}  // namespace

TEST_F(Preset, FilesWrittenBySorvaneReadBackIdentically) {
    ASSERT_EQ(runSorvane("preset save '" + path("a.fxb") + "' --layout 5.1 --program 3 --set Rotate=30").status, 0);
    ASSERT_EQ(runSorvane("preset save '" + path("b.fxp") + "' --layout quad --set 'Sur. Gain=-3dB'").status, 0);
    for (const char* name : {"a.fxb", "b.fxp"}) {
        vsthost::PresetFile file;
        std::string error;
        ASSERT_TRUE(vsthost::readPresetFile(path(name), file, error)) << error;
        EXPECT_EQ(file.pluginId, sorvane::kUniqueId);
        EXPECT_TRUE(file.opaque);
        const std::string bytes = fileBytes(path(name));
        EXPECT_EQ(vsthost::encodePresetFile(file), std::vector<unsigned char>(bytes.begin(), bytes.end()));
    }
    const ToolRun bank = runSorvane("preset show '" + path("a.fxb") + "'");
    EXPECT_EQ(bank.status, 0) << bank.output;
    EXPECT_NE(bank.output.find("bank (.fxb)"), std::string::npos) << bank.output;
    EXPECT_NE(bank.output.find("Settings (program 3, \"5.1 Heller et. al. 1\")"), std::string::npos) << bank.output;
    EXPECT_NE(bank.output.find("30.0\u00B0"), std::string::npos) << bank.output;
    const ToolRun program = runSorvane("preset show '" + path("b.fxp") + "'");
    EXPECT_NE(program.output.find("-3.00dB"), std::string::npos) << program.output;
    EXPECT_NE(program.output.find("Quad"), std::string::npos) << program.output;
}

// A program of parameter values and a bank around the plug-in's chunk,
// each laid out byte by byte as the format describes them.
TEST_F(Preset, HandBuiltFilesAreAccepted) {
    std::vector<unsigned char> fxp;
    // Magic, size of the rest, kind, format version, plug-in, its version, count.
    put(fxp, "CcnK", 4 * 5 + 28 + 4 * kNumParams, "FxCk", 1, sorvane::kUniqueId, 1, kNumParams);
    const char name[28] = "By hand";
    fxp.insert(fxp.end(), name, name + 28);
    for (int i = 0; i < kNumParams; ++i)
        put(fxp, std::bit_cast<std::uint32_t>(i == kZoom ? 0.75f : i == kDecodeMode ? 0.0f : 0.5f));
    writeBytes(path("hand.fxp"), fxp);
    const ToolRun shown = runSorvane("preset show '" + path("hand.fxp") + "'");
    EXPECT_EQ(shown.status, 0) << shown.output;
    EXPECT_NE(shown.output.find("Zoom           50.0%"), std::string::npos) << shown.output;
    EXPECT_NE(shown.output.find("\"By hand\""), std::string::npos) << shown.output;

    std::string error;
    auto source = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    auto target = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    ASSERT_TRUE(source && target) << error;
    source->setParameter(kDecodeMode, sorvane::layoutValue(sorvane::kFiveOneLayout));
    void* data = nullptr;
    const auto size = static_cast<std::uint32_t>(source->getChunk(&data, false));
    std::vector<unsigned char> fxb;
    put(fxb, "CcnK", 4 * 5 + 128 + 4 + size, "FBCh", 1, sorvane::kUniqueId, 1, 5);
    fxb.insert(fxb.end(), 128, 0);
    put(fxb, size);
    fxb.insert(fxb.end(), static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);
    writeBytes(path("hand.fxb"), fxb);
    vsthost::PresetFile file;
    ASSERT_TRUE(vsthost::readPresetFile(path("hand.fxb"), file, error)) << error;
    ASSERT_TRUE(vsthost::applyPreset(*target, file, error)) << error;
    EXPECT_EQ(target->parameterDisplay(kDecodeMode), "5.1");
}

TEST_F(Preset, DamagedAndForeignFilesAreRefused) {
    ASSERT_EQ(runSorvane("preset save '" + path("good.fxp") + "'").status, 0);
    const std::string good = fileBytes(path("good.fxp"));
    // Cut short at every length, and one byte too many.
    for (std::size_t size = 0; size <= good.size(); ++size) {
        std::string bytes = good.substr(0, size);
        if (size == good.size()) bytes += '\0';
        vsthost::PresetFile file;
        std::string error;
        EXPECT_FALSE(vsthost::decodePresetFile({bytes.begin(), bytes.end()}, file, error)) << size;
        EXPECT_FALSE(error.empty());
    }
    std::string foreign = good;
    foreign[16] = 'X';  // the plug-in ID
    std::ofstream(path("foreign.fxp"), std::ios::binary) << foreign;
    const ToolRun shown = runSorvane("preset show '" + path("foreign.fxp") + "'");
    EXPECT_EQ(shown.status, 1);
    EXPECT_NE(shown.output.find("belongs to plug-in 'Xrbq'"), std::string::npos) << shown.output;
    const ToolRun rendered = runSorvane("render -q '" + path("out.wav") + "' --preset '" + path("foreign.fxp") + "'");
    EXPECT_EQ(rendered.status, 1);
    EXPECT_FALSE(fs::exists(path("out.wav")));
    EXPECT_NE(runSorvane("preset save '" + path("x.txt") + "'").status, 0);
}

TEST_F(Preset, RenderWithAPresetEqualsRenderWithItsSettings) {
    const std::string settings = "--layout 5.1 --program 1 --set Rotate=-45 --set 'Zoom Method=Focus' --set Zoom=40";
    ASSERT_EQ(runSorvane("preset save '" + path("s.fxp") + "' " + settings).status, 0);
    ASSERT_EQ(runSorvane("render -q '" + path("direct.wav") + "' " + settings).status, 0);
    ASSERT_EQ(runSorvane("render -q '" + path("preset.wav") + "' --preset '" + path("s.fxp") + "'").status, 0);
    const Sound direct = readSound(path("direct.wav")), viaPreset = readSound(path("preset.wav"));
    EXPECT_EQ(direct.channels, 6);
    EXPECT_EQ(viaPreset.samples, direct.samples);
}
