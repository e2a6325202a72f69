#include "Processor.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>

#include "CrossoverSafety.h"
#include "EngineFields.h"
#include "FloatModeGuard.h"
#include "Truncation.h"
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

bool sameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

// Designs the crossover anew for the engine's frequency, keeping the filters'
// history: a gliding crossover moves without a click.
void retune(Decoder& engine, int& designed) {
    double low[4], high[4][4];
    std::copy(std::begin(engine.lowPassState), std::end(engine.lowPassState), low);
    std::copy(&engine.highPassState[0][0], &engine.highPassState[0][0] + 16, &high[0][0]);
    ::designCrossover(engine);
    std::copy(low, low + 4, engine.lowPassState);
    std::copy(&high[0][0], &high[0][0] + 16, &engine.highPassState[0][0]);
    designed = engine.crossoverFrequency;
}

}  // namespace

static_assert(std::size(kEngineFields) == kFirstSetting, "every parameter of the sound has its field");

double Processor::Glide::at(std::int64_t frame, int length) const {
    const std::int64_t k = frame - start;
    if (k >= length) return to;
    if (k <= 0) return from;
    return from + (to - from) * (static_cast<double>(k) / length);
}

Processor::Processor() : designedFrequency(decoder.crossoverFrequency) {
    // Every setting starts where the engine's field is.
    for (int i = 0; i < kNumParams; ++i) {
        const Field field = fieldOf(decoder, i);
        const double value = field.real ? *field.real : *field.selector;
        wanted[i].store(value, std::memory_order_relaxed);
        if (i >= kFirstSetting || !glides(kParameters[i].kind)) continue;
        glide[i].from = glide[i].to = value;
        const Kind kind = kParameters[i].kind;
        const double ends[] = {detail::fieldOfNormalised(kind, 0.0f), detail::fieldOfNormalised(kind, 1.0f)};
        lowest[i] = std::min(ends[0], ends[1]);
        highest[i] = std::max(ends[0], ends[1]);
    }
    wantedFiveDecoder.store(decoder.fiveDecoderType, std::memory_order_relaxed);
    setSampleRate(static_cast<float>(decoder.sampleRate));
}

Processor::Field Processor::fieldOf(Decoder& engine, int index) {
    if (index == kInput) return {nullptr, &inputFormat};
    if (index == kSmoothing) return {nullptr, &smoothing};
    if (index == kOutput) return {nullptr, &outputMode};
    if (index == kTracking) return {nullptr, &tracking};
    const EngineField& field = kEngineFields[index];
    return {field.real ? &(engine.*field.real) : nullptr, field.selector ? &(engine.*field.selector) : nullptr};
}

void Processor::designCrossover() {
    ::designCrossover(decoder);
    designedFrequency = decoder.crossoverFrequency;
}

void Processor::want(int index, double value) { wanted[index].store(value, std::memory_order_relaxed); }

void Processor::setNormalised(int index, float v) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    if (!isSelector(kind)) return want(index, realValue(kind, v));
    want(index, selectorValue(kind, v, static_cast<int>(wanted[index].load(std::memory_order_relaxed))));
    // Without smoothing, each write of the crossover designs the filters afresh.
    if (kind == Kind::Crossover) crossoverWrites.fetch_add(1, std::memory_order_release);
}

void Processor::setUnits(int index, float value) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    if (!isSelector(kind)) return want(index, realOfUnits(kind, value));
    // A port carries its value every block: only a new frequency is designed
    // (the audio thread compares it with the one it runs).
    want(index, selectorOfUnits(kind, value));
}

void Processor::setSampleRate(float rate) {
    decoder.sampleRate = truncateToInt(rate);
    designCrossover();
    const double frames = std::round(kGlideSeconds * std::max(decoder.sampleRate, 1));
    glideFrames = static_cast<int>(std::clamp(frames, 1.0, 1e8));
}

void Processor::prepareHeadphones(int maxBlock) {
    headphones.prepare(decoder.sampleRate, maxBlock);
    const auto room = static_cast<std::size_t>(headphones.capacity());
    slotStore.assign(HeadphoneStage::kSlots * room, 0.0f);
    earStore.assign(2 * room, 0.0f);
}

