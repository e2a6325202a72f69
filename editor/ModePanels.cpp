// The panel of the speaker layout in force, along the bottom of the window
// (with a second area above it on the left for 2.1, 5.0 and 5.1), and the
// dark Heller overlay for the two fixed 5.x matrices. Each builder walks its
// layout's table; its clear routine walks the same table and removes exactly
// the views the builder added.
#include "CFrame.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "polarPlot.h"

using namespace panels;

namespace {
constexpr CColor kHellerBack(23, 25, 26, 200);
}  // namespace

void MyEditor::stereoDisplay() { buildLayoutPanel(kStereoPanel); }
void MyEditor::twooneDisplay() { buildLayoutPanel(kTwoOnePanel); }
void MyEditor::fourDisplay() { buildLayoutPanel(kQuadPanel); }
void MyEditor::fiveDisplay() { buildLayoutPanel(kFivePanel); }
void MyEditor::fiveoneDisplay() { buildLayoutPanel(kFiveOnePanel); }

void MyEditor::clearStereo() { clearLayoutPanel(kStereoPanel); }
void MyEditor::clearTwoOne() { clearLayoutPanel(kTwoOnePanel); }
void MyEditor::clearFour() { clearLayoutPanel(kQuadPanel); }
void MyEditor::clearFive() { clearLayoutPanel(kFivePanel); }
void MyEditor::clearFiveOne() { clearLayoutPanel(kFiveOnePanel); }

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
    if (plot->fiveDecoderType == sorvane::kFixedMatrix2)
        hellerLabel1->setText("Heller 2 Decoder");
    else if (plot->fiveDecoderType == sorvane::kFixedMatrix1)
        hellerLabel1->setText("Heller 1 Decoder");
    handToFrame(getFrame(), hellerLabel1);
    hellerLabel2 = makeOverlay(panelBackground2);
    handToFrame(getFrame(), hellerLabel2);
}
