// AmbiX material from a plug-in we did not write (an established stereo
// encoder from the Debian archive, scripts/setup installs it) decoded with
// Input "AmbiX" or "N3D": each source lands on the speakers its direction
// says, in the VST edition (through `sorvane render`) and in the LV2 edition
// (through lv2apply) alike. Read as B-Format the same file puts a source on
// the left straight ahead, which is what users met before.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "Interaural.h"
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
    std::string encode(int azimuth, const char* normalisation, const std::string& source = "tone.wav") {
        const std::string out = path("enc" + std::to_string(azimuth) + normalisation + source);
        const ToolRun run =
            runSorvane("render -q " + path(source) + " " + out + " --plugin '" + kEncoder +
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

// How the two ears differ, over the file's last 4096 frames.
sorvane_test::Interaural interaural(const Sound& s) {
    return sorvane_test::interaural([&s](long t, int c) { return s.at(t, c); }, s.frames());
}

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

// On headphones, both layouts agree with the peer's first-order binaural
// decoder on which side every lateral source is (level, and time where the
// layout gives a time cue), a frontal source is balanced, and our time
// difference grows from the front to the side. The LV2 edition's ears are
// the VST edition's.
TEST_F(Ambix, OnHeadphonesSourcesAreHeardOnTheirSide) {
    const char* const peer = "/usr/lib/x86_64-linux-gnu/iem-plugin-suite/vst/libBinauralDecoder.so";
    std::mt19937 random(3);
    std::uniform_real_distribution<float> noise(-0.3f, 0.3f);
    writeSound(path("noise.wav"), 4, 48000, 24000, [&](long, float* o) {
        o[0] = o[1] = noise(random);
        o[2] = o[3] = 0;
    });
    const auto ears = [&](const std::string& in, const std::string& arguments) {
        return written(runSorvane("render -q " + in + " " + path("ears.wav") + " " + arguments), "ears.wav");
    };
    for (const char* layout : {"stereo", "5.1"}) {
        double lastTime = 0;
        for (int azimuth : {0, 30, 60, 90, 135, 180, -30, -60, -90, -135}) {
            const std::string ambix = encode(azimuth, "SN3D", "noise.wav");
            const Sound ours = ears(ambix, std::string("--input ambix --set Output=Headphones --layout ") + layout);
            const Sound theirs = ears(ambix, std::string("--plugin ") + peer + " --outputs 2 --set 'Input Ambisonic Order=1st'");
            ASSERT_EQ(ours.channels, 2);
            const auto a = interaural(ours), b = interaural(theirs);
            const std::string where = std::to_string(azimuth) + " degrees in " + layout;
            if (azimuth == 0) {
                EXPECT_LT(std::fabs(a.level), 1.0) << where;
            }
            if (azimuth % 180 == 0) continue;
            EXPECT_GT(a.level * b.level, 0) << where << ": " << a.level << " dB, the peer " << b.level;
            // A rear source in 5.1 plays coherently from both surround
            // speakers at +-110 degrees: the near ears of the two, at equal
            // delay, dominate the correlation and leave no time cue, as in
            // a room with those speakers. Its level cue still holds.
            if (std::abs(azimuth) <= 90 || std::string(layout) == "stereo") {
                EXPECT_GT(a.time * b.time, 0) << where << ": " << a.time << " frames, the peer " << b.time;
            }
            EXPECT_GT(a.level * azimuth, 0) << where << ": the left ear is louder for a source on the left";
            if (azimuth > 0 && azimuth <= 90) {
                EXPECT_GE(a.time, lastTime) << where;
                lastTime = a.time;
            }
        }
        EXPECT_GT(lastTime, 0) << layout;
    }
#if !defined(__SANITIZE_ADDRESS__)  // lv2apply cannot load this build's sanitized library
    const std::string ambix = encode(90, "SN3D", "noise.wav");
    const Sound vst = ears(ambix, "--input ambix --set Output=Headphones --layout 5.1 --channel-order 5.1");
    const Sound lv2 = decodeLv2(ambix, "-c input 1 -c layout 4 -c surround_width 55 -c output 1");
    ASSERT_EQ(lv2.channels, 6);
    for (long f = 0; f < vst.frames(); ++f)
        for (int c = 0; c < 2; ++c) ASSERT_NEAR(lv2.at(f, c), vst.at(f, c), 1e-5) << f;
#endif
}
