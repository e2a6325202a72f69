// The speaker layouts the tool renders to: their names on the command line,
// the plug-in's normalised layout value, and the channels a file gets.
#pragma once

#include <string>
#include <vector>

struct SpeakerLayout {
    const char* name;                          // as typed after --layout and shown by the plug-in
    float layoutValue;                         // normalised value of the layout parameter
    std::vector<const char*> naturalChannels;  // the layout's own order
    std::vector<unsigned> naturalMask;         // WAVE speaker bits, same order
};

const std::vector<SpeakerLayout>& speakerLayouts();
// By name, ignoring case: "stereo" and the plug-in's own "Stereo" alike.
const SpeakerLayout* findSpeakerLayout(const std::string& name);

// Channel names and WAVE speaker positions of the output file.
struct OutputChannels {
    std::vector<const char*> names;
    std::vector<unsigned> speakerBits;
};
// Headphones: the two ears, as a stereo file.
OutputChannels earChannels();
OutputChannels outputChannels(const SpeakerLayout& layout, bool fiveOneOrder);

namespace vsthost {
class Plugin;
}
// Offers the plug-in B-format in (3 or 4 channels) and `outputs` speaker
// channels out, as a host does before resume; true when it accepts. Plug-ins
// that size themselves by their buses (decoding order, outputs written)
// need this to work at first order.
bool offerArrangement(vsthost::Plugin& plugin, int inputs, int outputs);
