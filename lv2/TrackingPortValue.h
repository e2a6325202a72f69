// The head tracker's state as the DSP reports it on tracking_port and the
// UI reads it back: the port while listening, else a number for why not.
#pragma once

#include "Lv2Ports.h"
#include "TrackingState.h"

namespace sorvane::lv2 {

constexpr float trackingPortValue(TrackingState state, int port) {
    switch (state) {
    case TrackingState::Listening: return static_cast<float>(port);
    case TrackingState::NoFreePort: return kTrackingBusy;
    case TrackingState::NoSocket: return kTrackingNoSocket;
    default: return kTrackingNone;
    }
}
constexpr TrackingState trackingStateOfPortValue(float value) {
    return value >= 1.0f                ? TrackingState::Listening
           : value == kTrackingBusy     ? TrackingState::NoFreePort
           : value == kTrackingNoSocket ? TrackingState::NoSocket
                                        : TrackingState::Off;
}

}  // namespace sorvane::lv2
