// The LV2 edition's identity and ports: where each port sits, its symbol,
// and which setting a control port carries. The DSP entry, the Turtle
// generator and the tests all number the ports from here.
#pragma once

#include <cstdint>

#include "SorvaneProtocol.h"

namespace sorvane::lv2 {

// The plug-in's URI: hosts save sessions under it, so it never changes.
inline constexpr char kPluginUri[] = "urn:tamberlyn:sorvane";
// The editor in the host's window, a UI of its own kind for hosts.
inline constexpr char kUiUri[] = "urn:tamberlyn:sorvane:ui";
inline constexpr char kProjectUri[] = "urn:tamberlyn:sorvane:project";
// Presets are named below it: kPresetUriPrefix + a slug of the preset's label.
inline constexpr char kPresetUriPrefix[] = "urn:tamberlyn:sorvane:preset:";
// The bundle's files besides the DSP library.
inline constexpr char kPluginTurtle[] = "Sorvane.ttl";
inline constexpr char kPresetTurtle[] = "presets.ttl";
// Release versions have an even, non-zero minor version.
constexpr int kMinorVersion = 8;
constexpr int kMicroVersion = 0;

// B-format in, W X Y Z; six speaker feeds out; then the controls.
constexpr std::uint32_t kFirstInput = 0;
constexpr std::uint32_t kInputs = 4;
constexpr std::uint32_t kFirstOutput = kFirstInput + kInputs;
constexpr std::uint32_t kOutputs = 6;
constexpr std::uint32_t kFirstControl = kFirstOutput + kOutputs;

// Controls are numbered by parameter index (the twenty, then the settings
// past them), then the 5.x decoder type, which the VST edition's
// fixed-matrix programs set and LV2 presets can only reach through a port of
// its own.
constexpr int kFiveDecoderControl = kNumParams;
constexpr std::uint32_t kControls = kNumParams + 1;

// Ports: the twenty parameters in the protocol's order, the 5.x decoder
// type and the latency output (always 0: the engine adds none), then the
// settings past the twenty, appended in their order as they came, so hosts
// that address ports by index keep finding the older ones where they were.
constexpr std::uint32_t kLatencyPort = kFirstControl + kFirstSetting + 1;
constexpr std::uint32_t kFirstSettingPort = kLatencyPort + 1;
// Last, an output: the UDP port the head tracker listens on, or why none
// (kTrackingNone, kTrackingBusy, kTrackingNoSocket); hosts show it, and the
// UI shows it in the editor.
constexpr std::uint32_t kTrackingStatePort = kFirstSettingPort + (kNumParams - kFirstSetting);
constexpr std::uint32_t kPortCount = kTrackingStatePort + 1;
inline constexpr char kTrackingStateSymbol[] = "tracking_port";
constexpr float kTrackingNone = 0.0f, kTrackingBusy = -1.0f, kTrackingNoSocket = -2.0f;

inline constexpr const char* kInputSymbols[kInputs] = {"w", "x", "y", "z"};
inline constexpr const char* kOutputSymbols[kOutputs] = {"out1", "out2", "out3", "out4", "out5", "out6"};
inline constexpr const char* kControlSymbols[kControls] = {
    "rotate",         "tilt",          "tumble",         "zoom",
    "zoom_method",    "front_mode",    "front_width",    "front_pattern",
    "rear_verb",      "hi_verb",       "centre_pattern", "centre_gain",
    "sub_gain",       "sub_crossover", "surround_mode",  "surround_pattern",
    "surround_width", "surround_gain", "layout",         "channel_order",
    "input",          "smoothing",     "output",         "tracking",
    "five_decoder",
};
static_assert(kControlSymbols[kControls - 1] != nullptr, "a symbol for every control");
inline constexpr char kLatencySymbol[] = "latency";

constexpr std::uint32_t controlPort(int control) {
    const auto c = static_cast<std::uint32_t>(control);
    if (control == kFiveDecoderControl) return kFirstControl + kFirstSetting;
    if (control >= kFirstSetting) return kFirstSettingPort + (c - kFirstSetting);
    return kFirstControl + c;
}
// The control a port carries; -1 for an audio port or the latency.
constexpr int controlOfPort(std::uint32_t port) {
    if (port >= kFirstSettingPort && port < kTrackingStatePort)
        return kFirstSetting + static_cast<int>(port - kFirstSettingPort);
    if (port == kFirstControl + kFirstSetting) return kFiveDecoderControl;
    if (port >= kFirstControl && port < kFirstControl + kFirstSetting) return static_cast<int>(port - kFirstControl);
    return -1;
}
static_assert(controlOfPort(controlPort(kInput)) == kInput && controlOfPort(kLatencyPort) == -1);

}  // namespace sorvane::lv2
