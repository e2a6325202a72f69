// A bare X server (Xvfb) resets itself when its last client leaves and
// refuses connections meanwhile; a desktop never does. The run keeps one
// connection of its own open so that checks in separate processes always
// find the server up.
#pragma once

namespace validate {

class DisplayKeeper {
public:
    DisplayKeeper();  // connects when DISPLAY is set; harmless otherwise
    ~DisplayKeeper();
    DisplayKeeper(const DisplayKeeper&) = delete;
    DisplayKeeper& operator=(const DisplayKeeper&) = delete;

private:
    void* display = nullptr;
};

}  // namespace validate
