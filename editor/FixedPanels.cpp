// The panels that stay from open to close: transforms (rotate, tilt,
// tumble) at the top left, the polar plot in the middle, zoom at the top
// right and the settings (layout, channel order) below it. Sizes come from
// the artwork, so other artwork moves the controls with it.
#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "polarPlot.h"

namespace {
constexpr int32_t kKnobFrames = 281;
}  // namespace

void MyEditor::transformsDisplay(CFrame* newFrame) {
    transformsBitmap = new CBitmap("transforms.png");
    transformsBackground = makeBackground(transformsBitmap, 12, 12);
    addToFrame(newFrame, transformsBackground);

    const double knobWidth = redBlueKnobBitmap->getWidth();
    const double step = knobWidth + 12;
    controlRect = CRect(0, 0, knobWidth, redBlueKnobBitmap->getHeight() / kKnobFrames);
    controlRect.offset(24, 50);
    rotateKnob = makeKnob(0, knob360Bitmap, knob360Bitmap);
    addToFrame(newFrame, rotateKnob);
    advance(controlRect, step);
    tiltKnob = makeKnob(1, knob360Bitmap, knob360Bitmap);
    addToFrame(newFrame, tiltKnob);
    advance(controlRect, step);
    tumbleKnob = makeKnob(2, knob360Bitmap, knob360Bitmap);
    addToFrame(newFrame, tumbleKnob);

    captionRect = CRect(24, 32, 24 + knobWidth, 47);
    CTextLabel* captions[3];
    const char* names[3] = {"Rotate", "Tilt", "Tumble"};
    for (int i = 0; i < 3; ++i) {
        captions[i] = makeCaption(names[i]);
        addToFrame(newFrame, captions[i]);
        advance(captionRect, step);
    }

    CTextLabel* title =
        makeTitle("Transforms", CRect(12, 12, 12 + transformsBitmap->getWidth(), 32));
    addToFrame(newFrame, title);

    valueRect = CRect(24, 117, 24 + knobWidth, 132);
    rotateValueLabel = makeValueLabel();
    addToFrame(newFrame, rotateValueLabel);
    advance(valueRect, step);
    tiltValueLabel = makeValueLabel();
    addToFrame(newFrame, tiltValueLabel);
    advance(valueRect, step);
    tumbleValueLabel = makeValueLabel();
    addToFrame(newFrame, tumbleValueLabel);

    paramControl[0] = rotateKnob;
    paramControl[1] = tiltKnob;
    paramControl[2] = tumbleKnob;

    // The frame keeps the only reference to each control and label; the
    // background view stays with this panel until close.
    transformsBitmap->forget();
    transformsBitmap = nullptr;
    for (CView* view : {static_cast<CView*>(rotateKnob), static_cast<CView*>(tiltKnob),
                        static_cast<CView*>(tumbleKnob), static_cast<CView*>(captions[0]),
                        static_cast<CView*>(captions[1]), static_cast<CView*>(captions[2]),
                        static_cast<CView*>(title), static_cast<CView*>(rotateValueLabel),
                        static_cast<CView*>(tiltValueLabel), static_cast<CView*>(tumbleValueLabel)})
        view->forget();
}

