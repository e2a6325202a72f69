#include "SoundFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace {

std::string lowerExtension(const std::string& path) {
    std::string ext = std::filesystem::path(path).extension().string();
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    return ext;
}

int channelMapEntry(unsigned speakerBit) {
    switch (speakerBit) {
    case 0x1: return SF_CHANNEL_MAP_LEFT;
    case 0x2: return SF_CHANNEL_MAP_RIGHT;
    case 0x4: return SF_CHANNEL_MAP_CENTER;
    case 0x8: return SF_CHANNEL_MAP_LFE;
    case 0x10: return SF_CHANNEL_MAP_REAR_LEFT;
    case 0x20: return SF_CHANNEL_MAP_REAR_RIGHT;
    default: return SF_CHANNEL_MAP_INVALID;
    }
}

int subFormat(int major, int bits) {
    switch (bits) {
    case 16: return SF_FORMAT_PCM_16;
    case 24: return SF_FORMAT_PCM_24;
    case 32: return SF_FORMAT_PCM_32;
    default: return major == SF_FORMAT_FLAC ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT;
    }
}

}  // namespace

// ---------------------------------------------------------------------------

SoundFileReader::~SoundFileReader() {
    if (file) sf_close(file);
}

bool SoundFileReader::open(const std::string& path, std::string& error) {
    if (!std::filesystem::exists(path)) {
        error = "input file not found: " + path;
        return false;
    }
    file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file) {
        error = "cannot read " + path + ": " + sf_strerror(nullptr);
        return false;
    }
    return true;
}

long SoundFileReader::read(float* interleaved, long frames) {
    return static_cast<long>(sf_readf_float(file, interleaved, frames));
}

// ---------------------------------------------------------------------------

int majorFormatFor(const std::string& path) {
    const std::string ext = lowerExtension(path);
    if (ext == ".wav" || ext == ".amb") return SF_FORMAT_WAVEX;
    if (ext == ".w64") return SF_FORMAT_W64;
    if (ext == ".aif" || ext == ".aiff") return SF_FORMAT_AIFF;
    if (ext == ".flac") return SF_FORMAT_FLAC;
    if (ext == ".caf") return SF_FORMAT_CAF;
    if (ext == ".rf64") return SF_FORMAT_RF64;
    return 0;
}

SoundFileWriter::~SoundFileWriter() { discard(); }

bool SoundFileWriter::open(const std::string& path, const OutputFormat& format, std::string& error) {
    const int major = majorFormatFor(path);
    if (!major) {
        error = "unknown output format for " + path + " (use .wav, .w64, .aiff, .flac, .caf or .rf64)";
        return false;
    }
    SF_INFO info{};
    info.channels = format.channels;
    info.samplerate = format.sampleRate;
    info.format = major | subFormat(major, format.bits);
    if (!sf_format_check(&info)) {
        error = "this output format cannot hold " + std::to_string(format.bits) + "-bit samples: " + path;
        return false;
    }

    target = path;
    const std::filesystem::path dir = std::filesystem::absolute(path).parent_path();
    temporary = (dir / ("." + std::filesystem::path(path).filename().string() + ".XXXXXX")).string();
    std::vector<char> name(temporary.begin(), temporary.end());
    name.push_back(0);
    const int fd = mkstemp(name.data());
    if (fd < 0) {
        error = "cannot write in " + dir.string() + ": " + std::strerror(errno);
        temporary.clear();
        return false;
    }
    temporary = name.data();
    fchmod(fd, 0644);
    file = sf_open_fd(fd, SFM_WRITE, &info, SF_TRUE);
    if (!file) {
        error = "cannot create " + path + ": " + sf_strerror(nullptr);
        ::close(fd);
        discard();
        return false;
    }
    if (!format.speakerBits.empty()) {
        std::vector<int> map;
        for (unsigned bit : format.speakerBits) map.push_back(channelMapEntry(bit));
        sf_command(file, SFC_SET_CHANNEL_MAP_INFO, map.data(), static_cast<int>(map.size() * sizeof(int)));
    }
    return true;
}

bool SoundFileWriter::write(const float* interleaved, long frames, std::string& error) {
    const sf_count_t written = sf_writef_float(file, interleaved, frames);
    if (written != frames) {
        error = "writing " + target + " failed (" + sf_strerror(file) + "); is the disk full?";
        return false;
    }
    return true;
}

bool SoundFileWriter::commit(std::string& error) {
    const int closed = sf_close(file);
    file = nullptr;
    if (closed != 0) {
        error = "finishing " + target + " failed: " + sf_error_number(closed);
        discard();
        return false;
    }
    if (std::rename(temporary.c_str(), target.c_str()) != 0) {
        error = "cannot move the finished file to " + target + ": " + std::strerror(errno);
        discard();
        return false;
    }
    temporary.clear();
    return true;
}

void SoundFileWriter::discard() {
    if (file) {
        sf_close(file);
        file = nullptr;
    }
    if (!temporary.empty()) {
        std::remove(temporary.c_str());
        temporary.clear();
    }
}
