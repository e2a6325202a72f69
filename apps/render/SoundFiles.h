// Sound files through libsndfile: a streaming reader, and a writer that works
// on a temporary file beside the target and renames it only on success, so a
// failed render never leaves a truncated file or destroys an existing one.
#pragma once

#include <sndfile.h>

#include <string>
#include <vector>

class SoundFileReader {
public:
    ~SoundFileReader();
    // False with a message when the file cannot be opened as sound.
    bool open(const std::string& path, std::string& error);
    int channels() const { return info.channels; }
    int sampleRate() const { return info.samplerate; }
    long frames() const { return static_cast<long>(info.frames); }
    long read(float* interleaved, long frames);

private:
    SNDFILE* file = nullptr;
    SF_INFO info{};
};

struct OutputFormat {
    int channels = 2;
    int sampleRate = 48000;
    int bits = 0;                       // 0: 32-bit float; 16, 24, 32: integer PCM
    std::vector<unsigned> speakerBits;  // WAVE speaker positions, one per channel
};

class SoundFileWriter {
public:
    ~SoundFileWriter();  // an unfinished file is removed
    bool open(const std::string& path, const OutputFormat& format, std::string& error);
    bool write(const float* interleaved, long frames, std::string& error);
    // Closes and renames into place; false (and nothing left behind) on failure.
    bool commit(std::string& error);
    void discard();

private:
    SNDFILE* file = nullptr;
    std::string target, temporary;
};

// The libsndfile major format chosen for an output path, 0 when unknown.
int majorFormatFor(const std::string& path);
