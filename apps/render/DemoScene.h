// A built-in B-format scene for trying the decoder without a recording:
// sources at known directions, one at a time, then all together.
#pragma once

#include <string>
#include <vector>

class DemoScene {
public:
    struct Segment {
        std::string name;
        long start, length;
    };

    explicit DemoScene(int sampleRate = 48000);

    int sampleRate() const { return rate; }
    long frames() const { return total; }
    const std::vector<Segment>& segments() const { return parts; }

    // Writes up to `count` interleaved W, X, Y, Z frames; returns how many.
    long read(float* interleaved, long count);

private:
    struct Source {
        const char* name;
        double azimuth, elevation, frequency;
    };
    static const Source kSources[5];

    int rate;
    long total;
    long position = 0;
    std::vector<Segment> parts;
};
