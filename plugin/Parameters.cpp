// The twenty automatable parameters: their metadata in one table, the
// conversion of each normalised value into the engine's units, and the
// texts a host shows for them.
#include <iterator>

#include "EngineFields.h"
#include "SorvaneDecoder.h"

using sorvane::Kind;
using sorvane::kParameters;

// Where each parameter's stored value lives in the effect; its engine field
// and its program record field come from tables both editions share.
struct SorvaneDecoder::ParameterInfo {
    float SorvaneDecoder::*stored;
};

using S = SorvaneDecoder;

const SorvaneDecoder::ParameterInfo SorvaneDecoder::parameterTable[kNumParams] = {
    {&S::rotateValue},        {&S::tiltValue},         {&S::tumbleValue},        {&S::zoomValue},
    {&S::zoomMethodValue},    {&S::frontModeValue},    {&S::frontWidthValue},    {&S::frontPatternValue},
    {&S::rearVerbValue},      {&S::hiVerbValue},       {&S::centrePatternValue}, {&S::centreGainValue},
    {&S::subGainValue},       {&S::crossoverValue},    {&S::surroundModeValue},  {&S::surroundPatternValue},
    {&S::surroundWidthValue}, {&S::surroundGainValue}, {&S::decodeModeValue},    {&S::channelOrderValue},
};
static_assert(std::size(kEngineFields) == kNumParams);

float SorvaneDecoder::programValue(const SorvaneDecoderProgram& record, VstInt32 index) {
    const auto field = sorvane::programField(index);
    return field ? record.*field : 0.0f;
}

void SorvaneDecoder::setProgramValue(SorvaneDecoderProgram& record, VstInt32 index, float v) {
    if (const auto field = sorvane::programField(index)) record.*field = v;
}

void SorvaneDecoder::initialiseParameters() {
    for (VstInt32 i = 0; i < kNumParams; ++i) this->*parameterTable[i].stored = kParameters[i].defaultValue;
}

void SorvaneDecoder::storeParameter(VstInt32 index, float v, SorvaneDecoderProgram* record) {
    if (!sorvane::isParameter(index)) return;
    const EngineField& p = kEngineFields[index];
    this->*parameterTable[index].stored = v;
    if (const auto field = sorvane::programField(index); field && record) record->*field = v;

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
    const EngineField& p = kEngineFields[index];
    sorvane::formatDisplay(kParameters[index].kind, p.real ? decoder.*p.real : 0.0,
                           p.selector ? decoder.*p.selector : 0, text);
}
