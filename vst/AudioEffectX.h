// The 2.x effect frame: the requests from effIdentify on (names, categories,
// speaker arrangements, capabilities, editor keys) and their defaults, plus
// the host callbacks and arrangement helpers an effect uses.
#pragma once

#include "AudioEffect.h"

class AudioEffectX : public AudioEffect {
public:
    AudioEffectX(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams);

    VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

    // Asks the host for events when the effect is an instrument or receives MIDI.
    void resume() override;

    // Parameters and programs
    virtual bool canParameterBeAutomated(VstInt32 /*index*/) { return true; }
    virtual bool string2parameter(VstInt32 /*index*/, char* /*text*/) { return false; }
    virtual bool getParameterProperties(VstInt32 /*index*/, void* /*properties*/) { return false; }
    virtual bool getProgramNameIndexed(VstInt32 /*category*/, VstInt32 /*index*/, char* /*text*/) { return false; }

    // Identity
    virtual bool getEffectName(char* /*name*/) { return false; }
    virtual bool getVendorString(char* /*text*/) { return false; }
    virtual bool getProductString(char* /*text*/) { return false; }
    virtual VstInt32 getVendorVersion() { return 0; }
    virtual VstInt32 getVstVersion() { return kVstVersion; }
    virtual VstPlugCategory getPlugCategory() { return kPlugCategUnknown; }
    virtual VstInt32 canDo(const char* /*text*/) { return 0; }
    // effVendorSpecific: a request particular to some hosts; 0 when not understood.
    virtual VstIntPtr vendorSpecific(VstInt32 /*index*/, VstIntPtr /*value*/, void* /*ptr*/, float /*opt*/) { return 0; }

    // Buses and processing
    virtual bool getInputProperties(VstInt32 /*index*/, void* /*properties*/) { return false; }
    virtual bool getOutputProperties(VstInt32 /*index*/, void* /*properties*/) { return false; }
    virtual bool setSpeakerArrangement(VstSpeakerArrangement* /*pluginInput*/,
                                       VstSpeakerArrangement* /*pluginOutput*/) {
        return false;
    }
    virtual bool getSpeakerArrangement(VstSpeakerArrangement** pluginInput, VstSpeakerArrangement** pluginOutput) {
        *pluginInput = nullptr;
        *pluginOutput = nullptr;
        return false;
    }
    virtual bool setBypass(bool /*onOff*/) { return false; }
    virtual bool setProcessPrecision(VstInt32 /*precision*/) { return false; }
    virtual VstInt32 getTailSize() { return 0; }
    virtual VstInt32 getNumMidiInputChannels() { return 0; }
    virtual VstInt32 getNumMidiOutputChannels() { return 0; }
    virtual VstInt32 getCurrentMidiProgram(VstInt32 /*channel*/, void* /*programName*/) { return -1; }

    // Shape flags
    virtual void isSynth(bool state = true) { setFlag(effFlagsIsSynth, state); }
    virtual void noTail(bool state = true) { setFlag(effFlagsNoSoundInStop, state); }

    // Host callbacks
    virtual bool updateDisplay();                  // audioMasterUpdateDisplay
    virtual bool wantEvents(VstInt32 filter = 1);  // audioMasterWantMidi
    // audioMasterSizeWindow: false when the host will not resize the editor's window.
    virtual bool sizeWindow(VstInt32 width, VstInt32 height);
    // The host's transport (audioMasterGetTime); null where the host has none.
    const VstTimeInfo* getTimeInfo(VstInt32 filter);

    // Arrangement records: zeroed, sized for numChannels speakers (at least
    // eight), the old record freed first. Freed with deallocateArrangement.
    virtual bool allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 numChannels);
    virtual bool deallocateArrangement(VstSpeakerArrangement** arrangement);
};
