// The editor's life: creation with the effect, open into the host's
// window, close, the name panel with its settings strip and the suspended
// overlay.
#include <cstdio>

#include "CBitmap.h"
#include "CFrame.h"
#include "CTextLabel.h"
#include "EditorScale.h"
#include "MyEditor.h"
#include "SorvaneProtocol.h"
#include "polarPlot.h"

namespace {
using sorvane::kVersion;
constexpr CColor kFrameColour(23, 25, 26, 255);
constexpr CColor kOverlayBack(23, 25, 26, 200);
}  // namespace

MyEditor::MyEditor(sorvane::EditorLink* link) : link(link) {
    sizeRectFor(1.0);
    // No display connection, bitmap or view yet: hosts that only scan
    // plug-ins pay nothing for the editor.
}

MyEditor::~MyEditor() {
    // A host may delete the effect with the editor still open.
    if (frame) close();
}

bool MyEditor::open(void* ptr) {
    // A host that opens twice without closing gets one editor, not two.
    if (frame) close();
    pending.discard();
    appliedRunState = 0;
    editorThread.store(std::this_thread::get_id());

    knob360Bitmap = new CBitmap("360_knob.png");
    redKnobBitmap = new CBitmap("red_knob.png");
    blueKnobBitmap = new CBitmap("blue_knob.png");
    redBlueKnobBitmap = new CBitmap("red_blue_knob.png");
    blueRedKnobBitmap = new CBitmap("blue_red_knob.png");
    mode2KnobBitmap = new CBitmap("mode2_knob.png");
    mode2bKnobBitmap = new CBitmap("mode2b_knob.png");
    mode4KnobBitmap = new CBitmap("mode4_knob.png");
    mode5KnobBitmap = new CBitmap("mode5_knob.png");
    inputSwitchBitmap = new CBitmap("input_switch.png");
    onOffSwitchBitmap = new CBitmap("onoff_switch.png");
    scaleSwitchBitmap = new CBitmap("scale_switch.png");

    frameSize = CRect(0, 0, editor_scale::kFrameWidth, editor_scale::kFrameHeight);
    // Off-screen (no parent window) the frame is drawn at whatever scale its
    // context has; on screen at the editor's.
    desktop = ptr ? readDesktop() : Desktop{};
    lastHostFactor = link->hostScaleFactor();
    lastChoice = link->editorScaleChoice();
    const double scale = ptr ? currentScale() : 1.0;
    sizeRectFor(scale);
    CFrame* newFrame = new CFrame(frameSize, ptr, this, scale);
    newFrame->setBackgroundColor(kFrameColour);
    newFrame->setDirty(true);

    whiteColor = CColor(255, 255, 255, 255);
    greyColor = CColor(94, 102, 106, 255);
    blueColor = CColor(82, 116, 193, 255);
    clearColor = CColor(0, 0, 0, 0);

    transformsDisplay(newFrame);
    zoomDisplay(newFrame);
    plotDisplay(newFrame);
    settingsDisplay(newFrame);
    nameDisplay(newFrame);

    frame = newFrame;
    // From here changes from other threads are queued; anything they change
    // after this point is either queued or already in the values read below.
    accepting.store(true);

    plot->fiveDecoderType = static_cast<int>(link->getParameter(kFiveDecoderType));
    for (VstInt32 i = kRotate; i <= kZoomMethod; ++i) loadFromEffect(i);
    loadFromEffect(kDecodeMode);
    loadFromEffect(kChannelOrder);
    panels::forEachColumn(panels::kNamePanel, [this](const panels::Column& column) { loadFromEffect(column.tag); });
    showScaleChoice();
    // The first frame goes up now: the window is never black until the first idle.
    frame->redraw();
    return true;
}

