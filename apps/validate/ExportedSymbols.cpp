#include "ExportedSymbols.h"

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "Check.h"

namespace validate {

std::vector<std::string> exportedSymbols(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw CheckFailure("cannot read " + path);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    auto fits = [&](std::size_t offset, std::size_t size) {
        return offset <= bytes.size() && size <= bytes.size() - offset;
    };
    if (!fits(0, sizeof(Elf64_Ehdr)) || std::memcmp(bytes.data(), ELFMAG, SELFMAG) != 0 ||
        bytes[EI_CLASS] != ELFCLASS64)
        throw CheckFailure(path + " is not a 64-bit ELF file");

    Elf64_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof header);
    auto section = [&](std::size_t index) {
        Elf64_Shdr s{};
        const std::size_t offset = header.e_shoff + index * sizeof(Elf64_Shdr);
        if (index < header.e_shnum && fits(offset, sizeof s)) std::memcpy(&s, bytes.data() + offset, sizeof s);
        return s;
    };

    std::vector<std::string> names;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const Elf64_Shdr symbols = section(i);
        if (symbols.sh_type != SHT_DYNSYM || !fits(symbols.sh_offset, symbols.sh_size)) continue;
        const Elf64_Shdr strings = section(symbols.sh_link);
        if (!fits(strings.sh_offset, strings.sh_size)) continue;
        for (std::size_t at = 0; at + sizeof(Elf64_Sym) <= symbols.sh_size; at += sizeof(Elf64_Sym)) {
            Elf64_Sym symbol;
            std::memcpy(&symbol, bytes.data() + symbols.sh_offset + at, sizeof symbol);
            const int binding = ELF64_ST_BIND(symbol.st_info);
            const int type = ELF64_ST_TYPE(symbol.st_info);
            const int visibility = ELF64_ST_VISIBILITY(symbol.st_other);
            if (symbol.st_shndx == SHN_UNDEF || symbol.st_shndx == SHN_ABS) continue;  // imports, version names
            if (binding != STB_GLOBAL && binding != STB_WEAK && binding != STB_GNU_UNIQUE) continue;
            if (visibility != STV_DEFAULT && visibility != STV_PROTECTED) continue;
            if (type == STT_SECTION || type == STT_FILE) continue;
            if (symbol.st_name >= strings.sh_size) continue;
            const char* name = bytes.data() + strings.sh_offset + symbol.st_name;
            names.emplace_back(name, strnlen(name, strings.sh_size - symbol.st_name));
        }
    }
    return names;
}

}  // namespace validate
