// The library itself, called as any user calls it: through its shared object and public header.
#pragma once

#include "strings/jobs.h"

namespace bench {

struct Library {
    static constexpr const char* name = "zelchmx";
    static constexpr Kind kind = Kind::Library;

    using J8 = Job<Zel8u>;
    using J16 = Job<Zel16u>;

    static int run(FindC, const J8& j) { return index(zelsFindC_8u, j.src, j.len, j.value); }
    static int run(FindC, const J16& j) { return index(zelsFindC_16u, j.src, j.len, j.value); }
    static int run(FindRevC, const J8& j) { return index(zelsFindRevC_8u, j.src, j.len, j.value); }
    static int run(FindRevC, const J16& j) {
        return index(zelsFindRevC_16u, j.src, j.len, j.value);
    }
    static int run(FindCAny, const J8& j) { return withArg(zelsFindCAny_8u, j); }
    static int run(FindCAny, const J16& j) { return withArg(zelsFindCAny_16u, j); }
    static int run(FindRevCAny, const J8& j) { return withArg(zelsFindRevCAny_8u, j); }
    static int run(FindRevCAny, const J16& j) { return withArg(zelsFindRevCAny_16u, j); }
    static int run(Find, const J8& j) { return withArg(zelsFind_8u, j); }
    static int run(Find, const J16& j) { return withArg(zelsFind_16u, j); }
    static int run(FindRev, const J8& j) { return withArg(zelsFindRev_8u, j); }
    static int run(FindRev, const J16& j) { return withArg(zelsFindRev_16u, j); }

    static int run(Compare, const J8& j) { return index(zelsCompare_8u, j.src, j.arg, j.len); }
    static int run(Compare, const J16& j) { return index(zelsCompare_16u, j.src, j.arg, j.len); }
    static int run(Equal, const J8& j) { return index(zelsEqual_8u, j.src, j.arg, j.len); }
    static int run(Equal, const J16& j) { return index(zelsEqual_16u, j.src, j.arg, j.len); }
    static int run(CompareIgnoreCaseLatin, const J8& j) {
        return index(zelsCompareIgnoreCaseLatin_8u, j.src, j.arg, j.len);
    }
    static int run(CompareIgnoreCaseLatin, const J16& j) {
        return index(zelsCompareIgnoreCaseLatin_16u, j.src, j.arg, j.len);
    }
    static int run(CompareIgnoreCase, const J16& j) {
        return index(zelsCompareIgnoreCase_16u, j.src, j.arg, j.len);
    }

    static int run(UppercaseLatin, const J8& j) {
        return zelsUppercaseLatin_8u(j.src, j.dst, j.len);
    }
    static int run(UppercaseLatin, const J16& j) {
        return zelsUppercaseLatin_16u(j.src, j.dst, j.len);
    }
    static int run(LowercaseLatin, const J8& j) {
        return zelsLowercaseLatin_8u(j.src, j.dst, j.len);
    }
    static int run(LowercaseLatin, const J16& j) {
        return zelsLowercaseLatin_16u(j.src, j.dst, j.len);
    }
    static int run(Uppercase, const J16& j) { return zelsUppercase_16u(j.src, j.dst, j.len); }
    static int run(Lowercase, const J16& j) { return zelsLowercase_16u(j.src, j.dst, j.len); }