void MyEditor::close() {
    accepting.store(false);
    for (CBitmap** strip :
         {&knob360Bitmap, &redKnobBitmap, &blueKnobBitmap, &redBlueKnobBitmap, &blueRedKnobBitmap, &mode2KnobBitmap,
          &mode2bKnobBitmap, &mode4KnobBitmap, &mode5KnobBitmap, &inputSwitchBitmap, &onOffSwitchBitmap,
          &scaleSwitchBitmap}) {
        if (*strip) (*strip)->forget();
        *strip = nullptr;
    }
    if (CFrame* closing = frame) {
        frame = nullptr;
        closing->forget();  // closes the window and its display connection
    }
    // The references the fixed panels kept for themselves.
    for (CView** kept : {&transformsBackground, &zoomBackground, &plotBackground}) {
        if (*kept) (*kept)->forget();
        *kept = nullptr;
    }
    if (plot) plot->forget();
    if (plotBitmap) plotBitmap->forget();
    plotBitmap = nullptr;

    // Every view went with the frame: no field may point at one any more.
    plot = nullptr;
    for (CControl*& control : paramControl) control = nullptr;
    for (CTextLabel*& caption : captionLabels) caption = nullptr;
    rotateKnob = tiltKnob = tumbleKnob = zoomKnob = nullptr;
    widthKnob = patternKnob = rearVerbKnob = hiVerbKnob = nullptr;
    ctrPatternKnob = ctrGainKnob = subGainKnob = xOverKnob = nullptr;
    surPatternKnob = surWidthKnob = surGainKnob = nullptr;
    zoomMethodSwitch = modeSwitch = surModeSwitch = decModeSwitch = chOrderSwitch = inputSwitch = smoothingSwitch =
        outputSwitch = trackingSwitch = scaleSwitch = nullptr;
    panelBackground = panelBackground2 = nullptr;
    for (CTextLabel** label :
         {&modeValueLabel,    &widthValueLabel,     &patternValueLabel,    &rotateValueLabel,   &tiltValueLabel,
          &tumbleValueLabel,  &zoomValueLabel,      &zoomMethodValueLabel, &rearVerbValueLabel, &hiVerbValueLabel,
          &surModeValueLabel, &surWidthValueLabel,  &surPatternValueLabel, &surGainValueLabel,  &ctrPatternValueLabel,
          &ctrGainValueLabel, &subGainValueLabel,   &xOverValueLabel,      &decModeValueLabel,  &chOrderValueLabel,
          &inputValueLabel,   &smoothingValueLabel, &outputValueLabel,     &trackingValueLabel, &panelTitle,         &suspendedLabel,
          &hellerLabel1,      &hellerLabel2,        &scaleValueLabel})
        *label = nullptr;

    pending.discard();
    editorThread.store(std::thread::id());
}

// The name panel: the bit-mode and version lines on the left, then the
// settings strip, walked like the other fixed panels' tables.
void MyEditor::nameDisplay(CFrame* newFrame) {
    nameBitmap = new CBitmap("my_name.png");
    const panels::PanelPlaces places = panels::placesOf(panels::kNamePanel, artSizes(panels::kNamePanel, nameBitmap));
    handToFrame(newFrame, makeBackground(nameBitmap, places.background));

    const panels::NameLines lines = panels::nameLines();
    captionRect = lines.version;
    char text[64];
    auto* versionLabel = new CTextLabel(captionRect, nullptr, nullptr, 0);
    std::snprintf(text, sizeof text, "Version: %d.%d.%d.%d", kVersion[0], kVersion[1], kVersion[2], kVersion[3]);
    versionLabel->setText(text);
    versionLabel->setFont(kNormalFontSmall);
    versionLabel->setFontColor(blueColor);
    versionLabel->setHoriAlign(kLeftText);
    versionLabel->setBackColor(clearColor);
    versionLabel->setFrameColor(clearColor);
    handToFrame(newFrame, versionLabel);

    // Said where the user looks when headphones sound unlike the file chosen;
    // `sorvane info` gives the reason.
    if (const int state = link->headphoneState(); state != sorvane::EditorLink::kHeadphonesAsAsked) {
        auto* note = new CTextLabel(lines.headphones, nullptr, nullptr, 0);
        note->setText(state == sorvane::EditorLink::kHeadphonesPanning ? "No HRTF: panning" : "HRTF file refused");
        note->setFont(kNormalFontSmall);
        note->setFontColor(CColor(230, 120, 60, 255));
        note->setHoriAlign(kLeftText);
        note->setBackColor(clearColor);
        note->setFrameColor(clearColor);
        handToFrame(newFrame, note);
    }

    captionRect = lines.bitMode;
    auto* bitModeLabel = new CTextLabel(captionRect, nullptr, nullptr, 0);
    std::snprintf(text, sizeof text, "Bit Mode: %d", static_cast<int>(link->getParameter(kBitMode)));
    bitModeLabel->setText(text);
    bitModeLabel->setFont(kNormalFontSmall);
    bitModeLabel->setFontColor(blueColor);
    bitModeLabel->setHoriAlign(kLeftText);
    bitModeLabel->setBackColor(clearColor);
    bitModeLabel->setFrameColor(clearColor);
    handToFrame(newFrame, bitModeLabel);

    addColumns(newFrame, panels::kNamePanel, places);
    scaleDisplay(newFrame);
    nameBitmap->forget();
    nameBitmap = nullptr;
}

void MyEditor::suspendDisplay() {
    suspendedLabel = new CTextLabel(frameSize, nullptr, nullptr, 1);
    suspendedLabel->setBackColor(kOverlayBack);
    suspendedLabel->setFont(kNormalFontVeryBig);
    suspendedLabel->setFontColor(CColor(255, 255, 255, 255));
    suspendedLabel->setText("Currently Suspended");
    // Added last, it lies over every panel. An earlier overlay, if any,
    // stays: only the latest one is taken away by a resume.
    handToFrame(getFrame(), suspendedLabel);
}
