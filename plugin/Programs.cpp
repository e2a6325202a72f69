// The host's program requests over the program bank. Programs are edited
// live: every change of a program parameter lands in the current record
// (see setParameter).
#include <cstring>

#include "SorvaneDecoder.h"

void SorvaneDecoder::setProgram(VstInt32 program) {
    curProgram = program;
    const int layout = processor.layout();
    const SorvaneDecoderProgram* record = programRecord(layout, program);
    if (!record) return;

    const bool fiveSpeakers = sorvane::isFiveSpeakerLayout(layout);
    if (fiveSpeakers && program >= kNumPrograms) return;
    if (fiveSpeakers && program < sorvane::kFixedDecoderFirstProgram)
        processor.setFiveDecoderType(sorvane::kVirtualMicrophones);

    for (VstInt32 index : sorvane::programParameters(layout, program)) setParameter(index, record->value(index));

    if (fiveSpeakers) {
        const int type = sorvane::programDecoderType(program);
        processor.setFiveDecoderType(type);
        if (editor) editor->setParameter(kFiveDecoderType, sorvane::fiveDecoderTypeMessage(type));
    }
}

void SorvaneDecoder::setProgramName(char* name) {
    // The host's text is at most 24 characters with its terminator.
    if (SorvaneDecoderProgram* record = programRecord(processor.layout(), curProgram)) {
        std::strncpy(record->name, name, kVstMaxProgNameLen - 1);
        record->name[kVstMaxProgNameLen - 1] = 0;
    }
}

void SorvaneDecoder::getProgramName(char* name) {
    if (SorvaneDecoderProgram* record = programRecord(processor.layout(), curProgram)) std::strcpy(name, record->name);
}

bool SorvaneDecoder::getProgramNameIndexed(VstInt32 /*category*/, VstInt32 index, char* text) {
    if (SorvaneDecoderProgram* record = programRecord(processor.layout(), index)) std::strcpy(text, record->name);
    return true;
}
