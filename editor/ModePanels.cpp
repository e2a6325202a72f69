// The panel of the speaker layout in force, along the bottom of the window
// (with a second area above it on the left for 2.1, 5.0 and 5.1), and the
// dark Heller overlay for the two fixed 5.x matrices. Each builder has a
// clear routine that removes exactly the views it added and forgets them.
#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "polarPlot.h"

namespace {
constexpr CColor kHellerBack(23, 25, 26, 200);
}  // namespace

// ---- pieces shared by the builders ----

void MyEditor::addKnob(CAnimKnob*& field, int32_t tag, CBitmap* strip, CBitmap* heightStrip) {
    field = makeKnob(tag, strip, heightStrip);
    handToFrame(getFrame(), field);
}

void MyEditor::addTwoWaySwitch(CHorizontalSwitch*& field, int32_t tag) {
    field = makeTwoWaySwitch(tag);
    handToFrame(getFrame(), field);
}

void MyEditor::addCaption(int slot, const char* text) {
    captionLabels[slot] = makeCaption(text);
    handToFrame(getFrame(), captionLabels[slot]);
}

void MyEditor::addValueLabel(CTextLabel*& field) {
    field = makeValueLabel();
    handToFrame(getFrame(), field);
}

void MyEditor::addTitle(const char* text, const CRect& where) {
    panelTitle = makeTitle(text, where);
    handToFrame(getFrame(), panelTitle);
}

void MyEditor::loadPanelBitmaps(bool withSecondArea) {
    panelBitmap = new CBitmap("controls.png");
    if (withSecondArea) panelBitmap2 = new CBitmap("controls2.png");
}

void MyEditor::releasePanelBitmaps() {
    // The background views keep their own references.
    if (panelBitmap) panelBitmap->forget();
    if (panelBitmap2) panelBitmap2->forget();
    panelBitmap = panelBitmap2 = nullptr;
}

void MyEditor::addBackgrounds(double top) {
    panelBackground = makeBackground(panelBitmap, 12, top);
    handToFrame(getFrame(), panelBackground);
    if (panelBitmap2) {
        panelBackground2 = makeBackground(panelBitmap2, 49, 150);
        handToFrame(getFrame(), panelBackground2);
    }
}

void MyEditor::startMainRow() {
    const double wm = mode2KnobBitmap->getWidth();
    const double wrb = redBlueKnobBitmap->getWidth();
    controlRect = CRect(0, 0, wm, mode2KnobBitmap->getHeight() / 2);
    controlRect.offset(24, 326);
    captionRect = CRect(24, 308, 24 + wrb, 323);
    valueRect = CRect(24, 393, 24 + wrb, 408);
}

void MyEditor::startSecondRow(double left, double labelWidth) {
    const double wm = mode2KnobBitmap->getWidth();
    controlRect = CRect(0, 0, wm, mode2KnobBitmap->getHeight() / 2);
    controlRect.offset(left, 188);
    captionRect = CRect(left, 170, left + labelWidth, 185);
    valueRect = CRect(left, 255, left + labelWidth, 270);
}

double MyEditor::controlStep() const { return mode2KnobBitmap->getWidth() + 12; }
double MyEditor::labelStep() const { return redBlueKnobBitmap->getWidth() + 12; }

