// Compiles the input as a pattern: status, error offset and node program as the model has them, and
// no byte written outside the object.
#include "differential/regexp_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::RegexpCase test;
    test.options = input.options();
    test.pattern = input.text(300);
    test.limit = 50;
    fuzz::check(test);
    return 0;
}
