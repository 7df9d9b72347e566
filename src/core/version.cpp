// The version record.
#include "zelchmx.h"

namespace {

constexpr ZelLibraryVersion kVersion = {
    .major = 6,
    .minor = 1,
    .buildNumber = 137,
    .buildSerial = 778,  // a number of its own, not the second number of the text
    .cpuCode = {'m', 'x', '\0', '\0'},
    .libraryName = "libzelchmx.so.6.1",
    .versionText = "6.1 build 137.56",
    .buildDate = "Mar 17 2010",
};

}  // namespace

extern "C" const ZelLibraryVersion* zelchGetLibVersion(void) {
    return &kVersion;
}
