/* Three hashes of the same word. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* word = (const Zel8u*)"hello";
    Zel32u hash;

    zelsHash_8u32u(word, 5, &hash);
    printf("%08x ", hash);
    zelsHashSJ2_8u32u(word, 5, &hash);
    printf("%08x ", hash);
    zelsHashMSCS_8u32u(word, 5, &hash);
    printf("%08x\n", hash);
    return 0;
}
