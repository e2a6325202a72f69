// The effect's saved state as plain bytes, the same on every machine and
// with every compiler: hosts keep it in sessions (the bank chunk) and in
// their presets (the program chunk), and `sorvane` writes and reads it in
// .fxb and .fxp files.
//
// Every number is 32 bits, little-endian; values are IEEE-754 single
// precision; names are 24 bytes, zero-terminated within them.
//
//   bank chunk (version 2)                  program chunk (version 1)
//   'S' 'r' 'v' 'B'                         'S' 'r' 'v' 'P'
//   version (2; 1 is still read)            version (1)
//   number of parameters (20)               number of parameters (20)
//   number of program values (13)           number of program values (13)
//   number of layouts (5)                   layout (2 stereo .. 6 5.1)
//   programs per layout (5)                 5.x decoder type (0, 1, 2)
//   layout (2 stereo .. 6 5.1)              the current program's name
//   current program (0 .. 4)                its values, parameters 5 .. 17
//   5.x decoder type (0, 1, 2)              the twenty current values
//   the twenty current values
//   per layout, stereo first, per program: name, values of parameters 5 .. 17
//   version 2: number of settings, then per setting its index and value
//              (the settings past the twenty, then the editor's scale at
//              1000 and the head tracker's port at 1001, as port / 65535)
//
// The settings past the twenty (the input dialect and those after it)
// describe the material and the monitoring, so only the bank chunk carries
// them, as (index, value) pairs: parameters by their index, settings that
// are not parameters from index 1000. A reader skips an index it does not
// know, and a setting a chunk does not name (every one, in version 1) takes
// the value that reproduces how its writer sounded.
//
// A reader checks everything before trusting any of it: magic, version,
// counts, the exact size, terminated names, and every value finite and
// within 0 .. 1.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "FactoryPrograms.h"
#include "SorvaneProtocol.h"

