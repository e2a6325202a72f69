#include "SpeakerLayouts.h"

#include <strings.h>

#include "Plugin.h"
#include "SorvaneProtocol.h"
#include "SpeakerArrangement.h"

namespace {

// WAVE_FORMAT_EXTENSIBLE speaker position bits.
constexpr unsigned kFrontLeft = 0x1, kFrontRight = 0x2, kFrontCentre = 0x4, kLowFrequency = 0x8, kBackLeft = 0x10,
                   kBackRight = 0x20;

}  // namespace

const std::vector<SpeakerLayout>& speakerLayouts() {
    using namespace sorvane;
    static const std::vector<SpeakerLayout> layouts = {
        {"stereo", layoutValue(kStereoLayout), {"L", "R"}, {kFrontLeft, kFrontRight}},
        {"2.1", layoutValue(kTwoOneLayout), {"L", "R", "LFE"}, {kFrontLeft, kFrontRight, kLowFrequency}},
        // The plug-in's own quad order carries the right surround feed twice.
        {"quad", layoutValue(kQuadLayout), {"L", "R", "Rs", "Rs"}, {kFrontLeft, kFrontRight, kBackLeft, kBackRight}},
        {"5.0",
         layoutValue(kFiveLayout),
         {"L", "R", "C", "Ls", "Rs"},
         {kFrontLeft, kFrontRight, kFrontCentre, kBackLeft, kBackRight}},
        {"5.1",
         layoutValue(kFiveOneLayout),
         {"L", "R", "C", "LFE", "Ls", "Rs"},
         {kFrontLeft, kFrontRight, kFrontCentre, kLowFrequency, kBackLeft, kBackRight}},
    };
    return layouts;
}

const SpeakerLayout* findSpeakerLayout(const std::string& name) {
    for (const SpeakerLayout& l : speakerLayouts())
        if (strcasecmp(name.c_str(), l.name) == 0) return &l;
    return nullptr;
}

OutputChannels outputChannels(const SpeakerLayout& layout, bool fiveOneOrder) {
    if (fiveOneOrder)
        return {{"L", "R", "C", "LFE", "Ls", "Rs"},
                {kFrontLeft, kFrontRight, kFrontCentre, kLowFrequency, kBackLeft, kBackRight}};
    return {layout.naturalChannels, layout.naturalMask};
}

OutputChannels earChannels() { return {{"Left ear", "Right ear"}, {kFrontLeft, kFrontRight}}; }

bool offerArrangement(vsthost::Plugin& plugin, int inputs, int outputs) {
    const VstInt32 inputType = inputs == 3 ? kSpeakerArr30Music : kSpeakerArr40Music;
    VstInt32 outputType = kSpeakerArrUserDefined;
    switch (outputs) {
    case 1: outputType = kSpeakerArrMono; break;
    case 2: outputType = kSpeakerArrStereo; break;
    case 4: outputType = kSpeakerArr40Music; break;
    case 5: outputType = kSpeakerArr50; break;
    case 6: outputType = kSpeakerArr51; break;
    }
    vsthost::SpeakerArrangement in(inputType, inputs), out(outputType, outputs);
    return plugin.setSpeakerArrangement(in, out);
}
