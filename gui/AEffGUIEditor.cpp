#include "AEffGUIEditor.h"

#include <chrono>

#include "CButtonState.h"
#include "CFrame.h"

namespace {
uint32_t ticksNow() {
    using namespace std::chrono;
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

CKeyCode toolkitKey(const VstKeyCode& key) {
    CKeyCode code;
    code.character = key.character;
    code.virt = key.virt;
    code.modifier = key.modifier;
    return code;
}
}  // namespace

AEffGUIEditor::AEffGUIEditor() : lastTicks(ticksNow()) {}

// A host that destroys the effect with the editor still open gets the
// window closed here.
AEffGUIEditor::~AEffGUIEditor() {
    if (CFrame* closing = frame) {
        frame = nullptr;
        closing->forget();
    }
}

bool AEffGUIEditor::getRect(ERect** answer) {
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
    if (inIdleStuff) return;
    inIdleStuff = true;
    doIdleStuff();
    inIdleStuff = false;
}

void AEffGUIEditor::doIdleStuff() {
    lastTicks = ticksNow();
    if (frame) frame->idle();
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

void AEffGUIEditor::setParameter(VstInt32, float) {}

void AEffGUIEditor::draw(ERect*) {
    if (frame) frame->setDirty(true);
}

bool AEffGUIEditor::beforeSizeChange(const ERect&, const ERect&) { return true; }
