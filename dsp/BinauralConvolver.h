// Plays the headphone stage's inputs (HeadResponses.h) through their responses
// into the two ears, with no added latency: the left ear is the sum of every
// mid and the centre convolved with its response plus every side convolved with
// its response, the right ear the same minus the sides.
//
// Uniformly partitioned overlap-save with a frequency-domain delay line: the
// responses are cut in partitions of P taps (the power of two at or above the
// host's block, 32 to 4096) and transformed at 2P points. A partition of input
// that is still filling is transformed as far as it goes on every call, so each
// output frame depends on the input up to that frame; what the older partitions
// add is summed once when a partition begins. A call that covers a whole
// partition does both in one pass. Mids and sides are summed in the frequency
// domain, so a pass costs one forward transform per input that is sounding and
// two inverse ones; an input that is silent, and whose echo in the delay line
// has passed, costs nothing.
#pragma once

#include <memory>

#include "HeadResponses.h"

namespace sorvane {

class BinauralConvolver {
public:
    BinauralConvolver();
    ~BinauralConvolver();
    BinauralConvolver(const BinauralConvolver&) = delete;
    BinauralConvolver& operator=(const BinauralConvolver&) = delete;

    // Outside the audio thread: takes the responses (their spectra) and sizes its partitions for host
    // blocks of up to `maxBlock` frames; clears the history. Allocates.
    void prepare(const HeadResponses& responses, int maxBlock);
    bool prepared() const { return state_ != nullptr; }
    // Audio thread: `frames` (>= 1, any count, also above maxBlock) frames of the kBinauralInputs inputs
    // (a null input, or null `inputs`, reads silence) into the two ears (overwritten). No allocation, lock or I/O.
    void process(const float* const* inputs, int frames, float* left, float* right);
    // Forgets the history (a host's suspend); no allocation.
    void clear();

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sorvane
