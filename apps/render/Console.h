// What every subcommand prints the same way: a failure on stderr under the
// command's name, and texts padded into columns.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace console {

// Prints "sorvane COMMAND: MESSAGE" and gives the exit code of a failure.
inline int fail(const char* command, const std::string& message) {
    std::fprintf(stderr, "sorvane %s: %s\n", command, message.c_str());
    return 1;
}

// Pads to a width in characters, not bytes: displays carry a UTF-8 degree sign.
inline std::string padded(std::string text, std::size_t width) {
    std::size_t characters = 0;
    for (unsigned char c : text) characters += (c & 0xC0) != 0x80;
    if (characters < width) text.append(width - characters, ' ');
    return text;
}

}  // namespace console
