/* Every match replaced by a template. */
#include <stdio.h>
#include <stdlib.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* text = (const Zel8u*)"2026-11-21 and 2027-01-05";
    const Zel8u* template = (const Zel8u*)"$3.$2.$1";
    ZelRegExpState* pattern;
    ZelRegExpFind found[16];
    Zel8u out[64];
    int size, errorOffset, used = 25, made = 64, count = 16;

    if (zelsRegExpInitAlloc("(\\d+)-(\\d+)-(\\d+)", "g", &pattern, &errorOffset) != zelStatusOk)
        return 1;
    zelsRegExpReplaceGetSize(template, &size);
    ZelRegExpReplaceState* replacement = malloc((size_t)size);
    if (replacement == NULL || zelsRegExpReplaceInit(template, replacement) != zelStatusOk)
        return 1;

    zelsRegExpReplace_8u(text, &used, out, &made, found, &count, pattern, replacement);
    printf("%.*s\n", made, (const char*)out);

    free(replacement);
    zelsRegExpFree(pattern);
    return 0;
}
