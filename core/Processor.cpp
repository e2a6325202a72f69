#include "Processor.h"

#include <algorithm>
#include <iterator>

#include "CrossoverSafety.h"
#include "EngineFields.h"
#include "FloatModeGuard.h"
#include "Units.h"

namespace sorvane {

namespace {

// Where the engine's W, X, Y and Z are found among the host's channels, by
// dialect, for three channels (horizontal only) and for four; -1 reads
// silence. With three, the ACN dialects carry W, Y, X: the horizontal
// subset in ACN order.
constexpr int kSourceChannel[kInputFormats][2][4] = {
    {{0, 1, 2, -1}, {0, 1, 2, 3}},  // B-format: W X Y Z
    {{0, 2, 1, -1}, {0, 3, 1, 2}},  // AmbiX: W Y Z X
    {{0, 2, 1, -1}, {0, 3, 1, 2}},  // N3D: W Y Z X
};

// The gains that bring each dialect to the engine's B-format: W 3 dB down
// (the ACN dialects carry it at full level), and X, Y, Z as SN3D has them
// (N3D carries them sqrt 3 higher).
constexpr double kHalfPower = 0.7071067811865476;  // 1 / sqrt 2
constexpr double kN3dToSn3d = 0.5773502691896258;  // 1 / sqrt 3
constexpr double kDialectGain[kInputFormats][4] = {
    {1.0, 1.0, 1.0, 1.0},
    {kHalfPower, 1.0, 1.0, 1.0},
    {kHalfPower, kN3dToSn3d, kN3dToSn3d, kN3dToSn3d},
};

void readSamples(const BlockKernels& k, const float* in, double* out, int frames) { k.widen(in, out, frames); }
void readSamples(const BlockKernels& k, const double* in, double* out, int frames) { k.copy(in, out, frames); }
void writeSamples(const BlockKernels& k, const double* in, float* out, int frames) { k.narrow(in, out, frames); }
void writeSamples(const BlockKernels& k, const double* in, double* out, int frames) { k.copy(in, out, frames); }
void silence(const BlockKernels& k, float* out, int frames) { k.silence(out, frames); }
void silence(const BlockKernels& k, double* out, int frames) { k.fill(out, 0.0, frames); }

}  // namespace

Processor::Processor() : designedFrequency(decoder.crossoverFrequency) {}

static_assert(std::size(kEngineFields) == kFirstSetting && kFirstSetting == kInput && kInput + 1 == kNumParams,
              "every parameter has its field");

Processor::Field Processor::fieldOf(int index) {
    if (index == kInput) return {nullptr, &inputFormat};
    const EngineField& field = kEngineFields[index];
    return {field.real ? &(decoder.*field.real) : nullptr, field.selector ? &(decoder.*field.selector) : nullptr};
}

void Processor::designCrossover() {
    ::designCrossover(decoder);
    designedFrequency = decoder.crossoverFrequency;
}

void Processor::setNormalised(int index, float v) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    const Field field = fieldOf(index);
    if (isSelector(kind))
        *field.selector = selectorValue(kind, v, *field.selector);
    else
        *field.real = realValue(kind, v);
    if (kind == Kind::Crossover) designCrossover();
}

void Processor::setUnits(int index, float value) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    const Field field = fieldOf(index);
    if (isSelector(kind))
        *field.selector = selectorOfUnits(kind, value);
    else
        *field.real = realOfUnits(kind, value);
    if (kind == Kind::Crossover && decoder.crossoverFrequency != designedFrequency) designCrossover();
}

void Processor::setSampleRate(float rate) {
    decoder.sampleRate = truncateToInt(rate);
    designCrossover();
}

void Processor::display(int index, char* text) {
    if (!isParameter(index)) return;
    const Field field = fieldOf(index);
    formatDisplay(kParameters[index].kind, field.real ? *field.real : 0.0, field.selector ? *field.selector : 0, text);
}

template <typename Sample>
void Processor::readPiece(const Sample* const* inputs, int readCount, std::size_t done, int frames) {
    const BlockKernels& k = decoder.blockLoops();
    const int dialect = std::clamp(inputFormat, 0, kInputFormats - 1);
    const int* source = kSourceChannel[dialect][readCount == 4 ? 1 : 0];
    for (int s = 0; s < 4; ++s) {
        double* signal = scratch.signal[s];
        const int c = readCount > 0 ? source[s] : -1;
        if (c < 0 || !inputs[c]) {
            k.fill(signal, 0.0, frames);
            continue;
        }
        const Sample* in = inputs[c] + done;
        if (const double gain = kDialectGain[dialect][s]; gain != 1.0)
            for (int f = 0; f < frames; ++f) signal[f] = static_cast<double>(in[f]) * gain;  // read and scaled at once
        else
            readSamples(k, in, signal, frames);
    }
}

template <typename Sample>
void Processor::process(const Sample* const* inputs, int inputCount, Sample* const* outputs, int outputCount,
                        std::size_t frames) {
    if (frames == 0) return;
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;
    const BlockKernels& copies = decoder.blockLoops();
    const int readCount = inputCount == 4 ? 4 : inputCount == 3 ? 3 : 0;

    BlockFeeds feeds;
    for (int i = 0; i < 6; ++i) feeds.feed[i] = scratch.feed[i];
    for (std::size_t done = 0; done < frames; done += kPieceFrames) {
        const int n = static_cast<int>(std::min<std::size_t>(kPieceFrames, frames - done));
        readPiece(inputs, readCount, done, n);
        auto& s = scratch.signal;
        const int produced = decoder.processBlock(s[0], s[1], s[2], s[3], n, feeds);
        for (int c = 0; c < outputCount; ++c) {
            if (!outputs[c]) continue;
            Sample* out = outputs[c] + done;
            const double* slot = c < produced ? feeds.slot[c] : nullptr;
            if (slot)
                writeSamples(copies, slot, out, n);
            else
                silence(copies, out, n);
        }
    }
    // A NaN or infinite input sample would stay in the crossover's history
    // for good; clearing it lets the next block of finite input come out
    // finite. A finite history is left alone, so finite input is unaffected.
    recoverCrossover(decoder);
}

template void Processor::process(const float* const*, int, float* const*, int, std::size_t);
template void Processor::process(const double* const*, int, double* const*, int, std::size_t);

}  // namespace sorvane
