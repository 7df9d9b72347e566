/* UTF-8 to UTF-16 and back. Both lengths are in and out. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* text = (const Zel8u*)"e\xC3\xA9\xF0\x9F\x98\x80"; /* e, e acute, an emoji */
    Zel16u units[8];
    Zel8u back[16];
    int bytes = 7, count = 8, room = 16;

    zelsConvertUTF_8u16u(text, &bytes, units, &count, 0);
    printf("%d bytes are %d units:", bytes, count);
    for (int i = 0; i < count; ++i) printf(" %04X", units[i]);
    printf("\n");

    zelsConvertUTF_16u8u(units, &count, back, &room, 0);
    printf("and %d bytes again\n", room);
    return 0;
}
