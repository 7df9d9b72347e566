// Converts the input between UTF-8 and UTF-16, as the model does.
#include "differential/string_case.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    fuzz::Input input(bytes, size);
    differential::StringCase test;
    bool toUtf16 = (input.byte() & 1) != 0;
    test.function = toUtf16 ? differential::kToUtf16 : differential::kToUtf8;
    test.width = toUtf16 ? 8 : 16;
    test.amount = input.byte() & 1;
    int room = input.byte();
    std::string text = input.rest(600);
    size_t step = toUtf16 ? 1 : 2;
    for (size_t i = 0; i + step <= text.size(); i += step) {
        int element = static_cast<uint8_t>(text[i]);
        if (!toUtf16) element |= static_cast<uint8_t>(text[i + 1]) << 8;
        test.source.push_back(static_cast<Zel16u>(element));
    }
    test.start = room == 255 ? 4 * static_cast<int>(test.source.size()) : room;
    fuzz::check(test);
    return 0;
}