double Processor::earShareAt(std::int64_t k) const {
    if (earTarget() == earShare) return earShare;
    const double moved = static_cast<double>(clock + k - earFrom) / glideFrames;
    return earTarget() > earShare ? std::min(1.0, earShare + moved) : std::max(0.0, earShare - moved);
}

void Processor::clearHistory() {
    decoder.clearFilter();
    headphones.clear();
    running = false;
    clock = 0;
}

void Processor::display(int index, char* text) {
    if (!isParameter(index)) return;
    const Kind kind = kParameters[index].kind;
    const double value = wanted[index].load(std::memory_order_relaxed);  // a continuous one may be NaN
    formatDisplay(kind, value, isSelector(kind) ? static_cast<int>(value) : 0, text);
}

Processor::Choices Processor::choicesOf(const Decoder& engine) const {
    return {engine.zoomMethod,   engine.frontMode,       engine.surroundMode, engine.decodeMode,
            engine.channelOrder, engine.fiveDecoderType, inputFormat};
}

void Processor::setChoices(Decoder& engine, const Choices& choices) {
    engine.zoomMethod = choices.zoomMethod;
    engine.frontMode = choices.frontMode;
    engine.surroundMode = choices.surroundMode;
    engine.decodeMode = choices.decodeMode;
    engine.channelOrder = choices.channelOrder;
    engine.fiveDecoderType = choices.fiveDecoderType;
}

bool Processor::anyGlide() const {
    return std::any_of(std::begin(glide), std::end(glide), [](const Glide& g) { return g.active; });
}

void Processor::placeGlides(Decoder& engine, std::int64_t frame) {
    int& designed = &engine == &decoder ? designedFrequency : partnerDesigned;
    for (int i = 0; i < kFirstSetting; ++i) {
        if (!glide[i].active) continue;
        const double value = glide[i].at(frame, glideFrames);
        const Field field = fieldOf(engine, i);
        if (field.real) {
            *field.real = value;
        } else {
            *field.selector = static_cast<int>(std::lround(value));
            if (*field.selector != designed) retune(engine, designed);
        }
    }
}

void Processor::takeTargets() {
    // The choices, as asked for; they switch (or fade, below) at once.
    const unsigned writes = crossoverWrites.load(std::memory_order_acquire);
    for (int i = 0; i < kNumParams; ++i)
        if (isSelector(kParameters[i].kind) && kParameters[i].kind != Kind::Crossover)
            *fieldOf(decoder, i).selector = static_cast<int>(wanted[i].load(std::memory_order_relaxed));
    decoder.fiveDecoderType = wantedFiveDecoder.load(std::memory_order_relaxed);

    const bool atOnce = settleNext.exchange(false, std::memory_order_acquire) || !smoothing || !running;
    const bool crossoverWritten = writes != crossoverSeen;
    crossoverSeen = writes;
    running = true;
    bool started = false, jumped = false;
    for (int i = 0; i < kFirstSetting; ++i) {
        if (!glides(kParameters[i].kind)) continue;
        Glide& g = glide[i];
        const double want = wanted[i].load(std::memory_order_relaxed);
        const Field field = fieldOf(decoder, i);
        const auto takeAtOnce = [&] {
            g = {want, want, clock, false};
            if (field.real) {
                *field.real = want;
            } else if (*field.selector != static_cast<int>(want) || crossoverWritten) {
                *field.selector = static_cast<int>(want);
                designCrossover();
            }
        };
        if (atOnce) {
            takeAtOnce();
            continue;
        }
        if (sameBits(g.to, want)) continue;
        // From where it is now, gliding or still.
        const double from = g.active ? g.at(clock, glideFrames) : (field.real ? *field.real : *field.selector);
        if (!(from >= lowest[i] && from <= highest[i] && want >= lowest[i] && want <= highest[i])) {
            // A glide through values no control reaches could pass through
            // infinite gains; the stray value is taken, or left, at once.
            takeAtOnce();
            jumped = true;
            continue;
        }
        g.from = from;
        g.to = want;
        g.start = clock;
        g.active = started = true;
    }
    // A partner already placed for this cell would carry the old values on.
    if (atOnce || started || jumped) cellOpen = false;
    if (started) cellOrigin = clock;

    // Between speakers and headphones: the same slots, the ears' share moving.
    const double share = earShareAt(0);
    if (share == 0.0 && outputMode == kHeadphonesOutput) headphones.clear();  // ears that were silent start afresh
    earShare = atOnce ? earTarget() : share;
    earFrom = clock;

    // A discrete change: the old settings go on in a copy of the engine and fade out.
    const Choices now = choicesOf(decoder);
    if (atOnce) {
        fadeOn = false;
    } else if (!(now == applied)) {
        fading = decoder;
        setChoices(fading, applied);
        fadingDialect = applied.inputFormat;
        fadeStart = clock;
        fadeOn = true;
        if (cellOpen) setChoices(partner, now);
    }
    applied = now;

    // The head: followed on headphones while tracking, else straight ahead again.
    headPost.take(head);
    const bool follows = tracking == kTrackingOsc && outputMode == kHeadphonesOutput;
    headTurn.aim(follows ? head : Quaternion{}, clock, glideFrames, atOnce);
}

