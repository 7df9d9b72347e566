/* Which library is this program running with? */
#include <stdio.h>
#include <zelchmx.h>

int main(void) {
    const ZelLibraryVersion* version = zelchGetLibVersion();
    printf("%s, version %s\n", version->libraryName, version->versionText);
    return 0;
}
