// Calls ten hot string functions, each once on a text of some thousand elements, for callgrind to
// count: collection is on during the call alone, and a dump with the name of the row follows each.
// Texts and addresses are the same in every run, and so are the counts. A call before the counted
// one has the dynamic linker bind the function.
#include <stdio.h>
#include <string.h>
#include <valgrind/callgrind.h>

#include "zelchmx.h"

namespace {

constexpr int kLen = 4096;

alignas(64) Zel8u g_text[kLen + 1];
alignas(64) Zel8u g_same[kLen + 1];
alignas(64) Zel8u g_otherCase[kLen + 1];
alignas(64) Zel16u g_units[kLen];
alignas(64) Zel8u g_mixed[kLen + 16];
alignas(64) Zel8u g_bytesOut[3 * kLen];
alignas(64) Zel16u g_unitsOut[kLen + 16];

// Words of lower-case letters with a space or a line end between them.
void writeTexts() {
    unsigned state = 1;
    const auto below = [&state](unsigned n) {
        state = state * 1103515245 + 12345;
        return (state >> 16) % n;
    };
    for (int i = 0; i < kLen; ++i) {
        const unsigned gap = below(24);
        const unsigned c = gap == 0 ? '\n' : gap < 4 ? ' ' : 'a' + below(20);
        g_text[i] = g_same[i] = static_cast<Zel8u>(c);
        g_otherCase[i] = static_cast<Zel8u>(c >= 'a' && below(2) == 0 ? c - 'a' + 'A' : c);
        // Half of the letters are Cyrillic.
        g_units[i] = static_cast<Zel16u>(c >= 'a' && below(2) == 0 ? c - 'a' + 0x430 : c);
    }
}

// The units as UTF-8, as many of them as fit.
int writeMixed() {
    int consumed = kLen, written = kLen;
    zelsConvertUTF_16u8u(g_units, &consumed, g_mixed, &written, 0);
    return written;
}

template <typename Call>
void count(const char* name, Call call) {
    call();
    CALLGRIND_TOGGLE_COLLECT;
    call();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name);
}

}  // namespace

int main() {
    // The choice that the library made as well. The caller of this program checks it.
    __builtin_cpu_init();
    const bool avx512 = __builtin_cpu_supports("avx512bw");
    puts(avx512 ? "avx512" : __builtin_cpu_supports("avx2") ? "avx2" : "sse2");

    writeTexts();
    const int mixedLen = writeMixed();
    const Zel8u set[] = {'u', 'v', 'w', 'x', 'y', 'z', '-', '+'};
    const Zel8u needle[] = {'q', 'u', 'e', 'r', 'y'};
    int index = 0;
    Zel32u hash = 0;
    int consumed = 0, written = 0;

    count("FindC_8u", [&] { zelsFindC_8u(g_text, kLen, 'z', &index); });
    count("FindCAny_8u", [&] { zelsFindCAny_8u(g_text, kLen, set, 8, &index); });
    count("Find_8u", [&] { zelsFind_8u(g_text, kLen, needle, 5, &index); });
    count("Compare_8u", [&] { zelsCompare_8u(g_text, g_same, kLen, &index); });
    count("CompareIgnoreCaseLatin_8u",
          [&] { zelsCompareIgnoreCaseLatin_8u(g_text, g_otherCase, kLen, &index); });
    count("UppercaseLatin_8u", [&] { zelsUppercaseLatin_8u(g_text, g_bytesOut, kLen); });
    count("Uppercase_16u", [&] { zelsUppercase_16u(g_units, g_unitsOut, kLen); });
    count("HashSJ2_8u32u", [&] { zelsHashSJ2_8u32u(g_text, kLen, &hash); });
    count("ConvertUTF_8u16u", [&] {
        consumed = mixedLen;
        written = kLen;
        zelsConvertUTF_8u16u(g_mixed, &consumed, g_unitsOut, &written, 0);
    });
    count("ConvertUTF_16u8u", [&] {
        consumed = kLen;
        written = 3 * kLen;
        zelsConvertUTF_16u8u(g_units, &consumed, g_bytesOut, &written, 0);
    });
    return 0;
}
