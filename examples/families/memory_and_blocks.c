/* A block from the library's allocator, cleared, filled, and shifted within itself. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u source[] = "abcdef";
    Zel8u* block = zelsMalloc_8u(16);
    if (block == NULL) return 1;

    zelsZero_8u(block, 16);
    zelsCopy_8u(source, block, 6);
    zelsMove_8u(block, block + 2, 6); /* the ranges overlap: only Move is right here */
    printf("%s\n", (const char*)block);

    zelsFree(block);
    return 0;
}
