#include "CrossoverSafety.h"

#include <bit>
#include <cstdint>

namespace {

// Keeps the rate a guarded crossover needs within an int.
constexpr int kHighestCrossover = 900000000;

// All twenty values at once, by their exponent bits: this runs every block.
bool historyFinite(const Decoder& decoder) {
    constexpr std::uint64_t kExponent = 0x7ff0000000000000;
    std::uint64_t nonFinite = 0;
    auto check = [&](double v) { nonFinite |= (std::bit_cast<std::uint64_t>(v) & kExponent) == kExponent; };
    for (double v : decoder.lowPassState) check(v);
    for (const auto& history : decoder.highPassState)
        for (double v : history) check(v);
    return nonFinite == 0;
}

}  // namespace

void designCrossover(Decoder& decoder) {
    const int rate = decoder.sampleRate;
    const int frequency = decoder.crossoverFrequency;
    const int safeFrequency = frequency < 1 ? 1 : frequency > kHighestCrossover ? kHighestCrossover : frequency;
    const long long minimumRate = static_cast<long long>(safeFrequency) * 20 / 9 + 1;
    if (frequency == safeFrequency && rate >= minimumRate) {
        decoder.filterCoefs();
        return;
    }
    decoder.crossoverFrequency = safeFrequency;
    decoder.sampleRate = rate >= minimumRate ? rate : static_cast<int>(minimumRate);
    decoder.filterCoefs();
    decoder.sampleRate = rate;
    decoder.crossoverFrequency = frequency;
}

void recoverCrossover(Decoder& decoder) {
    if (!historyFinite(decoder)) decoder.clearFilter();
}
