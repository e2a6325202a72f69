// Sets flush-to-zero and denormals-are-zero for the life of the guard and
// gives the host its own floating-point mode back afterwards.
#pragma once

#if defined(__SSE__)
#include <xmmintrin.h>

class FloatModeGuard {
public:
    FloatModeGuard() : saved(_mm_getcsr()) { _mm_setcsr(saved | kFlushToZero | kDenormalsAreZero); }
    ~FloatModeGuard() { _mm_setcsr(saved); }
    FloatModeGuard(const FloatModeGuard&) = delete;
    FloatModeGuard& operator=(const FloatModeGuard&) = delete;

private:
    static constexpr unsigned kFlushToZero = 0x8000;
    static constexpr unsigned kDenormalsAreZero = 0x0040;
    unsigned saved;
};
#else
class FloatModeGuard {};
#endif
