// The one place that knows Sorvane's parameters: their numbers (which the
// editor also uses as control tags), the messages between effect and editor,
// names, labels, defaults, the conversion of a normalised value into the
// engine's units, the editor's own readings of a value, and the texts a host
// shows. Plain C++ with no dependency but the engine's own numbers for its
// settings (header-only too), so the editor can use it without linking the
// effect.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "EngineSelectors.h"  // kMonoLayout .. kFiveOneLayout, the 5.x decoder types, kAmbienceThreshold
#include "Truncation.h"
#include "Version.h"

// Parameter indices; the editor uses them as its control tags.
enum SorvaneParameter : std::int32_t {
    kRotate = 0,
    kTilt,
    kTumble,
    kZoom,
    kZoomMethod,
    kFrontMode,
    kFrontWidth,
    kFrontPattern,
    kRearVerb,
    kHiVerb,
    kCentrePattern,
    kCentreGain,
    kSubGain,
    kSubCrossover,
    kSurroundMode,
    kSurroundPattern,
    kSurroundWidth,
    kSurroundGain,
    kDecodeMode,
    kChannelOrder,
    kInput,
    kSmoothing,
    kOutput,
    kTracking,
    kNumParams,
};

// Messages between effect and editor above the host's parameter range.
enum SorvaneMessage : std::int32_t {
    kEditorSuspend = 100,   // effect to editor on suspend
    kEditorResume = 101,    // effect to editor on resume
    kBitMode = 102,         // getParameter: processing precision, 32 or 64
    kFiveDecoderType = 103  // getParameter: 0, 1, 2; to the editor: 0, 0.5, 1
};

