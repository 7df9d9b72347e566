// Two threads of a team search with one pattern object's own scratch, which the interface forbids.
// The thread sanitizer must report it: this is the proof that it sees races in parallel regions,
// and so that its silence about pattern sets means something.
#include <string.h>

#include "zelchmx.h"

int main() {
    const char* const text = "a line with some words and 12 numbers";
    ZelRegExpState* pattern = nullptr;
    int errorOffset = 0;
    if (zelsRegExpInitAlloc("(\\w+) (\\d+)", "", &pattern, &errorOffset) != zelStatusOk) return 1;
#pragma omp parallel num_threads(2)
    {
        ZelRegExpFind find[3];
        int numFind = 3;
        zelsRegExpFind_8u(reinterpret_cast<const Zel8u*>(text), static_cast<int>(strlen(text)),
                          pattern, find, &numFind);
    }
    zelsRegExpFree(pattern);
    return 0;
}
