// Runs a series of calls on a pattern set and searches it, as the model does.
#include <cstring>

#include "differential/replace_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    differential::SetCase test;
    std::memcpy(&test.number, bytes, size < sizeof test.number ? size : sizeof test.number);
    fuzz::check(test);
    return 0;
}
