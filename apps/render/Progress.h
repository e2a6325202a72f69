// A progress bar with elapsed and estimated time, on stderr, only when it is a
// terminal and the user did not ask for quiet.
#pragma once

#include <chrono>

class Progress {
public:
    Progress(long totalFrames, bool enabled);
    void update(long doneFrames);
    void finish();

private:
    long total;
    bool active;
    int lastPermille = -1;
    std::chrono::steady_clock::time_point start;
};
