#include "SpeakerArrangement.h"

namespace vsthost {

SpeakerArrangement::SpeakerArrangement(VstInt32 type, VstInt32 numChannels) {
    // Zeroed storage, aligned for the record, with room for every channel.
    const std::size_t bytes = speakerArrangementSize(numChannels < 0 ? 0 : numChannels);
    const std::size_t units = (bytes + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t);
    storage = std::make_unique<std::max_align_t[]>(units);
    record()->type = type;
    record()->numChannels = numChannels;
}

}  // namespace vsthost
