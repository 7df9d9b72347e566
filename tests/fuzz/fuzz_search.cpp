// Compiles a pattern and searches a subject for its first match, as the model does, to the exact
// step.
#include "differential/regexp_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::RegexpCase test;
    test.options = input.options();
    std::erase(test.options, 'g');
    test.format = input.byte() & 1;
    test.limit = input.byte() * 8;
    test.behind = input.byte();
    test.pattern = input.text(100);
    test.subject = input.rest(200);
    fuzz::check(test);
    return 0;
}
