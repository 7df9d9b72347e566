/* A pattern in the caller's own memory, and what a pattern that does not compile tells. */
#include <stdio.h>
#include <stdlib.h>
#include <zelchmx.h>

int main(void) {
    const char* pattern = "(\\w+)=(\\d+)";
    int size, errorOffset;

    zelsRegExpGetSize(pattern, &size);
    ZelRegExpState* state = malloc((size_t)size);
    if (state == NULL) return 1;
    ZelStatus status = zelsRegExpInit(pattern, "i", state, &errorOffset);
    printf("%d bytes, status %d\n", size, status);
    zelsRegExpSetMatchLimit(1000000, state); /* steps that one search may take; 10000 at first */
    zelsRegExpSetFormat(0, state);           /* subjects are bytes; at first they are UTF-8 */
    free(state);

    status = zelsRegExpInitAlloc("[z-a]", NULL, &state, &errorOffset);
    printf("status %d at offset %d\n", status, errorOffset);
    return 0;
}
