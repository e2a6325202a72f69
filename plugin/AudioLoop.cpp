// The two audio callbacks: the processor decodes the host's block, then the
// host's channel pointers are moved past it, as hosts built against the
// per-frame walk expect.
#include "SorvaneDecoder.h"

template <typename Sample>
void SorvaneDecoder::processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames) {
    if (sampleFrames < 1) return;
    // The host's channel counts, like the engine's fields, count for the whole call.
    const int outputCount = outputChannels;
    const int inputCount = inputChannels;
    // A jump of the host's transport: the automation lands where it was
    // written, without gliding from where the playhead was.
    if (processor.smoothingOn())
        if (const VstTimeInfo* time = getTimeInfo(0); time && (time->flags & kVstTransportChanged)) processor.settle();
    processor.process(inputs, inputCount, outputs, outputCount, static_cast<std::size_t>(sampleFrames));

    // A host may pass one pointer array for both directions; an entry that
    // is both read and written then moves once, with the write.
    const int readCount = inputCount == 4 ? 4 : inputCount == 3 ? 3 : 0;
    const bool sharedArray = static_cast<void*>(inputs) == static_cast<void*>(outputs);
    for (int c = 0; c < readCount; ++c)
        if (!sharedArray || c >= outputCount) inputs[c] += sampleFrames;
    for (int c = 0; c < outputCount; ++c) outputs[c] += sampleFrames;
}

void SorvaneDecoder::processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}

void SorvaneDecoder::processDoubleReplacing(double** inputs, double** outputs, VstInt32 sampleFrames) {
    processBlock(inputs, outputs, sampleFrames);
}
