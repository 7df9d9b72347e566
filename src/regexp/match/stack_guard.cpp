// Where a thread's stack ends. The main thread's grows down from a known top as far as the resource
// limit allows, which is asked for without allocation; other threads are asked of the thread
// library.
#include "regexp/match/stack_guard.h"

#include <pthread.h>
#include <sys/resource.h>

extern "C" void* __libc_stack_end;  // the top of the main thread's stack

namespace zel {

namespace {

// A search on the main stack may use this much before anybody asks.
constexpr ptrdiff_t kNearMain = 32 * 1024;
// Room for what runs without asking: node functions, kernels, a signal handler.
constexpr ptrdiff_t kMargin = 16 * 1024;
// The kernel keeps at least 128 MiB below the main stack free of other mappings, whatever the
// limit.
constexpr rlim_t kLargestMain = 64 * 1024 * 1024;
// On a stack that is not the thread's own (a coroutine's) nothing is known; this much is taken for
// granted.
constexpr ptrdiff_t kForeignStack = 32 * 1024;

bool onMainStack(const char* here) {
    const char* top = static_cast<const char*>(__libc_stack_end);
    return here < top && static_cast<rlim_t>(top - here) < kLargestMain;
}

const char* endOfMainStack() {
    rlimit limit;
    rlim_t size = kLargestMain;
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur < size) size = limit.rlim_cur;
    return static_cast<const char*>(__libc_stack_end) - size;
}

const char* endOfThreadStack(const char* here) {
    const char* unknown = here + kMargin + StackGuard::kNearThread - kForeignStack;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return unknown;
    void* address = nullptr;
    size_t size = 0;
    const int failed = pthread_attr_getstack(&attributes, &address, &size);
    pthread_attr_destroy(&attributes);
    const char* end = static_cast<const char*>(address);
    return failed == 0 && here >= end && here < end + size ? end : unknown;
}

}  // namespace

void StackGuard::start() {
    limit_ = static_cast<const char*>(__builtin_frame_address(0)) - kNearThread;
    reach_ = kNear;
}

bool StackGuard::extend(const char* here, size_t bytes) {
    const char* const deepest = here - bytes;
    if (reach_ == kNear) {
        reach_ = kNearOnMain;
        if (onMainStack(here)) limit_ -= kNearMain - kNearThread;
        if (deepest > limit_) return true;
    }
    if (reach_ == kNearOnMain) {
        reach_ = kAll;
        const char* end = onMainStack(here) ? endOfMainStack() : endOfThreadStack(here);
        // What has been granted stays granted: there may be too little room for what is wanted
        // now, and enough for all else.
        if (end + kMargin < limit_) limit_ = end + kMargin;
    }
    return deepest > limit_;
}

}  // namespace zel
