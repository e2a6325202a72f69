// The twenty automatable parameters: their metadata in one table, the
// conversion of each normalised value into the engine's units, and the
// texts a host shows for them.
#include <cstdio>
#include <cstring>

#include "RateConversion.h"
#include "SorvaneDecoder.h"

namespace {

// How a normalised value becomes an engine field and how that field reads.
enum class Kind {
    Angle,       // 180 - 360 v degrees, exactly 0 at the centre
    Zoom,        // 200 v - 100 percent
    ZoomMethod,  // four methods by single-precision bounds
    PairMode,    // XY or MS
    Width,       // 90 v degrees
    Pattern,     // v itself, shown as a pattern word
    Ambience,    // 36 v - 36 dB, with v = 0 switching the path off
    Gain,        // 24 v - 18 dB
    Crossover,   // 220 v + 20 Hz, whole hertz
    Layout,      // five speaker layouts by single-precision bounds
    Order,       // the layout's own order or 5.1 order
};

const char* const kZoomMethodWords[] = {"Dominance", "Press", "Push", "Focus"};
const char* const kPairModeWords[] = {"XY", "MS"};
const char* const kLayoutWords[] = {"Stereo", "2.1", "Quad", "5.0", "5.1"};  // from 2
const char* const kOrderWords[] = {"Natural", "5.1"};

constexpr int kFirstLayout = 2;  // stereo, the first layout a parameter can select
// Below this the ambience paths are switched off; -100 dB keeps "off" well clear of it.
constexpr double kAmbienceThreshold = -40.0;
constexpr double kAmbienceOff = -100.0;

// Hosts give at least this much room for a name, label or display text.
constexpr std::size_t kTextRoom = kVstMaxProgNameLen;

void writeText(char* text, const char* word) { std::snprintf(text, kTextRoom, "%s", word); }

// Writes words[value - first] when value names one of the words, else nothing.
template <std::size_t N>
void writeWord(char* text, const char* const (&words)[N], int value, int first = 0) {
    if (value >= first && value - first < static_cast<int>(N)) writeText(text, words[value - first]);
}

const char* patternWord(double pattern) {
    if (pattern <= 0.125) return "Fig-of-8";
    if (pattern <= 0.375) return "Hyper-Card.";
    if (pattern <= 0.625) return "Cardioid";
    if (pattern <= 0.875) return "Sub-Card.";
    return "Omni.";
}

}  // namespace

struct SorvaneDecoder::ParameterInfo {
    const char* name;  // null: the parameter is named after its current value
    const char* label;
    Kind kind;
    float SorvaneDecoder::*stored;
    float SorvaneDecoderProgram::*program;  // null: not part of a program
    double Decoder::*real;                  // the engine field of a continuous parameter
    int Decoder::*selector;                 // the engine field of a choice or a frequency
};

using P = SorvaneDecoderProgram;
using D = Decoder;
using S = SorvaneDecoder;

const SorvaneDecoder::ParameterInfo SorvaneDecoder::parameterTable[kNumParams] = {
    {"Rotate", "Degrees", Kind::Angle, &S::rotateValue, nullptr, &D::rotateAngle, nullptr},
    {"Tilt", "Degrees", Kind::Angle, &S::tiltValue, nullptr, &D::tiltAngle, nullptr},
    {"Tumble", "Degrees", Kind::Angle, &S::tumbleValue, nullptr, &D::tumbleAngle, nullptr},
    {"Zoom", "Percentage", Kind::Zoom, &S::zoomValue, nullptr, &D::zoomAmount, nullptr},
    {"Zoom Method", "Selection", Kind::ZoomMethod, &S::zoomMethodValue, nullptr, nullptr,
     &D::zoomMethod},
    {nullptr, "Microphones", Kind::PairMode, &S::frontModeValue, &P::frontModeValue, nullptr,
     &D::frontMode},
    {"Width", "Degrees", Kind::Width, &S::frontWidthValue, &P::frontWidthValue, &D::frontWidth,
     nullptr},
    {"Pattern", "Omni", Kind::Pattern, &S::frontPatternValue, &P::frontPatternValue,
     &D::frontPattern, nullptr},
    {"RearVerb", "dB", Kind::Ambience, &S::rearVerbValue, &P::rearVerbValue, &D::rearVerbGain,
     nullptr},
    {"HiVerb", "dB", Kind::Ambience, &S::hiVerbValue, &P::hiVerbValue, &D::hiVerbGain, nullptr},
    {"Ctr. Pattern", "Omni", Kind::Pattern, &S::centrePatternValue, &P::centrePatternValue,
     &D::centrePattern, nullptr},
    {"Ctr. Gain", "dB", Kind::Gain, &S::centreGainValue, &P::centreGainValue, &D::centreGain,
     nullptr},
    {"Sub. Gain", "dB", Kind::Gain, &S::subGainValue, &P::subGainValue, &D::subGain, nullptr},
    {"Sub. Xover", "Hz", Kind::Crossover, &S::crossoverValue, &P::crossoverValue, nullptr,
     &D::crossoverFrequency},
    {"Sur. Mode", "Microphones", Kind::PairMode, &S::surroundModeValue, &P::surroundModeValue,
     nullptr, &D::surroundMode},
    {"Sur. Pattern", "Omni", Kind::Pattern, &S::surroundPatternValue, &P::surroundPatternValue,
     &D::surroundPattern, nullptr},
    {"Sur. Width", "Degrees", Kind::Width, &S::surroundWidthValue, &P::surroundWidthValue,
     &D::surroundWidth, nullptr},
    {"Sur. Gain", "dB", Kind::Gain, &S::surroundGainValue, &P::surroundGainValue,
     &D::surroundGain, nullptr},
    {"Dec. Mode", "Speakers", Kind::Layout, &S::decodeModeValue, nullptr, nullptr,
     &D::decodeMode},
    {"Ch. Order", "Output", Kind::Order, &S::channelOrderValue, nullptr, nullptr,
     &D::channelOrder},
};

