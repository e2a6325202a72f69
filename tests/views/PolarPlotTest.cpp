// The polar plot rendered off-screen: every curve point must land on the
// pixel the plot's geometry gives (r = |m| h 0.5 0.8 from the centre, 0
// degrees up, 90 left, truncated), in the speaker's colour, and nowhere else.
#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "CDrawContext.h"
#include "polarPlot.h"

namespace {

constexpr double kPi = 3.141592653589793;
double rad(double degrees) { return degrees / 180.0 * kPi; }

using Pixel = std::pair<int, int>;

// Colours as premultiplied ARGB of an opaque pixel.
constexpr uint32_t kRed = 0xffff0000, kBlue = 0xff0000ff, kGold = 0xffffd700,
                   kGreen = 0xff00ff00, kBrown = 0xff8b4513;

// The plot sits off the origin so that frame coordinates are exercised.
const CRect kPlace(264, 12, 390, 138);

class Plot : public ::testing::Test {
protected:
    Plot() : image(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 578, 300)), plot(new polarPlot(kPlace)) {}
    ~Plot() override {
        plot->forget();
        cairo_surface_destroy(image);
    }
    void render(const std::function<void(CDrawContext*)>& what) {
        cairo_t* cr = cairo_create(image);
        cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
        {
            CDrawContext context(cr);
            what(&context);
        }
        cairo_destroy(cr);
        cairo_surface_flush(image);
    }
    void render() {
        render([&](CDrawContext* c) { plot->draw(c); });
    }
    uint32_t at(int x, int y) const {
        uint32_t pixel;
        std::memcpy(&pixel, cairo_image_surface_get_data(image) + y * cairo_image_surface_get_stride(image) + 4 * x, 4);
        return pixel;
    }
    std::set<Pixel> pixelsOf(uint32_t colour) const {
        std::set<Pixel> found;
        for (int y = 0; y < 300; ++y)
            for (int x = 0; x < 578; ++x)
                if (at(x, y) == colour) found.insert({x, y});
        return found;
    }

    // Where a value m at drawing angle phi goes; mirrored for the surround pair.
    static Pixel place(double m, double phi, double k = 1.0, bool mirrored = false) {
        const double h = 126, cx = 264 + 63, cy = 12 + 63;
        const double r = std::fabs(m) * h * 0.5 * 0.8;
        double x = mirrored ? cx + std::sin(rad(phi)) * k * r : cx - k * r * std::sin(rad(phi));
        double y = mirrored ? cy - std::cos(rad(phi)) * k * r : cy - k * r * std::cos(rad(phi));
        return {static_cast<int>(std::trunc(x)), static_cast<int>(std::trunc(y))};
    }
    struct Curve {
        uint32_t colour;
        std::vector<Pixel> points;
    };
    // The curves exactly: each colour only on its own points, and each point
    // showing its colour unless a later curve drew over it.
    void expectCurves(const std::vector<Curve>& curves) {
        for (size_t i = 0; i < curves.size(); ++i) {
            std::set<Pixel> expected(curves[i].points.begin(), curves[i].points.end());
            for (const Pixel& p : pixelsOf(curves[i].colour))
                EXPECT_TRUE(expected.count(p)) << std::hex << curves[i].colour << std::dec
                                               << " stray pixel at " << p.first << "," << p.second;
            for (const Pixel& p : curves[i].points) {
                uint32_t shown = at(p.first, p.second);
                bool ok = shown == curves[i].colour;
                for (size_t later = i + 1; later < curves.size() && !ok; ++later)
                    ok = shown == curves[later].colour;
                EXPECT_TRUE(ok) << std::hex << curves[i].colour << std::dec << " missing at "
                                << p.first << "," << p.second;
            }
        }
    }
    static Curve frontCurve(uint32_t colour, const std::function<double(double)>& m, double k = 1.0) {
        Curve c{colour, {}};
        for (int phi = 0; phi < 360; ++phi) c.points.push_back(place(m(phi), phi, k));
        return c;
    }
    static Curve surroundCurve(uint32_t colour, const std::function<double(double)>& m, double k) {
        Curve c{colour, {}};
        for (int s = -180; s < 180; ++s) c.points.push_back(place(m(s), s + 180, k, true));
        return c;
    }
    static double xy(double p, double phi, double offset) { return (1 - p) * std::cos(rad(phi + offset)) + p; }

    cairo_surface_t* image;
    polarPlot* plot;
};

}  // namespace