namespace sorvane {

constexpr std::uint32_t kBankVersion = 2;
constexpr std::uint32_t kFirstBankVersion = 1;
constexpr std::uint32_t kPresetVersion = 1;
constexpr int kStatePrograms = 5;  // the programs a host selects, per layout
constexpr int kLastDecoderType = kFixedMatrix2;
constexpr int kSavedSettings = kNumParams - kFirstSetting;
constexpr int kSavedEditorSettings = 2;  // the editor's scale, the head tracker's port

using ProgramState = ProgramRecord;

struct BankState {
    int layout = kStereoLayout;
    int program = 0;
    int decoderType = kVirtualMicrophones;
    float values[kNumParams] = {};                       // the twenty, then the settings
    int editorScale = kScaleAuto;                        // the user's choice of the editor's size
    int trackingPort = 0;                                // where the head tracker listened (0: nowhere yet)
    ProgramState programs[kNumLayouts][kStatePrograms];  // stereo first
};

// A preset is a sound: the twenty values, none of the settings.
struct PresetState {
    int layout = kStereoLayout;
    int decoderType = kVirtualMicrophones;
    ProgramState program;
    float values[kFirstSetting] = {};
};

// A UDP port as the bank chunk keeps it: a fraction of the largest.
constexpr int kLargestPort = 65535;

namespace chunk {

constexpr std::array<char, 4> kBankMagic = {'S', 'r', 'v', 'B'};
constexpr std::array<char, 4> kPresetMagic = {'S', 'r', 'v', 'P'};
constexpr std::size_t kWord = 4;
constexpr std::size_t kProgramBytes = kTextRoom + kWord * kProgramValues;
constexpr std::size_t kFirstBankBytes = kWord * (9 + kFirstSetting) + kProgramBytes * kNumLayouts * kStatePrograms;
constexpr std::size_t kBankBytes = kFirstBankBytes + kWord * (1 + 2 * (kSavedSettings + kSavedEditorSettings));
constexpr std::size_t kPresetBytes = kWord * 6 + kProgramBytes + kWord * kFirstSetting;
// Far more settings than any version will have; a count past it is damage.
constexpr std::uint32_t kMostSettings = 4096;

class Writer {
public:
    explicit Writer(unsigned char* bytes) : at(bytes) {}
    void magic(const std::array<char, 4>& m) {
        std::memcpy(at, m.data(), kWord);
        at += kWord;
    }
    void word(std::uint32_t w) {
        for (int shift = 0; shift < 32; shift += 8) *at++ = static_cast<unsigned char>(w >> shift);
    }
    void value(float v) { word(std::bit_cast<std::uint32_t>(v)); }
    void program(const ProgramState& p) {
        std::memcpy(at, p.name, kTextRoom);
        at[kTextRoom - 1] = 0;
        at += kTextRoom;
        for (float v : p.values) value(v);
    }

private:
    unsigned char* at;
};

// Reads in order; any check that fails leaves `ok` false for good.
class Reader {
public:
    Reader(const unsigned char* bytes, std::size_t size) : at(bytes), end(bytes + size) {}
    bool ok = true;
    bool room(std::size_t n) { return ok = ok && static_cast<std::size_t>(end - at) >= n; }
    void magic(const std::array<char, 4>& m) {
        if (room(kWord)) ok = std::memcmp(at, m.data(), kWord) == 0;
        at += ok ? kWord : 0;
    }
    std::uint32_t word() {
        if (!room(kWord)) return 0;
        std::uint32_t w = 0;
        for (int shift = 0; shift < 32; shift += 8) w |= std::uint32_t{*at++} << shift;
        return w;
    }
    void expect(std::uint32_t wanted) { ok = word() == wanted && ok; }
    int within(int lowest, int highest) {
        const auto w = static_cast<std::int32_t>(word());
        ok = ok && w >= lowest && w <= highest;
        return ok ? w : lowest;
    }
    float value() {
        const float v = std::bit_cast<float>(word());
        ok = ok && std::isfinite(v) && v >= 0.0f && v <= 1.0f;
        return v;
    }
    void program(ProgramState& p) {
        if (!room(kTextRoom)) return;
        ok = ok && std::memchr(at, 0, kTextRoom) != nullptr;
        std::memcpy(p.name, at, kTextRoom);
        at += kTextRoom;
        for (float& v : p.values) v = value();
    }
    bool finished() const { return ok && at == end; }
    std::size_t left() const { return static_cast<std::size_t>(end - at); }

private:
    const unsigned char* at;
    const unsigned char* end;
};

}  // namespace chunk

// What the writers store: the values a reader accepts (NaN and values
// outside 0 .. 1, which hosts may set, are brought into range).
inline float savedValue(float v) { return std::isnan(v) ? 0.0f : std::fmin(std::fmax(v, 0.0f), 1.0f); }

// Writes the bank chunk into `bytes` (kBankBytes long).
inline void writeBank(const BankState& s, unsigned char* bytes) {
    chunk::Writer w(bytes);
    w.magic(chunk::kBankMagic);
    for (std::uint32_t word : {kBankVersion, std::uint32_t{kFirstSetting}, std::uint32_t{kProgramValues},
                               std::uint32_t{kNumLayouts}, std::uint32_t{kStatePrograms}})
        w.word(word);
    for (int n : {s.layout, s.program, s.decoderType}) w.word(static_cast<std::uint32_t>(n));
    for (int i = 0; i < kFirstSetting; ++i) w.value(savedValue(s.values[i]));
    for (const auto& table : s.programs)
        for (ProgramState p : table) {
            for (float& v : p.values) v = savedValue(v);
            w.program(p);
        }
    w.word(kSavedSettings + kSavedEditorSettings);
    for (int i = kFirstSetting; i < kNumParams; ++i) {
        w.word(static_cast<std::uint32_t>(i));
        w.value(savedValue(s.values[i]));
    }
    w.word(kEditorScaleSetting);
    w.value(s.editorScale > kScaleAuto && s.editorScale < kScaleChoices ? scaleChoiceValue(s.editorScale) : 0.0f);
    w.word(kTrackingPortSetting);
    w.value(s.trackingPort > 0 && s.trackingPort <= kLargestPort ? static_cast<float>(s.trackingPort) / kLargestPort : 0.0f);
}

// Reads a bank chunk; false, with `s` untouched, unless every check passes.
inline bool readBank(const unsigned char* bytes, std::size_t size, BankState& s) {
    chunk::Reader r(bytes, size);
    BankState read;
    r.magic(chunk::kBankMagic);
    const std::uint32_t version = r.word();
    r.ok = r.ok && version >= kFirstBankVersion && version <= kBankVersion;
    for (std::uint32_t word : {std::uint32_t{kFirstSetting}, std::uint32_t{kProgramValues}, std::uint32_t{kNumLayouts},
                               std::uint32_t{kStatePrograms}})
        r.expect(word);
    read.layout = r.within(kStereoLayout, kFiveOneLayout);
    read.program = r.within(0, kStatePrograms - 1);
    read.decoderType = r.within(kVirtualMicrophones, kLastDecoderType);
    for (int i = 0; i < kFirstSetting; ++i) read.values[i] = r.value();
    for (auto& table : read.programs)
        for (ProgramState& p : table) r.program(p);
    // Settings the writer did not know sound as they did before they existed.
    for (int i = kFirstSetting; i < kNumParams; ++i) read.values[i] = kParameters[i].valueBefore;
    if (version >= 2) {
        const std::uint32_t count = r.word();
        r.ok = r.ok && count <= chunk::kMostSettings && r.left() == count * 2 * chunk::kWord;
        for (std::uint32_t n = 0; n < count && r.ok; ++n) {
            const std::uint32_t index = r.word();
            if (index >= std::uint32_t{kFirstSetting} && index < std::uint32_t{kNumParams})
                read.values[index] = r.value();
            else if (index == std::uint32_t{kEditorScaleSetting})
                read.editorScale = scaleChoiceOf(r.value());
            else if (index == std::uint32_t{kTrackingPortSetting})
                read.trackingPort = static_cast<int>(std::lround(r.value() * kLargestPort));
            else
                r.word();  // a setting of a later version: skipped
        }
    }
    if (!r.finished()) return false;
    s = read;
    return true;
}

// Writes the program chunk into `bytes` (kPresetBytes long).
inline void writePreset(const PresetState& s, unsigned char* bytes) {
    chunk::Writer w(bytes);
    w.magic(chunk::kPresetMagic);
    for (std::uint32_t word : {kPresetVersion, std::uint32_t{kFirstSetting}, std::uint32_t{kProgramValues}})
        w.word(word);
    w.word(static_cast<std::uint32_t>(s.layout));
    w.word(static_cast<std::uint32_t>(s.decoderType));
    ProgramState p = s.program;
    for (float& v : p.values) v = savedValue(v);
    w.program(p);
    for (float v : s.values) w.value(savedValue(v));
}

// Reads a program chunk; false, with `s` untouched, unless every check passes.
inline bool readPreset(const unsigned char* bytes, std::size_t size, PresetState& s) {
    chunk::Reader r(bytes, size);
    PresetState read;
    r.magic(chunk::kPresetMagic);
    for (std::uint32_t word : {kPresetVersion, std::uint32_t{kFirstSetting}, std::uint32_t{kProgramValues}})
        r.expect(word);
    read.layout = r.within(kStereoLayout, kFiveOneLayout);
    read.decoderType = r.within(kVirtualMicrophones, kLastDecoderType);
    r.program(read.program);
    for (float& v : read.values) v = r.value();
    if (!r.finished()) return false;
    s = read;
    return true;
}

}  // namespace sorvane
