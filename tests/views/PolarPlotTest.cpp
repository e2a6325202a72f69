// The polar plot drawn off-screen against the engine: every curve must show
// what the engine sends to its speaker for a plane wave from each direction,
// |m| at 0.8 of the plot's half-height per unit, 0 degrees up and 90 to the
// left, scaled by the 400th root of the plot's gain, in the speaker's colour.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "Decoder.h"
#include "OffscreenCanvas.h"
#include "SorvaneProtocol.h"
#include "polarPlot.h"

namespace {

constexpr double kPi = 3.141592653589793;
using Pixel = std::pair<int, int>;

// Premultiplied ARGB of the opaque speaker colours.
constexpr uint32_t kLeft = 0xffff0000, kRight = 0xff0000ff, kCentre = 0xffffd700, kLeftSurround = 0xff00ff00,
                   kRightSurround = 0xff8b4513;
constexpr uint32_t kSpeakerColours[] = {kLeft, kRight, kCentre, kLeftSurround, kRightSurround};

// Off the origin, so frame coordinates are exercised; 126 pixels high.
const CRect kPlace(264, 12, 390, 138);
constexpr int kCentreX = 327, kCentreY = 75;
constexpr double kUnitRadius = 126 * 0.5 * 0.8;
constexpr double kRingRadius = 126 * 0.41;
// Plot and engine compute the same response by different roundings, and the
// plot truncates to whole pixels: a point may land one pixel over.
constexpr int kPixelRounding = 1;

// 5.1 slots of the engine's speakers, each with the plot's colour.
struct Speaker {
    int slot;
    uint32_t colour;
};
constexpr Speaker L{0, kLeft}, R{1, kRight}, C{2, kCentre}, Ls{4, kLeftSurround}, Rs{5, kRightSurround};

// One setting of the plot and the engine; gains are the plot's own.
struct Setting {
    int layout = sorvane::kStereoLayout;
    int fiveDecoderType = sorvane::kVirtualMicrophones;
    int frontMode = 0, surroundMode = 0;
    double frontPattern = 0.5, frontWidth = 45, centrePattern = 0.5, surroundPattern = 0.5, surroundWidth = 60;
    double centreGainDb = 0, surroundGainDb = 0;
    std::vector<Speaker> curves;  // in drawing order
};

// Plot and engine name the microphone settings alike.
template <typename Target>
void copyMicrophones(const Setting& s, Target& t) {
    t.fiveDecoderType = s.fiveDecoderType;
    t.frontMode = s.frontMode;
    t.frontPattern = s.frontPattern;
    t.frontWidth = s.frontWidth;
    t.centrePattern = s.centrePattern;
    t.surroundMode = s.surroundMode;
    t.surroundPattern = s.surroundPattern;
    t.surroundWidth = s.surroundWidth;
}

class Plot : public ::testing::Test {
protected:
    ~Plot() override { plot->forget(); }

    void draw() {
        canvas.render([&](CDrawContext* c) { plot->draw(c); });
    }
    std::set<Pixel> pixelsOf(uint32_t colour) const {
        std::set<Pixel> found;
        for (int y = 0; y < canvas.height; ++y)
            for (int x = 0; x < canvas.width; ++x)
                if (canvas.at(x, y) == colour) found.insert({x, y});
        return found;
    }
    bool near(const Pixel& p, const std::set<uint32_t>& colours) const {
        for (int dy = -kPixelRounding; dy <= kPixelRounding; ++dy)
            for (int dx = -kPixelRounding; dx <= kPixelRounding; ++dx)
                if (colours.count(canvas.at(p.first + dx, p.second + dy))) return true;
        return false;
    }

    // Where the engine's response to a wave from theta degrees lands.
    static Pixel pointOf(double response, double theta, double scale) {
        const double r = std::fabs(response) * kUnitRadius * scale, a = theta / 180 * kPi;
        return {static_cast<int>(std::trunc(kCentreX - r * std::sin(a))),
                static_cast<int>(std::trunc(kCentreY - r * std::cos(a)))};
    }

