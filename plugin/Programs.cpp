// The program tables, one of five per speaker layout, filled from the factory
// programs the LV2 edition shares, and the host's program requests. Programs
// are edited live: every change of a program parameter lands in the current
// record (see setParameter).
#include <cstring>

#include "SorvaneDecoder.h"

namespace {

void copyName(char* to, const char* from) {
    std::strncpy(to, from, kVstMaxProgNameLen - 1);
    to[kVstMaxProgNameLen - 1] = 0;
}

}  // namespace

void SorvaneDecoder::fillFactoryPrograms() {
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout)
        if (SorvaneDecoderProgram* table = programTable(layout))
            for (int i = 0; i < kNumPrograms; ++i) table[i] = sorvane::factoryProgram(layout, i);
}

SorvaneDecoderProgram* SorvaneDecoder::programTable(int layout) {
    switch (layout) {
    case sorvane::kStereoLayout: return stereoPrograms.get();
    case sorvane::kTwoOneLayout: return twoOnePrograms.get();
    case sorvane::kQuadLayout: return quadPrograms.get();
    case sorvane::kFiveLayout: return fivePrograms.get();
    case sorvane::kFiveOneLayout: return fiveOnePrograms.get();
    default: return nullptr;
    }
}

SorvaneDecoderProgram* SorvaneDecoder::programRecord(int layout, VstInt32 program) {
    SorvaneDecoderProgram* table = programTable(layout);
    // Numbers beyond the table's room would read past it; they select nothing.
    if (!table || program < 0 || program >= kProgramCapacity) return nullptr;
    return &table[program];
}

void SorvaneDecoder::setProgram(VstInt32 program) {
    curProgram = program;
    const int layout = decoder.decodeMode;
    const SorvaneDecoderProgram* record = programRecord(layout, program);
    if (!record) return;

    const bool fiveSpeakers = sorvane::isFiveSpeakerLayout(layout);
    if (fiveSpeakers && program >= kNumPrograms) return;
    if (fiveSpeakers && program < sorvane::kFixedDecoderFirstProgram) setFiveDecoderType(sorvane::kVirtualMicrophones);

    for (VstInt32 index : sorvane::programParameters(layout, program))
        setParameter(index, programValue(*record, index));

    if (fiveSpeakers) {
        const int type = sorvane::programDecoderType(program);
        setFiveDecoderType(type);
        if (editor) editor->setParameter(kFiveDecoderType, sorvane::fiveDecoderTypeMessage(type));
    }
}

void SorvaneDecoder::setProgramName(char* name) {
    // The host's text is at most 24 characters with its terminator.
    if (SorvaneDecoderProgram* record = programRecord(decoder.decodeMode, curProgram)) copyName(record->name, name);
}

void SorvaneDecoder::getProgramName(char* name) {
    if (SorvaneDecoderProgram* record = programRecord(decoder.decodeMode, curProgram)) std::strcpy(name, record->name);
}

bool SorvaneDecoder::getProgramNameIndexed(VstInt32 /*category*/, VstInt32 index, char* text) {
    if (SorvaneDecoderProgram* record = programRecord(decoder.decodeMode, index)) std::strcpy(text, record->name);
    return true;
}
