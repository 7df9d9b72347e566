// Replace of the library against the plain model, on generated patterns, templates and buffers:
//   differential_replace SEED COUNT [FIRST [REPORTS]]
//   differential_replace SEED show NUMBER
#include "replace_case.h"
#include "runner.h"

int main(int argc, char** argv) {
    using namespace differential;
    return runCases<ReplaceCase>(argc, argv, makeReplaceCase);
}
