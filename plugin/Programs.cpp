// The factory programs, one table of five per speaker layout, and the host's
// program requests. Programs are edited live: every change of a program
// parameter lands in the current record (see setParameter).
#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

#include "SorvaneDecoder.h"

namespace {

// Normalised values whose stored bits matter: they give whole degrees and hertz.
constexpr float kWidth30 = 1.0f / 3.0f;                      // 30 degrees
constexpr float kWidth45 = 0.5f;                             // 45 degrees
constexpr float kWidth55 = 55.0f / 90.0f;                    // 55 degrees
constexpr float kCrossover120 = sorvane::kDefaultCrossover;  // 120 Hz
static_assert(std::bit_cast<std::uint32_t>(kWidth30) == 0x3EAAAAABu);
static_assert(std::bit_cast<std::uint32_t>(kWidth55) == 0x3F1C71C7u);
static_assert(std::bit_cast<std::uint32_t>(kCrossover120) == 0x3EE8BA2Fu);

constexpr float kXY = 0.0f, kMS = 1.0f;
constexpr float kFig8 = 0.0f, kCardioid = 0.5f, kSubCardioid = 0.75f;
constexpr float kOff = 0.0f, kMinus9dB = 0.75f, kMinus27dB = 0.25f;
constexpr float kZerodB = sorvane::kUnityGain;  // of the centre, sub and surround gains

using Program = SorvaneDecoderProgram;

constexpr Program kStereo[kNumPrograms] = {
    {.name = "Stereo XY Microphones",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .rearVerbValue = kOff,
     .hiVerbValue = kOff},
    {.name = "Stereo MS Microphones",
     .frontModeValue = kMS,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .rearVerbValue = kOff,
     .hiVerbValue = kOff},
    {.name = "Stereo Blumlein Fig8s",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth45,
     .frontPatternValue = kFig8,
     .rearVerbValue = kOff,
     .hiVerbValue = kOff},
    {.name = "Stereo XY with 'Verb",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .rearVerbValue = kMinus9dB,
     .hiVerbValue = kMinus27dB},
    {.name = "Stereo MS with 'Verb",
     .frontModeValue = kMS,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .rearVerbValue = kMinus9dB,
     .hiVerbValue = kMinus27dB},
};

// 2.1 takes the stereo columns under its own names, plus the sub at 0 dB and 120 Hz.
constexpr const char* kTwoOneNames[kNumPrograms] = {"2.1 XY Microphones", "2.1 MS Microphones", "2.1 Blumlein Fig8s",
                                                    "2.1 XY with 'Verb", "2.1 MS with 'Verb"};

// Programs 3 and 4 leave the surround pattern unset (zero), which setProgram still sends.
constexpr Program kQuad[kNumPrograms] = {
    {.name = "Quad XY Microphones",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .surroundModeValue = kXY,
     .surroundPatternValue = kSubCardioid,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
    {.name = "Quad MS Microphones",
     .frontModeValue = kMS,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .surroundModeValue = kMS,
     .surroundPatternValue = kCardioid,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
    {.name = "Quad Blumlein Fig8s",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth45,
     .frontPatternValue = kFig8,
     .surroundModeValue = kXY,
     .surroundPatternValue = kFig8,
     .surroundWidthValue = kWidth45,
     .surroundGainValue = kZerodB},
    {.name = "Quad XY with MS",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .surroundModeValue = kMS,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
    {.name = "Quad MS with XY",
     .frontModeValue = kMS,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .surroundModeValue = kXY,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
};

// The two fixed decoders (programs 3 and 4) carry no microphone settings.
constexpr Program kFive[kNumPrograms] = {
    {.name = "5.0 XY Microphones",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .centrePatternValue = kCardioid,
     .centreGainValue = kZerodB,
     .surroundModeValue = kXY,
     .surroundPatternValue = kCardioid,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
    {.name = "5.0 MS Microphones",
     .frontModeValue = kMS,
     .frontWidthValue = kWidth30,
     .frontPatternValue = kCardioid,
     .centrePatternValue = kCardioid,
     .centreGainValue = kZerodB,
     .surroundModeValue = kMS,
     .surroundPatternValue = kCardioid,
     .surroundWidthValue = kWidth55,
     .surroundGainValue = kZerodB},
    {.name = "5.0 Blumlein Fig8s",
     .frontModeValue = kXY,
     .frontWidthValue = kWidth45,
     .frontPatternValue = kFig8,
     .centrePatternValue = kFig8,
     .centreGainValue = kZerodB,
     .surroundModeValue = kXY,
     .surroundPatternValue = kFig8,
     .surroundWidthValue = kWidth45,
     .surroundGainValue = kZerodB},
    {.name = "5.0 Heller et. al. 1"},
    {.name = "5.0 Heller et. al. 2"},
};

constexpr const char* kFiveOneNames[kNumPrograms] = {"5.1 XY Microphones", "5.1 MS Microphones", "5.1 Blumlein Fig8s",
                                                     "5.1 Heller et. al. 1", "5.1 Heller et. al. 2"};

// What setProgram sends, in order (surround width before pattern).
constexpr VstInt32 kStereoSent[] = {kFrontMode, kFrontWidth, kFrontPattern, kRearVerb, kHiVerb};
constexpr VstInt32 kTwoOneSent[] = {kFrontMode, kFrontWidth, kFrontPattern, kRearVerb,
                                    kHiVerb,    kSubGain,    kSubCrossover};
constexpr VstInt32 kQuadSent[] = {kFrontMode,     kFrontWidth,      kFrontPattern, kSurroundMode,
                                  kSurroundWidth, kSurroundPattern, kSurroundGain};
constexpr VstInt32 kFiveSent[] = {kFrontMode,    kFrontWidth,    kFrontPattern,    kCentrePattern, kCentreGain,
                                  kSurroundMode, kSurroundWidth, kSurroundPattern, kSurroundGain};
constexpr VstInt32 kFiveOneSent[] = {kFrontMode,     kFrontWidth,      kFrontPattern, kCentrePattern,
                                     kCentreGain,    kSubGain,         kSubCrossover, kSurroundMode,
                                     kSurroundWidth, kSurroundPattern, kSurroundGain};
constexpr VstInt32 kFiveOneFixedSent[] = {kSubGain, kSubCrossover};

constexpr int kFixedDecoderFirstProgram = 3;  // 3 and 4 select the fixed 5.x decoders

void copyName(char* to, const char* from) {
    std::strncpy(to, from, kVstMaxProgNameLen - 1);
    to[kVstMaxProgNameLen - 1] = 0;
}

}  // namespace

void SorvaneDecoder::fillFactoryPrograms() {
    for (int i = 0; i < kNumPrograms; ++i) {
        if (stereoPrograms) stereoPrograms[i] = kStereo[i];
        if (twoOnePrograms) {
            twoOnePrograms[i] = kStereo[i];
            copyName(twoOnePrograms[i].name, kTwoOneNames[i]);
            twoOnePrograms[i].subGainValue = kZerodB;
            twoOnePrograms[i].crossoverValue = kCrossover120;
        }
        if (quadPrograms) quadPrograms[i] = kQuad[i];
        if (fivePrograms) fivePrograms[i] = kFive[i];
        if (fiveOnePrograms) {
            fiveOnePrograms[i] = kFive[i];
            copyName(fiveOnePrograms[i].name, kFiveOneNames[i]);
            fiveOnePrograms[i].subGainValue = kZerodB;
            fiveOnePrograms[i].crossoverValue = kCrossover120;
        }
    }
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

    std::span<const VstInt32> sent;
    const bool fiveSpeakers = layout == sorvane::kFiveLayout || layout == sorvane::kFiveOneLayout;
    if (fiveSpeakers && program >= kNumPrograms) return;
    if (fiveSpeakers && program < kFixedDecoderFirstProgram) setFiveDecoderType(sorvane::kVirtualMicrophones);

    switch (layout) {
    case sorvane::kStereoLayout: sent = kStereoSent; break;
    case sorvane::kTwoOneLayout: sent = kTwoOneSent; break;
    case sorvane::kQuadLayout: sent = kQuadSent; break;
    case sorvane::kFiveLayout:
        if (program < kFixedDecoderFirstProgram) sent = kFiveSent;
        break;
    case sorvane::kFiveOneLayout:
        sent = program < kFixedDecoderFirstProgram ? std::span<const VstInt32>(kFiveOneSent)
                                                   : std::span<const VstInt32>(kFiveOneFixedSent);
        break;
    }
    for (VstInt32 index : sent) setParameter(index, programValue(*record, index));

    if (fiveSpeakers) {
        const int type =
            std::max(sorvane::kVirtualMicrophones, program - kFixedDecoderFirstProgram + sorvane::kFixedMatrix1);
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
