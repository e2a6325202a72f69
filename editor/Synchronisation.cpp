// Controls, value texts and the polar plot kept in step with the effect's
// parameters, both ways, and the layout panel swapped when the layout
// changes. Changes from threads other than the editor's wait in a queue
// for the next idle; the editor's own thread applies them at once.
#include "AudioEffect.h"
#include "CAnimKnob.h"
#include "CControl.h"
#include "CHorizontalSwitch.h"
#include "CFrame.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "polarPlot.h"

// Callers on the audio thread only read these two: neither may hide a lock.
static_assert(std::atomic<std::thread::id>::is_always_lock_free);
static_assert(std::atomic<bool>::is_always_lock_free);

namespace {
constexpr VstInt32 kLastParameter = 19;
constexpr VstInt32 kDecodeMode = 18;
constexpr VstInt32 kEditorSuspend = 100;
constexpr VstInt32 kEditorResume = 101;
constexpr VstInt32 kFiveDecoderType = 103;

int switchPosition(float value) { return value > 0.5f ? 1 : 0; }
// The editor's own layout bands, in steps of 0.2; above 1 the layout stays.
int layoutOf(float value, int current) {
    if (value <= 0.2f) return 2;
    if (value <= 0.4f) return 3;
    if (value <= 0.6f) return 4;
    if (value <= 0.8f) return 5;
    if (value <= 1.0f) return 6;
    return current;
}
}  // namespace

void MyEditor::valueChanged(CControl* control) {
    // The effect stores the value, tells the host and calls setParameter
    // back; the editor then applies the control's value once more itself.
    effect->setParameterAutomated(control->getTag(), control->getValue());
    setParameter(control->getTag(), control->getValue());
}

bool MyEditor::onEditorThread() const {
    return editorThread.load(std::memory_order_acquire) == std::this_thread::get_id();
}

void MyEditor::setParameter(VstInt32 index, float value) {
    if (onEditorThread()) {
        applyParameter(index, value);
        return;
    }
    // Another thread (typically the host's audio thread): no view may be
    // touched here, and no lock taken or memory allocated.
    if (accepting.load(std::memory_order_acquire)) pending.push(index, value);
}

void MyEditor::doIdleStuff() {
    applyQueued();
    AEffGUIEditor::doIdleStuff();
}

void MyEditor::applyQueued() {
    if (!frame) return;
    ParameterQueue::Change change;
    while (pending.pop(change)) applyParameter(change.index, change.value);
    if (pending.overflowed()) reloadFromEffect();
}

void MyEditor::reloadFromEffect() {
    plot->fiveDecoderType = static_cast<int>(effect->getParameter(kFiveDecoderType));
    for (VstInt32 i = 0; i <= kLastParameter; ++i) loadFromEffect(i);
}

// Always on the editor's thread, so setParameter acts at once.
void MyEditor::loadFromEffect(VstInt32 index) { setParameter(index, effect->getParameter(index)); }

