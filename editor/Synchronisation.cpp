// Controls, value texts and the polar plot kept in step with the effect's
// parameters, both ways, and the layout panel swapped when the layout
// changes. Changes from threads other than the editor's are marked and
// applied once each at the next idle, with the effect's current values;
// the editor's own thread applies them at once.
#include "CAnimKnob.h"
#include "CControl.h"
#include "CFrame.h"
#include "CHorizontalSwitch.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "SorvaneProtocol.h"
#include "polarPlot.h"

// Callers on the audio thread only read these two: neither may hide a lock.
static_assert(std::atomic<std::thread::id>::is_always_lock_free);
static_assert(std::atomic<bool>::is_always_lock_free);

using namespace sorvane;

void MyEditor::valueChanged(CControl* control) {
    if (control->getTag() == kEditorScaleSetting) {
        scaleChosen(control->getValue());
        return;
    }
    // The effect stores the value, tells the host and calls setParameter
    // back; the editor then applies the control's value once more itself.
    link->setParameterAutomated(control->getTag(), control->getValue());
    setParameter(control->getTag(), control->getValue());
}

bool MyEditor::onEditorThread() const {
    return editorThread.load(std::memory_order_acquire) == std::this_thread::get_id();
}

void MyEditor::setParameter(VstInt32 index, float value) {
    const bool runState = index == kEditorSuspend || index == kEditorResume;
    if (onEditorThread()) {
        if (runState) appliedRunState = pending.markRunState(index == kEditorSuspend);
        applyParameter(index, value);
        return;
    }
    // Another thread (typically the host's audio thread): no view may be
    // touched here, and no lock taken or memory allocated. Only the fact of
    // the change is kept; the idle reads the value back from the effect.
    if (!accepting.load(std::memory_order_acquire)) return;
    if (runState)
        pending.markRunState(index == kEditorSuspend);
    else if (isParameter(index))
        pending.markChanged(index);
    else if (index == kFiveDecoderType)
        pending.markChanged(kDecoderTypeSlot);
}

void MyEditor::doIdleStuff() {
    applyQueued();
    if (frame) followScaleSources();
    // The head tracker finds its port on a thread of its own, some time after the switch.
    if (frame && trackingValueLabel) getParameterDisplay(kTracking, displayText);
    AEffGUIEditor::doIdleStuff();
}

void MyEditor::applyQueued() {
    if (!frame) return;
    const std::uint32_t changed = pending.takeChanged();
    const auto has = [changed](int slot) { return ((changed >> slot) & 1u) != 0; };
    // The layout first: its panel is rebuilt once and loads its own values.
    if (has(kDecodeMode)) loadFromEffect(kDecodeMode);
    if (has(kDecoderTypeSlot))
        applyParameter(kFiveDecoderType,
                       fiveDecoderTypeMessage(static_cast<int>(link->getParameter(kFiveDecoderType))));
    for (VstInt32 i = 0; i < kNumParams; ++i)
        if (i != kDecodeMode && has(i)) loadFromEffect(i);

    // The latest suspend or resume, unless one newer was shown directly.
    bool suspended = false;
    if (pending.takeRunState(appliedRunState, suspended)) {
        if (!suspended)
            removeFromFrame(suspendedLabel);
        else if (!suspendedLabel)
            suspendDisplay();
    }
}

// Always on the editor's thread, so setParameter acts at once.
void MyEditor::loadFromEffect(VstInt32 index) { setParameter(index, link->getParameter(index)); }

