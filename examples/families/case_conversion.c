/* Upper and lower case: ASCII letters alone, or all letters of 16-bit strings. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    Zel8u header[] = "content-type";
    const Zel16u word[] = {'f', 'i', 'a', 'n', 'c', 0x00E9}; /* ends in e acute */
    Zel16u upper[6];

    zelsUppercaseLatin_8u_I(header, 1); /* in place, the first byte only */
    printf("%s\n", (const char*)header);
    zelsUppercase_16u(word, upper, 6);
    for (int i = 0; i < 6; ++i) printf("%04X ", upper[i]);
    printf("\n");
    return 0;
}
