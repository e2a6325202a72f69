// The factory programs: five per speaker layout, each a name and the
// normalised values of the microphone and level settings it loads, and which
// of those settings a layout's program sends, in the order it sends them.
// The VST edition fills its program records from these tables; the LV2
// edition's presets are generated from them.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "SorvaneProtocol.h"

namespace sorvane {

constexpr int kFactoryPrograms = 5;  // per layout

constexpr int kProgramValues = kLastProgramParameter - kFirstProgramParameter + 1;

// One program: a name and the normalised values of the microphone and level
// settings, by parameter index. Values a factory program leaves unset hold zero.
struct ProgramRecord {
    char name[kTextRoom] = {};
    float values[kProgramValues] = {};

    constexpr float value(std::int32_t index) const {
        return isProgramParameter(index) ? values[index - kFirstProgramParameter] : 0.0f;
    }
    constexpr void setValue(std::int32_t index, float v) {
        if (isProgramParameter(index)) values[index - kFirstProgramParameter] = v;
    }
};

namespace factory {

// Normalised values whose stored bits matter: they give whole degrees and hertz.
constexpr float kWidth30 = 1.0f / 3.0f;             // 30 degrees
constexpr float kWidth45 = 0.5f;                    // 45 degrees
constexpr float kWidth55 = 55.0f / 90.0f;           // 55 degrees
constexpr float kCrossover120 = kDefaultCrossover;  // 120 Hz
static_assert(std::bit_cast<std::uint32_t>(kWidth30) == 0x3EAAAAABu);
static_assert(std::bit_cast<std::uint32_t>(kWidth55) == 0x3F1C71C7u);
static_assert(std::bit_cast<std::uint32_t>(kCrossover120) == 0x3EE8BA2Fu);

constexpr float kXY = 0.0f, kMS = 1.0f;
constexpr float kFig8 = 0.0f, kCardioid = 0.5f, kSubCardioid = 0.75f;
constexpr float kOff = 0.0f, kMinus9dB = 0.75f, kMinus27dB = 0.25f;
constexpr float kZerodB = kUnityGain;  // of the centre, sub and surround gains

constexpr void copyName(char* to, const char* from) {
    std::size_t i = 0;
    for (; i + 1 < kTextRoom && from[i]; ++i) to[i] = from[i];
    for (; i < kTextRoom; ++i) to[i] = 0;
}

struct Setting {
    std::int32_t index;
    float value;
};
constexpr ProgramRecord program(const char* name, std::initializer_list<Setting> settings = {}) {
    ProgramRecord record;
    copyName(record.name, name);
    for (const Setting& s : settings) record.setValue(s.index, s.value);
    return record;
}

inline constexpr ProgramRecord kStereo[kFactoryPrograms] = {
    program(
        "Stereo XY Microphones",
        {{kFrontMode, kXY}, {kFrontWidth, kWidth30}, {kFrontPattern, kCardioid}, {kRearVerb, kOff}, {kHiVerb, kOff}}),
    program(
        "Stereo MS Microphones",
        {{kFrontMode, kMS}, {kFrontWidth, kWidth30}, {kFrontPattern, kCardioid}, {kRearVerb, kOff}, {kHiVerb, kOff}}),
    program("Stereo Blumlein Fig8s",
            {{kFrontMode, kXY}, {kFrontWidth, kWidth45}, {kFrontPattern, kFig8}, {kRearVerb, kOff}, {kHiVerb, kOff}}),
    program("Stereo XY with 'Verb", {{kFrontMode, kXY},
                                     {kFrontWidth, kWidth30},
                                     {kFrontPattern, kCardioid},
                                     {kRearVerb, kMinus9dB},
                                     {kHiVerb, kMinus27dB}}),
    program("Stereo MS with 'Verb", {{kFrontMode, kMS},
                                     {kFrontWidth, kWidth30},
                                     {kFrontPattern, kCardioid},
                                     {kRearVerb, kMinus9dB},
                                     {kHiVerb, kMinus27dB}}),
};

// 2.1 takes the stereo columns under its own names, plus the sub at 0 dB and 120 Hz.
inline constexpr const char* kTwoOneNames[kFactoryPrograms] = {
    "2.1 XY Microphones", "2.1 MS Microphones", "2.1 Blumlein Fig8s", "2.1 XY with 'Verb", "2.1 MS with 'Verb"};

// Programs 3 and 4 leave the surround pattern unset (zero), which a program load still sends.
inline constexpr ProgramRecord kQuad[kFactoryPrograms] = {
    program("Quad XY Microphones", {{kFrontMode, kXY},
                                    {kFrontWidth, kWidth30},
                                    {kFrontPattern, kCardioid},
                                    {kSurroundMode, kXY},
                                    {kSurroundPattern, kSubCardioid},
                                    {kSurroundWidth, kWidth55},
                                    {kSurroundGain, kZerodB}}),
    program("Quad MS Microphones", {{kFrontMode, kMS},
                                    {kFrontWidth, kWidth30},
                                    {kFrontPattern, kCardioid},
                                    {kSurroundMode, kMS},
                                    {kSurroundPattern, kCardioid},
                                    {kSurroundWidth, kWidth55},
                                    {kSurroundGain, kZerodB}}),
    program("Quad Blumlein Fig8s", {{kFrontMode, kXY},
                                    {kFrontWidth, kWidth45},
                                    {kFrontPattern, kFig8},
                                    {kSurroundMode, kXY},
                                    {kSurroundPattern, kFig8},
                                    {kSurroundWidth, kWidth45},
                                    {kSurroundGain, kZerodB}}),
    program("Quad XY with MS", {{kFrontMode, kXY},
                                {kFrontWidth, kWidth30},
                                {kFrontPattern, kCardioid},
                                {kSurroundMode, kMS},
                                {kSurroundWidth, kWidth55},
                                {kSurroundGain, kZerodB}}),
    program("Quad MS with XY", {{kFrontMode, kMS},
                                {kFrontWidth, kWidth30},
                                {kFrontPattern, kCardioid},
                                {kSurroundMode, kXY},
                                {kSurroundWidth, kWidth55},
                                {kSurroundGain, kZerodB}}),
};

// The two fixed decoders (programs 3 and 4) carry no microphone settings.
inline constexpr ProgramRecord kFive[kFactoryPrograms] = {
    program("5.0 XY Microphones", {{kFrontMode, kXY},
                                   {kFrontWidth, kWidth30},
                                   {kFrontPattern, kCardioid},
                                   {kCentrePattern, kCardioid},
                                   {kCentreGain, kZerodB},
                                   {kSurroundMode, kXY},
                                   {kSurroundPattern, kCardioid},
                                   {kSurroundWidth, kWidth55},
                                   {kSurroundGain, kZerodB}}),
    program("5.0 MS Microphones", {{kFrontMode, kMS},
                                   {kFrontWidth, kWidth30},
                                   {kFrontPattern, kCardioid},
                                   {kCentrePattern, kCardioid},
                                   {kCentreGain, kZerodB},
                                   {kSurroundMode, kMS},
                                   {kSurroundPattern, kCardioid},
                                   {kSurroundWidth, kWidth55},
                                   {kSurroundGain, kZerodB}}),
    program("5.0 Blumlein Fig8s", {{kFrontMode, kXY},
                                   {kFrontWidth, kWidth45},
                                   {kFrontPattern, kFig8},
                                   {kCentrePattern, kFig8},
                                   {kCentreGain, kZerodB},
                                   {kSurroundMode, kXY},
                                   {kSurroundPattern, kFig8},
                                   {kSurroundWidth, kWidth45},
                                   {kSurroundGain, kZerodB}}),
    program("5.0 Heller et. al. 1"),
    program("5.0 Heller et. al. 2"),
};

inline constexpr const char* kFiveOneNames[kFactoryPrograms] = {
    "5.1 XY Microphones", "5.1 MS Microphones", "5.1 Blumlein Fig8s", "5.1 Heller et. al. 1", "5.1 Heller et. al. 2"};

// What a program load sends, in order (surround width before pattern).
inline constexpr std::int32_t kStereoSent[] = {kFrontMode, kFrontWidth, kFrontPattern, kRearVerb, kHiVerb};
inline constexpr std::int32_t kTwoOneSent[] = {kFrontMode, kFrontWidth, kFrontPattern, kRearVerb,
                                               kHiVerb,    kSubGain,    kSubCrossover};
inline constexpr std::int32_t kQuadSent[] = {kFrontMode,     kFrontWidth,      kFrontPattern, kSurroundMode,
                                             kSurroundWidth, kSurroundPattern, kSurroundGain};
inline constexpr std::int32_t kFiveSent[] = {kFrontMode,     kFrontWidth,      kFrontPattern,
                                             kCentrePattern, kCentreGain,      kSurroundMode,
                                             kSurroundWidth, kSurroundPattern, kSurroundGain};
inline constexpr std::int32_t kFiveOneSent[] = {kFrontMode,     kFrontWidth,      kFrontPattern, kCentrePattern,
                                                kCentreGain,    kSubGain,         kSubCrossover, kSurroundMode,
                                                kSurroundWidth, kSurroundPattern, kSurroundGain};
inline constexpr std::int32_t kFiveOneFixedSent[] = {kSubGain, kSubCrossover};

}  // namespace factory

constexpr int kFixedDecoderFirstProgram = 3;  // 3 and 4 select the fixed 5.x decoders

constexpr bool isFiveSpeakerLayout(int layout) { return layout == kFiveLayout || layout == kFiveOneLayout; }

// The 5.x decoder type a program of a 5.x layout selects.
constexpr int programDecoderType(int program) {
    return std::max(kVirtualMicrophones, program - kFixedDecoderFirstProgram + kFixedMatrix1);
}

// The parameters a layout's program sends, in order; none for a layout without programs.
constexpr std::span<const std::int32_t> programParameters(int layout, int program) {
    switch (layout) {
    case kStereoLayout: return factory::kStereoSent;
    case kTwoOneLayout: return factory::kTwoOneSent;
    case kQuadLayout: return factory::kQuadSent;
    case kFiveLayout:
        if (program < kFixedDecoderFirstProgram) return factory::kFiveSent;
        return {};
    case kFiveOneLayout:
        if (program < kFixedDecoderFirstProgram) return factory::kFiveOneSent;
        return factory::kFiveOneFixedSent;
    default: return {};
    }
}

// Program `program` (0..4) of a selectable layout as it leaves the factory.
constexpr ProgramRecord factoryProgram(int layout, int program) {
    using namespace factory;
    ProgramRecord record;
    switch (layout) {
    case kStereoLayout: return kStereo[program];
    case kTwoOneLayout:
        record = kStereo[program];
        copyName(record.name, kTwoOneNames[program]);
        record.setValue(kSubGain, kZerodB);
        record.setValue(kSubCrossover, kCrossover120);
        return record;
    case kQuadLayout: return kQuad[program];
    case kFiveLayout: return kFive[program];
    case kFiveOneLayout:
        record = kFive[program];
        copyName(record.name, kFiveOneNames[program]);
        record.setValue(kSubGain, kZerodB);
        record.setValue(kSubCrossover, kCrossover120);
        return record;
    default: return record;
    }
}

}  // namespace sorvane
