// Runs the sorvane tool as a user does and captures what it prints.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct ToolRun {
    int status;
    std::string output;  // stdout and stderr together
};

inline ToolRun runSorvane(const std::string& arguments) {
    const std::string command = std::string("'") + SORVANE_TOOL + "' " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return {-1, ""};
    std::string output;
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}
