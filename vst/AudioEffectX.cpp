#include "AudioEffectX.h"

#include <cstdint>
#include <cstdlib>

AudioEffectX::AudioEffectX(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams)
    : AudioEffect(audioMaster, numPrograms, numParams) {}

VstIntPtr AudioEffectX::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    // Requests that carry a text or a record answer 0 when the host passes none.
    auto* text = static_cast<char*>(ptr);
    switch (opcode) {
    case effIdentify: return kEffectIdentify;
    case effGetChunk: return ptr ? getChunk(static_cast<void**>(ptr), index != 0) : 0;
    case effSetChunk:
        return ptr && value > 0 && value <= INT32_MAX ? setChunk(ptr, static_cast<VstInt32>(value), index != 0) : 0;
    case effCanBeAutomated: return canParameterBeAutomated(index) ? 1 : 0;
    case effString2Parameter: return text && string2parameter(index, text) ? 1 : 0;
    case effGetProgramNameIndexed:
        return text && getProgramNameIndexed(static_cast<VstInt32>(value), index, text) ? 1 : 0;
    case effGetInputProperties: return ptr && getInputProperties(index, ptr) ? 1 : 0;
    case effGetOutputProperties: return ptr && getOutputProperties(index, ptr) ? 1 : 0;
    case effGetPlugCategory: return getPlugCategory();
    case effSetSpeakerArrangement: {
        auto* input = reinterpret_cast<VstSpeakerArrangement*>(value);
        auto* output = static_cast<VstSpeakerArrangement*>(ptr);
        return input && output && setSpeakerArrangement(input, output) ? 1 : 0;
    }
    case effSetBypass: return setBypass(value != 0) ? 1 : 0;
    case effGetEffectName: return text && getEffectName(text) ? 1 : 0;
    case effGetVendorString: return text && getVendorString(text) ? 1 : 0;
    case effGetProductString: return text && getProductString(text) ? 1 : 0;
    case effGetVendorVersion: return getVendorVersion();
    case effCanDo: return text ? canDo(text) : 0;
    case effVendorSpecific: return vendorSpecific(index, value, ptr, opt);
    case effGetTailSize: return getTailSize();
    case effGetParameterProperties: return ptr && getParameterProperties(index, ptr) ? 1 : 0;
    case effGetVstVersion: return getVstVersion();
    case effEditKeyDown:
    case effEditKeyUp: {
        if (!editor) return 0;
        VstKeyCode key{};
        key.character = index;
        key.virt = static_cast<unsigned char>(value);
        key.modifier = static_cast<unsigned char>(opt);
        const bool used = opcode == effEditKeyDown ? editor->onKeyDown(key) : editor->onKeyUp(key);
        return used ? 1 : 0;
    }
    case effSetEditKnobMode: return editor && editor->setKnobMode(static_cast<VstInt32>(value)) ? 1 : 0;
    case effGetCurrentMidiProgram: return getCurrentMidiProgram(index, ptr);
    case effGetSpeakerArrangement: {
        auto* input = reinterpret_cast<VstSpeakerArrangement**>(value);
        auto* output = static_cast<VstSpeakerArrangement**>(ptr);
        return input && output && getSpeakerArrangement(input, output) ? 1 : 0;
    }
    case effSetProcessPrecision: return setProcessPrecision(static_cast<VstInt32>(value)) ? 1 : 0;
    case effGetNumMidiInputChannels: return getNumMidiInputChannels();
    case effGetNumMidiOutputChannels: return getNumMidiOutputChannels();
    default: return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
    }
}

void AudioEffectX::resume() {
    if ((cEffect.flags & effFlagsIsSynth) || canDo("receiveVstMidiEvent") == 1) wantEvents();
}

bool AudioEffectX::updateDisplay() { return callHost(audioMasterUpdateDisplay) != 0; }

bool AudioEffectX::wantEvents(VstInt32 filter) { return callHost(audioMasterWantMidi, 0, filter) != 0; }

bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
    return callHost(audioMasterSizeWindow, width, height) != 0;
}

const VstTimeInfo* AudioEffectX::getTimeInfo(VstInt32 filter) {
    return reinterpret_cast<const VstTimeInfo*>(callHost(audioMasterGetTime, 0, filter));
}

bool AudioEffectX::allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 numChannels) {
    if (!arrangement || numChannels < 0) return false;
    deallocateArrangement(arrangement);
    auto* fresh = static_cast<VstSpeakerArrangement*>(std::calloc(1, speakerArrangementSize(numChannels)));
    if (!fresh) return false;
    fresh->numChannels = numChannels;
    *arrangement = fresh;
    return true;
}

bool AudioEffectX::deallocateArrangement(VstSpeakerArrangement** arrangement) {
    if (!arrangement) return false;
    std::free(*arrangement);
    *arrangement = nullptr;
    return true;
}