// Front mode, width and pattern: the first three columns of every layout.
void MyEditor::frontControls() {
    addTwoWaySwitch(modeSwitch, 5);
    advance(controlRect, controlStep());
    addKnob(widthKnob, 6, redKnobBitmap, redKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(patternKnob, 7, blueKnobBitmap, blueKnobBitmap);
}

void MyEditor::frontCaptions() {
    addCaption(0, "Mode");
    advance(captionRect, labelStep());
    addCaption(1, "Width");
    advance(captionRect, labelStep());
    addCaption(2, "Pattern");
}

void MyEditor::frontValueLabels() {
    addValueLabel(modeValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(widthValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(patternValueLabel);
}

// Rear and height ambience, after a wide gap (stereo and 2.1).
void MyEditor::reverbControls() {
    advance(controlRect, 2 * mode2KnobBitmap->getWidth() + 34);
    addKnob(rearVerbKnob, 8, redKnobBitmap, redBlueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(hiVerbKnob, 9, blueKnobBitmap, redBlueKnobBitmap);
}

void MyEditor::reverbCaptions() {
    advance(captionRect, 2 * mode2KnobBitmap->getWidth() + 34);
    addCaption(3, "RearVerb");
    advance(captionRect, labelStep());
    addCaption(4, "HiVerb");
}

void MyEditor::reverbValueLabels() {
    advance(valueRect, 2 * mode2KnobBitmap->getWidth() + 34);
    addValueLabel(rearVerbValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(hiVerbValueLabel);
}

// The surround group of quad, 5.0 and 5.1: width is shown before pattern.
void MyEditor::surroundControls() {
    advance(controlRect, mode2KnobBitmap->getWidth() + 22);
    addTwoWaySwitch(surModeSwitch, 14);
    advance(controlRect, controlStep());
    addKnob(surWidthKnob, 16, redKnobBitmap, redBlueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(surPatternKnob, 15, blueKnobBitmap, blueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(surGainKnob, 17, blueRedKnobBitmap, blueKnobBitmap);
}

void MyEditor::surroundCaptions() {
    advance(captionRect, mode2KnobBitmap->getWidth() + 22);
    addCaption(5, "SurMode");
    advance(captionRect, labelStep());
    addCaption(6, "SurWidth");
    advance(captionRect, labelStep());
    addCaption(7, "SurPattern");
    advance(captionRect, labelStep());
    addCaption(8, "SurGain");
}

void MyEditor::surroundValueLabels() {
    advance(valueRect, mode2KnobBitmap->getWidth() + 22);
    addValueLabel(surModeValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(surWidthValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(surPatternValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(surGainValueLabel);
}

void MyEditor::registerFront() {
    paramControl[5] = modeSwitch;
    paramControl[6] = widthKnob;
    paramControl[7] = patternKnob;
}

void MyEditor::registerSurround() {
    paramControl[14] = surModeSwitch;
    paramControl[15] = surPatternKnob;
    paramControl[16] = surWidthKnob;
    paramControl[17] = surGainKnob;
}

// ---- the five layouts ----

void MyEditor::stereoDisplay() {
    loadPanelBitmaps(false);
    addBackgrounds(288);
    startMainRow();
    frontControls();
    reverbControls();
    frontCaptions();
    reverbCaptions();
    addTitle("Stereo Decoding & Reverb", CRect(12, 288, 12 + panelBitmap->getWidth(), 308));
    frontValueLabels();
    reverbValueLabels();
    registerFront();
    paramControl[8] = rearVerbKnob;
    paramControl[9] = hiVerbKnob;
    releasePanelBitmaps();
}

void MyEditor::twooneDisplay() {
    loadPanelBitmaps(true);
    const double wm = mode2KnobBitmap->getWidth();
    addBackgrounds(2 * panelBitmap->getHeight() + 36);
    startMainRow();
    frontControls();
    reverbControls();
    const CRect captionStart = captionRect, valueStart = valueRect;
    startSecondRow(wm + 73, wm);
    const CRect secondCaptions = captionRect, secondValues = valueRect;
    addKnob(subGainKnob, 12, blueRedKnobBitmap, redBlueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(xOverKnob, 13, blueKnobBitmap, redBlueKnobBitmap);

    captionRect = captionStart;
    frontCaptions();
    reverbCaptions();
    captionRect = secondCaptions;
    addCaption(11, "SubGain");
    advance(captionRect, labelStep());
    addCaption(12, "xOver");
    addTitle("2.1 Decoding & Reverb", CRect(49, 150, 49 + panelBitmap2->getWidth(), 170));

    valueRect = valueStart;
    frontValueLabels();
    reverbValueLabels();
    valueRect = secondValues;
    addValueLabel(subGainValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(xOverValueLabel);

    registerFront();
    paramControl[8] = rearVerbKnob;
    paramControl[9] = hiVerbKnob;
    paramControl[12] = subGainKnob;
    paramControl[13] = xOverKnob;
    releasePanelBitmaps();
}

void MyEditor::fourDisplay() {
    loadPanelBitmaps(false);
    addBackgrounds(2 * panelBitmap->getHeight() + 36);
    startMainRow();
    frontControls();
    surroundControls();
    frontCaptions();
    surroundCaptions();
    addTitle("4.0 Decoding", CRect(12, 288, 12 + panelBitmap->getWidth(), 308));
    frontValueLabels();
    surroundValueLabels();
    registerFront();
    registerSurround();
    releasePanelBitmaps();
}

// The centre row of 5.0 and 5.1 (pattern and gain), from wherever the row starts.
void MyEditor::centreControls() {
    addKnob(ctrPatternKnob, 10, blueKnobBitmap, redBlueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(ctrGainKnob, 11, blueRedKnobBitmap, redBlueKnobBitmap);
}

void MyEditor::fiveDisplay() {
    loadPanelBitmaps(true);
    const double wm = mode2KnobBitmap->getWidth();
    addBackgrounds(2 * panelBitmap->getHeight() + 36);
    startMainRow();
    frontControls();
    surroundControls();
    const CRect captionStart = captionRect, valueStart = valueRect;
    startSecondRow(wm + 73, wm);
    const CRect secondCaptions = captionRect, secondValues = valueRect;
    centreControls();

    captionRect = captionStart;
    frontCaptions();
    surroundCaptions();
    captionRect = secondCaptions;
    addCaption(9, "CtrPattern");
    advance(captionRect, labelStep());
    addCaption(10, "CtrGain");
    addTitle("5.0 Decoding", CRect(49, 150, 49 + panelBitmap2->getWidth(), 170));

    valueRect = valueStart;
    frontValueLabels();
    surroundValueLabels();
    valueRect = secondValues;
    addValueLabel(ctrPatternValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(ctrGainValueLabel);

    registerFront();
    paramControl[10] = ctrPatternKnob;
    paramControl[11] = ctrGainKnob;
    registerSurround();
    releasePanelBitmaps();
}

void MyEditor::fiveoneDisplay() {
    loadPanelBitmaps(true);
    const double wm = mode2KnobBitmap->getWidth();
    addBackgrounds(2 * panelBitmap->getHeight() + 36);
    startMainRow();
    frontControls();
    surroundControls();
    const CRect captionStart = captionRect, valueStart = valueRect;
    // Four columns: the row starts further left than the two-column rows.
    startSecondRow(61, wm);
    const CRect secondCaptions = captionRect, secondValues = valueRect;
    centreControls();
    advance(controlRect, controlStep());
    addKnob(subGainKnob, 12, blueRedKnobBitmap, redBlueKnobBitmap);
    advance(controlRect, controlStep());
    addKnob(xOverKnob, 13, blueKnobBitmap, redBlueKnobBitmap);

    captionRect = captionStart;
    frontCaptions();
    surroundCaptions();
    captionRect = secondCaptions;
    const char* secondNames[4] = {"CtrPattern", "CtrGain", "SubGain", "xOver"};
    for (int i = 0; i < 4; ++i) {
        if (i > 0) advance(captionRect, labelStep());
        addCaption(9 + i, secondNames[i]);
    }
    addTitle("5.1 Decoding", CRect(49, 150, 49 + panelBitmap2->getWidth(), 170));

    valueRect = valueStart;
    frontValueLabels();
    surroundValueLabels();
    valueRect = secondValues;
    addValueLabel(ctrPatternValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(ctrGainValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(subGainValueLabel);
    advance(valueRect, labelStep());
    addValueLabel(xOverValueLabel);

    registerFront();
    paramControl[10] = ctrPatternKnob;
    paramControl[11] = ctrGainKnob;
    paramControl[12] = subGainKnob;
    paramControl[13] = xOverKnob;
    registerSurround();
    releasePanelBitmaps();
}

// Over a 5.x panel when a fixed matrix decodes: the controls underneath stay.
void MyEditor::hellerDisplay() {
    auto makeOverlay = [this](CView* under) {
        auto* label = new CTextLabel(under ? under->getViewSize() : CRect(), nullptr, nullptr, 1);
        label->setBackColor(kHellerBack);
        label->setFont(kNormalFontVeryBig);
        label->setFontColor(CColor(255, 255, 255, 255));
        return label;
    };
    hellerLabel1 = makeOverlay(panelBackground);
    if (plot->fiveDecoderType == 2)
        hellerLabel1->setText("Heller 2 Decoder");
    else if (plot->fiveDecoderType == 1)
        hellerLabel1->setText("Heller 1 Decoder");
    handToFrame(getFrame(), hellerLabel1);
    hellerLabel2 = makeOverlay(panelBackground2);
    handToFrame(getFrame(), hellerLabel2);
}

// ---- tear-down: title, captions, value labels, controls, backgrounds ----

void MyEditor::forgetControls(std::initializer_list<int> indices) {
    for (int i : indices) paramControl[i] = nullptr;
}

void MyEditor::clearCaptions(std::initializer_list<int> slots) {
    for (int slot : slots) removeFromFrame(captionLabels[slot]);
}

void MyEditor::clearStereo() {
    removeFromFrame(panelTitle);
    clearCaptions({0, 1, 2, 3, 4});
    removeFromFrame(modeValueLabel);
    removeFromFrame(widthValueLabel);
    removeFromFrame(patternValueLabel);
    removeFromFrame(rearVerbValueLabel);
    removeFromFrame(hiVerbValueLabel);
    removeFromFrame(modeSwitch);
    removeFromFrame(widthKnob);
    removeFromFrame(patternKnob);
    removeFromFrame(rearVerbKnob);
    removeFromFrame(hiVerbKnob);
    removeFromFrame(panelBackground);
    forgetControls({5, 6, 7, 8, 9});
}

void MyEditor::clearTwoOne() {
    removeFromFrame(panelTitle);
    clearCaptions({0, 1, 2, 3, 4, 11, 12});
    removeFromFrame(modeValueLabel);
    removeFromFrame(widthValueLabel);
    removeFromFrame(patternValueLabel);
    removeFromFrame(rearVerbValueLabel);
    removeFromFrame(hiVerbValueLabel);
    removeFromFrame(subGainValueLabel);
    removeFromFrame(xOverValueLabel);
    removeFromFrame(widthKnob);
    removeFromFrame(patternKnob);
    removeFromFrame(modeSwitch);
    removeFromFrame(rearVerbKnob);
    removeFromFrame(hiVerbKnob);
    removeFromFrame(subGainKnob);
    removeFromFrame(xOverKnob);
    removeFromFrame(panelBackground);
    removeFromFrame(panelBackground2);
    forgetControls({5, 6, 7, 8, 9, 12, 13});
}

void MyEditor::clearSurroundPieces() {
    removeFromFrame(surModeSwitch);
    removeFromFrame(surWidthKnob);
    removeFromFrame(surPatternKnob);
    removeFromFrame(surGainKnob);
}

void MyEditor::clearFour() {
    removeFromFrame(panelTitle);
    clearCaptions({0, 1, 2, 5, 6, 7, 8});
    removeFromFrame(modeValueLabel);
    removeFromFrame(widthValueLabel);
    removeFromFrame(patternValueLabel);
    removeFromFrame(surModeValueLabel);
    removeFromFrame(surWidthValueLabel);
    removeFromFrame(surPatternValueLabel);
    removeFromFrame(surGainValueLabel);
    removeFromFrame(widthKnob);
    removeFromFrame(patternKnob);
    removeFromFrame(modeSwitch);
    clearSurroundPieces();
    removeFromFrame(panelBackground);
    forgetControls({5, 6, 7, 14, 15, 16, 17});
}

void MyEditor::clearFive() {
    removeFromFrame(panelTitle);
    clearCaptions({0, 1, 2, 5, 6, 7, 8, 9, 10});
    removeFromFrame(modeValueLabel);
    removeFromFrame(widthValueLabel);
    removeFromFrame(patternValueLabel);
    removeFromFrame(surModeValueLabel);
    removeFromFrame(surWidthValueLabel);
    removeFromFrame(surPatternValueLabel);
    removeFromFrame(surGainValueLabel);
    removeFromFrame(ctrPatternValueLabel);
    removeFromFrame(ctrGainValueLabel);
    removeFromFrame(widthKnob);
    removeFromFrame(patternKnob);
    removeFromFrame(modeSwitch);
    clearSurroundPieces();
    removeFromFrame(ctrPatternKnob);
    removeFromFrame(ctrGainKnob);
    removeFromFrame(panelBackground);
    removeFromFrame(panelBackground2);
    forgetControls({5, 6, 7, 10, 11, 14, 15, 16, 17});
}

void MyEditor::clearFiveOne() {
    removeFromFrame(panelTitle);
    clearCaptions({0, 1, 2, 5, 6, 7, 8, 9, 10, 11, 12});
    removeFromFrame(modeValueLabel);
    removeFromFrame(widthValueLabel);
    removeFromFrame(patternValueLabel);
    removeFromFrame(surModeValueLabel);
    removeFromFrame(surWidthValueLabel);
    removeFromFrame(surPatternValueLabel);
    removeFromFrame(surGainValueLabel);
    removeFromFrame(ctrPatternValueLabel);
    removeFromFrame(ctrGainValueLabel);
    removeFromFrame(subGainValueLabel);
    removeFromFrame(xOverValueLabel);
    removeFromFrame(widthKnob);
    removeFromFrame(patternKnob);
    removeFromFrame(modeSwitch);
    clearSurroundPieces();
    removeFromFrame(ctrPatternKnob);
    removeFromFrame(ctrGainKnob);
    removeFromFrame(subGainKnob);
    removeFromFrame(xOverKnob);
    removeFromFrame(panelBackground);
    removeFromFrame(panelBackground2);
    forgetControls({5, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17});
}

void MyEditor::clearHeller() {
    removeFromFrame(hellerLabel1);
    removeFromFrame(hellerLabel2);
}
