#include "PresetFile.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

namespace vsthost {
namespace {

constexpr VstInt32 kFileMagic = fourCharCode('C', 'c', 'n', 'K');
constexpr VstInt32 kProgramValues = fourCharCode('F', 'x', 'C', 'k');
constexpr VstInt32 kProgramChunk = fourCharCode('F', 'P', 'C', 'h');
constexpr VstInt32 kBankValues = fourCharCode('F', 'x', 'B', 'k');
constexpr VstInt32 kBankChunk = fourCharCode('F', 'B', 'C', 'h');
constexpr std::size_t kNameBytes = 28;
constexpr std::size_t kBankReserved = 128;   // version 2 takes the current program from it
constexpr std::size_t kHeaderBytes = 7 * 4;  // 'CcnK' to the count of parameters or programs

class Writer {
public:
    std::vector<unsigned char> bytes;
    void word(VstInt32 w) {
        const auto u = static_cast<std::uint32_t>(w);
        for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(u >> shift));
    }
    void value(float v) { word(std::bit_cast<VstInt32>(v)); }
    void text(const std::string& s, std::size_t room) {
        for (std::size_t i = 0; i < room; ++i) bytes.push_back(i + 1 < room && i < s.size() ? s[i] : 0);
    }
    void raw(const std::vector<unsigned char>& b) { bytes.insert(bytes.end(), b.begin(), b.end()); }
    // The size field counts what follows it.
    void closeSize(std::size_t at) {
        const auto size = static_cast<VstInt32>(bytes.size() - at - 4);
        for (int i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<unsigned char>(static_cast<std::uint32_t>(size) >> (24 - 8 * i));
    }
};

// Reads from a range already known to lie inside the file; callers check has() first.
class Reader {
public:
    explicit Reader(const std::vector<unsigned char>& b) : bytes(b) {}
    bool has(std::size_t n) const { return n <= bytes.size() - at; }
    VstInt32 word() {
        std::uint32_t u = 0;
        for (int i = 0; i < 4; ++i) u = (u << 8) | bytes[at++];
        return static_cast<VstInt32>(u);
    }
    float value() { return std::bit_cast<float>(word()); }
    std::string text(std::size_t room) {
        const char* start = reinterpret_cast<const char*>(bytes.data() + at);
        at += room;
        return std::string(start, strnlen(start, room));
    }
    std::vector<unsigned char> take(std::size_t n) {
        std::vector<unsigned char> taken(bytes.begin() + static_cast<long>(at),
                                         bytes.begin() + static_cast<long>(at + n));
        at += n;
        return taken;
    }
    void skip(std::size_t n) { at += n; }
    std::size_t position() const { return at; }
    std::size_t left() const { return bytes.size() - at; }

private:
    const std::vector<unsigned char>& bytes;
    std::size_t at = 0;
};

std::string codeText(VstInt32 code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = static_cast<char>((code >> shift) & 0xff);
        text += (c >= 32 && c < 127) ? c : '?';
    }
    return text;
}

void encodeProgram(Writer& w, const PresetFile& file, const PresetFile::Program* values) {
    w.word(kFileMagic);
    const std::size_t size = w.bytes.size();
    w.word(0);
    w.word(values ? kProgramValues : kProgramChunk);
    w.word(1);
    w.word(file.pluginId);
    w.word(file.pluginVersion);
    w.word(values ? static_cast<VstInt32>(values->values.size()) : file.numParams);
    w.text(values ? values->name : file.name, kNameBytes);
    if (values) {
        for (float v : values->values) w.value(v);
    } else {
        w.word(static_cast<VstInt32>(file.chunk.size()));
        w.raw(file.chunk);
    }
    w.closeSize(size);
}

// The 'CcnK' header common to programs and banks; `size` is what follows its field.
bool decodeHeader(Reader& r, VstInt32& magic, VstInt32& version, std::size_t& end, std::string& error) {
    if (!r.has(kHeaderBytes)) return error = "too short for a preset file", false;
    if (r.word() != kFileMagic) return error = "not a preset file (no 'CcnK' at its start)", false;
    const auto size = static_cast<std::uint32_t>(r.word());
    if (size > r.left()) return error = "its size runs past the end of the file", false;
    end = r.position() + size;
    magic = r.word();
    version = r.word();
    if (version < 1) return error = "unknown format version", false;
    return true;
}

// One program from 'CcnK' on, either a whole .fxp or a record of a bank.
bool decodeProgram(Reader& r, PresetFile& file, PresetFile::Program& program, bool inBank, std::string& error) {
    VstInt32 magic = 0, format = 0;
    std::size_t end = 0;
    if (!decodeHeader(r, magic, format, end, error)) return false;
    if (magic != kProgramValues && (inBank || magic != kProgramChunk))
        return error = "unknown program kind '" + codeText(magic) + "'", false;
    const VstInt32 id = r.word();
    const VstInt32 version = r.word();
    const VstInt32 count = r.word();
    if (!r.has(kNameBytes)) return error = "the file ends inside a program's name", false;
    program.name = r.text(kNameBytes);
    if (inBank && id != file.pluginId) return error = "a program of the bank belongs to another plug-in", false;
    if (!inBank) {
        file.pluginId = id;
        file.pluginVersion = version;
        file.numParams = count;
        file.name = program.name;
    }
    if (magic == kProgramChunk) {
        if (!r.has(4)) return error = "the file ends before the chunk's size", false;
        const auto size = static_cast<std::uint32_t>(r.word());
        if (size > r.left()) return error = "the chunk runs past the end of the file", false;
        file.opaque = true;
        file.chunk = r.take(size);
    } else {
        if (count < 0 || static_cast<std::size_t>(count) > r.left() / 4)
            return error = "the parameter count runs past the end of the file", false;
        for (VstInt32 i = 0; i < count; ++i) program.values.push_back(r.value());
    }
    if (r.position() != end) return error = "a program's size does not match what it holds", false;
    return true;
}

}  // namespace
std::vector<unsigned char> encodePresetFile(const PresetFile& file) {
    Writer w;
    if (!file.bank) {
        encodeProgram(w, file, file.opaque || file.programs.empty() ? nullptr : &file.programs.front());
        return w.bytes;
    }
    w.word(kFileMagic);
    const std::size_t size = w.bytes.size();
    w.word(0);
    w.word(file.opaque ? kBankChunk : kBankValues);
    w.word(file.version);
    w.word(file.pluginId);
    w.word(file.pluginVersion);
    w.word(file.opaque ? file.numPrograms : static_cast<VstInt32>(file.programs.size()));
    std::size_t reserved = kBankReserved;
    if (file.version >= 2) {
        w.word(file.currentProgram);
        reserved -= 4;
    }
    w.raw(std::vector<unsigned char>(reserved, 0));
    if (file.opaque) {
        w.word(static_cast<VstInt32>(file.chunk.size()));
        w.raw(file.chunk);
    } else {
        for (const PresetFile::Program& p : file.programs) encodeProgram(w, file, &p);
    }
    w.closeSize(size);
    return w.bytes;
}

