// Pattern sets of the library against the plain model, on generated series of calls:
//   differential_sets SEED COUNT [FIRST [REPORTS]]
//   differential_sets SEED show NUMBER
#include "replace_case.h"
#include "runner.h"

int main(int argc, char** argv) {
    using namespace differential;
    return runCases<SetCase>(argc, argv, makeSetCase);
}