void MyEditor::applyParameter(VstInt32 index, float value) {
    if (!frame) return;
    if (index >= 0 && index <= kLastParameter) {
        // The plot follows every change; the control and its text only when
        // the panel showing them is on screen.
        CView* guard = nullptr;
        switch (index) {
        case 5:
            plot->frontMode = switchPosition(value);
            plot->setDirty(true);
            guard = modeSwitch;
            break;
        case 6:
            plot->frontWidth = value * 90.0;
            plot->setDirty(true);
            guard = widthKnob;
            break;
        case 7:
            plot->frontPattern = value;
            plot->setDirty(true);
            guard = patternKnob;
            break;
        // The two ambience knobs come and go together, so each tests the other.
        case 8: guard = hiVerbKnob; break;
        case 9: guard = rearVerbKnob; break;
        case 10:
            plot->centrePattern = value;
            plot->setDirty(true);
            guard = ctrPatternKnob;
            break;
        case 11:
            plot->centreGain = 24.0f * value - 18.0f;
            plot->setDirty(true);
            // Centre gain follows the surround-width knob's presence; in the
            // quad panel that passes with no centre-gain knob, and the empty
            // fields below make it a no-op.
            guard = surWidthKnob;
            break;
        case 12: guard = subGainKnob; break;
        case 13: guard = xOverKnob; break;
        case 14:
            plot->surroundMode = switchPosition(value);
            plot->setDirty(true);
            guard = surModeSwitch;
            break;
        case 15:
            plot->surroundPattern = value;
            plot->setDirty(true);
            guard = surPatternKnob;
            break;
        case 16:
            plot->surroundWidth = value * 90.0;
            plot->setDirty(true);
            guard = surWidthKnob;
            break;
        case 17:
            plot->surroundGain = 24.0f * value - 18.0f;
            plot->setDirty(true);
            guard = surGainKnob;
            break;
        case kDecodeMode:
            plot->decodeMode = layoutOf(value, plot->decodeMode);
            plot->setDirty(true);
            modeChange();
            break;
        default: break;
        }
        if (index >= 5 && index <= 17 && !frame->isChild(guard)) return;
        if (CControl* control = paramControl[index]) control->setValue(value);
        getParameterDisplay(index, displayText);
    } else if (index == kEditorSuspend) {
        suspendDisplay();
    } else if (index == kEditorResume) {
        removeFromFrame(suspendedLabel);
    } else if (index == kFiveDecoderType) {
        plot->fiveDecoderType = static_cast<int>(value + value);
        plot->setDirty(true);
        modeChange();
    }
}

CTextLabel* MyEditor::valueLabelOf(VstInt32 index) const {
    CTextLabel* const labels[kNumControls] = {
        rotateValueLabel,     tiltValueLabel,      tumbleValueLabel,     zoomValueLabel,
        zoomMethodValueLabel, modeValueLabel,      widthValueLabel,      patternValueLabel,
        rearVerbValueLabel,   hiVerbValueLabel,    ctrPatternValueLabel, ctrGainValueLabel,
        subGainValueLabel,    xOverValueLabel,     surModeValueLabel,    surPatternValueLabel,
        surWidthValueLabel,   surGainValueLabel,   decModeValueLabel,    chOrderValueLabel};
    return index >= 0 && index < kNumControls ? labels[index] : nullptr;
}

void MyEditor::getParameterDisplay(VstInt32 index, char* text) {
    effect->getParameterDisplay(index, text);
    if (CTextLabel* label = valueLabelOf(index)) label->setText(text);
}

void MyEditor::modeChange() {
    switch (plot->previousDecodeMode) {
    case 2: clearStereo(); break;
    case 3: clearTwoOne(); break;
    case 4: clearFour(); break;
    case 5:
    case 6:
        // Only while a fixed matrix is chosen: after a switch back to virtual
        // microphones the overlay stays until a later change removes it.
        if (plot->fiveDecoderType != 0) {
            removeFromFrame(hellerLabel1);
            removeFromFrame(hellerLabel2);
        }
        if (plot->previousDecodeMode == 5)
            clearFive();
        else
            clearFiveOne();
        break;
    default: break;
    }

    auto load = [this](std::initializer_list<VstInt32> indices) {
        for (VstInt32 i : indices) loadFromEffect(i);
    };
    switch (plot->decodeMode) {
    case 2:
        stereoDisplay();
        load({5, 6, 7, 8, 9});
        break;
    case 3:
        twooneDisplay();
        load({5, 6, 7, 8, 9, 12, 13});
        break;
    case 4:
        fourDisplay();
        load({5, 6, 7, 14, 15, 16, 17});
        break;
    case 5:
        fiveDisplay();
        load({5, 6, 7, 10, 11, 14, 15, 16, 17});
        if (plot->fiveDecoderType != 0) hellerDisplay();
        break;
    case 6:
        fiveoneDisplay();
        load({5, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17});
        if (plot->fiveDecoderType != 0) hellerDisplay();
        break;
    default: break;
    }
    plot->previousDecodeMode = plot->decodeMode;
}
