// The sorvane tool run as a user runs it; the runner is shared by the suites.
#pragma once

#include <string>

#include "ToolRun.h"

inline ToolRun runSorvane(const std::string& arguments) {
    return runCommand(std::string("'") + SORVANE_TOOL + "' " + arguments);
}
