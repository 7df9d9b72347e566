/* Blanks off both ends; any of a set off one end. */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const Zel8u* line = (const Zel8u*)"  key = value;;\r\n";
    Zel8u trimmed[32];
    int len;

    zelsTrimEndCAny_8u(line, 17, (const Zel8u*)"\r\n;", 3, trimmed, &len);
    zelsTrimC_8u_I(trimmed, &len, ' ');
    printf("[%.*s]\n", len, (const char*)trimmed);
    return 0;
}
