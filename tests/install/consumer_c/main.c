/* A program in C99 that knows the library only as installed. */
#include <stdio.h>
#include <string.h>
#include <zelchmx.h>

int main(void) {
    const char* text = "key = value";
    ZelRegExpState* pattern = NULL;
    ZelRegExpFind found[3];
    int count = 3, offset = 0;

    if (zelsRegExpInitAlloc("(\\w+) = (\\w+)", NULL, &pattern, &offset) != zelStatusOk) return 1;
    if (zelsRegExpFind_8u((const Zel8u*)text, (int)strlen(text), pattern, found, &count) != 0)
        return 2;
    printf("%d %.*s\n", count, found[2].lenMatch, (const char*)found[2].pMatch);
    zelsRegExpFree(pattern);
    return strcmp(zelchGetLibVersion()->libraryName, "libzelchmx.so.6.1") == 0 ? 0 : 3;
}
