// Compiles a pattern and collects all its matches in a subject, as the model does, with room for
// few or many records.
#include "differential/regexp_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::RegexpCase test;
    test.options = input.options();
    std::erase(test.options, 'g');
    test.options += 'g';
    test.format = input.byte() & 1;
    test.limit = input.byte() * 8;
    test.records = 1 + input.byte() % 64;
    test.pattern = input.text(100);
    test.subject = input.rest(200);
    fuzz::check(test);
    return 0;
}
