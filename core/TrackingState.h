// Whether the head tracker is listening, and where or why not, in the few
// words the editor and hosts show (it fits a host's eight-character display).
#pragma once

#include <cstddef>
#include <cstdio>

namespace sorvane {

enum class TrackingState { Off, Listening, NoFreePort, NoSocket };

inline void describeTracking(TrackingState state, int port, char* text, std::size_t room) {
    switch (state) {
    case TrackingState::Listening: std::snprintf(text, room, "OSC %d", port); return;
    case TrackingState::NoFreePort: std::snprintf(text, room, "OSC busy"); return;  // every port of the range taken
    case TrackingState::NoSocket: std::snprintf(text, room, "OSC fail"); return;    // no socket at all
    case TrackingState::Off: std::snprintf(text, room, "OSC idle"); return;         // not processing, nothing to turn
    }
}

}  // namespace sorvane
