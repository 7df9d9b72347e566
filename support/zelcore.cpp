// The core support library: memory comes from the C library, the thread count from the OpenMP
// runtime.
#include "zelcore.h"

#include <omp.h>
#include <stdlib.h>

#define ZELCORE_EXPORT __attribute__((visibility("default")))

extern "C" {

ZELCORE_EXPORT void* zelMalloc(int len) {
    return malloc(static_cast<size_t>(len));
}

ZELCORE_EXPORT void zelFree(void* ptr) {
    free(ptr);
}

ZELCORE_EXPORT int ownGetNumThreads(void) {
    const int threads = omp_get_max_threads();
    return threads < 1 ? 1 : threads;
}

}  // extern "C"
