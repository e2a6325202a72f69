// The layout's speaker feeds on headphones: each speaker becomes a virtual
// loudspeaker at the layout's standard position (stereo and 2.1 at ±30°,
// quad at ±45° and ±135°, 5.0 and 5.1 at 0°, ±30° and ±110°), heard through
// the head's responses and summed into two ears; the sub's feed reaches both
// ears alike, at the gain the layout gives it. A left/right pair is heard
// as its sum and difference, so a pair costs two convolutions, not four.
#pragma once

#include <memory>
#include <vector>

#include "BinauralConvolver.h"
#include "HeadResponses.h"

namespace sorvane {

class HeadphoneStage {
public:
    static constexpr int kSlots = 6;
    static constexpr int kMinRoom = 64, kMaxRoom = 8192;  // frames per render call

    // Outside the audio thread: the responses for `sampleRate` (read once
    // per file and rate in the process) and room for host blocks of up to
    // `maxBlock` frames. Clears the history.
    void prepare(int sampleRate, int maxBlock);
    bool prepared() const { return room > 0; }
    int capacity() const { return room; }
    // Where the responses came from and what went wrong, for the editor and `sorvane info`.
    const HeadResponses* responses() const { return loaded.get(); }

    // Audio thread. Up to capacity() frames of the layout's six slots (as
    // the engine writes them in `channelOrder`; a null slot is silent) into
    // the two ears; after a non-finite ear sample the history is cleared.
    void render(const float* const* slots, int layout, int channelOrder, int frames, float* left, float* right);
    void clear() { convolver.clear(); }

private:
    std::shared_ptr<const HeadResponses> loaded;
    BinauralConvolver convolver;
    std::vector<float> bus;  // kBinauralInputs channels of `room` frames
    int room = 0;
};

}  // namespace sorvane
