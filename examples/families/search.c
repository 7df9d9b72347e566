/* Substrings, single elements and sets of elements, from either end. */
#include <stdio.h>
#include <string.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* path = (const Zel8u*)"/usr/lib/libc.so.6";
    const int len = (int)strlen((const char*)path);
    int index;

    zelsFind_8u(path, len, (const Zel8u*)"lib", 3, &index);
    printf("first lib: %d\n", index);
    zelsFindRev_8u(path, len, (const Zel8u*)"lib", 3, &index);
    printf("last lib: %d\n", index);
    zelsFindRevC_8u(path, len, '/', &index);
    printf("file name: %s\n", (const char*)path + index + 1);
    zelsFindCAny_8u(path, len, (const Zel8u*)"0123456789", 10, &index);
    printf("first digit: %d\n", index);
    zelsFindC_8u(path, len, '#', &index); /* finding nothing is no error: the index is -1 */
    printf("no such element: %d\n", index);
    return 0;
}
