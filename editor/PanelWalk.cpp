// Panels made and taken apart by walking their tables (PanelTables.h):
// controls row by row, then captions, title and value labels, each column's
// pieces kept in the fields that stand for its parameter. A clear routine
// walks the same table through the same fields.
#include <array>

#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"

using namespace panels;

const MyEditor::ColumnFields& MyEditor::fieldsOf(int32_t tag) {
    static constexpr auto table = [] {
        using E = MyEditor;
        std::array<ColumnFields, kNumControls> t{};
        t[kRotate] = {&E::rotateKnob, nullptr, &E::rotateValueLabel};
        t[kTilt] = {&E::tiltKnob, nullptr, &E::tiltValueLabel};
        t[kTumble] = {&E::tumbleKnob, nullptr, &E::tumbleValueLabel};
        t[kZoom] = {&E::zoomKnob, nullptr, &E::zoomValueLabel};
        t[kZoomMethod] = {nullptr, &E::zoomMethodSwitch, &E::zoomMethodValueLabel};
        t[kFrontMode] = {nullptr, &E::modeSwitch, &E::modeValueLabel};
        t[kFrontWidth] = {&E::widthKnob, nullptr, &E::widthValueLabel};
        t[kFrontPattern] = {&E::patternKnob, nullptr, &E::patternValueLabel};
        t[kRearVerb] = {&E::rearVerbKnob, nullptr, &E::rearVerbValueLabel};
        t[kHiVerb] = {&E::hiVerbKnob, nullptr, &E::hiVerbValueLabel};
        t[kCentrePattern] = {&E::ctrPatternKnob, nullptr, &E::ctrPatternValueLabel};
        t[kCentreGain] = {&E::ctrGainKnob, nullptr, &E::ctrGainValueLabel};
        t[kSubGain] = {&E::subGainKnob, nullptr, &E::subGainValueLabel};
        t[kSubCrossover] = {&E::xOverKnob, nullptr, &E::xOverValueLabel};
        t[kSurroundMode] = {nullptr, &E::surModeSwitch, &E::surModeValueLabel};
        t[kSurroundPattern] = {&E::surPatternKnob, nullptr, &E::surPatternValueLabel};
        t[kSurroundWidth] = {&E::surWidthKnob, nullptr, &E::surWidthValueLabel};
        t[kSurroundGain] = {&E::surGainKnob, nullptr, &E::surGainValueLabel};
        t[kDecodeMode] = {nullptr, &E::decModeSwitch, &E::decModeValueLabel};
        t[kChannelOrder] = {nullptr, &E::chOrderSwitch, &E::chOrderValueLabel};
        t[kInput] = {nullptr, &E::inputSwitch, &E::inputValueLabel};
        t[kSmoothing] = {nullptr, &E::smoothingSwitch, &E::smoothingValueLabel};
        t[kOutput] = {nullptr, &E::outputSwitch, &E::outputValueLabel};
        t[kTracking] = {nullptr, &E::trackingSwitch, &E::trackingValueLabel};
        return t;
    }();
    return table[static_cast<std::size_t>(tag)];
}

CBitmap* MyEditor::stripOf(Art strip) const {
    static constexpr CBitmap* MyEditor::*strips[] = {
        &MyEditor::knob360Bitmap,     &MyEditor::redKnobBitmap,     &MyEditor::blueKnobBitmap,
        &MyEditor::redBlueKnobBitmap, &MyEditor::blueRedKnobBitmap, &MyEditor::mode2KnobBitmap,
        &MyEditor::mode2bKnobBitmap,  &MyEditor::mode4KnobBitmap,   &MyEditor::mode5KnobBitmap,
        &MyEditor::inputSwitchBitmap, &MyEditor::onOffSwitchBitmap, &MyEditor::scaleSwitchBitmap};
    static_assert(std::size(strips) == kTransformsArt, "one field per strip, in Art order");
    return this->*strips[strip];
}

// The strips loaded by open, the panel's own picture and its upper one.
ArtSizes MyEditor::artSizes(const Panel& panel, const CBitmap* art, const CBitmap* art2) const {
    ArtSizes sizes{};
    for (int strip = 0; strip < kTransformsArt; ++strip)
        if (const CBitmap* bitmap = stripOf(static_cast<Art>(strip)))
            sizes[strip] = {bitmap->getWidth(), bitmap->getHeight()};
    sizes[panel.art] = {art->getWidth(), art->getHeight()};
    if (art2) sizes[kControls2Art] = {art2->getWidth(), art2->getHeight()};
    return sizes;
}

