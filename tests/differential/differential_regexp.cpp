// Compiler and search of the library against the plain model, on generated cases:
//   differential_regexp SEED COUNT [FIRST [REPORTS]]
//   differential_regexp SEED show NUMBER
#include "regexp_case.h"
#include "runner.h"

int main(int argc, char** argv) {
    using namespace differential;
    return runCases<RegexpCase>(argc, argv, makeRegexpCase, regexpTotals);
}
