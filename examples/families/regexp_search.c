/* The first match with its groups; then, with the option "g", the groups of all matches. */
#include <stdio.h>
#include <string.h>
#include <zelchmx.h>

int main(void) {
    const char* text = "width=640 height=480";
    const int len = (int)strlen(text);
    ZelRegExpState *first, *all;
    ZelRegExpFind found[8];
    int errorOffset, count = 8;

    if (zelsRegExpInitAlloc("(\\w+)=(\\d+)", "", &first, &errorOffset) != zelStatusOk ||
        zelsRegExpInitAlloc("(\\w+)=(\\d+)", "g", &all, &errorOffset) != zelStatusOk)
        return 1;

    zelsRegExpFind_8u((const Zel8u*)text, len, first, found, &count);
    for (int i = 0; i < count; ++i)
        printf("%d: %.*s\n", i, found[i].lenMatch, (const char*)found[i].pMatch);

    count = 8;
    zelsRegExpFind_8u((const Zel8u*)text, len, all, found, &count);
    for (int i = 0; i < count; i += 2)
        printf("%.*s is %.*s\n", found[i].lenMatch, (const char*)found[i].pMatch,
               found[i + 1].lenMatch, (const char*)found[i + 1].pMatch);

    zelsRegExpFree(first);
    zelsRegExpFree(all);
    return 0;
}
