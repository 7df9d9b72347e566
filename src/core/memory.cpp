// Allocation. It belongs to libzelcore; nothing else in the library allocates or releases.
#include "zelchmx.h"
#include "zelcore.h"

extern "C" {

void* zelsMalloc_8u(int len) {
    return len < 1 ? nullptr : zelMalloc(len);
}

void zelsFree(void* ptr) {
    zelFree(ptr);
}

}  // extern "C"
