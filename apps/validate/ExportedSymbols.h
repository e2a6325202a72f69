// The symbols a shared library offers to the programs that load it.
#pragma once

#include <string>
#include <vector>

namespace validate {

// Names of the defined, globally visible functions and objects in the
// library's dynamic symbol table. Throws CheckFailure for a file that is not
// a 64-bit ELF shared library.
std::vector<std::string> exportedSymbols(const std::string& path);

}  // namespace validate
