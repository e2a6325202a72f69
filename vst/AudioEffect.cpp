#include "AudioEffect.h"

namespace {

// The record's entry points: each finds the effect through the record's object.
AudioEffect* effectOf(AEffect* e) { return e ? static_cast<AudioEffect*>(e->object) : nullptr; }

VstIntPtr dispatchEntry(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    AudioEffect* effect = effectOf(e);
    if (!effect) return 0;
    if (opcode == effClose) {
        // The host gives the effect up: it lets the frame close it, then it goes.
        effect->dispatcher(opcode, index, value, ptr, opt);
        delete effect;
        return 1;
    }
    return effect->dispatcher(opcode, index, value, ptr, opt);
}

void processEntry(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames) {
    if (AudioEffect* effect = effectOf(e)) effect->process(inputs, outputs, sampleFrames);
}

void processReplacingEntry(AEffect* e, float** inputs, float** outputs, VstInt32 sampleFrames) {
    if (AudioEffect* effect = effectOf(e)) effect->processReplacing(inputs, outputs, sampleFrames);
}

void processDoubleReplacingEntry(AEffect* e, double** inputs, double** outputs, VstInt32 sampleFrames) {
    if (AudioEffect* effect = effectOf(e)) effect->processDoubleReplacing(inputs, outputs, sampleFrames);
}

void setParameterEntry(AEffect* e, VstInt32 index, float value) {
    if (AudioEffect* effect = effectOf(e)) effect->setParameter(index, value);
}

float getParameterEntry(AEffect* e, VstInt32 index) {
    AudioEffect* effect = effectOf(e);
    return effect ? effect->getParameter(index) : 0.0f;
}

}  // namespace

AudioEffect::AudioEffect(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams)
    : audioMaster(audioMaster), numPrograms(numPrograms), numParams(numParams) {
    cEffect.magic = kEffectMagic;
    cEffect.dispatcher = dispatchEntry;
    cEffect.process = processEntry;
    cEffect.setParameter = setParameterEntry;
    cEffect.getParameter = getParameterEntry;
    cEffect.numPrograms = numPrograms;
    cEffect.numParams = numParams;
    cEffect.numInputs = 1;
    cEffect.numOutputs = 2;
    cEffect.flags = 0;
    cEffect.ioRatio = 1.0f;
    cEffect.object = this;
    cEffect.uniqueID = fourCharCode('N', 'o', 'E', 'f');
    cEffect.version = 1;
    cEffect.processReplacing = processReplacingEntry;
    cEffect.processDoubleReplacing = processDoubleReplacingEntry;
}

AudioEffect::~AudioEffect() { delete editor; }

VstIntPtr AudioEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    // Requests that carry a text or a record answer 0 when the host passes none.
    auto* text = static_cast<char*>(ptr);
    switch (opcode) {
    case effOpen: open(); return 0;
    case effClose: close(); return 0;
    case effSetProgram:
        if (value < numPrograms) setProgram(static_cast<VstInt32>(value));
        return 0;
    case effGetProgram: return getProgram();
    case effSetProgramName:
        if (text) setProgramName(text);
        return 0;
    case effGetProgramName:
        if (text) getProgramName(text);
        return 0;
    case effGetParamLabel:
        if (text) getParameterLabel(index, text);
        return 0;
    case effGetParamDisplay:
        if (text) getParameterDisplay(index, text);
        return 0;
    case effGetParamName:
        if (text) getParameterName(index, text);
        return 0;
    case effSetSampleRate: setSampleRate(opt); return 0;
    case effSetBlockSize: setBlockSize(static_cast<VstInt32>(value)); return 0;
    case effMainsChanged:
        if (value == 0)
            suspend();
        else
            resume();
        return 0;
    case effEditGetRect: return editor && ptr ? (editor->getRect(static_cast<ERect**>(ptr)) ? 1 : 0) : 0;
    case effEditOpen: return editor ? (editor->open(ptr) ? 1 : 0) : 0;
    case effEditClose:
        if (editor) editor->close();
        return 0;
    case effEditIdle:
        if (editor) editor->idle();
        return 0;
    default: return 0;
    }
}

void AudioEffect::setParameterAutomated(VstInt32 index, float value) {
    setParameter(index, value);
    callHost(audioMasterAutomate, index, 0, nullptr, value);
}

bool AudioEffect::beginEdit(VstInt32 index) { return callHost(audioMasterBeginEdit, index) != 0; }

bool AudioEffect::endEdit(VstInt32 index) { return callHost(audioMasterEndEdit, index) != 0; }

void AudioEffect::setEditor(AEffEditor* newEditor) {
    editor = newEditor;
    setFlag(effFlagsHasEditor, editor != nullptr);
}

VstInt32 AudioEffect::getMasterVersion() {
    const auto version = static_cast<VstInt32>(callHost(audioMasterVersion));
    return version != 0 ? version : 1;
}

void AudioEffect::setFlag(VstInt32 flag, bool state) {
    if (state)
        cEffect.flags |= flag;
    else
        cEffect.flags &= ~flag;
}

VstIntPtr AudioEffect::callHost(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return audioMaster ? audioMaster(&cEffect, opcode, index, value, ptr, opt) : 0;
}
