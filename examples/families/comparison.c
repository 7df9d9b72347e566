/* Order and equality, exactly and without regard to case. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* content = (const Zel8u*)"Content-Length";
    const Zel8u* header = (const Zel8u*)"content-length";
    const Zel16u greek1[] = {0x03A9, 0x03B4}; /* capital omega, small delta */
    const Zel16u greek2[] = {0x03C9, 0x0394}; /* small omega, capital delta */
    int result;

    zelsEqual_8u(content, header, 14, &result);
    printf("equal: %d\n", result);
    zelsCompare_8u(content, header, 14, &result);
    printf("sorts %s\n", result < 0 ? "before" : "behind");
    zelsCompareIgnoreCaseLatin_8u(content, header, 14, &result);
    printf("without case: %d\n", result);
    zelsCompareIgnoreCase_16u(greek1, greek2, 2, &result);
    printf("Greek without case: %d\n", result);
    return 0;
}
