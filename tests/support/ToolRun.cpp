#include "ToolRun.h"

#include <sys/wait.h>

#include <cstdio>

ToolRun runCommand(const std::string& commandLine) {
    FILE* pipe = popen((commandLine + " 2>&1").c_str(), "r");
    if (!pipe) return {-1, ""};
    std::string output;
    char buffer[4096];
    while (std::size_t n = fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}