float SorvaneDecoder::programValue(const SorvaneDecoderProgram& record, VstInt32 index) {
    const auto field = parameterTable[index].program;
    return field ? record.*field : 0.0f;
}

void SorvaneDecoder::initialiseParameters() {
    rotateValue = tiltValue = tumbleValue = zoomValue = 0.5f;
    zoomMethodValue = frontModeValue = rearVerbValue = hiVerbValue = 0.0f;
    surroundModeValue = decodeModeValue = 0.0f;
    frontWidthValue = frontPatternValue = centrePatternValue = surroundPatternValue = 0.5f;
    centreGainValue = subGainValue = surroundGainValue = 0.75f;
    crossoverValue = 100.0f / 220.0f;    // 120 Hz
    surroundWidthValue = 60.0f / 90.0f;  // 60 degrees
    channelOrderValue = 1.0f;
}

void SorvaneDecoder::storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record) {
    if (index < 0 || index >= kNumParams) return;
    const ParameterInfo& p = parameterTable[index];
    this->*p.stored = v;
    if (p.program && record) record->*p.program = v;

    // The integer constants are applied in single precision, then widened.
    switch (p.kind) {
    case Kind::Angle: decoder.*p.real = v == 0.5f ? 0.0 : 180.0f - 360.0f * v; break;
    case Kind::Zoom: decoder.*p.real = 200.0f * v - 100.0f; break;
    case Kind::ZoomMethod:
        if (v <= 0.2f)
            decoder.*p.selector = 0;
        else if (v <= 0.5f)
            decoder.*p.selector = 1;
        else if (v <= 0.8f)
            decoder.*p.selector = 2;
        else if (v <= 1.0f)
            decoder.*p.selector = 3;
        break;  // above 1 the method stays as it was
    case Kind::PairMode:
    case Kind::Order: decoder.*p.selector = v <= 0.5f ? 0 : 1; break;
    case Kind::Width: decoder.*p.real = 90.0f * v; break;
    case Kind::Pattern: decoder.*p.real = v; break;
    case Kind::Ambience: decoder.*p.real = v == 0.0f ? kAmbienceOff : 36.0f * v - 36.0f; break;
    case Kind::Gain: decoder.*p.real = 24.0f * v - 18.0f; break;
    case Kind::Crossover:
        decoder.*p.selector = truncateToInt(220.0f * v + 20.0f);
        updateCrossover();
        break;
    case Kind::Layout:
        decoder.*p.selector = v <= 0.125f   ? 2
                              : v <= 0.375f ? 3
                              : v <= 0.625f ? 4
                              : v <= 0.875f ? 5
                                            : 6;
        break;
    }
}

void SorvaneDecoder::setParameter(VstInt32 index, float v) {
    // Found before converting, so a change of layout never writes into a record.
    // Any layout without a table of its own edits the stereo table.
    const int layout = programTable(decoder.decodeMode) ? decoder.decodeMode : kFirstLayout;
    SorvaneDecoderProgram* record = programRecord(layout, curProgram);

    storeParameter(index, v, record);
    // Whatever layout resulted, the host refreshes what it shows of us.
    if (index == kDecodeMode) updateDisplay();

    if (editor) editor->setParameter(index, v);

    // A new layout brings its own table: reload the same program number from it.
    if (index == kDecodeMode) setProgram(curProgram);
}

float SorvaneDecoder::getParameter(VstInt32 index) {
    if (index >= 0 && index < kNumParams) return this->*parameterTable[index].stored;
    if (index == kBitMode) return static_cast<float>(bitMode);
    if (index == kFiveDecoderType) return static_cast<float>(decoder.fiveDecoderType);
    return 0.0f;
}

void SorvaneDecoder::getParameterName(VstInt32 index, char* text) {
    if (index < 0 || index >= kNumParams) return;
    if (parameterTable[index].name)
        writeText(text, parameterTable[index].name);
    else
        getParameterDisplay(index, text);
}

void SorvaneDecoder::getParameterLabel(VstInt32 index, char* label) {
    if (index < 0 || index >= kNumParams) return;
    writeText(label, parameterTable[index].label);
}

void SorvaneDecoder::getParameterDisplay(VstInt32 index, char* text) {
    if (index < 0 || index >= kNumParams) return;
    const ParameterInfo& p = parameterTable[index];
    switch (p.kind) {
    case Kind::Angle:
    case Kind::Width: std::snprintf(text, kTextRoom, "%.1f\u00B0", decoder.*p.real); break;
    case Kind::Zoom: std::snprintf(text, kTextRoom, "%.1f%%", decoder.*p.real); break;
    case Kind::ZoomMethod: writeWord(text, kZoomMethodWords, decoder.*p.selector); break;
    case Kind::PairMode: writeWord(text, kPairModeWords, decoder.*p.selector); break;
    case Kind::Order: writeWord(text, kOrderWords, decoder.*p.selector); break;
    case Kind::Layout: writeWord(text, kLayoutWords, decoder.*p.selector, kFirstLayout); break;
    case Kind::Pattern: writeText(text, patternWord(decoder.*p.real)); break;
    case Kind::Ambience:
        if (decoder.*p.real > kAmbienceThreshold)
            std::snprintf(text, kTextRoom, "%.2fdB", decoder.*p.real);
        else
            writeText(text, "Off");
        break;
    case Kind::Gain: std::snprintf(text, kTextRoom, "%.2fdB", decoder.*p.real); break;
    case Kind::Crossover: std::snprintf(text, kTextRoom, "%dHz", decoder.*p.selector); break;
    }
}
