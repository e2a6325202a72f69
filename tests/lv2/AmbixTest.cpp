// AmbiX material from a plug-in we did not write (an established stereo
// encoder from the Debian archive, scripts/setup installs it) decoded with
// Input "AmbiX" or "N3D": each source lands on the speakers its direction
// says, in the VST edition (through `sorvane render`) and in the LV2 edition
// (through lv2apply) alike. Read as B-Format the same file puts a source on
// the left straight ahead, which is what users met before.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "Lv2Ports.h"
#include "RenderFiles.h"
#include "Sorvane.h"

namespace fs = std::filesystem;

namespace {

const char* const kEncoder = "/usr/lib/x86_64-linux-gnu/iem-plugin-suite/vst/libStereoEncoder.so";
const std::string kLv2Path = fs::path(SORVANE_LV2_BUNDLE).parent_path().string();

class Ambix : public ::testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists(kEncoder)) GTEST_SKIP() << "iem-plugin-suite-vst is not installed";
        dir = fs::temp_directory_path() / ("sorvane-ambix-" + std::to_string(getpid()));
        fs::create_directories(dir);
        // The same tone on both of the encoder's inputs: with no width it is one source.
        writeSound(path("tone.wav"), 4, 48000, 9600, [](long n, float* o) {
            const float s = float(0.3 * std::sin(2 * 3.141592653589793 * 440 * n / 48000));
            o[0] = o[1] = s;
            o[2] = o[3] = 0;
        });
    }
    void TearDown() override { fs::remove_all(dir); }
    std::string path(const std::string& name) const { return (dir / name).string(); }

    // First-order ACN material of a source at `azimuth` degrees (left positive).
    std::string encode(int azimuth, const char* normalisation) {
        const std::string out = path("enc" + std::to_string(azimuth) + normalisation + ".wav");
        const ToolRun run =
            runSorvane("render -q " + path("tone.wav") + " " + out + " --plugin '" + kEncoder +
                       "' --outputs 4 --set 'Ambisonics Order=1st' --set 'Azimuth Angle=" + std::to_string(azimuth) +
                       "' --set Normalization=" + normalisation);
        EXPECT_EQ(run.status, 0) << run.output;
        return out;
    }
    // Six feeds in 5.1 order (L R C LFE Ls Rs) from each edition.
    Sound decodeVst(const std::string& in, const char* input, const char* layout) {
        return written(runSorvane("render -q " + in + " " + path("vst.wav") + " --channel-order 5.1 --input " + input +
                                  " --layout " + layout),
                       "vst.wav");
    }
    Sound decodeLv2(const std::string& in, const std::string& controls) {
        return written(runCommand("LV2_PATH='" + kLv2Path + "' lv2apply -i " + in + " -o " + path("lv2.wav") + " " +
                                  controls + " " + sorvane::lv2::kPluginUri),
                       "lv2.wav");
    }
    Sound written(const ToolRun& run, const char* name) {
        EXPECT_EQ(run.status, 0) << run.output;
        return readSound(path(name));
    }
    fs::path dir;
};

// The level of a set of channels over the second half, past the encoder's glide into place.
double level(const Sound& s, std::initializer_list<int> channels) {
    double sum = 0;
    for (int c : channels) sum += s.rms(c, s.frames() / 2);
    return sum;
}

}  // namespace

TEST_F(Ambix, EncodedSourcesLandWhereTheirDirectionSaysInBothEditions) {
#if defined(__SANITIZE_ADDRESS__)
    const bool lv2 = false;  // lv2apply cannot load this build's sanitized library
#else
    const bool lv2 = true;
#endif
    // The LV2 ports set as the VST edition's first program of the layout sets them.
    const char* const quadProgram = "-c surround_pattern 0.75 -c surround_width 55";
    const struct {
        int azimuth;
        const char* layout;
        std::string controls;
        std::initializer_list<int> louder, softer;
    } cases[] = {
        {90, "stereo", "-c layout 0", {0}, {1}},                                   // left
        {-90, "stereo", "-c layout 0", {1}, {0}},                                  // right
        {0, "quad", std::string("-c layout 2 ") + quadProgram, {0, 1}, {4, 5}},    // front
        {180, "quad", std::string("-c layout 2 ") + quadProgram, {4, 5}, {0, 1}},  // rear
        {135, "5.1", "-c layout 4 -c surround_width 55", {4}, {5}},                // left rear
    };
    for (const auto& c : cases) {
        const std::string ambix = encode(c.azimuth, "SN3D");
        std::vector<Sound> decoded = {decodeVst(ambix, "ambix", c.layout)};
        if (lv2)
            decoded.push_back(decodeLv2(ambix, "-c input " + std::to_string(sorvane::kAmbiXInput) + " " + c.controls));
        for (const Sound& s : decoded) {
            ASSERT_EQ(s.channels, 6);
            EXPECT_GT(level(s, c.louder), 1.5 * level(s, c.softer)) << c.azimuth << " degrees in " << c.layout;
        }
        if (lv2) {
            EXPECT_EQ(decoded[1].samples, decoded[0].samples) << "both editions, " << c.layout;
        }
    }

    // N3D material of the same source decodes as its SN3D twin does.
    const Sound sn3d = decodeVst(encode(90, "SN3D"), "ambix", "stereo");
    const Sound n3d = decodeVst(encode(90, "N3D"), "n3d", "stereo");
    for (int ch : {0, 1}) EXPECT_NEAR(n3d.rms(ch, 4800), sn3d.rms(ch, 4800), 1e-4 * sn3d.rms(0, 4800)) << ch;
    // Read in Sorvane's own convention, the left source comes out straight ahead.
    const Sound misread = decodeVst(encode(90, "SN3D"), "b-format", "stereo");
    EXPECT_NEAR(level(misread, {0}), level(misread, {1}), 0.01 * level(misread, {0}));
}
