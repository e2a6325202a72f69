// The state as a chunk: the bank chunk is everything a session must bring
// back (layout, program, current values and every layout's program
// records), the program chunk what a host preset brings back (the layout,
// the current program and the current values). A chunk is checked in full
// before anything changes, so a damaged one leaves the effect as it was.
#include <algorithm>
#include <cstring>

#include "SorvaneDecoder.h"

namespace {

void copyRecord(const SorvaneDecoderProgram& from, sorvane::ProgramState& to,
                float (*value)(const SorvaneDecoderProgram&, VstInt32)) {
    std::memcpy(to.name, from.name, sizeof to.name);
    to.name[sizeof to.name - 1] = 0;
    for (int i = 0; i < sorvane::kProgramValues; ++i) to.values[i] = value(from, sorvane::kFirstProgramParameter + i);
}

}  // namespace

VstInt32 SorvaneDecoder::getChunk(void** data, bool isPreset) {
    // The layout follows the saved value, as it does when the chunk comes back.
    const int layout = sorvane::layoutOf(sorvane::savedValue(decodeModeValue));
    const int program = std::clamp(curProgram.load(), 0, sorvane::kStatePrograms - 1);
    if (isPreset) {
        sorvane::PresetState state;
        state.layout = layout;
        state.decoderType = decoder.fiveDecoderType;
        if (const SorvaneDecoderProgram* record = programRecord(layout, curProgram))
            copyRecord(*record, state.program, programValue);
        for (VstInt32 i = 0; i < kNumParams; ++i) state.values[i] = getParameter(i);
        sorvane::writePreset(state, chunkBytes.data());
        *data = chunkBytes.data();
        return static_cast<VstInt32>(sorvane::chunk::kPresetBytes);
    }
    sorvane::BankState state;
    state.layout = layout;
    state.program = program;
    state.decoderType = decoder.fiveDecoderType;
    for (VstInt32 i = 0; i < kNumParams; ++i) state.values[i] = getParameter(i);
    for (int l = 0; l < sorvane::kNumLayouts; ++l)
        for (int p = 0; p < sorvane::kStatePrograms; ++p)
            if (const SorvaneDecoderProgram* record = programRecord(sorvane::kStereoLayout + l, p))
                copyRecord(*record, state.programs[l][p], programValue);
    sorvane::writeBank(state, chunkBytes.data());
    *data = chunkBytes.data();
    return static_cast<VstInt32>(sorvane::chunk::kBankBytes);
}

VstInt32 SorvaneDecoder::setChunk(void* data, VstInt32 byteSize, bool isPreset) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    const auto size = static_cast<std::size_t>(byteSize);
    const auto restoreRecord = [](const sorvane::ProgramState& from, SorvaneDecoderProgram* to) {
        if (!to) return;
        std::memcpy(to->name, from.name, sizeof from.name);
        for (int i = 0; i < sorvane::kProgramValues; ++i)
            setProgramValue(*to, sorvane::kFirstProgramParameter + i, from.values[i]);
    };
    if (isPreset) {
        sorvane::PresetState state;
        if (!sorvane::readPreset(bytes, size, state) || sorvane::layoutOf(state.values[kDecodeMode]) != state.layout)
            return 0;
        storeParameter(kDecodeMode, state.values[kDecodeMode], nullptr);
        restoreRecord(state.program, programRecord(state.layout, curProgram));
        applyCurrentValues(state.values, state.decoderType);
    } else {
        sorvane::BankState state;
        if (!sorvane::readBank(bytes, size, state) || sorvane::layoutOf(state.values[kDecodeMode]) != state.layout)
            return 0;
        storeParameter(kDecodeMode, state.values[kDecodeMode], nullptr);
        for (int l = 0; l < sorvane::kNumLayouts; ++l)
            for (int p = 0; p < sorvane::kStatePrograms; ++p)
                restoreRecord(state.programs[l][p], programRecord(sorvane::kStereoLayout + l, p));
        curProgram = state.program;
        applyCurrentValues(state.values, state.decoderType);
    }
    updateDisplay();
    return 1;
}

void SorvaneDecoder::applyCurrentValues(const float* values, int decoderType) {
    for (VstInt32 i = 0; i < kNumParams; ++i)
        if (i != kDecodeMode) storeParameter(i, values[i], nullptr);
    setFiveDecoderType(decoderType);
    if (!editor) return;
    // The editor takes the layout first, so its panel is built before the values land on it.
    editor->setParameter(kDecodeMode, values[kDecodeMode]);
    for (VstInt32 i = 0; i < kNumParams; ++i)
        if (i != kDecodeMode) editor->setParameter(i, values[i]);
    editor->setParameter(kFiveDecoderType, sorvane::fiveDecoderTypeMessage(decoderType));
}
