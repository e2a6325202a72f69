// The two audio callbacks: one engine call per sample frame, its feeds fitted
// to the outputs the host gives. The walk advances the host's own channel
// pointers, so after a block they point just past it.
#include "FloatModeGuard.h"
#include "SorvaneDecoder.h"

template <typename Sample>
void SorvaneDecoder::processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames) {
    if (sampleFrames < 1) return;
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;

    for (VstInt32 frame = 0; frame < sampleFrames; ++frame) {
        double W = 0.0, X = 0.0, Y = 0.0, Z = 0.0;
        // The count is read afresh each frame; any count but 3 or 4 reads nothing.
        if (inputChannels == 4) {
            W = *inputs[0]++;
            X = *inputs[1]++;
            Y = *inputs[2]++;
            Z = *inputs[3]++;
        } else if (inputChannels == 3) {
            W = *inputs[0]++;
            X = *inputs[1]++;
            Y = *inputs[2]++;
        }

        const int produced = decoder.processDecoder(W, X, Y, Z);
        const VstInt32 outputCount = outputChannels;
        int channel = 0;
        for (; channel < produced && channel < outputCount; ++channel)
            *outputs[channel]++ = static_cast<Sample>(decoder.speakerFeeds[channel]);
        for (; channel < outputCount; ++channel) *outputs[channel]++ = Sample(0);
    }
}

void SorvaneDecoder::processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}

void SorvaneDecoder::processDoubleReplacing(double** inputs, double** outputs,
                                            VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}
