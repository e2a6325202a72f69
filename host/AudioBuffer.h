// Planar audio for one call of a plug-in's process entry: a number of
// channels of equal length, and the channel-pointer array the plug-in takes.
#pragma once

#include <cstddef>
#include <vector>

namespace vsthost {

template <typename Sample>
class AudioBuffer {
public:
    AudioBuffer(std::size_t channels, std::size_t frames) : samples(channels, std::vector<Sample>(frames, Sample(0))) {}

    std::size_t channels() const { return samples.size(); }
    std::size_t frames() const { return samples.empty() ? 0 : samples.front().size(); }
    std::vector<Sample>& operator[](std::size_t channel) { return samples[channel]; }
    const std::vector<Sample>& operator[](std::size_t channel) const { return samples[channel]; }

    // A fresh pointer array, one entry per channel, each at the first frame.
    // Plug-ins may advance the entries, so take a new one for every call.
    std::vector<Sample*> pointers() {
        std::vector<Sample*> result;
        for (auto& channel : samples) result.push_back(channel.data());
        return result;
    }

    void fill(Sample value) {
        for (auto& channel : samples) channel.assign(channel.size(), value);
    }

private:
    std::vector<std::vector<Sample>> samples;
};

}  // namespace vsthost