int Processor::decode(Decoder& engine, double (*s)[kPieceFrames], int frames, BlockFeeds& feeds,
                      std::int64_t first) {
    if (headTurn.straight()) return engine.processBlock(s[0], s[1], s[2], s[3], frames, feeds);
    engine.transformBlock(s[0], s[1], s[2], s[3], frames);
    headTurn.apply(s[1], s[2], s[3], frames, first);
    return engine.decodeTransformed(s[0], s[1], s[2], s[3], frames, feeds);
}

template <typename Sample>
void Processor::readPiece(const Sample* const* inputs, int readCount, std::size_t done, int frames,
                          double (*signal)[kPieceFrames], int dialect) {
    const BlockKernels& k = decoder.blockLoops();
    dialect = std::clamp(dialect, 0, kInputFormats - 1);
    const int* source = kSourceChannel[dialect][readCount == 4 ? 1 : 0];
    for (int s = 0; s < 4; ++s) {
        double* to = signal[s];
        const int c = readCount > 0 ? source[s] : -1;
        if (c < 0 || !inputs[c]) {
            k.fill(to, 0.0, frames);
            continue;
        }
        const Sample* in = inputs[c] + done;
        if (const double gain = kDialectGain[dialect][s]; gain != 1.0)
            for (int f = 0; f < frames; ++f) to[f] = static_cast<double>(in[f]) * gain;  // read and scaled at once
        else
            readSamples(k, in, to, frames);
    }
}

template <typename In, typename Out>
void Processor::runPieces(const In* const* inputs, int readCount, Out* const* outputs, int outputCount,
                          std::size_t from, std::size_t frames) {
    const BlockKernels& copies = decoder.blockLoops();
    BlockFeeds feeds;
    for (int i = 0; i < 6; ++i) feeds.feed[i] = scratch.feed[i];
    for (std::size_t done = from; done < from + frames; done += kPieceFrames) {
        const int n = static_cast<int>(std::min<std::size_t>(kPieceFrames, from + frames - done));
        if (fadeOn) readPiece(inputs, readCount, done, n, scratch.fadingSignal, fadingDialect);
        readPiece(inputs, readCount, done, n, scratch.signal, inputFormat);
        const int produced = decode(decoder, scratch.signal, n, feeds, clock + static_cast<std::int64_t>(done));
        for (int c = 0; c < outputCount; ++c) {
            if (!outputs[c]) continue;
            Out* out = outputs[c] + done;
            const double* slot = c < produced ? feeds.slot[c] : nullptr;
            if (slot)
                writeSamples(copies, slot, out, n);
            else
                silence(copies, out, n);
        }
        if (fadeOn) fadeOver(outputs, outputCount, done, n);
    }
}

