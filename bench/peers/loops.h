// The loops a user writes by hand, compiled twice: as packages are built (-O2) and with everything
// this machine has (-O3 -march=native). Each build is a translation unit of its own; `Build` only
// keeps their names apart.
#pragma once

#include "strings/jobs.h"

namespace bench {

struct PlainBuild {
    static constexpr const char* name = "loop -O2";
};
struct NativeBuild {
    static constexpr const char* name = "loop -O3 native";
};

template <class Build, class T>
struct Loop {
    static int findC(const T* src, int len, T value);
    static int findRevC(const T* src, int len, T value);
    static int findCAny(const T* src, int len, const T* set, int setLen);
    static int findRevCAny(const T* src, int len, const T* set, int setLen);
    static int find(const T* src, int len, const T* needle, int needleLen);
    static int findRev(const T* src, int len, const T* needle, int needleLen);
    static int compare(const T* a, const T* b, int len);
    static int equal(const T* a, const T* b, int len);
    static int compareIgnoreCaseLatin(const T* a, const T* b, int len);
    static void uppercaseLatin(const T* src, T* dst, int len);
    static void lowercaseLatin(const T* src, T* dst, int len);
    static void replaceC(const T* src, T* dst, int len, T from, T to);
    static T* copy(const T* src, T* dst, int len);
    static void zero(T* dst, int len);
    static int splitC(const T* src, int len, T value, T* const* slots, int* slotLengths);
    static int trimC(const T* src, int len, T value, T* dst);
    static int trimCAny(const T* src, int len, const T* set, int setLen, T* dst);
    static Zel32u hash(const T* src, int len);
    static Zel32u hashSJ2(const T* src, int len);
    static Zel32u hashMSCS(const T* src, int len);
};

// Conversions of well-formed text.
template <class Build>
struct UtfLoop {
    static int to16(const Zel8u* src, int len, Zel16u* dst);
    static int to8(const Zel16u* src, int len, Zel8u* dst);
};

template <class Build>
struct HandLoop {
    static constexpr const char* name = Build::name;
    static constexpr Kind kind = Kind::Loop;

    template <class T>
    using L = Loop<Build, T>;

    template <class T>
    static int run(FindC, const Job<T>& j) {
        return L<T>::findC(j.src, j.len, j.value);
    }
    template <class T>
    static int run(FindRevC, const Job<T>& j) {
        return L<T>::findRevC(j.src, j.len, j.value);
    }
    template <class T>
    static int run(FindCAny, const Job<T>& j) {
        return L<T>::findCAny(j.src, j.len, j.arg, j.argLen);
    }
    template <class T>
    static int run(FindRevCAny, const Job<T>& j) {
        return L<T>::findRevCAny(j.src, j.len, j.arg, j.argLen);
    }
    template <class T>
    static int run(Find, const Job<T>& j) {
        return L<T>::find(j.src, j.len, j.arg, j.argLen);
    }
    template <class T>
    static int run(FindRev, const Job<T>& j) {
        return L<T>::findRev(j.src, j.len, j.arg, j.argLen);
    }
    template <class T>
    static int run(Compare, const Job<T>& j) {
        return L<T>::compare(j.src, j.arg, j.len);
    }
    template <class T>
    static int run(Equal, const Job<T>& j) {
        return L<T>::equal(j.src, j.arg, j.len);
    }
    template <class T>
    static int run(CompareIgnoreCaseLatin, const Job<T>& j) {
        return L<T>::compareIgnoreCaseLatin(j.src, j.arg, j.len);
    }
    template <class T>
    static int run(UppercaseLatin, const Job<T>& j) {
        L<T>::uppercaseLatin(j.src, j.dst, j.len);
        return 0;
    }
    template <class T>
    static int run(LowercaseLatin, const Job<T>& j) {
        L<T>::lowercaseLatin(j.src, j.dst, j.len);
        return 0;
    }
    template <class T>
    static int run(ReplaceC, const Job<T>& j) {
        L<T>::replaceC(j.src, j.dst, j.len, j.value, j.newValue);
        return 0;
    }
    template <class T>
    static int run(Insert, const Job<T>& j) {
        T* const gap = L<T>::copy(j.src, j.dst, j.at);
        L<T>::copy(j.src + j.at, L<T>::copy(j.arg, gap, j.argLen), j.len - j.at);
        return 0;
    }
    template <class T>
    static int run(Remove, const Job<T>& j) {
        const int tail = j.at + j.count;
        L<T>::copy(j.src + tail, L<T>::copy(j.src, j.dst, j.at), j.len - tail);
        return 0;
    }
    template <class T>
    static int run(Concat, const Job<T>& j) {
        L<T>::copy(j.arg, L<T>::copy(j.src, j.dst, j.len), j.argLen);
        return 0;
    }
    template <class T>
    static int run(ConcatList, const ListJob<T>& j) {
        T* end = j.dst;
        for (int i = 0; i < j.count; ++i) end = L<T>::copy(j.pieces[i], end, j.lengths[i]);
        return 0;
    }
    template <class T>
    static int run(ConcatCList, const ListJob<T>& j) {
        T* end = j.dst;
        for (int i = 0; i < j.count; ++i) {
            if (i != 0) *end++ = j.value;
            end = L<T>::copy(j.pieces[i], end, j.lengths[i]);
        }
        return 0;
    }
    template <class T>
    static int run(SplitC, const SplitJob<T>& j) {
        return L<T>::splitC(j.src, j.len, j.value, j.slots, j.slotLengths);
    }
    template <class T>
    static int run(TrimC, const Job<T>& j) {
        return L<T>::trimC(j.src, j.len, j.value, j.dst);
    }
    template <class T>
    static int run(TrimCAny, const Job<T>& j) {
        return L<T>::trimCAny(j.src, j.len, j.arg, j.argLen, j.dst);
    }
    template <class T>
    static std::int64_t run(Hash, const Job<T>& j) {
        return L<T>::hash(j.src, j.len);
    }
    template <class T>
    static std::int64_t run(HashSJ2, const Job<T>& j) {
        return L<T>::hashSJ2(j.src, j.len);
    }
    template <class T>
    static std::int64_t run(HashMSCS, const Job<T>& j) {
        return L<T>::hashMSCS(j.src, j.len);
    }
    template <class T>
    static int run(Copy, const Job<T>& j) {
        L<T>::copy(j.src, j.dst, j.len);
        return 0;
    }
    template <class T>
    static int run(Move, const Job<T>& j) {
        L<T>::copy(j.src, j.dst, j.len);
        return 0;
    }
    template <class T>
    static int run(Zero, const Job<T>& j) {
        L<T>::zero(j.dst, j.len);
        return 0;
    }
    static int run(ConvertUtf, const ConvertJob<Zel8u, Zel16u>& j) {
        return UtfLoop<Build>::to16(j.src, j.len, j.dst);
    }
    static int run(ConvertUtf, const ConvertJob<Zel16u, Zel8u>& j) {
        return UtfLoop<Build>::to8(j.src, j.len, j.dst);
    }
};

using LoopPlain = HandLoop<PlainBuild>;
using LoopNative = HandLoop<NativeBuild>;

}  // namespace bench
