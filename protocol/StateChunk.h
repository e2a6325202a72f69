// The effect's saved state as plain bytes, the same on every machine and
// with every compiler: hosts keep it in sessions (the bank chunk) and in
// their presets (the program chunk), and `sorvane` writes and reads it in
// .fxb and .fxp files.
//
// Every number is 32 bits, little-endian; values are IEEE-754 single
// precision; names are 24 bytes, zero-terminated within them. Version 1:
//
//   bank chunk                              program chunk
//   'S' 'r' 'v' 'B'                         'S' 'r' 'v' 'P'
//   version (1)                             version (1)
//   number of parameters (20)               number of parameters (20)
//   number of program values (13)           number of program values (13)
//   number of layouts (5)                   layout (2 stereo .. 6 5.1)
//   programs per layout (5)                 5.x decoder type (0, 1, 2)
//   layout (2 stereo .. 6 5.1)              the current program's name
//   current program (0 .. 4)                its values, parameters 5 .. 17
//   5.x decoder type (0, 1, 2)              the twenty current values
//   the twenty current values
//   per layout, stereo first, per program: name, values of parameters 5 .. 17
//
// A reader checks everything before trusting any of it: magic, version,
// counts, the exact size, terminated names, and every value finite and
// within 0 .. 1. Later versions add fields after these and must keep
// reading version 1.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "SorvaneProtocol.h"

namespace sorvane {

constexpr std::uint32_t kStateVersion = 1;
constexpr int kProgramValues = kLastProgramParameter - kFirstProgramParameter + 1;
constexpr int kStatePrograms = 5;  // the programs a host selects, per layout
constexpr int kLastDecoderType = kFixedMatrix2;

struct ProgramState {
    char name[kTextRoom] = {};
    float values[kProgramValues] = {};  // parameters kFrontMode .. kSurroundGain
};

struct BankState {
    int layout = kStereoLayout;
    int program = 0;
    int decoderType = kVirtualMicrophones;
    float values[kNumParams] = {};
    ProgramState programs[kNumLayouts][kStatePrograms];  // stereo first
};

struct PresetState {
    int layout = kStereoLayout;
    int decoderType = kVirtualMicrophones;
    ProgramState program;
    float values[kNumParams] = {};
};

namespace chunk {

constexpr std::array<char, 4> kBankMagic = {'S', 'r', 'v', 'B'};
constexpr std::array<char, 4> kPresetMagic = {'S', 'r', 'v', 'P'};
constexpr std::size_t kWord = 4;
constexpr std::size_t kProgramBytes = kTextRoom + kWord * kProgramValues;
constexpr std::size_t kBankBytes = kWord * (9 + kNumParams) + kProgramBytes * kNumLayouts * kStatePrograms;
constexpr std::size_t kPresetBytes = kWord * 6 + kProgramBytes + kWord * kNumParams;

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
    for (std::uint32_t word : {kStateVersion, std::uint32_t{kNumParams}, std::uint32_t{kProgramValues},
                               std::uint32_t{kNumLayouts}, std::uint32_t{kStatePrograms}})
        w.word(word);
    for (int n : {s.layout, s.program, s.decoderType}) w.word(static_cast<std::uint32_t>(n));
    for (float v : s.values) w.value(savedValue(v));
    for (const auto& table : s.programs)
        for (ProgramState p : table) {
            for (float& v : p.values) v = savedValue(v);
            w.program(p);
        }
}

// Reads a bank chunk; false, with `s` untouched, unless every check passes.
inline bool readBank(const unsigned char* bytes, std::size_t size, BankState& s) {
    chunk::Reader r(bytes, size);
    BankState read;
    r.magic(chunk::kBankMagic);
    for (std::uint32_t word : {kStateVersion, std::uint32_t{kNumParams}, std::uint32_t{kProgramValues},
                               std::uint32_t{kNumLayouts}, std::uint32_t{kStatePrograms}})
        r.expect(word);
    read.layout = r.within(kStereoLayout, kFiveOneLayout);
    read.program = r.within(0, kStatePrograms - 1);
    read.decoderType = r.within(kVirtualMicrophones, kLastDecoderType);
    for (float& v : read.values) v = r.value();
    for (auto& table : read.programs)
        for (ProgramState& p : table) r.program(p);
    if (!r.finished()) return false;
    s = read;
    return true;
}

// Writes the program chunk into `bytes` (kPresetBytes long).
inline void writePreset(const PresetState& s, unsigned char* bytes) {
    chunk::Writer w(bytes);
    w.magic(chunk::kPresetMagic);
    for (std::uint32_t word : {kStateVersion, std::uint32_t{kNumParams}, std::uint32_t{kProgramValues}}) w.word(word);
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
    for (std::uint32_t word : {kStateVersion, std::uint32_t{kNumParams}, std::uint32_t{kProgramValues}}) r.expect(word);
    read.layout = r.within(kStereoLayout, kFiveOneLayout);
    read.decoderType = r.within(kVirtualMicrophones, kLastDecoderType);
    r.program(read.program);
    for (float& v : read.values) v = r.value();
    if (!r.finished()) return false;
    s = read;
    return true;
}

}  // namespace sorvane