bool decodePresetFile(const std::vector<unsigned char>& bytes, PresetFile& file, std::string& error) {
    PresetFile read;
    Reader r(bytes);
    VstInt32 magic = 0;
    std::size_t end = 0;
    Reader peek(bytes);
    if (!decodeHeader(peek, magic, read.version, end, error)) return false;
    if (end != bytes.size()) return error = "its size does not match the file's length", false;
    if (magic == kProgramValues || magic == kProgramChunk) {
        read.programs.emplace_back();
        if (!decodeProgram(r, read, read.programs.back(), false, error)) return false;
        if (read.opaque) read.programs.clear();
        read.version = 1;
    } else if (magic == kBankValues || magic == kBankChunk) {
        decodeHeader(r, magic, read.version, end, error);
        read.bank = true;
        read.opaque = magic == kBankChunk;
        read.pluginId = r.word();
        read.pluginVersion = r.word();
        const VstInt32 count = r.word();
        read.numPrograms = count;
        if (!r.has(kBankReserved)) return error = "the file ends inside the bank's header", false;
        read.currentProgram = read.version >= 2 ? r.word() : 0;
        r.skip(kBankReserved - (read.version >= 2 ? 4 : 0));
        if (read.opaque) {
            if (!r.has(4)) return error = "the file ends before the chunk's size", false;
            const auto size = static_cast<std::uint32_t>(r.word());
            if (size != r.left()) return error = "the chunk's size does not match the file", false;
            read.chunk = r.take(size);
        } else {
            if (count < 0 || static_cast<std::size_t>(count) > r.left() / (kHeaderBytes + kNameBytes))
                return error = "the program count runs past the end of the file", false;
            for (VstInt32 i = 0; i < count; ++i) {
                read.programs.emplace_back();
                if (!decodeProgram(r, read, read.programs.back(), true, error)) return false;
            }
            if (r.left() != 0) return error = "bytes left over after the bank's programs", false;
        }
    } else {
        return error = "unknown preset kind '" + codeText(magic) + "'", false;
    }
    file = std::move(read);
    return true;
}

