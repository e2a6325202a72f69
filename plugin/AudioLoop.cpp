// The two audio callbacks. A host block is taken in pieces that fit the
// effect's scratch memory: the inputs are copied (and widened to double)
// once per piece, the engine runs its block path over the piece, and the
// speaker slots are copied to the host's outputs, the rest cleared. The
// host's channel pointers are then moved past the block, as hosts built
// against the per-frame walk expect.
#include <algorithm>

#include "CrossoverSafety.h"
#include "FloatModeGuard.h"
#include "SorvaneDecoder.h"

namespace {

void readSamples(const BlockKernels& k, const float* in, double* out, int frames) { k.widen(in, out, frames); }
void readSamples(const BlockKernels& k, const double* in, double* out, int frames) { k.copy(in, out, frames); }
void writeSamples(const BlockKernels& k, const double* in, float* out, int frames) { k.narrow(in, out, frames); }
void writeSamples(const BlockKernels& k, const double* in, double* out, int frames) { k.copy(in, out, frames); }
void silence(const BlockKernels& k, float* out, int frames) { k.silence(out, frames); }
void silence(const BlockKernels& k, double* out, int frames) { k.fill(out, 0.0, frames); }

}  // namespace

template <typename Sample>
void SorvaneDecoder::processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames) {
    if (sampleFrames < 1) return;
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;
    const BlockKernels& copies = decoder.blockLoops();

    // The host's channel counts, like the engine's fields, count for the whole call.
    const int outputCount = outputChannels;
    const int readCount = inputChannels == 4 ? 4 : inputChannels == 3 ? 3 : 0;

    double* signal[4];
    BlockFeeds feeds;
    for (int c = 0; c < 4; ++c) signal[c] = scratch.signal[c];
    for (int i = 0; i < 6; ++i) feeds.feed[i] = scratch.feed[i];

    // Every piece is read whole before any of it is written, so a host that
    // hands the same buffers in and out gets what the per-frame walk gave it.
    for (VstInt32 done = 0; done < sampleFrames; done += kPieceFrames) {
        const int frames = static_cast<int>(std::min<VstInt32>(kPieceFrames, sampleFrames - done));
        for (int c = 0; c < 4; ++c) {
            if (c < readCount)
                readSamples(copies, inputs[c] + done, signal[c], frames);
            else
                copies.fill(signal[c], 0.0, frames);
        }
        const int produced = decoder.processBlock(signal[0], signal[1], signal[2], signal[3], frames, feeds);
        for (int c = 0; c < outputCount; ++c) {
            Sample* out = outputs[c] + done;
            const double* slot = c < produced ? feeds.slot[c] : nullptr;
            if (slot)
                writeSamples(copies, slot, out, frames);
            else
                silence(copies, out, frames);
        }
    }

    // A host may pass one pointer array for both directions; an entry that
    // is both read and written then moves once, with the write.
    const bool sharedArray = static_cast<void*>(inputs) == static_cast<void*>(outputs);
    for (int c = 0; c < readCount; ++c)
        if (!sharedArray || c >= outputCount) inputs[c] += sampleFrames;
    for (int c = 0; c < outputCount; ++c) outputs[c] += sampleFrames;

    // A NaN or infinite input sample would stay in the crossover's history
    // for good; clearing it lets the next block of finite input come out
    // finite. A finite history is left alone, so finite input is unaffected.
    recoverCrossover(decoder);
}

void SorvaneDecoder::processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}

void SorvaneDecoder::processDoubleReplacing(double** inputs, double** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}
