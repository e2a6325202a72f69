// The editor's scale: where it comes from, the switch in the settings
// strip's "Scale" place that lets the user override it for this instance,
// and the window following it while the editor is open.
#include "EditorScale.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "CBitmap.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"

namespace editor_scale {

double resolve(int choice, double hostFactor, double desktopFactor, int screenWidth, int screenHeight) {
    double scale = 1.0;
    if (choice > sorvane::kScaleAuto && choice < sorvane::kScaleChoices)
        scale = sorvane::kScaleOfChoice[choice];
    else if (usable(hostFactor))
        scale = hostFactor;
    else if (usable(desktopFactor))
        scale = desktopFactor;
    if (screenWidth > 0 && screenHeight > 0)
        scale = std::min({scale, screenWidth / kFrameWidth, screenHeight / kFrameHeight});
    return std::max(scale, 1.0);
}

}  // namespace editor_scale

namespace {
// The host's factor is compared as sent, NaN included, so an unchanged one
// never counts as news.
bool sameFactor(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
}  // namespace

double MyEditor::currentScale() const {
    return editor_scale::resolve(link->editorScaleChoice(), link->hostScaleFactor(), desktop.dpiScale, desktop.width,
                                 desktop.height);
}

void MyEditor::sizeRectFor(double scale) {
    rect.left = rect.top = 0;
    rect.right = static_cast<VstInt16>(CFrame::deviceLength(editor_scale::kFrameWidth, scale));
    rect.bottom = static_cast<VstInt16>(CFrame::deviceLength(editor_scale::kFrameHeight, scale));
}

// Hosts ask before opening, to size their window: the desktop is read for
// it then; while open, the frame's own scale answers.
bool MyEditor::getRect(ERect** answer) {
    if (!frame) {
        desktop = readDesktop();
        sizeRectFor(currentScale());
    }
    return AEffGUIEditor::getRect(answer);
}

void MyEditor::scaleDisplay(CFrame* newFrame) {
    panels::ArtSizes sizes{};
    sizes[panels::kInputSwitch] = {inputSwitchBitmap->getWidth(), inputSwitchBitmap->getHeight()};
    const panels::PiecePlaces place = panels::stripPlace(panels::kScalePlace, sizes);
    controlRect = place.control;
    scaleSwitch = makeSwitch(sorvane::kEditorScaleSetting, scaleSwitchBitmap, sorvane::kScaleChoices);
    handToFrame(newFrame, scaleSwitch);
    captionRect = place.caption;
    handToFrame(newFrame, makeCaption(panels::kStripPlaces[panels::kScalePlace]));
    valueRect = place.value;
    scaleValueLabel = makeValueLabel();
    handToFrame(newFrame, scaleValueLabel);
}

void MyEditor::showScaleChoice() {
    if (!scaleSwitch || !scaleValueLabel) return;
    const int choice = std::clamp(link->editorScaleChoice(), 0, sorvane::kScaleChoices - 1);
    scaleSwitch->setValue(sorvane::scaleChoiceValue(choice));
    char text[32];
    if (choice == sorvane::kScaleAuto)
        std::snprintf(text, sizeof text, "Auto %d %%", static_cast<int>(currentScale() * 100 + 0.5));
    else
        std::snprintf(text, sizeof text, "%s", sorvane::kScaleChoiceNames[choice]);
    scaleValueLabel->setText(text);
}

void MyEditor::scaleChosen(float value) {
    link->setEditorScaleChoice(sorvane::scaleChoiceOf(value));
    applyScale();
}

// The window takes the new size only if the host's does: one that refuses
// keeps the editor as it is, and the choice shows at the next opening.
void MyEditor::applyScale() {
    if (!frame) return;
    lastHostFactor = link->hostScaleFactor();
    lastChoice = link->editorScaleChoice();
    const double scale = currentScale();
    if (scale != frame->getScale()) {
        const ERect old = rect;
        sizeRectFor(scale);  // hosts read it back while they resize
        if (link->resizeEditorWindow(rect.right, rect.bottom))
            frame->setScale(scale);
        else
            rect = old;
    }
    showScaleChoice();
}

// A host may send its factor, or load a state with another choice, at any
// time and from any thread; the editor's thread looks at each idle.
void MyEditor::followScaleSources() {
    if (sameFactor(link->hostScaleFactor(), lastHostFactor) && link->editorScaleChoice() == lastChoice) return;
    applyScale();
}
