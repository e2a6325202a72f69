// What every panel of the editor holds, column by column, and where each
// piece goes. The editor builds and clears its panels by walking these
// tables; the artwork and editor tests find the controls and labels by them.
// Places follow the artwork: each is computed from the sizes of the bitmaps
// the editor draws, so other artwork moves the controls with it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "CRect.h"
#include "SorvaneProtocol.h"

namespace panels {

// The editor's pictures, and the files they are drawn from.
enum Art {
    k360Knob,
    kRedKnob,
    kBlueKnob,
    kRedBlueKnob,
    kBlueRedKnob,
    kMode2Switch,
    kMode2bSwitch,
    kMode4Switch,
    kMode5Switch,
    kInputSwitch,
    kOnOffSwitch,
    kScaleSwitch,
    kTransformsArt,
    kZoomArt,
    kControlsArt,
    kControls2Art,
    kPlotArt,
    kNameArt,
    kArtCount
};
inline constexpr const char* kArtFiles[kArtCount] = {
    "360_knob.png",    "red_knob.png",   "blue_knob.png",  "red_blue_knob.png", "blue_red_knob.png", "mode2_knob.png",
    "mode2b_knob.png", "mode4_knob.png", "mode5_knob.png", "input_switch.png",  "onoff_switch.png",  "scale_switch.png",
    "transforms.png",  "zoom.png",       "controls.png",   "controls2.png",     "plot.png",          "my_name.png"};

struct Size {
    double width = 0, height = 0;
};
// Sizes by Art; a picture not loaded yet may stay 0 x 0 where no place needs it.
using ArtSizes = std::array<Size, kArtCount>;

constexpr int kKnobFrames = 281;
// Positions of a switch strip: one frame per position, stacked vertically.
constexpr int switchPositions(Art strip) {
    switch (strip) {
    case kMode4Switch: return 4;
    case kMode5Switch: return 5;
    case kInputSwitch: return sorvane::kInputFormats;
    case kScaleSwitch: return sorvane::kScaleChoices;
    default: return 2;
    }
}

enum class Control { Knob, Switch };
constexpr int kNoSlot = -1;  // the fixed panels keep no caption fields

// One column: its control, the parameter it sets (its tag), the strip it
// shows, the strip whose height gives the frame height (knobs only), its
// caption and the caption field it is kept in. Each column also has a
// value label, the one standing for its tag.
struct Column {
    Control kind;
    std::int32_t tag;
    Art strip;
    Art heightStrip;
    const char* caption;
    int captionSlot;
};

// How a row starts and steps; see rowStart in PanelTables.cpp.
enum class RowShape { Transforms, Zoom, Settings, Main, UpperAfterSwitch, UpperFromEdge, SettingsStrip };
// The step between a row's two groups.
enum class Gap { None, Ambience, Surround };

struct Row {
    RowShape shape;
    std::span<const Column> first;
    Gap gap = Gap::None;
    std::span<const Column> second = {};
};

enum class Place { Transforms, Zoom, Settings, Stereo, Layout, Name };

struct Panel {
    Place place;  // where its background and title go
    Art art;
    const char* title;  // null for none
    Row main;
    Row upper = {RowShape::Main, {}};  // with a second background when it has columns
    // The settings panel adds its title after the value labels, the others before.
    bool titleAfterValues = false;
    // All layouts but stereo are cleared with the front mode switch after
    // the two front knobs.
    bool frontSwitchClearedLate = true;
};

using enum Control;

// clang-format off
// Each row: kind, tag, strip, strip giving the frame height, caption, caption slot.
inline constexpr Column kTransformColumns[] = {
    {Knob,   kRotate,           k360Knob,      k360Knob,      "Rotate",     kNoSlot},
    {Knob,   kTilt,             k360Knob,      k360Knob,      "Tilt",       kNoSlot},
    {Knob,   kTumble,           k360Knob,      k360Knob,      "Tumble",     kNoSlot}};
inline constexpr Column kZoomColumns[] = {
    {Switch, kZoomMethod,       kMode4Switch,  kMode4Switch,  "Zoom Type",  kNoSlot},
    {Knob,   kZoom,             kRedBlueKnob,  kRedBlueKnob,  "Zoom",       kNoSlot}};
inline constexpr Column kSettingsColumns[] = {
    {Switch, kDecodeMode,       kMode5Switch,  kMode5Switch,  "Decoding",   kNoSlot},
    {Switch, kChannelOrder,     kMode2bSwitch, kMode2bSwitch, "Channels",   kNoSlot}};
// The first three columns of every layout.
inline constexpr Column kFrontColumns[] = {
    {Switch, kFrontMode,        kMode2Switch,  kMode2Switch,  "Mode",       0},
    {Knob,   kFrontWidth,       kRedKnob,      kRedKnob,      "Width",      1},
    {Knob,   kFrontPattern,     kBlueKnob,     kBlueKnob,     "Pattern",    2}};
// Stereo and 2.1.
inline constexpr Column kAmbienceColumns[] = {
    {Knob,   kRearVerb,         kRedKnob,      kRedBlueKnob,  "RearVerb",   3},
    {Knob,   kHiVerb,           kBlueKnob,     kRedBlueKnob,  "HiVerb",     4}};
// Quad, 5.0 and 5.1: width is shown before pattern.
inline constexpr Column kSurroundColumns[] = {
    {Switch, kSurroundMode,     kMode2Switch,  kMode2Switch,  "SurMode",    5},
    {Knob,   kSurroundWidth,    kRedKnob,      kRedBlueKnob,  "SurWidth",   6},
    {Knob,   kSurroundPattern,  kBlueKnob,     kBlueKnob,     "SurPattern", 7},
    {Knob,   kSurroundGain,     kBlueRedKnob,  kBlueKnob,     "SurGain",    8}};
// The upper rows: centre (5.0), sub-woofer (2.1), both (5.1).
inline constexpr Column kCentreAndSubColumns[] = {
    {Knob,   kCentrePattern,    kBlueKnob,     kRedBlueKnob,  "CtrPattern", 9},
    {Knob,   kCentreGain,       kBlueRedKnob,  kRedBlueKnob,  "CtrGain",    10},
    {Knob,   kSubGain,          kBlueRedKnob,  kRedBlueKnob,  "SubGain",    11},
    {Knob,   kSubCrossover,     kBlueKnob,     kRedBlueKnob,  "xOver",      12}};
// The settings strip along the name panel, between the bit-mode and version
// lines and the product's mark: five places of one size, left to right, one
// for each setting in the order they came, named by the caption it carries.
// A setting fills its place by adding its column below (in place order); a
// place stays where it is whichever of the others are built.
inline constexpr const char* kStripPlaces[] = {"Input", "Smoothing", "Output", "Tracking", "Scale"};
inline constexpr Column kStripColumns[] = {
    {Switch, kInput,            kInputSwitch,  kInputSwitch,  "Input",      kNoSlot},
    {Switch, kSmoothing,        kOnOffSwitch,  kOnOffSwitch,  "Smoothing",  kNoSlot},
    {Switch, kOutput,           kOnOffSwitch,  kOnOffSwitch,  "Output",     kNoSlot},
    {Switch, kTracking,         kOnOffSwitch,  kOnOffSwitch,  "Tracking",   kNoSlot}};
// clang-format on
// The editor's own size switch stands in the last place: no parameter's
// column, since the editor's size is no parameter.
inline constexpr int kScalePlace = 4;
static_assert(std::string_view(kStripPlaces[kScalePlace]) == "Scale");
inline constexpr std::span<const Column> kCentreColumns{kCentreAndSubColumns, 2};
inline constexpr std::span<const Column> kSubColumns{kCentreAndSubColumns + 2, 2};

// The place of a strip's column, -1 for none.
constexpr int stripPlaceOf(const Column& column) {
    for (std::size_t i = 0; i < std::size(kStripPlaces); ++i)
        if (std::string_view(kStripPlaces[i]) == column.caption) return static_cast<int>(i);
    return -1;
}
static_assert(
    [] {
        int last = -1;
        for (const Column& column : kStripColumns)
            if (const int place = stripPlaceOf(column); place > last)
                last = place;
            else
                return false;
        return true;
    }(),
    "each column of the settings strip has a place of its own, in place order");

inline constexpr Panel kTransformsPanel = {.place = Place::Transforms,
                                           .art = kTransformsArt,
                                           .title = "Transforms",
                                           .main = {RowShape::Transforms, kTransformColumns}};
inline constexpr Panel kZoomPanel = {
    .place = Place::Zoom, .art = kZoomArt, .title = "Zooming", .main = {RowShape::Zoom, kZoomColumns}};
inline constexpr Panel kSettingsPanel = {.place = Place::Settings,
                                         .art = kZoomArt,
                                         .title = "Settings",
                                         .main = {RowShape::Settings, kSettingsColumns},
                                         .titleAfterValues = true};

inline constexpr Row kAmbienceMainRow = {RowShape::Main, kFrontColumns, Gap::Ambience, kAmbienceColumns};
inline constexpr Row kSurroundMainRow = {RowShape::Main, kFrontColumns, Gap::Surround, kSurroundColumns};
inline constexpr Panel kStereoPanel = {.place = Place::Stereo,
                                       .art = kControlsArt,
                                       .title = "Stereo Decoding & Reverb",
                                       .main = kAmbienceMainRow,
                                       .frontSwitchClearedLate = false};
inline constexpr Panel kTwoOnePanel = {.place = Place::Layout,
                                       .art = kControlsArt,
                                       .title = "2.1 Decoding & Reverb",
                                       .main = kAmbienceMainRow,
                                       .upper = {RowShape::UpperAfterSwitch, kSubColumns}};
inline constexpr Panel kQuadPanel = {
    .place = Place::Layout, .art = kControlsArt, .title = "4.0 Decoding", .main = kSurroundMainRow};
inline constexpr Panel kFivePanel = {.place = Place::Layout,
                                     .art = kControlsArt,
                                     .title = "5.0 Decoding",
                                     .main = kSurroundMainRow,
                                     .upper = {RowShape::UpperAfterSwitch, kCentreColumns}};
inline constexpr Panel kFiveOnePanel = {.place = Place::Layout,
                                        .art = kControlsArt,
                                        .title = "5.1 Decoding",
                                        .main = kSurroundMainRow,
                                        .upper = {RowShape::UpperFromEdge, kCentreAndSubColumns}};

// The name panel's picture with the settings strip; its text lines are
// drawn by the editor at nameLines.
inline constexpr Panel kNamePanel = {
    .place = Place::Name, .art = kNameArt, .title = nullptr, .main = {RowShape::SettingsStrip, kStripColumns}};

inline constexpr const Panel* kFixedPanels[] = {&kTransformsPanel, &kZoomPanel, &kSettingsPanel, &kNamePanel};
// The panel of a layout (kStereoLayout .. kFiveOneLayout), null for others.
constexpr const Panel* layoutPanel(int layout) {
    constexpr const Panel* byLayout[] = {&kStereoPanel, &kTwoOnePanel, &kQuadPanel, &kFivePanel, &kFiveOnePanel};
    return sorvane::isSelectableLayout(layout) ? byLayout[layout - sorvane::kStereoLayout] : nullptr;
}

constexpr bool hasUpperRow(const Panel& panel) { return !panel.upper.first.empty(); }
// The layout panels come and go with the layout; the fixed ones stay.
constexpr bool isLayoutPanel(const Panel& panel) {
    return panel.place == Place::Stereo || panel.place == Place::Layout;
}

// Calls f with each column of a row, left to right.
template <class F>
void forEachColumn(const Row& row, F f) {
    for (const Column& column : row.first) f(column);
    for (const Column& column : row.second) f(column);
}
// Main row first, then the upper row.
template <class F>
void forEachColumn(const Panel& panel, F f) {
    forEachColumn(panel.main, f);
    forEachColumn(panel.upper, f);
}

// Where a column's pieces go.
struct ColumnPlaces {
    Column column;
    CRect control, caption, value;
};
struct PanelPlaces {
    CRect background, background2, title;  // background2 empty without an upper row
    std::vector<ColumnPlaces> columns;     // main row, then the upper row
};

// The places of a panel's pieces for artwork of the given sizes (the
// strips, the panel's picture and, with an upper row, "controls2.png").
PanelPlaces placesOf(const Panel& panel, const ArtSizes& sizes);
// The polar plot lies over its grid picture.
CRect plotArea(const ArtSizes& sizes);

// Where place i of the settings strip puts a column's pieces, built or not;
// every setting's switch strip has frames of the input switch's size.
struct PiecePlaces {
    CRect control, caption, value;
};
PiecePlaces stripPlace(int place, const ArtSizes& sizes);
// The name panel's text lines on its left.
struct NameLines {
    CRect bitMode, version, headphones;  // the last only while headphones cannot play as asked
};
NameLines nameLines();

}  // namespace panels
