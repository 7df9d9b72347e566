// Replaces the matches of a pattern by a template, as the model does, with little or much room.
#include "differential/replace_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::ReplaceCase test;
    test.options = input.options();
    test.limit = input.byte() * 8;
    test.capacity = input.byte();
    test.records = 1 + input.byte() % 32;
    test.pattern = input.text(100);
    test.replacement = input.text(40);
    test.subject = input.rest(200);
    fuzz::check(test);
    return 0;
}
