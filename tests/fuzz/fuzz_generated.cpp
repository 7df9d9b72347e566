// The input steers the generator of the differential test, so that every input is a meaningful
// pattern with a subject that tends to match.
#include "differential/regexp_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    differential::Random random(bytes, size);
    differential::RegexpCase test = differential::makeRegexpCase(random);
    if (test.pattern.size() > 300) test.pattern.resize(300);
    if (test.subject.size() > 200) test.subject.resize(200);
    if (test.limit > 2000) test.limit = 2000;
    fuzz::check(test);
    return 0;
}
