// What every check needs to play host: instances set up as hosts set them
// up, parameter settings, test signals, and one process call with the host's
// own safeguards (sentinel-filled outputs, guard samples around every
// channel, a copy of the inputs to compare with afterwards).
#pragma once

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Plugin.h"

namespace validate {

using Random = std::mt19937_64;
using Planar = std::vector<std::vector<double>>;  // channels of samples
using Setting = std::vector<float>;               // one value per parameter; empty: as created

// Entry, effOpen, sample rate, block size and (unless told not to) resume.
// Throws CheckFailure when the plug-in cannot be created.
std::unique_ptr<vsthost::Plugin> createInstance(const std::string& path, float sampleRate = 44100.0f,
                                                int blockSize = 1024, bool resume = true);

// Sets every parameter from the last index down, so that a parameter which
// reloads others (a layout choosing its program) comes before them.
void applySetting(vsthost::Plugin& plugin, const Setting& setting);
// A value in 0..1; now and then exactly 0 or 1.
float randomValue(Random& random);
Setting randomSetting(int parameters, Random& random);
// The plug-in as created, everything at 0, at 0.5, at 1, then `randomCount` random settings.
std::vector<std::pair<std::string, Setting>> standardSettings(int parameters, Random& random, int randomCount);

// Float-representable noise, so both callbacks get exactly the same samples.
Planar noise(int channels, int frames, double amplitude, Random& random);
Planar silence(int channels, int frames);
Planar slice(const Planar& signal, int first, int frames);
void append(Planar& to, const Planar& from);

enum class Precision { Float, Double };
// Separate input and output buffers; input channel i and output channel i
// in the same memory; or that and one pointer array for both directions.
enum class Buffers { Separate, InPlace, SharedArray };

struct BlockOutcome {
    Planar output;
    std::string fault;         // the first of the three below; empty when all is well
    std::string outside;       // wrote before or after the block in some channel
    std::string inputChanged;  // an input sample differs afterwards
    std::string unwritten;     // an output sample still holds the sentinel
};

// One call of processReplacing or processDoubleReplacing with `frames`
// frames of `input` (which may be longer) and `outputs` output channels.
BlockOutcome processBlock(vsthost::Plugin& plugin, const Planar& input, int outputs, int frames, Precision precision,
                          Buffers buffers = Buffers::Separate);

// Processes all of `input` in blocks whose sizes `nextBlock` gives (called
// with the frames left), stopping at the first fault. `between` runs before
// every block after the first (parameter changes, say).
BlockOutcome render(vsthost::Plugin& plugin, const Planar& input, int outputs, const std::function<int(int)>& nextBlock,
                    Precision precision, Buffers buffers = Buffers::Separate,
                    const std::function<void()>& between = nullptr);
inline std::function<int(int)> fixedBlocks(int size) {
    return [size](int left) { return left < size ? left : size; };
}

// The first NaN or infinity (and, if asked, subnormal in the callback's
// sample type) sample, described; empty if none.
std::string findNonFinite(const Planar& signal, bool subnormals, Precision precision = Precision::Float);
double peak(const Planar& signal);

struct Difference {
    double value = 0;
    int channel = -1;
    int frame = -1;
};
Difference largestDifference(const Planar& a, const Planar& b);
// a and b agree within absolute + relative * peak of a; else a description.
std::string compareSignals(const Planar& a, const Planar& b, double absolute, double relative);

// A text request as a host makes it: a large buffer of filler bytes, of
// which the plug-in may use `limit` including the terminator.
struct TextAnswer {
    std::string text;
    std::string fault;  // not terminated, written past the limit, not UTF-8
    VstIntPtr answer = 0;
    bool written = false;
};
TextAnswer askText(vsthost::Plugin& plugin, VstInt32 opcode, VstInt32 index, VstIntPtr value, std::size_t limit);
bool validUtf8(const std::string& text);

std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

}  // namespace validate