template <typename In, typename Out>
void Processor::runCell(const In* const* inputs, int readCount, Out* const* outputs, int outputCount,
                        std::size_t from, int frames, std::int64_t cellStart) {
    const BlockKernels& copies = decoder.blockLoops();
    if (fadeOn) readPiece(inputs, readCount, from, frames, scratch.fadingSignal, fadingDialect);
    readPiece(inputs, readCount, from, frames, scratch.signal, inputFormat);
    for (int s = 0; s < 4; ++s) copies.copy(scratch.signal[s], scratch.partnerSignal[s], frames);
    BlockFeeds feeds, partnerFeeds;
    for (int i = 0; i < 6; ++i) {
        feeds.feed[i] = scratch.feed[i];
        partnerFeeds.feed[i] = scratch.partnerFeed[i];
    }
    const std::int64_t firstFrame = clock + static_cast<std::int64_t>(from);
    const int produced = decode(decoder, scratch.signal, frames, feeds, firstFrame);
    const int partnerProduced = decode(partner, scratch.partnerSignal, frames, partnerFeeds, firstFrame);

    // Across the cell, from the engine's output to the partner's (a power
    // of two: the weights are exact).
    const double first = static_cast<double>(clock + static_cast<std::int64_t>(from) - cellStart);
    double weight[kCellFrames], mixed[kCellFrames];
    for (int f = 0; f < frames; ++f) weight[f] = (first + f) * (1.0 / kCellFrames);
    for (int c = 0; c < outputCount; ++c) {
        if (!outputs[c]) continue;
        Out* out = outputs[c] + from;
        const double* a = c < produced ? feeds.slot[c] : nullptr;
        const double* b = c < partnerProduced ? partnerFeeds.slot[c] : nullptr;
        if (!a && !b) {
            silence(copies, out, frames);
            continue;
        }
        if (a && b)
            for (int f = 0; f < frames; ++f) mixed[f] = a[f] + (b[f] - a[f]) * weight[f];
        else if (a)
            for (int f = 0; f < frames; ++f) mixed[f] = a[f] - a[f] * weight[f];
        else
            for (int f = 0; f < frames; ++f) mixed[f] = b[f] * weight[f];
        writeSamples(copies, mixed, out, frames);
    }
    if (fadeOn) fadeOver(outputs, outputCount, from, frames);
}

template <typename Out>
void Processor::fadeOver(Out* const* outputs, int outputCount, std::size_t from, int frames) {
    BlockFeeds feeds;
    for (int i = 0; i < 6; ++i) feeds.feed[i] = scratch.fadingFeed[i];
    const int produced = decode(fading, scratch.fadingSignal, frames, feeds, clock + static_cast<std::int64_t>(from));
    // The new settings' share rises in a straight line; past the fade's end they stand alone.
    const std::int64_t first = clock + static_cast<std::int64_t>(from) - fadeStart;
    const int span = static_cast<int>(std::clamp<std::int64_t>(glideFrames - first, 0, frames));
    for (int c = 0; c < outputCount; ++c) {
        if (!outputs[c]) continue;
        Out* out = outputs[c] + from;
        const double* old = c < produced ? feeds.slot[c] : nullptr;
        const double step = 1.0 / glideFrames;
        if (old)
            for (int f = 0; f < span; ++f)
                out[f] = static_cast<Out>(old[f] + (static_cast<double>(out[f]) - old[f]) * ((first + f) * step));
        else
            for (int f = 0; f < span; ++f)
                out[f] = static_cast<Out>(static_cast<double>(out[f]) * ((first + f) * step));
    }
}

