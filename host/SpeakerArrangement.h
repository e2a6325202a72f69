// A speaker-arrangement record owned by the host, sized for its channels.
#pragma once

#include <memory>

#include "VstAbi.h"

namespace vsthost {

class SpeakerArrangement {
public:
    SpeakerArrangement(VstInt32 type, VstInt32 numChannels);

    VstSpeakerArrangement* get() { return record(); }
    const VstSpeakerArrangement* get() const { return reinterpret_cast<const VstSpeakerArrangement*>(storage.get()); }
    VstInt32 type() const { return get()->type; }
    VstInt32 numChannels() const { return get()->numChannels; }

private:
    VstSpeakerArrangement* record() { return reinterpret_cast<VstSpeakerArrangement*>(storage.get()); }
    std::unique_ptr<std::max_align_t[]> storage;
};

}  // namespace vsthost
