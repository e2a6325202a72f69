// The twenty automatable parameters: their metadata in one table, the
// conversion of each normalised value into the engine's units, and the
// texts a host shows for them.
#include "SorvaneDecoder.h"

using sorvane::Kind;
using sorvane::kParameters;

// Where each parameter lives in the effect, its program record and the engine.
struct SorvaneDecoder::ParameterInfo {
    float SorvaneDecoder::*stored;
    float SorvaneDecoderProgram::*program;  // null: not part of a program
    double Decoder::*real;                  // the engine field of a continuous parameter
    int Decoder::*selector;                 // the engine field of a choice or a frequency
};

using P = SorvaneDecoderProgram;
using D = Decoder;
using S = SorvaneDecoder;

const SorvaneDecoder::ParameterInfo SorvaneDecoder::parameterTable[kNumParams] = {
    {&S::rotateValue, nullptr, &D::rotateAngle, nullptr},
    {&S::tiltValue, nullptr, &D::tiltAngle, nullptr},
    {&S::tumbleValue, nullptr, &D::tumbleAngle, nullptr},
    {&S::zoomValue, nullptr, &D::zoomAmount, nullptr},
    {&S::zoomMethodValue, nullptr, nullptr, &D::zoomMethod},
    {&S::frontModeValue, &P::frontModeValue, nullptr, &D::frontMode},
    {&S::frontWidthValue, &P::frontWidthValue, &D::frontWidth, nullptr},
    {&S::frontPatternValue, &P::frontPatternValue, &D::frontPattern, nullptr},
    {&S::rearVerbValue, &P::rearVerbValue, &D::rearVerbGain, nullptr},
    {&S::hiVerbValue, &P::hiVerbValue, &D::hiVerbGain, nullptr},
    {&S::centrePatternValue, &P::centrePatternValue, &D::centrePattern, nullptr},
    {&S::centreGainValue, &P::centreGainValue, &D::centreGain, nullptr},
    {&S::subGainValue, &P::subGainValue, &D::subGain, nullptr},
    {&S::crossoverValue, &P::crossoverValue, nullptr, &D::crossoverFrequency},
    {&S::surroundModeValue, &P::surroundModeValue, nullptr, &D::surroundMode},
    {&S::surroundPatternValue, &P::surroundPatternValue, &D::surroundPattern, nullptr},
    {&S::surroundWidthValue, &P::surroundWidthValue, &D::surroundWidth, nullptr},
    {&S::surroundGainValue, &P::surroundGainValue, &D::surroundGain, nullptr},
    {&S::decodeModeValue, nullptr, nullptr, &D::decodeMode},
    {&S::channelOrderValue, nullptr, nullptr, &D::channelOrder},
};

float SorvaneDecoder::programValue(const SorvaneDecoderProgram& record, VstInt32 index) {
    const auto field = parameterTable[index].program;
    return field ? record.*field : 0.0f;
}

void SorvaneDecoder::setProgramValue(SorvaneDecoderProgram& record, VstInt32 index, float v) {
    if (const auto field = parameterTable[index].program) record.*field = v;
}

void SorvaneDecoder::initialiseParameters() {
    for (VstInt32 i = 0; i < kNumParams; ++i) this->*parameterTable[i].stored = kParameters[i].defaultValue;
}

void SorvaneDecoder::storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record) {
    if (!sorvane::isParameter(index)) return;
    const ParameterInfo& p = parameterTable[index];
    this->*p.stored = v;
    if (p.program && record) record->*p.program = v;

    const Kind kind = kParameters[index].kind;
    if (sorvane::isSelector(kind))
        decoder.*p.selector = sorvane::selectorValue(kind, v, decoder.*p.selector);
    else
        decoder.*p.real = sorvane::realValue(kind, v);
    if (kind == Kind::Crossover) updateCrossover();
}

void SorvaneDecoder::setParameter(VstInt32 index, float v) {
    // Found before converting, so a change of layout never writes into a record.
    // Any layout without a table of its own edits the stereo table.
    const int layout = programTable(decoder.decodeMode) ? decoder.decodeMode : sorvane::kStereoLayout;
    SorvaneDecoderProgram* record = programRecord(layout, curProgram);

    storeParameter(index, v, record);
    // Whatever layout resulted, the host refreshes what it shows of us.
    if (index == kDecodeMode) updateDisplay();

    if (editor) editor->setParameter(index, v);

    // A new layout brings its own table: reload the same program number from it.
    if (index == kDecodeMode) setProgram(curProgram);
}

float SorvaneDecoder::getParameter(VstInt32 index) {
    if (sorvane::isParameter(index)) return this->*parameterTable[index].stored;
    if (index == kBitMode) return static_cast<float>(bitMode);
    if (index == kFiveDecoderType) return static_cast<float>(decoder.fiveDecoderType);
    return 0.0f;
}

void SorvaneDecoder::getParameterName(VstInt32 index, char* text) {
    if (!sorvane::isParameter(index)) return;
    if (kParameters[index].name)
        sorvane::writeText(text, kParameters[index].name);
    else
        getParameterDisplay(index, text);
}

void SorvaneDecoder::getParameterLabel(VstInt32 index, char* label) {
    if (sorvane::isParameter(index)) sorvane::writeText(label, kParameters[index].label);
}

void SorvaneDecoder::getParameterDisplay(VstInt32 index, char* text) {
    if (!sorvane::isParameter(index)) return;
    const ParameterInfo& p = parameterTable[index];
    sorvane::formatDisplay(kParameters[index].kind, p.real ? decoder.*p.real : 0.0,
                           p.selector ? decoder.*p.selector : 0, text);
}
