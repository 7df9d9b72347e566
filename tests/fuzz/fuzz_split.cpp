// Splits the input at a delimiter into slots of chosen capacities, as the model does.
#include "differential/string_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::StringCase test;
    test.function = differential::kSplitC;
    test.width = (input.byte() & 1) != 0 ? 16 : 8;
    int slots = input.byte() % 16;
    for (int i = 0; i < slots; ++i) test.list.push_back(input.byte() % 64);
    test.amount = slots;
    test.value = static_cast<Zel16u>(input.byte());
    for (char c : input.rest(400)) test.source.push_back(static_cast<uint8_t>(c));
    fuzz::check(test);
    return 0;
}
