/* Insert, remove and replace; join a list with a delimiter, and split it again. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    Zel8u text[32] = "zelchmx is";
    int len = 10;

    zelsInsert_8u_I((const Zel8u*)" here", 5, text, &len, 10); /* the length follows */
    zelsReplaceC_8u(text, text, len, ' ', '_');
    printf("%.*s\n", len, (const char*)text);
    zelsRemove_8u_I(text, &len, 0, 8);
    printf("%.*s\n", len, (const char*)text);

    const Zel8u* parts[] = {(const Zel8u*)"one", (const Zel8u*)"two", (const Zel8u*)"three"};
    const int lengths[] = {3, 3, 5};
    Zel8u joined[16];
    zelsConcatC_8u_D2L(parts, lengths, 3, ',', joined);
    printf("%.13s\n", (const char*)joined);

    Zel8u first[8], second[8];
    Zel8u* slots[] = {first, second};
    int room[] = {8, 8}, filled = 2;
    ZelStatus status = zelsSplitC_8u_D2L(joined, 13, ',', slots, room, &filled);
    printf("%d parts, the second is %.*s%s\n", filled, room[1], (const char*)second,
           status == zelStatusSplitIncompleteWarning ? ", and more is left" : "");
    return 0;
}
