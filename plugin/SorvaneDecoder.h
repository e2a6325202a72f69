// The effect a host loads: B-format in, speaker feeds out, twenty automatable
// parameters and five programs per speaker layout.
#pragma once

#include <array>
#include <memory>

#include "AudioEffectX.h"
#include "Decoder.h"
#include "FactoryPrograms.h"
#include "SorvaneProtocol.h"
#include "StateChunk.h"

constexpr VstInt32 kNumPrograms = sorvane::kFactoryPrograms;
// Records per layout table; the host only ever selects the first five.
constexpr VstInt32 kProgramCapacity = 20;

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
    struct ParameterInfo;
    static const ParameterInfo parameterTable[kNumParams];
    // The record's value of a program parameter (5 to 17).
    static float programValue(const SorvaneDecoderProgram& record, VstInt32 index);
    static void setProgramValue(SorvaneDecoderProgram& record, VstInt32 index, float v);

    template <typename Sample>
    void processBlock(Sample** inputs, Sample** outputs, VstInt32 sampleFrames);

    void initialiseParameters();
    void fillFactoryPrograms();
    // Recomputes the crossover for the current rate and frequency, kept finite.
    void updateCrossover();
    // The plain stores of a parameter change: its stored value, the current
    // program's record and the engine's field. Hosts call them from any
    // thread while the audio thread reads the fields; no lock, by design.
    void storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record);
    void setFiveDecoderType(int type) { decoder.fiveDecoderType = type; }
    // The table of a layout (2..6), null for any other layout.
    SorvaneDecoderProgram* programTable(int layout);
    // Record `program` of the table, null when the table or the record is missing.
    SorvaneDecoderProgram* programRecord(int layout, VstInt32 program);
    // A restored state's current values (its layout already stored), without calling the host.
    void applyCurrentValues(const float* values, int decoderType);

    VstInt32 bitMode;
    Decoder decoder;
    // What getChunk hands out: ours, valid until the next call, as hosts expect.
    std::array<unsigned char, sorvane::chunk::kBankBytes> chunkBytes{};
    // The audio loop's working memory, held here so the callbacks never
    // allocate: a host block is processed in pieces of this many frames.
    static constexpr int kPieceFrames = 256;
    struct AudioScratch {
        alignas(64) double signal[4][kPieceFrames];  // W, X, Y, Z
        alignas(64) double feed[6][kPieceFrames];    // L, R, C, LFE, Ls, Rs
    };
    AudioScratch scratch;
    VstSpeakerArrangement* inputArrangement = nullptr;
    VstInt32 outputChannels;
    VstInt32 inputChannels;
    std::unique_ptr<SorvaneDecoderProgram[]> stereoPrograms;
    std::unique_ptr<SorvaneDecoderProgram[]> twoOnePrograms;
    std::unique_ptr<SorvaneDecoderProgram[]> quadPrograms;
    std::unique_ptr<SorvaneDecoderProgram[]> fivePrograms;
    std::unique_ptr<SorvaneDecoderProgram[]> fiveOnePrograms;
    float frontModeValue;
    float frontWidthValue;
    float frontPatternValue;
    float rotateValue;
    float tiltValue;
    float tumbleValue;
    float zoomValue;
    float zoomMethodValue;
    float rearVerbValue;
    float hiVerbValue;
    float centrePatternValue;
    float centreGainValue;
    float subGainValue;
    float surroundModeValue;
    float surroundPatternValue;
    float surroundWidthValue;
    float surroundGainValue;
    float crossoverValue;
    float decodeModeValue;
    float channelOrderValue;
};

// The editor for an effect; null when the effect runs without one.
AEffEditor* createEditor(AudioEffectX* effect);
