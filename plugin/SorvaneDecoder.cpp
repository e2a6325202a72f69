// Construction, identity, speaker-arrangement negotiation and the host's
// sample-rate and suspend/resume requests.
#include "SorvaneDecoder.h"

#include <cstring>

SorvaneDecoder::SorvaneDecoder(audioMasterCallback audioMaster)
    : AudioEffectX(audioMaster, kNumPrograms, kNumParams), bitMode(32) {
    // The order matters: later steps read what earlier ones set.
    setNumInputs(4);
    setNumOutputs(6);
    outputChannels = 6;
    inputChannels = 4;

    allocateArrangement(&inputArrangement, 4);
    if (inputArrangement) inputArrangement->type = kSpeakerArr31Cine;

    setUniqueID(sorvane::kUniqueId);
    canDoubleReplacing(true);
    canProcessReplacing(true);
    noTail(true);
    programsAreChunks(true);

    // The precision the editor shows is whatever the frame grants.
    bitMode = setProcessPrecision(kVstProcessPrecision64) ? 64 : 32;

    processor.setSampleRate(sampleRate);

    setEditor(createEditor(this, editorLink));

    resume();

    setProgram(0);
    created = true;
}

SorvaneDecoder::~SorvaneDecoder() {
    tracker.stop();
    deallocateArrangement(&inputArrangement);
    // The frame then deletes the editor.
}

void SorvaneDecoder::suspend() {
    tracker.stop();
    processor.clearHistory();
    if (editor) editor->setParameter(kEditorSuspend, 0.0f);
}

void SorvaneDecoder::resume() {
    AudioEffectX::resume();
    // The head's responses for this rate, ready before "Headphones" is chosen.
    if (created) {
        processor.prepareHeadphones(blockSize);
        const sorvane::HeadResponses& responses = *processor.headResponses();
        headphoneState = sorvane::EditorLink::headphoneStateOf(responses.source, responses.problem);
        tracker.start();
    }
    if (editor) editor->setParameter(kEditorResume, 0.0f);
}

void SorvaneDecoder::setSampleRate(float rate) {
    // Only the engine keeps the rate; the frame's field stays as constructed.
    processor.setSampleRate(rate);
}

bool SorvaneDecoder::setSpeakerArrangement(VstSpeakerArrangement* pluginInput, VstSpeakerArrangement* pluginOutput) {
    // The loop follows the host's counts whatever the answer.
    inputChannels = pluginInput->numChannels;
    outputChannels = pluginOutput->numChannels;

    // Each output type asks for its own input; these asymmetries are what
    // hosts have come to expect and stay as they are.
    bool accepted = false;
    VstInt32 offeredType = kSpeakerArr31Cine;
    switch (pluginOutput->type) {
    case kSpeakerArrStereo: return pluginInput->type == kSpeakerArr40Music;
    case kSpeakerArr40Cine:
        accepted = pluginInput->type == kSpeakerArr40Cine;
        offeredType = kSpeakerArr40Cine;
        break;
    case kSpeakerArr40Music:
        accepted = pluginInput->type == kSpeakerArr40Music;
        offeredType = kSpeakerArr40Music;
        break;
    case kSpeakerArr50: accepted = pluginInput->numChannels == 4; break;
    default: accepted = pluginInput->type == kSpeakerArr31Cine; break;
    }
    if (!accepted) {
        allocateArrangement(&inputArrangement, 4);
        if (inputArrangement) inputArrangement->type = offeredType;
    }
    return accepted;
}

bool SorvaneDecoder::getSpeakerArrangement(VstSpeakerArrangement** pluginInput,
                                           VstSpeakerArrangement** /*pluginOutput*/) {
    // The host keeps whatever output arrangement it had.
    *pluginInput = inputArrangement;
    return true;
}

bool SorvaneDecoder::getEffectName(char* name) {
    std::strcpy(name, "Sorvane");
    return true;
}

bool SorvaneDecoder::getVendorString(char* text) {
    std::strcpy(text, "Tamberlyn");
    return true;
}

bool SorvaneDecoder::getProductString(char* text) {
    std::strcpy(text, "Sorvane");
    return true;
}
