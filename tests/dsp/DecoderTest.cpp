// Speaker-feed decoders, checked against the virtual-microphone response a
// source at a known direction must produce.
#include "DspTestHelpers.h"

// The five-speaker layout runs every microphone: the front pair, the centre
// facing forward and the surround pair facing backwards, each pair as XY
// (two microphones at +-width, the surrounds at 180 -+ width) or as MS (a mid
// microphone balanced against a sideways figure-of-eight by the width).
// Pattern and width change alone between frames, as a host would set them.
TEST(Decoders, VirtualMicrophonesFollowTheMicrophoneEquation) {
    for (int mode : {0, 1}) {
        Decoder d;
        d.decodeMode = 5;
        d.frontMode = d.surroundMode = mode;
        d.centrePattern = 0.7;
        d.centreGain = 3;
        d.surroundGain = -6;
        const double centre = std::pow(10.0, 3 / 20.0), surround = std::pow(10.0, -6 / 20.0);
        for (double pattern : {0.0, 0.3, 0.75, 1.0}) {
            for (double width : {0.0, 30.0, 60.0, 90.0}) {
                // The surrounds differ from the front pair, so neither can stand in for the other.
                d.frontPattern = pattern;
                d.surroundPattern = 1 - pattern;
                d.frontWidth = width;
                d.surroundWidth = 90 - width;
                const double c = std::cos(width * kPi / 180), s = std::sin(width * kPi / 180);
                for (double az = -180; az < 180; az += 22.5) {
                    Frame f = planeWave(az);
                    process(d, f);
                    const double side = std::sin(az * kPi / 180);
                    const double front[2] = {mic(pattern, width, az), mic(pattern, -width, az)};
                    const double rear[2] = {mic(1 - pattern, 90 + width, az), mic(1 - pattern, -90 - width, az)};
                    const double mid = mic(pattern, 0, az), rearMid = mic(1 - pattern, 180, az);
                    const double want[6] = {mode == 0 ? front[0] : mid * c + s * side,
                                            mode == 0 ? front[1] : mid * c - s * side,
                                            mic(0.7, 0, az) * centre,
                                            0,
                                            (mode == 0 ? rear[0] : rearMid * s + c * side) * surround,
                                            (mode == 0 ? rear[1] : rearMid * s - c * side) * surround};
                    for (int slot = 0; slot < 6; ++slot)
                        EXPECT_NEAR(d.speakerFeeds[slot], want[slot], kTrigRounding)
                            << "mode " << mode << " pattern " << pattern << " width " << width << " az " << az
                            << " slot " << slot;
                }
            }
        }
    }
}

// The fixed matrices are measured designs, not microphones: they are nearly
// mirror images left to right, favour the front speakers for a front source
// and the surround speakers for a rear one, and ignore every microphone
// setting and Z.
TEST(Decoders, FixedMatricesAreNearlySymmetricAndIgnoreTheMicrophones) {
    constexpr double kMeasuredAsymmetry = 1e-4;  // the designs' own left/right differences
    for (int type : {1, 2}) {
        Decoder d, tweaked;
        d.decodeMode = tweaked.decodeMode = 5;
        d.fiveDecoderType = tweaked.fiveDecoderType = type;
        tweaked.frontPattern = 0;
        tweaked.surroundGain = 12;
        tweaked.centreGain = -20;
        for (double az = -180; az < 180; az += 15) {
            Frame mirrored = planeWave(-az), f = planeWave(az), withZ = planeWave(az);
            withZ.Z = 5;
            process(d, mirrored);
            const double left = d.speakerFeeds[0], leftSurround = d.speakerFeeds[4];
            process(d, f);
            EXPECT_NEAR(d.speakerFeeds[1], left, kMeasuredAsymmetry) << type << " " << az;
            EXPECT_NEAR(d.speakerFeeds[5], leftSurround, kMeasuredAsymmetry) << type << " " << az;
            process(tweaked, withZ);
            for (int slot = 0; slot < 6; ++slot) EXPECT_EQ(tweaked.speakerFeeds[slot], d.speakerFeeds[slot]);
            EXPECT_TRUE(az != 0 || d.speakerFeeds[0] > d.speakerFeeds[4]) << type;
            EXPECT_TRUE(az != -180 || d.speakerFeeds[0] < d.speakerFeeds[4]) << type;
        }
    }
    // A non-finite Y reaches the second matrix's centre through its 0*Y term.
    Decoder d;
    d.decodeMode = 5;
    d.fiveDecoderType = 2;
    Frame f{0, 0, INFINITY, 0};
    process(d, f);
    EXPECT_TRUE(std::isnan(d.speakerFeeds[2]));
}
