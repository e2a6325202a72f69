// Which copy of the block kernels this process runs: the widest the build
// contains and the CPU can execute, decided once (engines are built on any
// host thread; the answer is a guarded static, so the CPU is asked once).
#include "BlockKernels.h"

extern const BlockKernels baselineKernels;
#if SORVANE_HAVE_AVX2_KERNELS
extern const BlockKernels avx2Kernels;

namespace {
bool cpuRunsAvx2() {
    // The check includes the operating system's saving of the wide registers.
    static const bool yes = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") != 0;
    }();
    return yes;
}
}  // namespace
#endif

bool vectorPathAvailable(VectorPath path) {
    switch (path) {
    case VectorPath::baseline: return true;
    case VectorPath::avx2:
#if SORVANE_HAVE_AVX2_KERNELS
        return cpuRunsAvx2();
#else
        return false;
#endif
    }
    return false;
}

const BlockKernels& blockKernels(VectorPath path) {
#if SORVANE_HAVE_AVX2_KERNELS
    if (path == VectorPath::avx2 && cpuRunsAvx2()) return avx2Kernels;
#endif
    (void)path;
    return baselineKernels;
}

VectorPath bestVectorPath() { return vectorPathAvailable(VectorPath::avx2) ? VectorPath::avx2 : VectorPath::baseline; }

const char* vectorPathName(VectorPath path) {
    if (path == VectorPath::avx2) return "avx2";
#if defined(__x86_64__)
    return "sse2";
#else
    return "baseline";
#endif
}