    static int run(ReplaceC, const J8& j) {
        return zelsReplaceC_8u(j.src, j.dst, j.len, j.value, j.newValue);
    }
    static int run(ReplaceC, const J16& j) {
        return zelsReplaceC_16u(j.src, j.dst, j.len, j.value, j.newValue);
    }
    static int run(Insert, const J8& j) {
        return zelsInsert_8u(j.src, j.len, j.arg, j.argLen, j.dst, j.at);
    }
    static int run(Insert, const J16& j) {
        return zelsInsert_16u(j.src, j.len, j.arg, j.argLen, j.dst, j.at);
    }
    static int run(Remove, const J8& j) {
        return zelsRemove_8u(j.src, j.len, j.dst, j.at, j.count);
    }
    static int run(Remove, const J16& j) {
        return zelsRemove_16u(j.src, j.len, j.dst, j.at, j.count);
    }
    static int run(Concat, const J8& j) {
        return zelsConcat_8u(j.src, j.len, j.arg, j.argLen, j.dst);
    }
    static int run(Concat, const J16& j) {
        return zelsConcat_16u(j.src, j.len, j.arg, j.argLen, j.dst);
    }
    static int run(ConcatList, const ListJob<Zel8u>& j) {
        return zelsConcat_8u_D2L(j.pieces, j.lengths, j.count, j.dst);
    }
    static int run(ConcatList, const ListJob<Zel16u>& j) {
        return zelsConcat_16u_D2L(j.pieces, j.lengths, j.count, j.dst);
    }
    static int run(ConcatCList, const ListJob<Zel8u>& j) {
        return zelsConcatC_8u_D2L(j.pieces, j.lengths, j.count, j.value, j.dst);
    }
    static int run(ConcatCList, const ListJob<Zel16u>& j) {
        return zelsConcatC_16u_D2L(j.pieces, j.lengths, j.count, j.value, j.dst);
    }
    static int run(SplitC, const SplitJob<Zel8u>& j) { return split(zelsSplitC_8u_D2L, j); }
    static int run(SplitC, const SplitJob<Zel16u>& j) { return split(zelsSplitC_16u_D2L, j); }

    static int run(TrimC, const J8& j) { return index(zelsTrimC_8u, j.src, j.len, j.value, j.dst); }
    static int run(TrimC, const J16& j) {
        return index(zelsTrimC_16u, j.src, j.len, j.value, j.dst);
    }
    static int run(TrimCAny, const J8& j) {
        return index(zelsTrimCAny_8u, j.src, j.len, j.arg, j.argLen, j.dst);
    }
    static int run(TrimCAny, const J16& j) {
        return index(zelsTrimCAny_16u, j.src, j.len, j.arg, j.argLen, j.dst);
    }

    static std::int64_t run(Hash, const J8& j) { return hash(zelsHash_8u32u, j); }
    static std::int64_t run(Hash, const J16& j) { return hash(zelsHash_16u32u, j); }
    static std::int64_t run(HashSJ2, const J8& j) { return hash(zelsHashSJ2_8u32u, j); }
    static std::int64_t run(HashSJ2, const J16& j) { return hash(zelsHashSJ2_16u32u, j); }
    static std::int64_t run(HashMSCS, const J8& j) { return hash(zelsHashMSCS_8u32u, j); }
    static std::int64_t run(HashMSCS, const J16& j) { return hash(zelsHashMSCS_16u32u, j); }

    static int run(ConvertUtf, const ConvertJob<Zel8u, Zel16u>& j) {
        return convert(zelsConvertUTF_8u16u, j);
    }
    static int run(ConvertUtf, const ConvertJob<Zel16u, Zel8u>& j) {
        return convert(zelsConvertUTF_16u8u, j);
    }

    static int run(Copy, const J8& j) { return zelsCopy_8u(j.src, j.dst, j.len); }
    static int run(Move, const J8& j) { return zelsMove_8u(j.src, j.dst, j.len); }
    static int run(Zero, const J8& j) { return zelsZero_8u(j.dst, j.len); }

private:
    // Calls a function whose last argument is an output index, result or length, and answers that.
    template <class Function, class... Arguments>
    static int index(Function function, Arguments... arguments) {
        int result = 0;
        function(arguments..., &result);
        return result;
    }
    template <class Function, class J>
    static int withArg(Function function, const J& j) {
        return index(function, j.src, j.len, j.arg, j.argLen);
    }
    template <class Function, class J>
    static std::int64_t hash(Function function, const J& j) {
        Zel32u value = 0;
        function(j.src, j.len, &value);
        return value;
    }
    template <class Function, class J>
    static int convert(Function function, const J& j) {
        int consumed = j.len;
        int written = j.dstLen;
        function(j.src, &consumed, j.dst, &written, 0);
        return written;
    }
    template <class Function, class J>
    static int split(Function function, const J& j) {
        int count = j.slotCount;
        function(j.src, j.len, j.value, j.slots, j.slotLengths, &count);
        return count;
    }
};

}  // namespace bench