void MyEditor::applyParameter(VstInt32 index, float value) {
    if (!frame) return;
    if (isParameter(index)) {
        // The plot follows every change; the control and its text only when
        // the panel showing them is on screen.
        CView* guard = nullptr;
        switch (index) {
        case kFrontMode:
            plot->frontMode = editorSwitchPosition(value);
            plot->setDirty(true);
            guard = modeSwitch;
            break;
        case kFrontWidth:
            plot->frontWidth = plotWidthDegrees(value);
            plot->setDirty(true);
            guard = widthKnob;
            break;
        case kFrontPattern:
            plot->frontPattern = value;
            plot->setDirty(true);
            guard = patternKnob;
            break;
        // The two ambience knobs come and go together, so each tests the other.
        case kRearVerb: guard = hiVerbKnob; break;
        case kHiVerb: guard = rearVerbKnob; break;
        case kCentrePattern:
            plot->centrePattern = value;
            plot->setDirty(true);
            guard = ctrPatternKnob;
            break;
        case kCentreGain:
            plot->centreGain = plotGainDb(value);
            plot->setDirty(true);
            // Centre gain follows the surround-width knob's presence; in the
            // quad panel that passes with no centre-gain knob, and the empty
            // fields below make it a no-op.
            guard = surWidthKnob;
            break;
        case kSubGain: guard = subGainKnob; break;
        case kSubCrossover: guard = xOverKnob; break;
        case kSurroundMode:
            plot->surroundMode = editorSwitchPosition(value);
            plot->setDirty(true);
            guard = surModeSwitch;
            break;
        case kSurroundPattern:
            plot->surroundPattern = value;
            plot->setDirty(true);
            guard = surPatternKnob;
            break;
        case kSurroundWidth:
            plot->surroundWidth = plotWidthDegrees(value);
            plot->setDirty(true);
            guard = surWidthKnob;
            break;
        case kSurroundGain:
            plot->surroundGain = plotGainDb(value);
            plot->setDirty(true);
            guard = surGainKnob;
            break;
        case kDecodeMode:
            plot->decodeMode = editorLayoutOf(value, plot->decodeMode);
            plot->setDirty(true);
            modeChange();
            break;
        default: break;
        }
        if (isProgramParameter(index) && !frame->isChild(guard)) return;
        if (CControl* control = paramControl[index]) control->setValue(value);
        getParameterDisplay(index, displayText);
    } else if (index == kEditorSuspend) {
        suspendDisplay();
    } else if (index == kEditorResume) {
        removeFromFrame(suspendedLabel);
    } else if (index == kFiveDecoderType) {
        plot->fiveDecoderType = fiveDecoderTypeOfMessage(value);
        plot->setDirty(true);
        modeChange();
    }
}

CTextLabel* MyEditor::valueLabelOf(VstInt32 index) const {
    return isParameter(index) ? this->*fieldsOf(index).valueLabel : nullptr;
}

void MyEditor::getParameterDisplay(VstInt32 index, char* text) {
    link->getParameterDisplay(index, text);
    if (CTextLabel* label = valueLabelOf(index)) label->setText(text);
}

void MyEditor::modeChange() {
    switch (plot->previousDecodeMode) {
    case kStereoLayout: clearStereo(); break;
    case kTwoOneLayout: clearTwoOne(); break;
    case kQuadLayout: clearFour(); break;
    case kFiveLayout:
    case kFiveOneLayout:
        // Only while a fixed matrix is chosen: after a switch back to virtual
        // microphones the overlay stays until a later change removes it.
        if (plot->fiveDecoderType != kVirtualMicrophones) {
            removeFromFrame(hellerLabel1);
            removeFromFrame(hellerLabel2);
        }
        if (plot->previousDecodeMode == kFiveLayout)
            clearFive();
        else
            clearFiveOne();
        break;
    default: break;
    }

    switch (plot->decodeMode) {
    case kStereoLayout: stereoDisplay(); break;
    case kTwoOneLayout: twooneDisplay(); break;
    case kQuadLayout: fourDisplay(); break;
    case kFiveLayout: fiveDisplay(); break;
    case kFiveOneLayout: fiveoneDisplay(); break;
    default: break;
    }
    // The new panel's columns, as its table lists them, show the effect's values.
    if (const panels::Panel* panel = panels::layoutPanel(plot->decodeMode))
        panels::forEachColumn(*panel, [this](const panels::Column& column) { loadFromEffect(column.tag); });
    if ((plot->decodeMode == kFiveLayout || plot->decodeMode == kFiveOneLayout) &&
        plot->fiveDecoderType != kVirtualMicrophones)
        hellerDisplay();
    plot->previousDecodeMode = plot->decodeMode;
}
