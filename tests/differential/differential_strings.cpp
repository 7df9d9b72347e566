// The string functions of the library against the plain model, on generated calls:
//   differential_strings SEED COUNT [FIRST [REPORTS]]
//   differential_strings SEED show NUMBER
#include "runner.h"
#include "string_case.h"

int main(int argc, char** argv) {
    return differential::runCases<differential::StringCase>(argc, argv,
                                                            differential::makeStringCase);
}