bool readPresetFile(const std::string& path, PresetFile& file, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return error = "cannot open " + path, false;
    const std::vector<unsigned char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!decodePresetFile(bytes, file, error)) return error = path + ": " + error, false;
    return true;
}

bool writePresetFile(const std::string& path, const PresetFile& file, std::string& error) {
    // Written beside the target and moved into place when complete.
    const std::string temporary = path + ".part";
    const std::vector<unsigned char> bytes = encodePresetFile(file);
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            std::remove(temporary.c_str());
            return error = "cannot write " + path, false;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        return error = "cannot write " + path, false;
    }
    return true;
}

PresetFile capturePreset(Plugin& plugin, bool bank) {
    PresetFile file;
    file.bank = bank;
    file.version = bank ? 2 : 1;
    file.pluginId = plugin.uniqueID();
    file.pluginVersion = plugin.version();
    file.numParams = plugin.numParams();
    file.numPrograms = plugin.numPrograms();
    file.currentProgram = plugin.program();
    file.name = plugin.programName();
    const auto values = [&plugin] {
        PresetFile::Program p{plugin.programName(), {}};
        for (VstInt32 i = 0; i < plugin.numParams(); ++i) p.values.push_back(plugin.getParameter(i));
        return p;
    };
    void* data = nullptr;
    const VstIntPtr size = plugin.hasFlag(effFlagsProgramChunks) ? plugin.getChunk(&data, !bank) : 0;
    if (size > 0 && data) {
        file.opaque = true;
        file.chunk.assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);
    } else if (!bank) {
        file.programs.push_back(values());
    } else {
        const VstInt32 current = plugin.program();
        for (VstInt32 p = 0; p < plugin.numPrograms(); ++p) {
            plugin.setProgram(p);
            file.programs.push_back(values());
        }
        plugin.setProgram(current);
    }
    return file;
}

bool applyPreset(Plugin& plugin, const PresetFile& file, std::string& error) {
    if (file.pluginId != plugin.uniqueID())
        return error = "the preset belongs to plug-in '" + codeText(file.pluginId) + "', not to '" +
                       codeText(plugin.uniqueID()) + "'",
               false;
    if (file.opaque) {
        std::vector<unsigned char> chunk = file.chunk;
        if (chunk.empty() || plugin.setChunk(chunk.data(), static_cast<VstInt32>(chunk.size()), !file.bank) != 1)
            return error = "the plug-in refused the preset's state", false;
        return true;
    }
    const auto load = [&plugin](const PresetFile::Program& p) {
        plugin.setProgramName(p.name);
        for (std::size_t i = 0; i < p.values.size() && i < static_cast<std::size_t>(plugin.numParams()); ++i)
            plugin.setParameter(static_cast<VstInt32>(i), p.values[i]);
    };
    if (!file.bank) {
        if (!file.programs.empty()) load(file.programs.front());
        return true;
    }
    for (std::size_t p = 0; p < file.programs.size() && p < static_cast<std::size_t>(plugin.numPrograms()); ++p) {
        plugin.setProgram(static_cast<VstIntPtr>(p));
        load(file.programs[p]);
    }
    plugin.setProgram(file.currentProgram);
    return true;
}

}  // namespace vsthost
