// Speaker-arrangement negotiation: each output type asks for its own input.
#include "SorvaneHost.h"

using namespace sorvane_test;
using vsthost::SpeakerArrangement;

namespace {
struct Offered {
    VstInt32 type;
    VstInt32 channels;
};

Offered offeredInput(vsthost::Plugin& fx) {
    VstSpeakerArrangement* input = nullptr;
    VstSpeakerArrangement* output = nullptr;
    EXPECT_TRUE(fx.getSpeakerArrangement(input, output));
    if (!input) return {-100, -100};
    return {input->type, input->numChannels};
}
}  // namespace

TEST_F(SorvaneTest, OffersFourChannelInputAndLeavesTheOutputPointerAlone) {
    VstSpeakerArrangement* input = nullptr;
    SpeakerArrangement mine(kSpeakerArr51, 6);
    VstSpeakerArrangement* output = mine.get();
    EXPECT_TRUE(fx().getSpeakerArrangement(input, output));
    ASSERT_NE(input, nullptr);
    EXPECT_EQ(input->type, kSpeakerArr31Cine);
    EXPECT_EQ(input->numChannels, 4);
    EXPECT_EQ(output, mine.get());
}

TEST_F(SorvaneTest, ArrangementTable) {
    struct Case {
        VstInt32 outputType, inputType, inputChannels;
        bool answer;
        VstInt32 offeredAfter;  // type of the effect's own input afterwards
    };
    // Each case starts from an offered input of type 40Cine (10), so a kept
    // record is told apart from a re-created one.
    const Case cases[] = {
        {kSpeakerArrStereo, kSpeakerArr40Music, 4, true, kSpeakerArr40Cine},
        {kSpeakerArrStereo, kSpeakerArr31Cine, 4, false, kSpeakerArr40Cine},
        {kSpeakerArr40Cine, kSpeakerArr40Cine, 4, true, kSpeakerArr40Cine},
        {kSpeakerArr40Cine, kSpeakerArr40Music, 4, false, kSpeakerArr40Cine},
        {kSpeakerArr40Music, kSpeakerArr40Music, 4, true, kSpeakerArr40Cine},
        {kSpeakerArr40Music, kSpeakerArr31Cine, 4, false, kSpeakerArr40Music},
        {kSpeakerArr50, kSpeakerArrMono, 4, true, kSpeakerArr40Cine},
        {kSpeakerArr50, kSpeakerArr31Cine, 3, false, kSpeakerArr31Cine},
        {kSpeakerArr51, kSpeakerArr31Cine, 4, true, kSpeakerArr40Cine},
        {kSpeakerArr51, kSpeakerArr40Music, 4, false, kSpeakerArr31Cine},
        {kSpeakerArrMono, kSpeakerArr31Cine, 3, true, kSpeakerArr40Cine},
        {kSpeakerArr102, kSpeakerArr30Cine, 3, false, kSpeakerArr31Cine},
    };
    for (const Case& c : cases) {
        SpeakerArrangement quadIn(kSpeakerArr40Music, 4), lcrsOut(kSpeakerArr40Cine, 4);
        ASSERT_FALSE(fx().setSpeakerArrangement(quadIn, lcrsOut));
        ASSERT_EQ(offeredInput(fx()).type, kSpeakerArr40Cine);

        SpeakerArrangement input(c.inputType, c.inputChannels), output(c.outputType, 6);
        EXPECT_EQ(fx().setSpeakerArrangement(input, output), c.answer)
            << "output " << c.outputType << " input " << c.inputType;
        const Offered offered = offeredInput(fx());
        EXPECT_EQ(offered.type, c.offeredAfter) << "output " << c.outputType;
        EXPECT_EQ(offered.channels, 4);
        // The host's own records are never written.
        EXPECT_EQ(input.type(), c.inputType);
        EXPECT_EQ(output.type(), c.outputType);
    }
}
