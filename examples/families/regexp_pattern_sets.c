/* Two patterns over one line in one call. */
#include <stdio.h>
#include <string.h>
#include <zelchmx.h>

enum { kAddress = 1, kStatus = 2 };

int main(void) {
    const char* line = "192.0.2.7 - GET /index.html 404";
    ZelRegExpState *address, *code;
    ZelRegExpMultiState* set;
    ZelRegExpFind found[2][1];
    ZelRegExpMultiFind results[2];
    int errorOffset;

    if (zelsRegExpInitAlloc("^\\d+(\\.\\d+){3}", "", &address, &errorOffset) != zelStatusOk ||
        zelsRegExpInitAlloc("\\b[45]\\d\\d$", "", &code, &errorOffset) != zelStatusOk ||
        zelsRegExpMultiInitAlloc(&set, 2) != zelStatusOk)
        return 1;
    zelsRegExpMultiAdd(address, kAddress, set);
    zelsRegExpMultiAdd(code, kStatus, set);

    for (int i = 0; i < 2; ++i) {
        results[i].pFind = found[i];
        results[i].numFind = 1;
    }
    zelsRegExpMultiFind_8u((const Zel8u*)line, (int)strlen(line), results, set);
    for (int i = 0; i < 2; ++i)
        if (results[i].status == zelStatusOk && results[i].numFind > 0)
            printf("%s: %.*s\n", results[i].identifier == kAddress ? "address" : "status",
                   found[i][0].lenMatch, (const char*)found[i][0].pMatch);

    zelsRegExpMultiFree(set);
    zelsRegExpFree(address);
    zelsRegExpFree(code);
    return 0;
}