    void expectEngineCurves(const Setting& s) {
        plot->decodeMode = s.layout;
        plot->centreGain = s.centreGainDb;
        plot->surroundGain = s.surroundGainDb;
        copyMicrophones(s, *plot);
        draw();

        Decoder engine;
        engine.decodeMode = sorvane::kFiveLayout;  // every microphone, no crossover
        engine.channelOrder = 1;
        copyMicrophones(s, engine);
        const bool fixed = s.fiveDecoderType != sorvane::kVirtualMicrophones;
        std::set<uint32_t> drawn;
        for (const Speaker& speaker : s.curves) drawn.insert(speaker.colour);
        for (uint32_t colour : kSpeakerColours)
            EXPECT_TRUE(drawn.count(colour) || pixelsOf(colour).empty()) << std::hex << colour << " drawn";

        for (std::size_t i = 0; i < s.curves.size(); ++i) {
            const Speaker& speaker = s.curves[i];
            const double gainDb = fixed                     ? 0
                                  : speaker.slot == C.slot  ? s.centreGainDb
                                  : speaker.slot >= Ls.slot ? s.surroundGainDb
                                                            : 0;
            const double scale = std::pow(10.0, gainDb / 400);
            std::set<Pixel> expected, nearCurve;
            for (int theta = 0; theta < 360; ++theta) {
                const double a = theta / 180.0 * kPi;
                double W = 1 / std::sqrt(2.0), X = std::cos(a), Y = std::sin(a), Z = 0;
                engine.processDecoder(W, X, Y, Z);
                const Pixel e = pointOf(engine.speakerFeeds[speaker.slot], theta, scale);
                expected.insert(e);
                for (int dy = -kPixelRounding; dy <= kPixelRounding; ++dy)
                    for (int dx = -kPixelRounding; dx <= kPixelRounding; ++dx)
                        nearCurve.insert({e.first + dx, e.second + dy});
            }
            SCOPED_TRACE(testing::Message() << "slot " << speaker.slot);
            for (const Pixel& p : pixelsOf(speaker.colour))
                EXPECT_TRUE(nearCurve.count(p)) << "stray pixel at " << p.first << "," << p.second;
            // Each point shows its colour, or that of a curve drawn after it.
            std::set<uint32_t> acceptable;
            for (std::size_t j = i; j < s.curves.size(); ++j) acceptable.insert(s.curves[j].colour);
            for (const Pixel& e : expected)
                EXPECT_TRUE(near(e, acceptable)) << "missing at " << e.first << "," << e.second;
        }
    }

    OffscreenCanvas canvas{578, 300};
    polarPlot* plot = new polarPlot(kPlace);
};

}  // namespace

TEST_F(Plot, ShowsTheEnginesMicrophonesAndMatricesInEveryLayout) {
    using namespace sorvane;
    std::vector<Setting> settings = {
        {.layout = kStereoLayout, .curves = {L, R}},
        {.layout = kTwoOneLayout, .frontPattern = 0.0, .curves = {L, R}},
        {.layout = kStereoLayout, .frontMode = 1, .frontPattern = 0.25, .frontWidth = 30, .curves = {L, R}},
        {.layout = kQuadLayout, .curves = {L, R, Ls, Rs}},
        {.layout = kQuadLayout,
         .surroundMode = 1,
         .surroundPattern = 0.2,
         .surroundWidth = 35,
         .curves = {L, R, Ls, Rs}},
        {.layout = kFiveLayout,
         .surroundMode = 1,
         .centrePattern = 1.0,
         .surroundWidth = 20,
         .centreGainDb = -18,
         .surroundGainDb = 6,
         .curves = {L, R, C, Ls, Rs}},
        {.layout = kFiveOneLayout, .centrePattern = 0.3, .centreGainDb = 6, .curves = {L, R, C, Ls, Rs}},
    };
    for (int layout : {kFiveLayout, kFiveOneLayout})
        for (int type : {kFixedMatrix1, kFixedMatrix2})
            settings.push_back({.layout = layout, .fiveDecoderType = type, .curves = {L, R, Ls, Rs, C}});
    for (const Setting& s : settings) {
        SCOPED_TRACE(testing::Message() << "layout " << s.layout << " type " << s.fiveDecoderType);
        expectEngineCurves(s);
    }
}

TEST_F(Plot, WithoutALayoutItDrawsOnlyTheRingAndCleansItself) {
    for (auto [layout, type] : {std::pair{0, 0}, {1, 0}, {7, 0}, {-1, 0}, {5, 3}, {6, -1}}) {
        plot->decodeMode = layout;
        plot->fiveDecoderType = type;
        plot->setDirty(true);
        draw();
        EXPECT_FALSE(plot->isDirty()) << "drawing clears the dirty flag";
        for (uint32_t colour : kSpeakerColours) EXPECT_TRUE(pixelsOf(colour).empty()) << layout << "/" << type;
        // A grey ring of radius 0.41 h, 3 pixels wide and half transparent;
        // clear inside it and outside.
        const int ringX = kCentreX + static_cast<int>(kRingRadius);
        const uint32_t ring = canvas.at(ringX, kCentreY), alpha = ring >> 24;
        EXPECT_TRUE(alpha > 90 && alpha <= 125) << std::hex << ring;
        EXPECT_TRUE((ring >> 16 & 255) == (ring & 255) && (ring >> 8 & 255) == (ring & 255)) << std::hex << ring;
        for (int x : {ringX - 2, ringX + 3, kCentreX}) EXPECT_EQ(canvas.at(x, kCentreY), 0u) << x;
    }
}
