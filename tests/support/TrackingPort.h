// The UDP port an instance's head tracker listens on, as the instance shows
// it: "OSC 7771" as the display of "Tracking", once its thread has opened it.
#pragma once

#include <cctype>
#include <chrono>
#include <string>
#include <thread>

#include "Plugin.h"
#include "SorvaneProtocol.h"

namespace sorvane_test {

// The port, waiting up to two seconds for it; 0 if none shows.
inline int listeningPort(vsthost::Plugin& fx) {
    for (int i = 0; i < 200; ++i) {
        const std::string shown = fx.parameterDisplay(kTracking);
        if (shown.size() > 4 && std::isdigit(static_cast<unsigned char>(shown[4]))) return std::stoi(shown.substr(4));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 0;
}

}  // namespace sorvane_test
