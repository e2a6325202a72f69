// The engine as both editions run it: the decoder, the dialect the host's
// input channels arrive in, the one conversion of a setting into the
// engine's fields, and the block runner.
//
// The runner takes a host block in pieces that fit its scratch memory: the
// inputs are read whole (reordered and scaled from the chosen dialect into
// the engine's B-format, widened to double) before any output of the piece
// is written, so a host that hands the same buffers in and out gets what a
// per-frame walk gave it. It runs with subnormals flushed, and clears the
// crossover's history after a block that carried a non-finite sample.
#pragma once

#include <cstddef>

#include "Decoder.h"
#include "SorvaneProtocol.h"

namespace sorvane {

class Processor {
public:
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
    // No history from before the host stopped processing.
    void clearHistory() { decoder.clearFilter(); }

    // The text a host shows for a parameter, from its engine field.
    void display(int index, char* text);

    // Decodes `frames` frames. Of the input channels, 4 or 3 are read (W, X,
    // Y and optionally Z, in the chosen dialect's order) and any other count
    // reads silence; a null channel reads silence. Outputs past the slots the
    // layout fills are cleared; a null output is left alone.
    template <typename Sample>
    void process(const Sample* const* inputs, int inputCount, Sample* const* outputs, int outputCount,
                 std::size_t frames);

    // Reachable for the tests and tools that look at the engine itself.
    Decoder& engine() { return decoder; }

private:
    struct Field {
        double* real;
        int* selector;
    };
    Field fieldOf(int index);
    void designCrossover();
    // One piece of the host's channels into the engine's W, X, Y, Z.
    template <typename Sample>
    void readPiece(const Sample* const* inputs, int readCount, std::size_t done, int frames);

    Decoder decoder;
    int inputFormat = kBFormatInput;
    int designedFrequency = 0;  // the crossover the filters were last designed for

    static constexpr int kPieceFrames = 256;
    struct Scratch {
        alignas(64) double signal[4][kPieceFrames];  // W, X, Y, Z
        alignas(64) double feed[6][kPieceFrames];    // L, R, C, LFE, Ls, Rs
    };
    Scratch scratch;
};

}  // namespace sorvane