TEST_F(Plot, StartsWithItsDefaultsAndDrawsOnlyTheCircle) {
    EXPECT_EQ(plot->decodeMode, 0);
    EXPECT_EQ(plot->previousDecodeMode, 0);
    EXPECT_EQ(plot->fiveDecoderType, 0);
    EXPECT_EQ(plot->frontWidth, 45.0);
    EXPECT_EQ(plot->surroundWidth, 60.0);
    EXPECT_EQ(plot->frontPattern, 0.5);
    plot->setDirty(true);
    render();
    EXPECT_FALSE(plot->isDirty()) << "draw clears the dirty flag";
    for (uint32_t colour : {kRed, kBlue, kGold, kGreen, kBrown}) EXPECT_TRUE(pixelsOf(colour).empty());
    // The grey ring of radius 0.41 h, 3 pixels wide, half transparent; nothing at the centre.
    const int ringX = static_cast<int>(327 + 0.41 * 126), ringY = 75;
    const uint32_t ring = at(ringX, ringY);
    const int alpha = ring >> 24, red = (ring >> 16) & 255, green = (ring >> 8) & 255, blue = ring & 255;
    EXPECT_GT(alpha, 90);
    EXPECT_LE(alpha, 125);
    EXPECT_EQ(red, green);
    EXPECT_EQ(green, blue);
    EXPECT_EQ(at(327, 75), 0u);
    EXPECT_EQ(at(327 + 40, 75), 0u);
}

TEST_F(Plot, StereoCardioidsPeakAtTheirAxesAndMeetAtTheCentre) {
    plot->decodeMode = 2;
    render();
    const Pixel leftPeak = place(1.0, 45), rightPeak = place(1.0, 315);
    EXPECT_EQ(at(leftPeak.first, leftPeak.second), kRed) << "up-left, 0.8 of the half-height";
    EXPECT_EQ(at(rightPeak.first, rightPeak.second), kBlue) << "up-right";
    EXPECT_LT(leftPeak.first, 327);
    EXPECT_GT(rightPeak.first, 327);
    EXPECT_EQ(at(327, 75), kBlue) << "both zeros land on the centre; the right mic is drawn last";
    expectCurves({frontCurve(kRed, [](double phi) { return xy(0.5, phi, -45); }),
                  frontCurve(kBlue, [](double phi) { return xy(0.5, phi, 45); })});

    // The left microphone alone also reaches the centre opposite its axis.
    render([&](CDrawContext* c) { plot->leftMicPattern(c); });
    EXPECT_EQ(at(327, 75), kRed);
}

TEST_F(Plot, FigureOfEightDrawsTwoEqualLobesPerMicrophone) {
    plot->decodeMode = 3;
    plot->frontPattern = 0.0;
    render([&](CDrawContext* c) { plot->leftMicPattern(c); });
    const Pixel front = place(1.0, 45), back = place(-1.0, 225);
    EXPECT_EQ(at(front.first, front.second), kRed);
    EXPECT_EQ(at(back.first, back.second), kRed) << "the negative lobe is drawn by its magnitude";
    EXPECT_NEAR(front.first - 327, 327 - back.first, 1) << "point-symmetric about the centre";
    EXPECT_NEAR(front.second - 75, 75 - back.second, 1);
    expectCurves({frontCurve(kRed, [](double phi) { return std::cos(rad(phi - 45)); })});
}

TEST_F(Plot, MidSideCurvesFollowTheirOwnFormula) {
    plot->decodeMode = 2;
    plot->frontMode = 1;
    plot->frontWidth = 30;
    plot->frontPattern = 0.25;
    render();
    const double w = rad(30), p = 0.25;
    expectCurves({frontCurve(kRed, [&](double phi) {
                      return std::sin(w) * std::sin(rad(phi)) + ((1 - p) * std::cos(rad(phi)) + p) * std::cos(w);
                  }),
                  frontCurve(kBlue, [&](double phi) {
                      return ((1 - p) * std::cos(rad(phi)) + p) * std::cos(w) - std::sin(w) * std::sin(rad(phi));
                  })});
}

TEST_F(Plot, QuadSurroundCurvesAreMirroredToTheRear) {
    plot->decodeMode = 4;
    render();
    // The left-surround XY cardioid peaks at s = 60, drawn at phi 240: rear left.
    const Pixel lsPeak = place(1.0, 240, 1.0, true), rsPeak = place(1.0, 120, 1.0, true);
    EXPECT_EQ(at(lsPeak.first, lsPeak.second), kGreen);
    EXPECT_LT(lsPeak.first, 327);
    EXPECT_GT(lsPeak.second, 75);
    EXPECT_EQ(at(rsPeak.first, rsPeak.second), kBrown);
    EXPECT_GT(rsPeak.first, 327);
    EXPECT_GT(rsPeak.second, 75);
    expectCurves({frontCurve(kRed, [](double phi) { return xy(0.5, phi, -45); }),
                  frontCurve(kBlue, [](double phi) { return xy(0.5, phi, 45); }),
                  surroundCurve(kGreen, [](double s) { return xy(0.5, s, -60); }, 1.0),
                  surroundCurve(kBrown, [](double s) { return xy(0.5, s, 60); }, 1.0)});
}