void MyEditor::zoomDisplay(CFrame* newFrame) {
    zoomBitmap = new CBitmap("zoom.png");
    zoomBackground = makeBackground(zoomBitmap, 402, 12);
    addToFrame(newFrame, zoomBackground);

    const double knobWidth = redBlueKnobBitmap->getWidth();
    const double switchStep = mode4KnobBitmap->getWidth() + 12;
    // The method switch takes the size of one zoom-knob frame.
    controlRect = CRect(0, 0, knobWidth, redBlueKnobBitmap->getHeight() / kKnobFrames);
    controlRect.offset(414, 50);
    zoomMethodSwitch = new CHorizontalSwitch(controlRect, this, 4, 4,
                                             mode4KnobBitmap->getHeight() * 0.25, 4,
                                             mode4KnobBitmap, CPoint(0, 0));
    addToFrame(newFrame, zoomMethodSwitch);
    advance(controlRect, switchStep);
    zoomKnob = makeKnob(3, redBlueKnobBitmap, redBlueKnobBitmap);
    addToFrame(newFrame, zoomKnob);

    captionRect = CRect(414, 32, 414 + knobWidth, 47);
    CTextLabel* methodCaption = makeCaption("Zoom Type");
    addToFrame(newFrame, methodCaption);
    advance(captionRect, switchStep);
    CTextLabel* zoomCaption = makeCaption("Zoom");
    addToFrame(newFrame, zoomCaption);

    CTextLabel* title = makeTitle("Zooming", CRect(402, 12, 402 + zoomBitmap->getWidth(), 32));
    addToFrame(newFrame, title);

    valueRect = CRect(414, 117, 414 + knobWidth, 132);
    zoomMethodValueLabel = makeValueLabel();
    addToFrame(newFrame, zoomMethodValueLabel);
    advance(valueRect, knobWidth + 12);
    zoomValueLabel = makeValueLabel();
    addToFrame(newFrame, zoomValueLabel);

    paramControl[3] = zoomKnob;
    paramControl[4] = zoomMethodSwitch;

    zoomBitmap->forget();
    zoomBitmap = nullptr;
    for (CView* view : {static_cast<CView*>(zoomMethodSwitch), static_cast<CView*>(zoomKnob),
                        static_cast<CView*>(methodCaption), static_cast<CView*>(zoomCaption),
                        static_cast<CView*>(title), static_cast<CView*>(zoomMethodValueLabel),
                        static_cast<CView*>(zoomValueLabel)})
        view->forget();
}

void MyEditor::plotDisplay(CFrame* newFrame) {
    plotBitmap = new CBitmap("plot.png");
    plotBackground = makeBackground(plotBitmap, 264, 12);
    addToFrame(newFrame, plotBackground);
    // The plot draws over its grid picture and keeps its references until close.
    plot = new polarPlot(plotBackground->getViewSize());
    addToFrame(newFrame, plot);
}

void MyEditor::settingsDisplay(CFrame* newFrame) {
    settingsBitmap = new CBitmap("zoom.png");
    CView* background = makeBackground(settingsBitmap, 402, 150);
    addToFrame(newFrame, background);

    const double switchWidth = mode5KnobBitmap->getWidth();
    const double step = switchWidth + 12;
    controlRect = CRect(0, 0, switchWidth, mode5KnobBitmap->getHeight() / 5);
    controlRect.offset(414, 188);
    decModeSwitch = new CHorizontalSwitch(controlRect, this, 18, 5,
                                          mode5KnobBitmap->getHeight() / 5, 5, mode5KnobBitmap,
                                          CPoint(0, 0));
    addToFrame(newFrame, decModeSwitch);
    advance(controlRect, step);
    chOrderSwitch = new CHorizontalSwitch(controlRect, this, 19, 2,
                                          mode2bKnobBitmap->getHeight() * 0.5, 2,
                                          mode2bKnobBitmap, CPoint(0, 0));
    addToFrame(newFrame, chOrderSwitch);

    captionRect = CRect(414, 170, 414 + switchWidth, 185);
    CTextLabel* layoutCaption = makeCaption("Decoding");
    addToFrame(newFrame, layoutCaption);
    advance(captionRect, step);
    CTextLabel* orderCaption = makeCaption("Channels");
    addToFrame(newFrame, orderCaption);

    valueRect = CRect(414, 255, 414 + switchWidth, 270);
    decModeValueLabel = makeValueLabel();
    addToFrame(newFrame, decModeValueLabel);
    advance(valueRect, step);
    chOrderValueLabel = makeValueLabel();
    addToFrame(newFrame, chOrderValueLabel);

    CTextLabel* title =
        makeTitle("Settings", CRect(402, 150, 402 + settingsBitmap->getWidth(), 170));
    addToFrame(newFrame, title);

    paramControl[18] = decModeSwitch;
    paramControl[19] = chOrderSwitch;

    settingsBitmap->forget();
    settingsBitmap = nullptr;
    for (CView* view : {background, static_cast<CView*>(decModeSwitch),
                        static_cast<CView*>(chOrderSwitch), static_cast<CView*>(layoutCaption),
                        static_cast<CView*>(orderCaption), static_cast<CView*>(decModeValueLabel),
                        static_cast<CView*>(chOrderValueLabel), static_cast<CView*>(title)})
        view->forget();
}
