// The two audio callbacks: one engine call per sample frame, its feeds fitted
// to the outputs the host gives. The walk advances the host's own channel
// pointers, so after a block they point just past it.
#include <cmath>

#include "FloatModeGuard.h"
#include "SorvaneDecoder.h"

namespace {

bool historyFinite(const Decoder& decoder) {
    for (double v : decoder.lowPassState)
        if (!std::isfinite(v)) return false;
    for (const auto& history : decoder.highPassState)
        for (double v : history)
            if (!std::isfinite(v)) return false;
    return true;
}

}  // namespace

template <typename Sample>
void SorvaneDecoder::processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames) {
    if (sampleFrames < 1) return;
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;

    // A host may pass one pointer array for both directions. An entry that is
    // both read and written in a frame then moves once, with the write;
    // moving it for the read as well would write the frame after and run
    // past the host's buffer.
    const bool sharedArray = static_cast<void*>(inputs) == static_cast<void*>(outputs);

    for (VstInt32 frame = 0; frame < sampleFrames; ++frame) {
        const VstInt32 outputCount = outputChannels;
        auto read = [&](int channel) -> double {
            const double value = *inputs[channel];
            if (!sharedArray || channel >= outputCount) ++inputs[channel];
            return value;
        };
        double W = 0.0, X = 0.0, Y = 0.0, Z = 0.0;
        // The count is read afresh each frame; any count but 3 or 4 reads nothing.
        if (inputChannels == 4) {
            W = read(0);
            X = read(1);
            Y = read(2);
            Z = read(3);
        } else if (inputChannels == 3) {
            W = read(0);
            X = read(1);
            Y = read(2);
        }

        const int produced = decoder.processDecoder(W, X, Y, Z);
        int channel = 0;
        for (; channel < produced && channel < outputCount; ++channel)
            *outputs[channel]++ = static_cast<Sample>(decoder.speakerFeeds[channel]);
        for (; channel < outputCount; ++channel) *outputs[channel]++ = Sample(0);
    }

    // A NaN or infinite input sample would stay in the crossover's history
    // for good; clearing it lets the next block of finite input come out
    // finite. A finite history is left alone, so finite input is unaffected.
    if (!historyFinite(decoder)) decoder.clearFilter();
}

void SorvaneDecoder::processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}

void SorvaneDecoder::processDoubleReplacing(double** inputs, double** outputs,
                                            VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}
