// The pieces every panel is made of: knobs and switches with the editor as
// listener and the parameter index as tag, captions, titles and value
// labels, and the way views are handed to the frame.
#include "CAnimKnob.h"
#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"

namespace {
constexpr int32_t kLabelStyle = 1;
}  // namespace

void MyEditor::addToFrame(CFrame* target, CView* view) {
    target->addView(view);
    // One claim on the frame per view it holds; the frame counts these apart
    // from its owner's reference, so close still frees it.
    target->remember();
}

void MyEditor::handToFrame(CFrame* target, CView* view) {
    addToFrame(target, view);
    view->forget();  // the frame's reference is the only one left
}

void MyEditor::dropView(CView* view) {
    if (view && frame) frame->removeView(view, true);
}

CAnimKnob* MyEditor::makeKnob(int32_t tag, CBitmap* strip, CBitmap* heightStrip) {
    return new CAnimKnob(controlRect, this, tag, panels::kKnobFrames, heightStrip->getHeight() / panels::kKnobFrames,
                         strip, CPoint(0, 0));
}

// A switch with one strip frame per position.
CHorizontalSwitch* MyEditor::makeSwitch(int32_t tag, CBitmap* strip, int positions) {
    return new CHorizontalSwitch(controlRect, this, tag, positions, strip->getHeight() / positions, positions, strip,
                                 CPoint(0, 0));
}

CTextLabel* MyEditor::makeCaption(const char* text) {
    auto* label = new CTextLabel(captionRect, nullptr, nullptr, kLabelStyle);
    label->setFont(kNormalFontSmall);
    label->setFontColor(blueColor);
    label->setBackColor(clearColor);
    label->setFrameColor(clearColor);
    label->setText(text);
    return label;
}

CTextLabel* MyEditor::makeTitle(const char* text, const CRect& where) {
    auto* label = new CTextLabel(where, nullptr, nullptr, kLabelStyle);
    label->setFont(kNormalFontBig);
    label->setFontColor(blueColor);
    label->setBackColor(clearColor);
    label->setFrameColor(clearColor);
    label->setText(text);
    return label;
}

CTextLabel* MyEditor::makeValueLabel() {
    auto* label = new CTextLabel(valueRect, nullptr, nullptr, kLabelStyle);
    label->setHoriAlign(kCenterText);
    label->setFont(kNormalFontVerySmall);
    label->setFontColor(whiteColor);
    label->setBackColor(greyColor);
    label->setFrameColor(kBlackCColor);
    return label;
}

CView* MyEditor::makeBackground(CBitmap* bitmap, const CRect& where) {
    auto* view = new CView(where);
    view->setBackground(bitmap);
    return view;
}
