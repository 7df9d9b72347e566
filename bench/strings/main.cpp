// The string functions beside what else does their job. See scripts/bench.

#include "strings/family.h"

int main(int argc, char** argv) {
    bench::Suite suite("strings", argc, argv);
    bench::blockRows(suite);
    bench::searchRows(suite);
    bench::compareRows(suite);
    bench::caseRows(suite);
    bench::editRows(suite);
    bench::trimRows(suite);
    bench::hashRows(suite);
    bench::utfRows(suite);
    return suite.finish();
}