// Controls (registered under their tags), captions, title (if any) and
// value labels in that order (the settings panel's title last), each handed
// to the frame, which keeps the only reference.
void MyEditor::addColumns(CFrame* target, const Panel& panel, const PanelPlaces& places) {
    for (const ColumnPlaces& place : places.columns) {
        const Column& column = place.column;
        const ColumnFields& fields = fieldsOf(column.tag);
        controlRect = place.control;
        CControl* control;
        if (column.kind == Control::Knob)
            control = this->*fields.knob = makeKnob(column.tag, stripOf(column.strip), stripOf(column.heightStrip));
        else
            control = this->*fields.toggle =
                          makeSwitch(column.tag, stripOf(column.strip), switchPositions(column.strip));
        handToFrame(target, control);
        paramControl[column.tag] = control;
    }
    for (const ColumnPlaces& place : places.columns) {
        captionRect = place.caption;
        CTextLabel* caption = makeCaption(place.column.caption);
        if (place.column.captionSlot != kNoSlot) captionLabels[place.column.captionSlot] = caption;
        handToFrame(target, caption);
    }
    auto addTitle = [&] {
        if (!panel.title) return;
        CTextLabel* title = makeTitle(panel.title, places.title);
        if (isLayoutPanel(panel)) panelTitle = title;
        handToFrame(target, title);
    };
    if (!panel.titleAfterValues) addTitle();
    for (const ColumnPlaces& place : places.columns) {
        valueRect = place.value;
        CTextLabel*& label = this->*fieldsOf(place.column.tag).valueLabel;
        label = makeValueLabel();
        handToFrame(target, label);
    }
    if (panel.titleAfterValues) addTitle();
}

// The backgrounds ("controls.png", and "controls2.png" under an upper row),
// then the columns; the panel pictures are released at the end, the
// background views keeping their own references.
void MyEditor::buildLayoutPanel(const Panel& panel) {
    panelBitmap = new CBitmap("controls.png");
    if (hasUpperRow(panel)) panelBitmap2 = new CBitmap("controls2.png");
    const PanelPlaces places = placesOf(panel, artSizes(panel, panelBitmap, panelBitmap2));
    panelBackground = makeBackground(panelBitmap, places.background);
    handToFrame(getFrame(), panelBackground);
    if (panelBitmap2) {
        panelBackground2 = makeBackground(panelBitmap2, places.background2);
        handToFrame(getFrame(), panelBackground2);
    }
    addColumns(getFrame(), panel, places);
    panelBitmap->forget();
    if (panelBitmap2) panelBitmap2->forget();
    panelBitmap = panelBitmap2 = nullptr;
}

void MyEditor::clearControl(const Column& column) {
    const ColumnFields& fields = fieldsOf(column.tag);
    if (column.kind == Control::Knob)
        removeFromFrame(this->*fields.knob);
    else
        removeFromFrame(this->*fields.toggle);
}

// Title, captions, value labels, controls, backgrounds; then the controls
// leave paramControl.
void MyEditor::clearLayoutPanel(const Panel& panel) {
    removeFromFrame(panelTitle);
    forEachColumn(panel, [&](const Column& column) { removeFromFrame(captionLabels[column.captionSlot]); });
    forEachColumn(panel, [&](const Column& column) { removeFromFrame(this->*fieldsOf(column.tag).valueLabel); });
    const std::span<const Column> front = panel.main.first;
    if (panel.frontSwitchClearedLate) {
        for (const Column* column : {&front[1], &front[2], &front[0]}) clearControl(*column);
        for (const Column& column : panel.main.second) clearControl(column);
        forEachColumn(panel.upper, [&](const Column& column) { clearControl(column); });
    } else {
        forEachColumn(panel, [&](const Column& column) { clearControl(column); });
    }
    removeFromFrame(panelBackground);
    if (hasUpperRow(panel)) removeFromFrame(panelBackground2);
    forEachColumn(panel, [&](const Column& column) { paramControl[column.tag] = nullptr; });
}
