// The responses through which the headphone output plays a layout's speaker
// feeds: per pair of virtual loudspeakers and for the centre, how a feed
// reaches the two ears, read from a SOFA file of head-related impulse
// responses or, when no file is usable, a plain panning of each speaker.
//
// How a file becomes responses:
// - It is read with libmysofa once, at its own rate, unnormalised. The
//   directions are looked up, interpolated by libmysofa, on the horizontal
//   plane at the file's measurement distance: the largest distance of its
//   measurements within 10 degrees of ear level. Those responses alone are
//   then resampled by libmysofa to each session's rate.
// - Per-ear delays the file stores beside its responses are added to them,
//   rounded to whole samples (at most half a sample off: about 10 us at
//   48 kHz, near the smallest time difference between the ears a listener
//   notices); a negative or non-finite delay refuses the file.
// - A pair at +-a is taken as the symmetric head hears it: ipsilateral
//   hi = (left ear at +a + right ear at -a) / 2, contralateral
//   hc = (right ear at +a + left ear at -a) / 2, stored as mid = (hi + hc) / 2
//   and side = (hi - hc) / 2. Fed with M = L + R and S = L - R, the left ear
//   is mid*M + side*S and the right ear mid*M - side*S. The centre (0 degrees)
//   is the mean of its two ears and reaches both alike.
// - Every response is cut to at most round(rate * 512 / 48000) taps (what a
//   head needs; room reflections beyond that cost and colour), the last
//   sixteenth faded out by half a Hann window so the cut does not click.
// - The whole set is scaled by one factor that gives the centre unit energy:
//   a feed is heard from the front at its own level, and as one factor holds
//   for every direction, changing the layout does not jump in level.
// A missing, unreadable or foreign file, one with no measurements at ear
// level, responses of no length, samples that are not finite, or a rate
// libmysofa cannot resample to, is refused and the next source is tried.
//
// The built-in panning set, when no file is usable: single taps, a constant
// power pan per speaker. A speaker at a (folded to the front, so 110 pans as
// 70 and 135 as 45) reaches the near ear with sqrt 2 cos((90 - a) / 2) and
// the far ear with sqrt 2 sin((90 - a) / 2): 90 degrees is the near ear
// alone, and 0 degrees reaches both ears at full level, as the centre does,
// so the set plays as loud as a file's responses.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace sorvane {

// The pairs of virtual loudspeakers the headphone stage knows, at +-angle (left positive).
enum HeadphonePair : int { kPairFront30, kPairFront45, kPairSurround110, kPairRear135, kPairCount };
constexpr double kPairDegrees[kPairCount] = {30, 45, 110, 135};
// Convolution inputs: per pair its mid (left + right feed) at 2p and its side (left - right) at 2p + 1, then the centre (0 degrees).
constexpr int kCentreInput = 2 * kPairCount;
constexpr int kBinauralInputs = kCentreInput + 1;

constexpr bool isSideInput(int input) { return input < kCentreInput && input % 2 == 1; }

struct HeadResponses {
    int sampleRate = 0;
    std::vector<float> response[kBinauralInputs];  // one length for all
    std::string source;   // the file the responses come from; empty: the built-in panning
    std::string problem;  // why a file asked for was not used ("" when all went well)
};

// Where the responses come from unless a path is given: the user's own file.
std::string userHeadResponsesPath();
// The highest session rate responses are made for; above it the panning plays.
constexpr int kHighestResponseRate = 768000;
// The file that comes with libmysofa, the last file tried.
extern const char* const kDefaultHeadResponsesPath;

// The responses for `sampleRate`, from the first usable file of: `explicitPath` if not empty,
// $SORVANE_SOFA if set, userHeadResponsesPath() if it exists, kDefaultHeadResponsesPath; a file
// asked for that is missing or refused leaves its reason in `problem` (the first one kept).
// Never throws, never returns null. Cached process-wide by (paths, modification times, rate),
// thread-safe; not for the audio thread: it reads files.
std::shared_ptr<const HeadResponses> loadHeadResponses(int sampleRate, const std::string& explicitPath = {});

// The built-in panning set, with `problem` telling why no file is used.
std::shared_ptr<const HeadResponses> panningHeadResponses(int sampleRate, std::string problem);

}  // namespace sorvane
