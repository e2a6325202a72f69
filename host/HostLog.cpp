#include "HostLog.h"

namespace vsthost {

void HostLog::recordAutomation(VstInt32 index, float value) {
    std::lock_guard lock(mutex);
    automationEvents.push_back({index, value});
}

void HostLog::recordDisplayUpdate() {
    std::lock_guard lock(mutex);
    ++displayUpdateCount;
}

void HostLog::recordBeginEdit(VstInt32 index) {
    std::lock_guard lock(mutex);
    beginEditIndices.push_back(index);
}

void HostLog::recordEndEdit(VstInt32 index) {
    std::lock_guard lock(mutex);
    endEditIndices.push_back(index);
}

void HostLog::recordOther(const HostCall& call) {
    std::lock_guard lock(mutex);
    others.push_back(call);
}

std::vector<Automation> HostLog::automation() const {
    std::lock_guard lock(mutex);
    return automationEvents;
}

int HostLog::displayUpdates() const {
    std::lock_guard lock(mutex);
    return displayUpdateCount;
}

std::vector<VstInt32> HostLog::beginEdits() const {
    std::lock_guard lock(mutex);
    return beginEditIndices;
}

std::vector<VstInt32> HostLog::endEdits() const {
    std::lock_guard lock(mutex);
    return endEditIndices;
}

std::vector<HostCall> HostLog::otherCalls() const {
    std::lock_guard lock(mutex);
    return others;
}

void HostLog::clear() {
    std::lock_guard lock(mutex);
    automationEvents.clear();
    displayUpdateCount = 0;
    beginEditIndices.clear();
    endEditIndices.clear();
    others.clear();
}

}  // namespace vsthost
