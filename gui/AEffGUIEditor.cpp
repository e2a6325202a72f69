#include "AEffGUIEditor.h"

#include <chrono>

#include "AudioEffect.h"
#include "CButtonState.h"
#include "CFrame.h"

namespace {
uint32_t ticksNow() {
    using namespace std::chrono;
    return static_cast<uint32_t>(
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

CKeyCode toolkitKey(const VstKeyCode& key) {
    CKeyCode code;
    code.character = key.character;
    code.virt = key.virt;
    code.modifier = key.modifier;
    return code;
}
}  // namespace

AEffGUIEditor::AEffGUIEditor(void* effect)
    : AEffEditor(static_cast<AudioEffect*>(effect)), lastTicks(ticksNow()),
      editorThread(std::this_thread::get_id()) {
    if (this->effect) this->effect->setEditor(this);
}

// A host that destroys the effect with the editor still open gets the
// window closed here.
AEffGUIEditor::~AEffGUIEditor() {
    if (CFrame* closing = frame) {
        frame = nullptr;
        closing->forget();
    }
}

bool AEffGUIEditor::getRect(ERect** answer) {
    noteEditorThread();  // hosts ask for the size on the thread that will open it
    if (!answer) return false;
    *answer = &rect;
    return true;
}

bool AEffGUIEditor::open(void* ptr) {
    systemWindow = ptr;
    return true;
}

void AEffGUIEditor::close() {
    systemWindow = nullptr;
    if (CFrame* closing = frame) {
        frame = nullptr;
        closing->forget();
    }
}

void AEffGUIEditor::idle() {
    noteEditorThread();
    if (inIdleStuff) return;
    inIdleStuff = true;
    doIdleStuff();
    inIdleStuff = false;
}

void AEffGUIEditor::doIdleStuff() {
    lastTicks = ticksNow();
    applyDeferred();
    if (frame) frame->idle();
}

bool AEffGUIEditor::deferToEditorThread(VstInt32 index, float value) {
    if (std::this_thread::get_id() == editorThread.load()) return false;
    if (!deferred.push(index, value)) deferredLost.store(true);
    return true;
}

void AEffGUIEditor::applyDeferred() {
    int32_t index;
    float value;
    while (deferred.pop(index, value)) setParameter(index, value);
    if (deferredLost.exchange(false) && effect) {
        const VstInt32 count = effect->getAeffect()->numParams;
        for (VstInt32 i = 0; i < count; ++i) setParameter(i, effect->getParameter(i));
    }
}

bool AEffGUIEditor::onKeyDown(VstKeyCode& keyCode) {
    if (!frame) return false;
    CKeyCode key = toolkitKey(keyCode);
    return frame->onKeyDown(key) == 1;
}

bool AEffGUIEditor::onKeyUp(VstKeyCode& keyCode) {
    if (!frame) return false;
    CKeyCode key = toolkitKey(keyCode);
    return frame->onKeyUp(key) == 1;
}

bool AEffGUIEditor::onWheel(float distance) { return frame ? frame->onWheel(distance) : false; }

bool AEffGUIEditor::setKnobMode(VstInt32 mode) {
    knobMode = mode;
    return true;
}

void AEffGUIEditor::setParameter(VstInt32, float) {}

void AEffGUIEditor::draw(ERect*) {
    if (frame) frame->setDirty(true);
}

bool AEffGUIEditor::beforeSizeChange(const ERect&, const ERect&) { return true; }

bool AEffGUIEditor::beginEdit(int32_t index) { return effect ? effect->beginEdit(index) : false; }
bool AEffGUIEditor::endEdit(int32_t index) { return effect ? effect->endEdit(index) : false; }