namespace sorvane {

// The effect's unique ID, 'Zrbq', by which hosts and `sorvane` recognise it.
constexpr std::int32_t kUniqueId = ('Z' << 24) | ('r' << 16) | ('b' << 8) | 'q';

// The parameters a program record holds: the microphone and level settings.
constexpr std::int32_t kFirstProgramParameter = kFrontMode;
constexpr std::int32_t kLastProgramParameter = kSurroundGain;
constexpr bool isProgramParameter(std::int32_t index) {
    return index >= kFirstProgramParameter && index <= kLastProgramParameter;
}
constexpr bool isParameter(std::int32_t index) { return index >= 0 && index < kNumParams; }

// Settings past the first twenty describe the track's material or how it is
// monitored, not a sound: no program record, program chunk or preset file
// carries them, and a session saved before one existed loads its default.
constexpr std::int32_t kFirstSetting = kInput;
constexpr bool isSetting(std::int32_t index) { return index >= kFirstSetting && index < kNumParams; }

// ---- speaker layouts as the engine numbers them (EngineSelectors.h) ----

constexpr int kNumLayouts = kFiveOneLayout - kStereoLayout + 1;  // stereo .. 5.1, the ones a parameter selects

constexpr bool isSelectableLayout(int layout) { return layout >= kStereoLayout && layout <= kFiveOneLayout; }
// The value of kDecodeMode the layout switch sends for a layout (0, 0.25 .. 1):
// both the effect's and the editor's bands agree on these.
constexpr float layoutValue(int layout) { return 0.25f * static_cast<float>(layout - kStereoLayout); }

// The editor hears the 5.x decoder type (EngineSelectors.h) as 0, 0.5 or 1 under kFiveDecoderType.
constexpr float fiveDecoderTypeMessage(int type) { return static_cast<float>(type) * 0.5f; }
constexpr int fiveDecoderTypeOfMessage(float value) { return static_cast<int>(value + value); }

// ---- what each parameter is ----

// How a normalised value becomes an engine field and how that field reads.
enum class Kind {
    Angle,       // 180 - 360 v degrees, exactly 0 at the centre
    Zoom,        // 200 v - 100 percent
    ZoomMethod,  // four methods by single-precision bounds
    PairMode,    // XY or MS
    Width,       // 90 v degrees
    Pattern,     // v itself, shown as a pattern word
    Ambience,    // 36 v - 36 dB, with v = 0 switching the path off
    Gain,        // 24 v - 18 dB
    Crossover,   // 220 v + 20 Hz, whole hertz
    Layout,      // five speaker layouts by single-precision bounds
    Order,       // the layout's own order or 5.1 order
    Input,       // the channel order and normalisation of the B-format input
    Switch,      // off or on
    Output,      // the speakers or headphones
    Tracking,    // no head tracking, or a tracker's orientation over OSC
};

// Whether the engine holds the parameter as a real number or as a choice.
constexpr bool isSelector(Kind kind) {
    return kind == Kind::ZoomMethod || kind == Kind::PairMode || kind == Kind::Crossover || kind == Kind::Layout ||
           kind == Kind::Order || kind == Kind::Input || kind == Kind::Switch ||
           kind == Kind::Output || kind == Kind::Tracking;
}

struct ParameterSpec {
    const char* name;  // null: named after its current value (the front pair)
    const char* label;
    Kind kind;
    float defaultValue;  // stored before the first program is loaded
    // A setting past the twenty, in a state saved before it existed: the
    // value that sounds as that state's writer did.
    float valueBefore = 0.0f;
};

// The stored values a new effect starts from.
constexpr float kCentred = 0.5f;
constexpr float kUnityGain = 0.75f;                     // 0 dB
constexpr float kDefaultCrossover = 100.0f / 220.0f;    // 120 Hz
constexpr float kDefaultSurroundWidth = 60.0f / 90.0f;  // 60 degrees

inline constexpr ParameterSpec kParameters[kNumParams] = {
    {"Rotate", "Degrees", Kind::Angle, kCentred},
    {"Tilt", "Degrees", Kind::Angle, kCentred},
    {"Tumble", "Degrees", Kind::Angle, kCentred},
    {"Zoom", "Percentage", Kind::Zoom, kCentred},
    {"Zoom Method", "Selection", Kind::ZoomMethod, 0.0f},
    {nullptr, "Microphones", Kind::PairMode, 0.0f},
    {"Width", "Degrees", Kind::Width, kCentred},
    {"Pattern", "Omni", Kind::Pattern, kCentred},
    {"RearVerb", "dB", Kind::Ambience, 0.0f},
    {"HiVerb", "dB", Kind::Ambience, 0.0f},
    {"Ctr. Pattern", "Omni", Kind::Pattern, kCentred},
    {"Ctr. Gain", "dB", Kind::Gain, kUnityGain},
    {"Sub. Gain", "dB", Kind::Gain, kUnityGain},
    {"Sub. Xover", "Hz", Kind::Crossover, kDefaultCrossover},
    {"Sur. Mode", "Microphones", Kind::PairMode, 0.0f},
    {"Sur. Pattern", "Omni", Kind::Pattern, kCentred},
    {"Sur. Width", "Degrees", Kind::Width, kDefaultSurroundWidth},
    {"Sur. Gain", "dB", Kind::Gain, kUnityGain},
    {"Dec. Mode", "Speakers", Kind::Layout, 0.0f},
    {"Ch. Order", "Output", Kind::Order, 1.0f},
    {"Input", "Format", Kind::Input, 0.0f},
    // New instances glide; sessions from before the setting sound as they did.
    {"Smoothing", "Switch", Kind::Switch, 1.0f, 0.0f},
    {"Output", "Monitor", Kind::Output, 0.0f},
    {"Tracking", "Head", Kind::Tracking, 0.0f},
};

// ---- normalised value to engine units ----
// The integer constants are applied in single precision, then widened.

constexpr double angleDegrees(float v) { return v == 0.5f ? 0.0 : 180.0f - 360.0f * v; }
constexpr double zoomPercent(float v) { return 200.0f * v - 100.0f; }
// Above 1 the method stays as it was.
constexpr int zoomMethodOf(float v, int current) {
    return v <= 0.2f ? 0 : v <= 0.5f ? 1 : v <= 0.8f ? 2 : v <= 1.0f ? 3 : current;
}
constexpr int pairModeOf(float v) { return v <= 0.5f ? 0 : 1; }
constexpr double widthDegrees(float v) { return 90.0f * v; }
constexpr double patternOf(float v) { return v; }
// At or below kAmbienceThreshold the ambience paths are switched off; -100 dB keeps "off" well clear of it.
constexpr double kAmbienceOff = -100.0;
// The knob spans 36 dB, up to 0 dB; its bottom end (v = 0) is "off".
constexpr float kAmbienceRangeDb = 36.0f;
constexpr double ambienceDb(float v) { return v == 0.0f ? kAmbienceOff : kAmbienceRangeDb * v - kAmbienceRangeDb; }
constexpr double gainDb(float v) { return 24.0f * v - 18.0f; }
inline int crossoverHz(float v) { return truncateToInt(220.0f * v + 20.0f); }
constexpr int layoutOf(float v) {
    return v <= 0.125f   ? kStereoLayout
           : v <= 0.375f ? kTwoOneLayout
           : v <= 0.625f ? kQuadLayout
           : v <= 0.875f ? kFiveLayout
                         : kFiveOneLayout;
}
constexpr int channelOrderOf(float v) { return v <= 0.5f ? 0 : 1; }

// The input dialects: Sorvane's own B-format (W 3 dB down, order W X Y Z),
// AmbiX (ACN order W Y Z X, SN3D) and ACN order with N3D normalisation.
constexpr int kBFormatInput = 0;
constexpr int kAmbiXInput = 1;
constexpr int kN3dInput = 2;
constexpr int kInputFormats = 3;
// Positions of a setting's switch lie evenly over 0 .. 1 (0, 0.5, 1 for
// three); any other value takes the nearest, NaN the first.
constexpr int nearestPosition(float v, int positions) {
    if (!(v > 0.0f)) return 0;
    if (v >= 1.0f) return positions - 1;
    return static_cast<int>(v * static_cast<float>(positions - 1) + 0.5f);
}
constexpr float positionValue(int position, int positions) {
    return static_cast<float>(position) / static_cast<float>(positions - 1);
}
constexpr int inputFormatOf(float v) { return nearestPosition(v, kInputFormats); }
constexpr int switchOf(float v) { return nearestPosition(v, 2); }
// Where the layout's feeds go: its speakers, or virtual speakers on headphones.
constexpr int kSpeakersOutput = 0;
constexpr int kHeadphonesOutput = 1;
constexpr int outputOf(float v) { return nearestPosition(v, 2); }
// Whether the head's orientation, as a tracker sends it over OSC, turns the
// field against the listener's turns (on headphones only).
constexpr int kTrackingOff = 0;
constexpr int kTrackingOsc = 1;
constexpr int trackingOf(float v) { return nearestPosition(v, 2); }

// The editor's size is a preference of the instance, not a sound: no
// parameter, no port, no program. The bank chunk keeps the user's choice
// under this index, as a switch position over 0 .. 1; "Auto" follows the
// host's factor, else the desktop's, else 100 %.
constexpr std::int32_t kEditorScaleSetting = 1000;
enum EditorScaleChoice : int { kScaleAuto, kScale100, kScale150, kScale200, kScaleChoices };
constexpr double kScaleOfChoice[kScaleChoices] = {0.0, 1.0, 1.5, 2.0};  // 0: automatic
constexpr const char* kScaleChoiceNames[kScaleChoices] = {"Auto", "100 %", "150 %", "200 %"};
constexpr int scaleChoiceOf(float v) { return nearestPosition(v, kScaleChoices); }
constexpr float scaleChoiceValue(int choice) { return positionValue(choice, kScaleChoices); }
// The UDP port the head tracker last listened on, kept with the instance so
// that a reopened session listens where the tracker app sends (0: none yet).
constexpr std::int32_t kTrackingPortSetting = 1001;

// A continuous parameter's engine value (angles, zoom, widths, patterns, levels).
constexpr double realValue(Kind kind, float v) {
    switch (kind) {
    case Kind::Angle: return angleDegrees(v);
    case Kind::Zoom: return zoomPercent(v);
    case Kind::Width: return widthDegrees(v);
    case Kind::Pattern: return patternOf(v);
    case Kind::Ambience: return ambienceDb(v);
    case Kind::Gain: return gainDb(v);
    default: return 0.0;
    }
}
// A choice's or the crossover's engine value; `current` is kept where the value selects nothing.
inline int selectorValue(Kind kind, float v, int current) {
    switch (kind) {
    case Kind::ZoomMethod: return zoomMethodOf(v, current);
    case Kind::PairMode: return pairModeOf(v);
    case Kind::Order: return channelOrderOf(v);
    case Kind::Crossover: return crossoverHz(v);
    case Kind::Layout: return layoutOf(v);
    case Kind::Input: return inputFormatOf(v);
    case Kind::Switch: return switchOf(v);
    case Kind::Output: return outputOf(v);
    case Kind::Tracking: return trackingOf(v);
    default: return current;
    }
}

// ---- the editor's own readings, for its switches and the polar plot ----
// They differ from the engine's on purpose in places: the widths in double
// precision, the layout in steps of 0.2.

constexpr int editorSwitchPosition(float v) { return v > 0.5f ? 1 : 0; }
constexpr double plotWidthDegrees(float v) { return v * 90.0; }
constexpr double plotGainDb(float v) { return 24.0f * v - 18.0f; }
// Above 1 the layout shown stays as it was.
constexpr int editorLayoutOf(float v, int current) {
    return v <= 0.2f   ? kStereoLayout
           : v <= 0.4f ? kTwoOneLayout
           : v <= 0.6f ? kQuadLayout
           : v <= 0.8f ? kFiveLayout
           : v <= 1.0f ? kFiveOneLayout
                       : current;
}

// ---- texts ----

// Hosts give at least this much room for a name, label or display text
// (the length of a program name, with its terminator).
constexpr std::size_t kTextRoom = 24;

inline constexpr const char* kZoomMethodWords[] = {"Dominance", "Press", "Push", "Focus"};
inline constexpr const char* kPairModeWords[] = {"XY", "MS"};
inline constexpr const char* kLayoutWords[] = {"Stereo", "2.1", "Quad", "5.0", "5.1"};  // from stereo
inline constexpr const char* kChannelOrderWords[] = {"Natural", "5.1"};
inline constexpr const char* kInputWords[kInputFormats] = {"B-Format", "AmbiX", "N3D"};
inline constexpr const char* kSwitchWords[] = {"Off", "On"};
inline constexpr const char* kOutputWords[] = {"Speakers", "Headphones"};
inline constexpr const char* kTrackingWords[] = {"Off", "OSC"};
// The 5.x decoder types, as the fixed matrices' programs name them.
inline constexpr const char* kFiveDecoderWords[] = {"Microphones", "Heller et. al. 1", "Heller et. al. 2"};

constexpr const char* patternWord(double pattern) {
    return pattern <= 0.125   ? "Fig-of-8"
           : pattern <= 0.375 ? "Hyper-Card."
           : pattern <= 0.625 ? "Cardioid"
           : pattern <= 0.875 ? "Sub-Card."
                              : "Omni.";
}

// words[value - first] when value names one of the words, else null.
template <std::size_t N>
constexpr const char* wordOf(const char* const (&words)[N], int value, int first = 0) {
    return value >= first && value - first < static_cast<int>(N) ? words[value - first] : nullptr;
}

inline void writeText(char* text, const char* word) { std::snprintf(text, kTextRoom, "%s", word); }

// The text a host shows for a parameter whose engine field holds `real` (for
// continuous kinds) or `selector` (for choices and the crossover). Writes
// nothing for a choice outside the listed ones.
inline void formatDisplay(Kind kind, double real, int selector, char* text) {
    const char* word = nullptr;
    switch (kind) {
    case Kind::Angle:
    case Kind::Width: std::snprintf(text, kTextRoom, "%.1f\u00B0", real); return;
    case Kind::Zoom: std::snprintf(text, kTextRoom, "%.1f%%", real); return;
    case Kind::Gain: std::snprintf(text, kTextRoom, "%.2fdB", real); return;
    case Kind::Crossover: std::snprintf(text, kTextRoom, "%dHz", selector); return;
    case Kind::Ambience:
        if (real > kAmbienceThreshold)
            std::snprintf(text, kTextRoom, "%.2fdB", real);
        else
            writeText(text, "Off");
        return;
    case Kind::Pattern: word = patternWord(real); break;
    case Kind::ZoomMethod: word = wordOf(kZoomMethodWords, selector); break;
    case Kind::PairMode: word = wordOf(kPairModeWords, selector); break;
    case Kind::Order: word = wordOf(kChannelOrderWords, selector); break;
    case Kind::Layout: word = wordOf(kLayoutWords, selector, kStereoLayout); break;
    case Kind::Input: word = wordOf(kInputWords, selector); break;
    case Kind::Switch: word = wordOf(kSwitchWords, selector); break;
    case Kind::Output: word = wordOf(kOutputWords, selector); break;
    case Kind::Tracking: word = wordOf(kTrackingWords, selector); break;
    }
    if (word) writeText(text, word);
}

}  // namespace sorvane
