// The state as a chunk: the bank chunk is everything a session must bring
// back (layout, program, current values, the settings past the twenty and
// every layout's program records), the program chunk what a host preset
// brings back (the layout, the current program and the twenty values; the
// settings describe the track, not the sound, and stay as they are). A chunk
// is checked in full before anything changes, so a damaged one leaves the
// effect as it was.
#include <algorithm>
#include <cstring>

#include "SorvaneDecoder.h"

namespace {

// A record as saved: its name always terminated.
SorvaneDecoderProgram savedRecord(const SorvaneDecoderProgram* record) {
    SorvaneDecoderProgram saved = record ? *record : SorvaneDecoderProgram{};
    saved.name[sizeof saved.name - 1] = 0;
    return saved;
}

}  // namespace

VstInt32 SorvaneDecoder::getChunk(void** data, bool isPreset) {
    // The layout follows the saved value, as it does when the chunk comes back.
    const int layout = sorvane::layoutOf(sorvane::savedValue(values[kDecodeMode]));
    *data = chunkBytes.data();
    if (isPreset) {
        sorvane::PresetState state;
        state.layout = layout;
        state.decoderType = processor.fiveDecoderType();
        state.program = savedRecord(programRecord(layout, curProgram));
        std::copy_n(values.data(), sorvane::kFirstSetting, state.values);
        sorvane::writePreset(state, chunkBytes.data());
        return static_cast<VstInt32>(sorvane::chunk::kPresetBytes);
    }
    sorvane::BankState state;
    state.layout = layout;
    state.program = std::clamp(curProgram.load(), 0, sorvane::kStatePrograms - 1);
    state.decoderType = processor.fiveDecoderType();
    std::copy_n(values.data(), kNumParams, state.values);
    state.editorScale = editorScaleChoice.load();
    state.trackingPort = tracker.portToKeep();
    for (int l = 0; l < sorvane::kNumLayouts; ++l)
        for (int p = 0; p < sorvane::kStatePrograms; ++p)
            state.programs[l][p] = savedRecord(programRecord(sorvane::kStereoLayout + l, p));
    sorvane::writeBank(state, chunkBytes.data());
    return static_cast<VstInt32>(sorvane::chunk::kBankBytes);
}

VstInt32 SorvaneDecoder::setChunk(void* data, VstInt32 byteSize, bool isPreset) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    const auto size = static_cast<std::size_t>(byteSize);
    const auto restoreRecord = [](const sorvane::ProgramState& from, SorvaneDecoderProgram* to) {
        if (to) *to = from;
    };
    if (isPreset) {
        sorvane::PresetState state;
        if (!sorvane::readPreset(bytes, size, state) || sorvane::layoutOf(state.values[kDecodeMode]) != state.layout)
            return 0;
        storeParameter(kDecodeMode, state.values[kDecodeMode], nullptr);
        restoreRecord(state.program, programRecord(state.layout, curProgram));
        applyValues(state.values, sorvane::kFirstSetting, state.decoderType);
    } else {
        sorvane::BankState state;
        if (!sorvane::readBank(bytes, size, state) || sorvane::layoutOf(state.values[kDecodeMode]) != state.layout)
            return 0;
        storeParameter(kDecodeMode, state.values[kDecodeMode], nullptr);
        for (int l = 0; l < sorvane::kNumLayouts; ++l)
            for (int p = 0; p < sorvane::kStatePrograms; ++p)
                restoreRecord(state.programs[l][p], programRecord(sorvane::kStereoLayout + l, p));
        curProgram = state.program;
        applyValues(state.values, kNumParams, state.decoderType);
        editorScaleChoice.store(state.editorScale);
        tracker.preferPort(state.trackingPort);
    }
    // A loaded state sounds at once: nothing glides from where the instance was.
    processor.settle();
    updateDisplay();
    return 1;
}

void SorvaneDecoder::applyValues(const float* restored, int count, int decoderType) {
    for (VstInt32 i = 0; i < count; ++i)
        if (i != kDecodeMode) storeParameter(i, restored[i], nullptr);
    processor.setFiveDecoderType(decoderType);
    if (!editor) return;
    // The editor takes the layout first, so its panel is built before the values land on it.
    editor->setParameter(kDecodeMode, restored[kDecodeMode]);
    for (VstInt32 i = 0; i < count; ++i)
        if (i != kDecodeMode) editor->setParameter(i, restored[i]);
    editor->setParameter(kFiveDecoderType, sorvane::fiveDecoderTypeMessage(decoderType));
}
