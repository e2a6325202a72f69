// Which copy of the block kernels this process runs: the widest the build
// contains and the CPU can execute, decided once.
#include "BlockKernels.h"

extern const BlockKernels baselineKernels;
#if SORVANE_HAVE_AVX2_KERNELS
extern const BlockKernels avx2Kernels;
#endif

bool vectorPathAvailable(VectorPath path) {
    switch (path) {
        case VectorPath::baseline: return true;
        case VectorPath::avx2:
#if SORVANE_HAVE_AVX2_KERNELS
            // The check includes the operating system's saving of the wide registers.
            __builtin_cpu_init();
            return __builtin_cpu_supports("avx2");
#else
            return false;
#endif
    }
    return false;
}

const BlockKernels& blockKernels(VectorPath path) {
#if SORVANE_HAVE_AVX2_KERNELS
    if (path == VectorPath::avx2 && vectorPathAvailable(path)) return avx2Kernels;
#endif
    (void)path;
    return baselineKernels;
}

VectorPath bestVectorPath() {
    static const VectorPath best =
        vectorPathAvailable(VectorPath::avx2) ? VectorPath::avx2 : VectorPath::baseline;
    return best;
}

const char* vectorPathName(VectorPath path) {
    if (path == VectorPath::avx2) return "avx2";
#if defined(__x86_64__)
    return "sse2";
#else
    return "baseline";
#endif
}