template <typename In, typename Out>
void Processor::runFrames(const In* const* inputs, int readCount, Out* const* outputs, int outputCount,
                          std::size_t frames) {
    for (std::size_t done = 0; done < frames;) {
        if (!anyGlide()) {
            runPieces(inputs, readCount, outputs, outputCount, done, frames - done);
            break;
        }
        const std::int64_t now = clock + static_cast<std::int64_t>(done);
        const std::int64_t cellStart = cellOrigin + (now - cellOrigin) / kCellFrames * kCellFrames;
        const std::int64_t cellEnd = cellStart + kCellFrames;
        const int n = static_cast<int>(std::min(static_cast<std::int64_t>(frames - done), cellEnd - now));
        if (!cellOpen) {
            // The engine at the cell's start, the partner at its end.
            placeGlides(decoder, cellStart);
            partner = decoder;
            partnerDesigned = designedFrequency;
            placeGlides(partner, cellEnd);
            cellOpen = true;
        }
        runCell(inputs, readCount, outputs, outputCount, done, n, cellStart);
        done += static_cast<std::size_t>(n);
        if (now + n == cellEnd) {
            // The partner's settings are where the next cell starts.
            decoder = partner;
            designedFrequency = partnerDesigned;
            cellOpen = false;
            for (Glide& g : glide)
                if (g.active && cellEnd - g.start >= glideFrames) g.active = false;
        }
    }
    clock += static_cast<std::int64_t>(frames);
    headTurn.settle(clock);
    if (fadeOn && clock - fadeStart >= glideFrames) fadeOn = false;
}

template <typename Sample>
void Processor::listen(const Sample* const* inputs, int readCount, Sample* const* outputs, int outputCount,
                       std::size_t frames) {
    const auto room = static_cast<std::size_t>(headphones.capacity());
    float* slots[HeadphoneStage::kSlots];
    for (int s = 0; s < HeadphoneStage::kSlots; ++s) slots[s] = slotStore.data() + s * room;
    float* left = earStore.data();
    float* right = left + room;
    for (std::size_t done = 0; done < frames;) {
        const int n = static_cast<int>(std::min(room, frames - done));
        const Sample* in[4] = {};
        for (int c = 0; c < readCount; ++c) in[c] = inputs[c] ? inputs[c] + done : nullptr;
        const std::int64_t start = clock;
        runFrames(in, readCount, slots, HeadphoneStage::kSlots, static_cast<std::size_t>(n));
        headphones.render(slots, decoder.decodeMode, decoder.channelOrder, n, left, right);

        const bool moving = earShareAt(start - clock) != earTarget() || earShareAt(n - 1 + start - clock) != earTarget();
        for (int c = 0; c < outputCount; ++c) {
            if (!outputs[c]) continue;
            Sample* out = outputs[c] + done;
            const float* ear = c == 0 ? left : c == 1 ? right : nullptr;
            if (!moving) {
                if (ear)
                    std::copy(ear, ear + n, out);
                else
                    std::fill(out, out + n, Sample(0));
                continue;
            }
            const float* speaker = c < HeadphoneStage::kSlots ? slots[c] : nullptr;
            for (int f = 0; f < n; ++f) {
                const double e = ear ? ear[f] : 0.0, s = speaker ? speaker[f] : 0.0;
                out[f] = static_cast<Sample>(s + (e - s) * earShareAt(start + f - clock));
            }
        }
        done += static_cast<std::size_t>(n);
    }
    if (earShareAt(0) == earTarget()) {
        earShare = earTarget();
        earFrom = clock;
    }
}

template <typename Sample>
void Processor::process(const Sample* const* inputs, int inputCount, Sample* const* outputs, int outputCount,
                        std::size_t frames) {
    if (frames == 0) return;
    // Filter histories decaying into subnormals would cost time and stay there.
    const FloatModeGuard flushDenormals;
    const int readCount = inputCount == 4 ? 4 : inputCount == 3 ? 3 : 0;
    takeTargets();
    if (listening())
        listen(inputs, readCount, outputs, outputCount, frames);
    else
        runFrames(inputs, readCount, outputs, outputCount, frames);

    // A NaN or infinite input sample would stay in the crossover's history
    // for good; clearing it lets the next block of finite input come out
    // finite. A finite history is left alone, so finite input is unaffected.
    recoverCrossover(decoder);
    if (cellOpen) recoverCrossover(partner);
    if (fadeOn) recoverCrossover(fading);
}

template void Processor::process(const float* const*, int, float* const*, int, std::size_t);
template void Processor::process(const double* const*, int, double* const*, int, std::size_t);

}  // namespace sorvane
