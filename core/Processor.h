// The engine as both editions run it: the decoder, the dialect the host's
// input channels arrive in, the one conversion of a setting into the
// engine's fields, the glides of the continuous settings, and the block
// runner.
//
// The runner takes a host block in pieces that fit its scratch memory: the
// inputs are read whole (reordered and scaled from the chosen dialect into
// the engine's B-format, widened to double) before any output of the piece
// is written, so a host that hands the same buffers in and out gets what a
// per-frame walk gave it. It runs with subnormals flushed, and clears the
// crossover's history after a block that carried a non-finite sample.
//
// With "Smoothing" on, a continuous setting (angles, zoom, widths, patterns,
// levels, the crossover) does not jump to a new value: it glides there in a
// straight line over kGlideSeconds, from wherever it is. While anything
// glides, a second engine runs beside the first, one cell of kCellFrames
// ahead in its settings, and the output fades from the one to the other
// across each cell: the settings change at every sample, as far as the
// ear can tell, at the cost of twice the engine. Cells and glides count
// frames from the change that started them, so the output does not depend
// on how the host cuts its blocks. Once every glide has arrived, the engine
// holds exactly the values it would have held without smoothing and runs
// alone again. A discrete setting (layout, modes, zoom method, 5.x decoder,
// channel order, input dialect) cannot glide: a copy of the engine goes on
// with the old one and the output fades from it to the new over the same
// time. Changes before the first block after instantiation or a resume,
// and a state load (settle), apply at once.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Decoder.h"
#include "SorvaneProtocol.h"

namespace sorvane {

class Processor {
public:
    // Long enough to follow a head tracker at 25 updates per second without
    // stopping between them, and to carry a 512-frame block's change across
    // the next block; short enough that a move lags by no more than that.
    static constexpr double kGlideSeconds = 0.05;
    static constexpr int kCellFrames = 64;

    Processor();

    // A normalised value (as the VST edition's parameters hold it) into its
    // engine field. Setting the crossover designs the filters afresh.
    void setNormalised(int index, float v);
    // A value in the units a user reads (as the LV2 edition's ports carry
    // it) into its engine field; the filters are designed afresh only for a
    // new crossover frequency, as designing clears their history.
    void setUnits(int index, float value);
    // The rate as hosts give it, truncated to whole hertz; the crossover
    // stays finite at any rate.
    void setSampleRate(float rate);
    void setFiveDecoderType(int type) { decoder.fiveDecoderType = type; }
    int fiveDecoderType() const { return decoder.fiveDecoderType; }
    int layout() const { return decoder.decodeMode; }
    // No history from before the host stopped processing; the next block
    // starts from the settings as they are, without gliding.
    void clearHistory();
    // Every setting where it was asked to be at the next block, without
    // gliding (a state loaded by the host).
    void settle() { settleNext.store(true, std::memory_order_release); }
    bool smoothingOn() const { return smoothing != 0; }

    // The text a host shows for a parameter: the value asked for.
    void display(int index, char* text);

    // Decodes `frames` frames. Of the input channels, 4 or 3 are read (W, X,
    // Y and optionally Z, in the chosen dialect's order) and any other count
    // reads silence; a null channel reads silence. Outputs past the slots the
    // layout fills are cleared; a null output is left alone.
    template <typename Sample>
    void process(const Sample* const* inputs, int inputCount, Sample* const* outputs, int outputCount,
                 std::size_t frames);

private:
    static constexpr int kPieceFrames = 256;
    static_assert(kCellFrames <= kPieceFrames);

    struct Field {
        double* real;
        int* selector;
    };
    // The discrete settings an engine runs with.
    struct Choices {
        int zoomMethod, frontMode, surroundMode, decodeMode, channelOrder, fiveDecoderType, inputFormat;
        bool operator==(const Choices&) const = default;
    };
    Choices choicesOf(const Decoder& engine) const;
    static void setChoices(Decoder& engine, const Choices& choices);
    // A glide of one continuous setting, in frames of the engine's clock.
    struct Glide {
        double from = 0, to = 0;
        std::int64_t start = 0;
        bool active = false;
        double at(std::int64_t frame, int length) const;
    };

    static bool glides(Kind kind) { return !isSelector(kind) || kind == Kind::Crossover; }
    Field fieldOf(Decoder& engine, int index);
    void designCrossover();
    // Stores a converted value: at once, or as where a glide heads.
    void store(int index, double value);
    // At a block's start: takes up new targets, starting glides or applying them at once.
    void takeTargets();
    // The settings of every glide at `frame` into `engine`, the crossover retuned with its history kept.
    void placeGlides(Decoder& engine, std::int64_t frame);
    bool anyGlide() const;

    template <typename Sample>
    void runPieces(const Sample* const* inputs, int readCount, Sample* const* outputs, int outputCount,
                   std::size_t from, std::size_t frames);
    template <typename Sample>
    void runCell(const Sample* const* inputs, int readCount, Sample* const* outputs, int outputCount, std::size_t from,
                 int frames, std::int64_t cellStart);
    // One piece of the host's channels, read in `dialect`, into an engine's W, X, Y, Z.
    template <typename Sample>
    void readPiece(const Sample* const* inputs, int readCount, std::size_t done, int frames,
                   double (*signal)[kPieceFrames], int dialect);
    // While a discrete change fades in: the old engine's output under the new's, over a piece already written.
    template <typename Sample>
    void fadeOver(Sample* const* outputs, int outputCount, std::size_t from, int frames);

    Decoder decoder;
    int inputFormat = kBFormatInput;
    int smoothing = 1;
    int designedFrequency = 0;  // the crossover the filters were last designed for

    // What the setters asked for each continuous setting, in engine units;
    // the audio thread takes them up at the next block.
    double target[kFirstSetting] = {};
    Glide glide[kFirstSetting];
    // The span each continuous setting's control covers; a value outside it
    // (a host's stray number) is taken at once, never glided from or to.
    double lowest[kFirstSetting] = {}, highest[kFirstSetting] = {};
    int glideFrames = 1;
    std::int64_t clock = 0;       // frames since the last clear
    std::int64_t cellOrigin = 0;  // where the cells of the current glides are counted from
    bool cellOpen = false;        // the partner holds the settings of the current cell's end
    bool running = false;         // a block has run since the last clear
    std::atomic<bool> settleNext{false};

    Decoder partner;  // the engine one cell ahead while anything glides
    int partnerDesigned = 0;

    Choices applied{};  // the discrete settings the last block ran with
    Decoder fading;     // the engine with the old ones while a change fades in
    int fadingDialect = kBFormatInput;
    std::int64_t fadeStart = 0;
    bool fadeOn = false;

    struct Scratch {
        alignas(64) double signal[4][kPieceFrames];  // W, X, Y, Z
        alignas(64) double feed[6][kPieceFrames];    // L, R, C, LFE, Ls, Rs
        alignas(64) double partnerSignal[4][kPieceFrames];
        alignas(64) double partnerFeed[6][kPieceFrames];
        alignas(64) double fadingSignal[4][kPieceFrames];
        alignas(64) double fadingFeed[6][kPieceFrames];
    };
    Scratch scratch;
};

}  // namespace sorvane
