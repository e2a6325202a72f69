// The basic effect frame: owns the AEffect record handed to the host, routes
// the record's entry points to virtual operations, answers the basic
// dispatcher requests (opcodes below effIdentify) and wraps the host callbacks.
//
// An effect derives from AudioEffectX (which adds the 2.x requests), overrides
// the operations it needs and keeps the frame's defaults for the rest.
#pragma once

#include <atomic>

#include "AEffEditor.h"
#include "VstAbi.h"

class AudioEffect {
public:
    AudioEffect(audioMasterCallback audioMaster, VstInt32 numPrograms, VstInt32 numParams);
    virtual ~AudioEffect();  // deletes the editor

    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    AEffect* getAeffect() { return &cEffect; }
    audioMasterCallback getAudioMaster() const { return audioMaster; }

    // Every opcode the frame does not answer gives 0.
    virtual VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}
    virtual void setSampleRate(float rate) { sampleRate = rate; }
    virtual void setBlockSize(VstInt32 size) { blockSize = size; }
    float getSampleRate() const { return sampleRate; }
    VstInt32 getBlockSize() const { return blockSize; }

    // Programs
    virtual void setProgram(VstInt32 program) { curProgram = program; }
    virtual VstInt32 getProgram() { return curProgram; }
    virtual void setProgramName(char* /*name*/) {}
    virtual void getProgramName(char* name) { name[0] = 0; }
    virtual VstInt32 getChunk(void** /*data*/, bool /*isPreset*/) { return 0; }
    virtual VstInt32 setChunk(void* /*data*/, VstInt32 /*byteSize*/, bool /*isPreset*/) { return 0; }

    // Parameters
    virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}
    virtual float getParameter(VstInt32 /*index*/) { return 0; }
    virtual void getParameterLabel(VstInt32 /*index*/, char* label) { label[0] = 0; }
    virtual void getParameterDisplay(VstInt32 /*index*/, char* text) { text[0] = 0; }
    virtual void getParameterName(VstInt32 /*index*/, char* text) { text[0] = 0; }
    // The effect's own setParameter, then the host is told (audioMasterAutomate).
    virtual void setParameterAutomated(VstInt32 index, float value);
    // Brackets of a user gesture on one parameter; true when the host took note.
    virtual bool beginEdit(VstInt32 index);
    virtual bool endEdit(VstInt32 index);

    // Audio: the old accumulating entry does nothing.
    virtual void process(float** /*inputs*/, float** /*outputs*/, VstInt32 /*sampleFrames*/) {}
    virtual void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) = 0;
    virtual void processDoubleReplacing(double** /*inputs*/, double** /*outputs*/, VstInt32 /*sampleFrames*/) {}

    // Shape of the effect as the record shows it.
    virtual void setUniqueID(VstInt32 id) { cEffect.uniqueID = id; }
    virtual void setNumInputs(VstInt32 inputs) { cEffect.numInputs = inputs; }
    virtual void setNumOutputs(VstInt32 outputs) { cEffect.numOutputs = outputs; }
    virtual void setInitialDelay(VstInt32 delay) { cEffect.initialDelay = delay; }
    virtual void canProcessReplacing(bool state = true) { setFlag(effFlagsCanReplacing, state); }
    virtual void canDoubleReplacing(bool state = true) { setFlag(effFlagsCanDoubleReplacing, state); }
    virtual void programsAreChunks(bool state = true) { setFlag(effFlagsProgramChunks, state); }

    // Installs (or removes, with null) the editor; the record's editor flag follows.
    virtual void setEditor(AEffEditor* newEditor);
    virtual AEffEditor* getEditor() { return editor; }

    // The host's VST version, or 1 when there is no host or it answers 0.
    virtual VstInt32 getMasterVersion();

protected:
    void setFlag(VstInt32 flag, bool state);
    // Calls the host when there is one; 0 otherwise.
    VstIntPtr callHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0);

    audioMasterCallback audioMaster;
    AEffEditor* editor = nullptr;
    float sampleRate = 44100.0f;
    VstInt32 blockSize = 1024;
    VstInt32 numPrograms;
    VstInt32 numParams;
    // Hosts change programs and automate from different threads; the number
    // is read and written whole, without ordering anything else.
    std::atomic<VstInt32> curProgram = 0;
    AEffect cEffect{};
};
