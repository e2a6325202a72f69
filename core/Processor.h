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
#include <vector>

#include "Decoder.h"
#include "HeadOrientation.h"
#include "HeadTurn.h"
#include "HeadphoneStage.h"
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
    // Outside the audio thread (a resume, an activation): the head's
    // responses for the session's rate and room for host blocks of up to
    // `maxBlock` frames, so "Headphones" can be chosen at any time.
    void prepareHeadphones(int maxBlock);
    const HeadResponses* headResponses() const { return headphones.responses(); }
    void setFiveDecoderType(int type) { wantedFiveDecoder.store(type, std::memory_order_relaxed); }
    int fiveDecoderType() const { return wantedFiveDecoder.load(std::memory_order_relaxed); }
    int layout() const { return static_cast<int>(wanted[kDecodeMode].load(std::memory_order_relaxed)); }
    // No history from before the host stopped processing; the next block
    // starts from the settings as they are, without gliding.
    void clearHistory();
    // Every setting where it was asked to be at the next block, without
    // gliding (a state loaded by the host).
    void settle() { settleNext.store(true, std::memory_order_release); }
    bool smoothingOn() const { return wanted[kSmoothing].load(std::memory_order_relaxed) != 0; }
    // Where a head tracker's receiver posts the head's orientation; with
    // "Tracking" on "OSC" and "Headphones", the field turns against it.
    OrientationMailbox& headMailbox() { return headPost; }

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
    // Stores a converted value for the audio thread to take up.
    void want(int index, double value);
    // At a block's start: takes up new targets, starting glides or applying them at once.
    void takeTargets();
    // The settings of every glide at `frame` into `engine`, the crossover retuned with its history kept.
    void placeGlides(Decoder& engine, std::int64_t frame);
    bool anyGlide() const;

    // The engine over `frames` frames from the clock on, gliding or not; advances the clock.
    template <typename In, typename Out>
    void runFrames(const In* const* inputs, int readCount, Out* const* outputs, int outputCount, std::size_t frames);
    template <typename In, typename Out>
    void runPieces(const In* const* inputs, int readCount, Out* const* outputs, int outputCount, std::size_t from,
                   std::size_t frames);
    template <typename In, typename Out>
    void runCell(const In* const* inputs, int readCount, Out* const* outputs, int outputCount, std::size_t from,
                 int frames, std::int64_t cellStart);
    // With "Headphones", or fading to or from it: the engine's slots through
    // the headphone stage, in pieces of its capacity.
    template <typename Sample>
    void listen(const Sample* const* inputs, int readCount, Sample* const* outputs, int outputCount,
                std::size_t frames);
    bool listening() const {
        return headphones.prepared() && (outputMode == kHeadphonesOutput || earShare != earTarget());
    }
    double earTarget() const { return outputMode == kHeadphonesOutput ? 1.0 : 0.0; }
    // The ears' share of the output `k` frames after the clock, while it moves.
    double earShareAt(std::int64_t k) const;
    // An engine's transforms, the turn against the head, and the decoding,
    // over `frames` frames of `signal` from frame `first` of the clock.
    int decode(Decoder& engine, double (*signal)[kPieceFrames], int frames, BlockFeeds& feeds, std::int64_t first);
    // One piece of the host's channels, read in `dialect`, into an engine's W, X, Y, Z.
    template <typename Sample>
    void readPiece(const Sample* const* inputs, int readCount, std::size_t done, int frames,
                   double (*signal)[kPieceFrames], int dialect);
    // While a discrete change fades in: the old engine's output under the new's, over a piece already written.
    template <typename Out>
    void fadeOver(Out* const* outputs, int outputCount, std::size_t from, int frames);

    Decoder decoder;
    int inputFormat = kBFormatInput;
    int smoothing = 1;
    int outputMode = kSpeakersOutput;
    int tracking = kTrackingOff;
    int designedFrequency = 0;  // the crossover the filters were last designed for

    // What the setters asked for, from whatever thread the host sets
    // parameters on, in engine units (a choice or the crossover as a whole
    // number). Only the audio thread touches the engines: it takes these up
    // at the start of each block, so a change made while it runs is never
    // lost to an engine it copies.
    std::atomic<double> wanted[kNumParams];
    std::atomic<int> wantedFiveDecoder{kVirtualMicrophones};
    std::atomic<unsigned> crossoverWrites{0};  // VST writes of the crossover, each designing it afresh
    unsigned crossoverSeen = 0;
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

    // Between speakers and headphones the ears' share moves in a straight
    // line over kGlideSeconds (at once without smoothing), from wherever it is.
    HeadphoneStage headphones;
    double earShare = 0.0;         // at earFrom
    std::int64_t earFrom = 0;      // the clock when the share last set off
    std::vector<float> slotStore;  // the engine's six slots while listening
    std::vector<float> earStore;   // the two ears

    // The head's orientation as the tracker last posted it, and the turn
    // against it, which moves back to straight ahead without "Headphones"
    // and "OSC".
    OrientationMailbox headPost;
    Quaternion head;
    HeadTurn headTurn;

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