TEST_F(Plot, GainsChangeTheSizeOnlyByTheirFourHundredthRoot) {
    plot->decodeMode = 5;
    plot->surroundGain = 6.0;
    plot->centreGain = -18.0;
    plot->centrePattern = 1.0;  // omni: a circle of radius k * full scale
    plot->surroundMode = 1;
    plot->surroundWidth = 20;
    render();
    const double ks = std::pow(10.0, 6.0 / 400.0), kc = std::pow(10.0, -18.0 / 400.0);
    EXPECT_NEAR(ks, 1.035, 0.001);
    const double w = rad(20);
    expectCurves({frontCurve(kRed, [](double phi) { return xy(0.5, phi, -45); }),
                  frontCurve(kBlue, [](double phi) { return xy(0.5, phi, 45); }),
                  frontCurve(kGold, [](double) { return 1.0; }, kc),
                  surroundCurve(kGreen, [&](double s) {
                      return ((0.5) * std::cos(rad(s)) + 0.5) * std::cos(w) + std::sin(w) * std::sin(rad(s));
                  }, ks),
                  surroundCurve(kBrown, [&](double s) {
                      return ((0.5) * std::cos(rad(s)) + 0.5) * std::cos(w) - std::sin(w) * std::sin(rad(s));
                  }, ks)});
    const Pixel top = place(1.0, 0, kc);
    EXPECT_EQ(top.second, static_cast<int>(std::trunc(75 - kc * 50.4)));
}

TEST_F(Plot, FixedMatricesReplaceTheMicrophoneCurves) {
    struct Row {
        double a, b, c, k;
        uint32_t colour;
    };
    const Row heller1[] = {{0.19944063435985465, 0.24760232, 0.18790454, 1.4017195157709, kRed},
                           {0.19943401584038276, 0.24758662, -0.18792311, 1.4017195157709, kBlue},
                           {0.3178256608187023, -0.23381746, 0.31911519, 1.40171951577099, kGreen},
                           {0.3178154714099854, -0.23380219, -0.31911386, 1.4017195157709, kBrown},
                           {-0.034515791178024585, -0.02756928, 1.724e-05, 1.4017195157709, kGold}};
    const Row heller2[] = {{0.1515062828562195, 0.19218459, 0.20409261, 1.38921598327229, kRed},
                           {0.1515075273641544, 0.19218379, -0.20409362, 1.38921598327229, kBlue},
                           {0.31316166934280953, -0.27006948, 0.30405695, 1.38921598327229, kGreen},
                           {0.3131611602259271, -0.27006941, -0.30405595, 1.38921598327229, kBrown},
                           {0.07066336560392555, 0.1557705, 0, 1.38921598327229, kGold}};
    for (auto [mode, type, rows] : {std::tuple{5, 1, heller1}, {6, 1, heller1}, {5, 2, heller2}, {6, 2, heller2}}) {
        plot->decodeMode = mode;
        plot->fiveDecoderType = type;
        render();
        std::vector<Curve> curves;
        for (int i = 0; i < 5; ++i) {
            const Row& row = rows[i];
            curves.push_back(frontCurve(row.colour, [&](double phi) {
                return (row.a + row.b * std::cos(rad(phi)) + row.c * std::sin(rad(phi))) * row.k;
            }));
        }
        SCOPED_TRACE(testing::Message() << "mode " << mode << " type " << type);
        expectCurves(curves);
        // The virtual microphones' cardioid peak is not among them.
        const Pixel cardioidPeak = place(1.0, 45);
        EXPECT_NE(at(cardioidPeak.first, cardioidPeak.second), kRed);
    }
}

TEST_F(Plot, UnknownLayoutsAndDecoderTypesDrawOnlyTheCircle) {
    for (auto [mode, type] : {std::pair{1, 0}, {7, 0}, {-1, 0}, {5, 3}, {6, -1}}) {
        plot->decodeMode = mode;
        plot->fiveDecoderType = type;
        render();
        for (uint32_t colour : {kRed, kBlue, kGold, kGreen, kBrown})
            EXPECT_TRUE(pixelsOf(colour).empty()) << mode << "/" << type;
        EXPECT_NE(at(static_cast<int>(327 + 0.41 * 126), 75), 0u) << "the circle is still there";
    }
}
