// sorvane validate: hands its arguments to sorvane-validate, installed next
// to this program, which holds the suite and its counting hooks.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "Commands.h"
#include "validate/Validate.h"

namespace {

std::filesystem::path validatorPath() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return (error ? std::filesystem::path{} : self.parent_path()) / "sorvane-validate";
}

}  // namespace

void addValidateCommand(CLI::App& app, int& exitCode) {
    CLI::App* validate = app.add_subcommand("validate", kValidateDescription);
    // Every argument, --help included, belongs to sorvane-validate.
    validate->prefix_command();
    validate->set_help_flag();
    validate->callback([validate, &exitCode] {
        const std::filesystem::path program = validatorPath();
        std::vector<std::string> arguments = validate->remaining();
        std::vector<char*> argv{const_cast<char*>(program.c_str())};
        for (std::string& a : arguments) argv.push_back(a.data());
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        std::cerr << "sorvane validate: cannot start " << program.string() << ": " << std::strerror(errno) << '\n';
        exitCode = 2;
    });
}
