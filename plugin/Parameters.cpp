// The automatable parameters: their names, labels and display texts come
// from the protocol's table, their conversion into the engine's units from
// the processor; a change lands in the current program's record too.
#include "SorvaneDecoder.h"

using sorvane::kParameters;

void SorvaneDecoder::storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record) {
    if (!sorvane::isParameter(index)) return;
    values[index] = v;
    if (record) record->setValue(index, v);
    processor.setNormalised(index, v);
    // Only asked for here (this may be the audio thread): the tracker's own thread opens or closes the port.
    if (index == kTracking) tracker.want(sorvane::trackingOf(v) == sorvane::kTrackingOsc);
}

void SorvaneDecoder::setParameter(VstInt32 index, float v) {
    // Found before converting, so a change of layout never writes into a record.
    // Any layout without a table of its own edits the stereo table.
    const int layout = sorvane::isSelectableLayout(processor.layout()) ? processor.layout() : sorvane::kStereoLayout;
    SorvaneDecoderProgram* record = programRecord(layout, curProgram);

    storeParameter(index, v, record);
    // Whatever layout resulted, the host refreshes what it shows of us.
    if (index == kDecodeMode) updateDisplay();

    if (editor) editor->setParameter(index, v);

    // A new layout brings its own table: reload the same program number from it.
    if (index == kDecodeMode) setProgram(curProgram);
}

float SorvaneDecoder::getParameter(VstInt32 index) {
    if (sorvane::isParameter(index)) return values[index];
    if (index == kBitMode) return static_cast<float>(bitMode);
    if (index == kFiveDecoderType) return static_cast<float>(processor.fiveDecoderType());
    return 0.0f;
}

void SorvaneDecoder::getParameterName(VstInt32 index, char* text) {
    if (!sorvane::isParameter(index)) return;
    if (kParameters[index].name)
        sorvane::writeText(text, kParameters[index].name);
    else
        getParameterDisplay(index, text);
}

void SorvaneDecoder::getParameterLabel(VstInt32 index, char* label) {
    if (sorvane::isParameter(index)) sorvane::writeText(label, kParameters[index].label);
}

void SorvaneDecoder::getParameterDisplay(VstInt32 index, char* text) {
    // While tracking, the port the tracker sends to, or why there is none.
    if (index == kTracking && sorvane::trackingOf(values[kTracking]) == sorvane::kTrackingOsc)
        return sorvane::describeTracking(tracker.state(), tracker.port(), text, sorvane::kTextRoom);
    processor.display(index, text);
}
