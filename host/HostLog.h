// What a plug-in told its host through the host callback: automation,
// display updates, edit gestures and any other request. Safe to read from
// one thread while the plug-in calls in from another.
#pragma once

#include <mutex>
#include <vector>

#include "VstAbi.h"

namespace vsthost {

struct Automation {
    VstInt32 index;
    float value;
    bool operator==(const Automation&) const = default;
};

struct HostCall {
    VstInt32 opcode;
    VstInt32 index;
    VstIntPtr value;
    float opt;
};

class HostLog {
public:
    void recordAutomation(VstInt32 index, float value);
    void recordDisplayUpdate();
    void recordBeginEdit(VstInt32 index);
    void recordEndEdit(VstInt32 index);
    void recordOther(const HostCall& call);

    std::vector<Automation> automation() const;
    int displayUpdates() const;
    std::vector<VstInt32> beginEdits() const;
    std::vector<VstInt32> endEdits() const;
    // Every request other than the version, automation, display and edits.
    std::vector<HostCall> otherCalls() const;
    void clear();

private:
    mutable std::mutex mutex;
    std::vector<Automation> automationEvents;
    int displayUpdateCount = 0;
    std::vector<VstInt32> beginEditIndices;
    std::vector<VstInt32> endEditIndices;
    std::vector<HostCall> others;
};

}  // namespace vsthost
