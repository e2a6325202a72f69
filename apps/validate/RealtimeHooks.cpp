// The counting functions. Each forwards to the C library's own entry
// (glibc's __libc_* allocator functions, or a pointer found once with
// dlsym(RTLD_NEXT)) and touches nothing but two thread-local variables, so
// it never allocates, locks or recurses, also before the first dlsym.
#include "RealtimeHooks.h"

#include <dlfcn.h>
#include <pthread.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SORVANE_COUNTING_HOOKS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define SORVANE_COUNTING_HOOKS 0
#endif
#endif
#ifndef SORVANE_COUNTING_HOOKS
#define SORVANE_COUNTING_HOOKS 1
#endif

namespace validate::realtime {
namespace {
constinit thread_local bool counting = false;
constinit thread_local Counts counts{};
}  // namespace

void start() {
    counts = Counts{};
    counting = true;
}

Counts stop() {
    counting = false;
    return counts;
}

#if SORVANE_COUNTING_HOOKS
namespace {
inline void count(long Counts::*which) {
    if (counting) ++(counts.*which);
}
}  // namespace
#endif

}  // namespace validate::realtime

#if SORVANE_COUNTING_HOOKS

using validate::realtime::count;
using validate::realtime::Counts;

extern "C" {
void* __libc_malloc(std::size_t size);
void __libc_free(void* pointer);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* pointer, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
int __nanosleep(const struct timespec* request, struct timespec* remaining);
}

namespace {

using MutexLock = int (*)(pthread_mutex_t*);
using ClockSleep = int (*)(clockid_t, int, const struct timespec*, struct timespec*);
std::atomic<MutexLock> realMutexLock{nullptr};
std::atomic<ClockSleep> realClockSleep{nullptr};

template <typename F>
F resolve(std::atomic<F>& slot, const char* name) {
    F f = slot.load(std::memory_order_acquire);
    if (!f) {
        f = reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
        slot.store(f, std::memory_order_release);
    }
    return f;
}

// Resolved before main, so no audio thread ever waits for dlsym.
[[gnu::constructor]] void resolveEarly() {
    resolve(realMutexLock, "pthread_mutex_lock");
    resolve(realClockSleep, "clock_nanosleep");
}

void* allocate(std::size_t size) {
    void* pointer = __libc_malloc(size ? size : 1);
    if (!pointer) throw std::bad_alloc();
    return pointer;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) {
    void* pointer = __libc_memalign(static_cast<std::size_t>(alignment), size ? size : 1);
    if (!pointer) throw std::bad_alloc();
    return pointer;
}

void release(void* pointer) {
    if (!pointer) return;
    count(&Counts::deleteCalls);
    __libc_free(pointer);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    count(&Counts::malloc);
    return __libc_malloc(size);
}

void free(void* pointer) {
    if (pointer) count(&Counts::free);
    __libc_free(pointer);
}

void* calloc(std::size_t n, std::size_t size) {
    count(&Counts::malloc);
    return __libc_calloc(n, size);
}

void* realloc(void* pointer, std::size_t size) {
    count(&Counts::malloc);
    return __libc_realloc(pointer, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    count(&Counts::malloc);
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    count(&Counts::malloc);
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    count(&Counts::malloc);
    if (alignment < sizeof(void*) || (alignment & (alignment - 1)) != 0) return EINVAL;
    void* pointer = __libc_memalign(alignment, size);
    if (!pointer) return ENOMEM;
    *result = pointer;
    return 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    count(&Counts::lock);
    MutexLock lock = resolve(realMutexLock, "pthread_mutex_lock");
    return lock ? lock(mutex) : EINVAL;
}

int nanosleep(const struct timespec* request, struct timespec* remaining) {
    count(&Counts::sleep);
    return __nanosleep(request, remaining);
}

int clock_nanosleep(clockid_t clock, int flags, const struct timespec* request, struct timespec* remaining) {
    count(&Counts::sleep);
    ClockSleep sleepFor = resolve(realClockSleep, "clock_nanosleep");
    return sleepFor ? sleepFor(clock, flags, request, remaining) : EINVAL;
}

int usleep(useconds_t microseconds) {
    count(&Counts::sleep);
    struct timespec request {
        static_cast<time_t>(microseconds / 1000000), static_cast<long>(microseconds % 1000000) * 1000
    };
    return __nanosleep(&request, nullptr);
}

}  // extern "C"

void* operator new(std::size_t size) {
    count(&Counts::newCalls);
    return allocate(size);
}
void* operator new[](std::size_t size) {
    count(&Counts::newCalls);
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    count(&Counts::newCalls);
    return __libc_malloc(size ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    count(&Counts::newCalls);
    return __libc_malloc(size ? size : 1);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    count(&Counts::newCalls);
    return allocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    count(&Counts::newCalls);
    return allocateAligned(size, alignment);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    count(&Counts::newCalls);
    return __libc_memalign(static_cast<std::size_t>(alignment), size ? size : 1);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    count(&Counts::newCalls);
    return __libc_memalign(static_cast<std::size_t>(alignment), size ? size : 1);
}

void operator delete(void* pointer) noexcept { release(pointer); }
void operator delete[](void* pointer) noexcept { release(pointer); }
void operator delete(void* pointer, std::size_t) noexcept { release(pointer); }
void operator delete[](void* pointer, std::size_t) noexcept { release(pointer); }
void operator delete(void* pointer, const std::nothrow_t&) noexcept { release(pointer); }
void operator delete[](void* pointer, const std::nothrow_t&) noexcept { release(pointer); }
void operator delete(void* pointer, std::align_val_t) noexcept { release(pointer); }
void operator delete[](void* pointer, std::align_val_t) noexcept { release(pointer); }
void operator delete(void* pointer, std::size_t, std::align_val_t) noexcept { release(pointer); }
void operator delete[](void* pointer, std::size_t, std::align_val_t) noexcept { release(pointer); }
void operator delete(void* pointer, std::align_val_t, const std::nothrow_t&) noexcept { release(pointer); }
void operator delete[](void* pointer, std::align_val_t, const std::nothrow_t&) noexcept { release(pointer); }

namespace validate::realtime {
bool available() {
    // A plug-in binds to what the global scope finds first: it must be ours.
    return dlsym(RTLD_DEFAULT, "malloc") == reinterpret_cast<void*>(&::malloc) &&
           dlsym(RTLD_DEFAULT, "pthread_mutex_lock") == reinterpret_cast<void*>(&::pthread_mutex_lock);
}
}  // namespace validate::realtime

#else

namespace validate::realtime {
bool available() { return false; }
}  // namespace validate::realtime

#endif
