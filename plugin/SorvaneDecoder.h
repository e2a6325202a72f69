// The effect a host loads: B-format in, speaker feeds out, automatable
// parameters and five programs per speaker layout. It adapts the VST 2.4
// frame to the shared core: the values by index, the program bank, the
// processor, and the editor's link to the effect.
#pragma once

#include <array>
#include <atomic>

#include "AudioEffectX.h"
#include "EditorLink.h"
#include "FactoryPrograms.h"
#include "HeadTracker.h"
#include "ParameterValues.h"
#include "Processor.h"
#include "ProgramBank.h"
#include "SorvaneProtocol.h"
#include "StateChunk.h"

constexpr VstInt32 kNumPrograms = sorvane::kFactoryPrograms;

// One program record; the factory's are shared with the LV2 edition's presets.
using SorvaneDecoderProgram = sorvane::ProgramRecord;
static_assert(sizeof SorvaneDecoderProgram{}.name == kVstMaxProgNameLen);

class SorvaneDecoder : public AudioEffectX {
public:
    explicit SorvaneDecoder(audioMasterCallback audioMaster);
    ~SorvaneDecoder() override;

    // Identity and arrangement
    void open() override {}
    void close() override {}
    void suspend() override;
    void resume() override;
    void setSampleRate(float rate) override;
    bool setSpeakerArrangement(VstSpeakerArrangement* pluginInput, VstSpeakerArrangement* pluginOutput) override;
    bool getSpeakerArrangement(VstSpeakerArrangement** pluginInput, VstSpeakerArrangement** pluginOutput) override;
    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    VstInt32 getVendorVersion() override { return sorvane::kVendorVersion; }
    VstInt32 getVstVersion() override { return kVstVersion; }
    VstPlugCategory getPlugCategory() override { return kPlugCategSpacializer; }
    // Linux hosts tell the editor's scale this way (EditorSize.cpp).
    VstIntPtr vendorSpecific(VstInt32 index, VstIntPtr value, void* ptr, float opt) override;

    // Parameters
    void setParameter(VstInt32 index, float value) override;
    float getParameter(VstInt32 index) override;
    void getParameterName(VstInt32 index, char* text) override;
    void getParameterLabel(VstInt32 index, char* label) override;
    void getParameterDisplay(VstInt32 index, char* text) override;

    // Programs
    void setProgram(VstInt32 program) override;
    void setProgramName(char* name) override;
    void getProgramName(char* name) override;
    bool getProgramNameIndexed(VstInt32 category, VstInt32 index, char* text) override;

    // The whole state (bank) or what a host preset brings back (program), as a chunk
    VstInt32 getChunk(void** data, bool isPreset) override;
    VstInt32 setChunk(void* data, VstInt32 byteSize, bool isPreset) override;

    // Audio
    void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) override;
    void processDoubleReplacing(double** inputs, double** outputs, VstInt32 sampleFrames) override;

private:
    // The editor's view of this effect: the frame's own operations.
    class Link : public sorvane::EditorLink {
    public:
        explicit Link(SorvaneDecoder& effect) : effect(effect) {}
        float getParameter(std::int32_t index) override { return effect.getParameter(index); }
        void getParameterDisplay(std::int32_t index, char* text) override { effect.getParameterDisplay(index, text); }
        void setParameterAutomated(std::int32_t index, float value) override {
            effect.setParameterAutomated(index, value);
        }
        bool beginEdit(std::int32_t index) override { return effect.beginEdit(index); }
        bool endEdit(std::int32_t index) override { return effect.endEdit(index); }
        double hostScaleFactor() override { return effect.hostScaleFactor.load(std::memory_order_relaxed); }
        int editorScaleChoice() override { return effect.editorScaleChoice.load(std::memory_order_relaxed); }
        void setEditorScaleChoice(int choice) override {
            effect.editorScaleChoice.store(choice, std::memory_order_relaxed);
        }
        bool resizeEditorWindow(int width, int height) override { return effect.sizeWindow(width, height); }
        int headphoneState() override { return effect.headphoneState.load(std::memory_order_relaxed); }

    private:
        SorvaneDecoder& effect;
    };

    template <typename Sample>
    void processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames);

    // The plain stores of a parameter change: its stored value, the current
    // program's record and the engine's field. Hosts call them from any
    // thread while the audio thread reads the fields; no lock, by design.
    void storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record);
    // Record `program` of a layout's table, null when there is none such.
    SorvaneDecoderProgram* programRecord(int layout, VstInt32 program) { return bank.record(layout, program); }
    // A restored state's values (its layout already stored), without calling the host.
    void applyValues(const float* values, int count, int decoderType);

    VstInt32 bitMode;
    // Creating an instance reads no files (hosts create and close plug-ins
    // by the hundred when they scan): the head's responses are read at the
    // host's resumes, not the one the constructor makes.
    bool created = false;
    // For the editor, from the responses the last resume prepared.
    std::atomic<int> headphoneState{sorvane::EditorLink::kHeadphonesAsAsked};
    sorvane::Processor processor;
    // The head tracker's receiver, from a resume to a suspend; stopped before the processor goes.
    sorvane::HeadTracker tracker{processor.headMailbox()};
    sorvane::ParameterValues values;
    sorvane::ProgramBank bank;
    Link editorLink{*this};
    // The editor's size: the factor the host last sent (0 for none) and the
    // user's choice, saved with the bank chunk.
    std::atomic<float> hostScaleFactor{0.0f};
    std::atomic<int> editorScaleChoice{sorvane::kScaleAuto};
    // What getChunk hands out: ours, valid until the next call, as hosts expect.
    std::array<unsigned char, sorvane::chunk::kBankBytes> chunkBytes{};
    VstSpeakerArrangement* inputArrangement = nullptr;
    VstInt32 outputChannels;
    VstInt32 inputChannels;
};

// The editor for an effect, talking to it through `link`; null when the
// effect runs without one.
AEffEditor* createEditor(AudioEffectX* effect, sorvane::EditorLink& link);
