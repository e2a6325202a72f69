// Runs a command line as a user does and captures what it prints.
#pragma once

#include <string>

struct ToolRun {
    int status;          // the exit status, or -1 when it did not exit normally
    std::string output;  // stdout and stderr together
};

ToolRun runCommand(const std::string& commandLine);
