// Counts the calls that have no place on an audio thread (allocation, free,
// locks, sleeps) made by this thread while counting is switched on. The
// counting functions are defined in this executable and exported, so a
// plug-in loaded later binds to them instead of the C library's.
#pragma once

namespace validate::realtime {

struct Counts {
    long malloc = 0;       // malloc, calloc, realloc, aligned allocation
    long free = 0;         // free of a non-null pointer
    long newCalls = 0;     // every form of operator new
    long deleteCalls = 0;  // every form of operator delete, non-null
    long lock = 0;         // pthread_mutex_lock
    long sleep = 0;        // nanosleep, clock_nanosleep, usleep
    long total() const { return malloc + free + newCalls + deleteCalls + lock + sleep; }
};

// Switch counting on or off for the calling thread; start resets the counts.
void start();
Counts stop();

// False when this build cannot count (sanitizer builds keep the C
// library's allocator to themselves).
bool available();

}  // namespace validate::realtime
