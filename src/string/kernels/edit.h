// Editing of valid arguments: insertion, removal, and lists of strings joined and split. Pointers
// are advanced step by step, never by the sum of two lengths, so that lengths near 2^31 stay exact.
//
// On AVX-512 a string that fits a vector is edited in it: an expand opens the gap of an insertion,
// a compress closes that of a removal, and a joint writes its delimiter and the piece behind it in
// one store. All of it is loaded before anything is stored, which is only the same as copying part
// after part where the ranges do not overlap, or the string is edited where it lies.
//
// A text is split by the bits of its delimiters, of one block after the other, from which token
// after token is taken; only what is longer than some blocks is searched for its end by itself.
#pragma once

#include "string/kernels/block.h"
#include "string/kernels/find_element.h"
#include "string/kernels/replace.h"

namespace zel::ZEL_ISA {

/// Whether two ranges have no element in common.
template <typename T>
ZEL_INLINE bool areDisjoint(const T* a, size_t lenA, const T* b, size_t lenB) {
    const auto up = static_cast<size_t>(b - a);
    return up >= lenA && size_t{0} - up >= lenB;
}

#if defined(ZEL_ISA_AVX512)

/// Inserts in a register; false, and nothing done, when the result does not fit one.
template <typename T>
ZEL_INLINE bool insertShort(const T* src, int len, const T* insert, int lenInsert, T* dst,
                            int start) {
    const auto total = static_cast<unsigned>(len) + static_cast<unsigned>(lenInsert);
    if (total > static_cast<unsigned>(Vec<T>::kLanes)) return false;
    const auto n = static_cast<size_t>(len);
    if ((src != dst && !areDisjoint<T>(dst, total, src, n)) ||
        !areDisjoint<T>(dst, total, insert, static_cast<size_t>(lenInsert)))
        return false;
    const uint64_t gap = lowBits(start + lenInsert) & ~lowBits(start);
    const Vec<T> text = expand(~gap, Vec<T>::loadFirst(src, len));
    expandFrom(text, gap, insert).storeFirst(dst, static_cast<int>(total));
    return true;
}

template <typename T>
ZEL_INLINE bool removeShort(const T* src, int len, T* dst, int start, int lenRemove) {
    if (len > Vec<T>::kLanes) return false;
    const auto n = static_cast<size_t>(len);
    if (src != dst && !areDisjoint<T>(dst, n, src, n)) return false;
    const uint64_t gap = lowBits(start + lenRemove) & ~lowBits(start);
    compress(~gap, Vec<T>::loadFirst(src, len)).storeFirst(dst, len - lenRemove);
    return true;
}

/// Writes the delimiter, whose copies fill `delims`, and a piece behind it.
template <typename T>
ZEL_INLINE bool joinShort(Vec<T> delims, const T* piece, int len, T* dst) {
    const auto n = static_cast<size_t>(len);
    if (len >= Vec<T>::kLanes || !areDisjoint<T>(dst, n + 1, piece, n)) return false;
    loadInto(delims, lowBits(len) << 1, piece - 1).storeFirst(dst, len + 1);
    return true;
}

#else

template <typename T>
ZEL_INLINE bool insertShort(const T*, int, const T*, int, T*, int) {
    return false;
}
template <typename T>
ZEL_INLINE bool removeShort(const T*, int, T*, int, int) {
    return false;
}
template <typename T>
ZEL_INLINE bool joinShort(Vec<T>, const T*, int, T*) {
    return false;
}

#endif

// The more a call may have to do, the more it has to set up. So what does not fit a register goes
// on to a function that copies short parts, and from there long ones to another. All of them answer
// zelStatusOk, which a caller passes on without coming back.

/// Whether copyShort copies the part as copyElements does.
template <typename T>
ZEL_INLINE bool isShortCopy(const T* src, const T* dst, ptrdiff_t n) {
    const ptrdiff_t bytes = n * static_cast<ptrdiff_t>(sizeof(T));
    return bytes <= kShortBlock && !repeats(reinterpret_cast<const Zel8u*>(src),
                                            reinterpret_cast<const Zel8u*>(dst), bytes);
}
template <typename T>
ZEL_INLINE void copyShort(const T* src, T* dst, ptrdiff_t n) {
    moveShort(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
              n * static_cast<ptrdiff_t>(sizeof(T)));
}

template <typename T>
[[gnu::noinline]] ZelStatus insertLong(const T* src, int len, const T* insert, int lenInsert,
                                       T* dst, int start) {
    copyElements(src, dst, start);
    moveElements(src + start, dst + start + lenInsert, len - start);
    return copyElements(insert, dst + start, lenInsert);
}

template <typename T>
[[gnu::noinline]] ZelStatus insertMedium(const T* src, int len, const T* insert, int lenInsert,
                                         T* dst, int start) {
    const ptrdiff_t lenTail = len - start;
    if (!isShortCopy(src, dst, start) || !isShortCopy(insert, dst + start, lenInsert) ||
        lenTail * static_cast<ptrdiff_t>(sizeof(T)) > kShortBlock) [[unlikely]]
        return insertLong(src, len, insert, lenInsert, dst, start);
    copyShort(src, dst, start);
    copyShort(src + start, dst + start + lenInsert, lenTail);
    copyShort(insert, dst + start, lenInsert);
    return zelStatusOk;
}

template <typename T>
[[gnu::noinline]] ZelStatus removeLong(const T* src, int len, T* dst, int start, int lenRemove) {
    copyElements(src, dst, start);
    return copyElements(src + start + lenRemove, dst + start, len - start - lenRemove);
}

template <typename T>
[[gnu::noinline]] ZelStatus removeMedium(const T* src, int len, T* dst, int start, int lenRemove) {
    constexpr int kShort = static_cast<int>(kShortBlock / static_cast<ptrdiff_t>(sizeof(T)));
    const auto n = static_cast<size_t>(len);
    const int lenTail = len - start - lenRemove;
    if (start > kShort || lenTail > kShort || (src != dst && !areDisjoint(dst, n, src, n)))
        [[unlikely]]
        return removeLong(src, len, dst, start, lenRemove);
    copyShort(src, dst, start);
    copyShort(src + start + lenRemove, dst + start, lenTail);
    return zelStatusOk;
}

/// Writes src[0..start), insert, src[start..len) to dst, which may be src. The tail moves first, so
/// that an insertion in place does not overwrite it.
template <typename T>
ZEL_INLINE ZelStatus insertElements(const T* src, int len, const T* insert, int lenInsert, T* dst,
                                    int start) {
    if (insertShort(src, len, insert, lenInsert, dst, start)) [[likely]]
        return zelStatusOk;
    return insertMedium(src, len, insert, lenInsert, dst, start);
}

/// Writes src[0..start), src[start + lenRemove..len) to dst, which may be src.
template <typename T>
ZEL_INLINE ZelStatus removeElements(const T* src, int len, T* dst, int start, int lenRemove) {
    if (removeShort(src, len, dst, start, lenRemove)) [[likely]]
        return zelStatusOk;
    return removeMedium(src, len, dst, start, lenRemove);
}

/// Asks for the memory that will be written after a piece of two to four cache lines. Such pieces
/// are written faster than a core that waits for its stores gets hold of the lines; shorter ones
/// are not, and longer ones are copied by loops that the processor sees through.
template <typename T>
ZEL_INLINE void expectMoreAfter(const T* dst, int len) {
    constexpr int kLine = 64 / static_cast<int>(sizeof(T));
    constexpr int kAhead = 8 * kLine;
    if (len > kLine && len <= 4 * kLine) [[unlikely]] {
        __builtin_prefetch(dst + kAhead, 1);
        __builtin_prefetch(dst + kAhead + kLine, 1);
    }
}

/// Writes the delimiter and a piece, and answers the end of what was written.
template <typename T>
ZEL_INLINE T* joinElements(Vec<T> delims, T delim, const T* piece, int len, T* dst) {
    if (!joinShort(delims, piece, len, dst)) {
        expectMoreAfter(dst, len);
        *dst = delim;
        copyElements(piece, dst + 1, len);
    }
    return dst + 1 + len;
}

ZEL_INLINE int least(int a, int b) {
    return a < b ? a : b;
}

/// Copies src up to the first delimiter, at most `room` elements of it, and answers where the
/// delimiter is, or len. What is copied is looked at on the way: that is one loop whose end cannot
/// be guessed instead of two.
template <typename T>
ZEL_INLINE int copyToDelimiter(const T* src, int len, const EqualsAnyOf<T, 1>& delim, T* dst,
                               int room) {
    using V = Vec<T>;
    constexpr int k = V::kLanes;
    const auto searchThenCopy = [&](ptrdiff_t at) __attribute__((always_inline)) {
        const int left = static_cast<int>(len - at);
        const int found = firstHit(src + at, left, delim);
        const int token = static_cast<int>(at) + (found == kNotFound ? left : found);
        copyElements(src + at, dst + at, least(token, room) - at);
        return token;
    };
    if (!areDisjoint(src, static_cast<size_t>(len), dst, static_cast<size_t>(room))) [[unlikely]]
        return searchThenCopy(0);

    ptrdiff_t at = 0;
    V a = V::zero();
    V b = V::zero();
    Mask<T> inA{0};
    Mask<T> inB{0};
    const auto endsHere = [&]() __attribute__((always_inline)) {
        a = V::load(src + at);
        b = V::load(src + at + k);
        inA = delim.maskOf(a);
        inB = delim.maskOf(b);
        return inA.any() || inB.any();
    };
    const ptrdiff_t last = ptrdiff_t{least(len, room)} - 2 * k;
    bool ends = false;
    if (last >= 0 && !(ends = endsHere())) {
        a.store(dst);
        b.store(dst + k);
        // From now on by whole vectors of the destination.
        for (at = k + toBoundary(dst); at <= last && !(ends = endsHere()); at += 2 * k) {
            a.store(dst + at);
            b.store(dst + at + k);
        }
    }
    // The token may be as long as its room.
    if (!ends && (len - at < 2 * k || !endsHere())) return searchThenCopy(at);
    // In which of the two it ends cannot be guessed.
    const int ofA = least(countTrailingZeros(inA.bits) / Mask<T>::kStep, k);
    const int ofB = least(countTrailingZeros(inB.bits) / Mask<T>::kStep, k);
    const int end = ofA + (ofB & -int{ofA == k});
    const int copied = least(end, room - static_cast<int>(at));
    a.storeFirst(dst + at, least(copied, k));
    b.storeFirst(dst + at + k, copied - least(copied, k));
    return static_cast<int>(at) + end;
}

/// Tokens that copyLongTokens has copied.
struct LongTokens {
    ptrdiff_t end;  // behind the last one's delimiter, which may be missing at the text's end
    int count;
    bool isCutShort;  // one of them
};

/// Copies the first token of src, which is a long one and has a slot, and those behind it while
/// they are long and have one that is in order.
template <typename T>
[[gnu::noinline]] LongTokens copyLongTokens(const T* src, ptrdiff_t len, T delim, T* const* slots,
                                            int* slotLens, int slotCount) {
    constexpr int kLong = 256;  // shorter ones are better walked
    const auto test = EqualsAnyOf<T, 1>::of(&delim);
    ptrdiff_t end = 0;
    ptrdiff_t i = 0;
    bool isCutShort = false;
    T* slot = slots[0];
    int room = slotLens[0];
    int token;
    do {
        token = copyToDelimiter(src + end, static_cast<int>(len - end), test, slot, room);
        isCutShort |= token > room;
        slotLens[i] = least(token, room);
        end += ptrdiff_t{token} + 1;
        if (++i == slotCount || end >= len) break;
        slot = slots[i];
        room = slotLens[i];
    } while (token >= kLong && slot != nullptr && room >= 0);
    return {end, static_cast<int>(i), isCutShort};
}

/// The delimiters of a text, one after the other: the places of those in the 64 lanes' bits that
/// are being walked, and where their block begins.
template <typename T>
class Delimiters {
public:
    ZEL_INLINE Delimiters(const T* src, int len, T delim)
        : src_(src), len_(len), delim_(EqualsAnyOf<T, 1>::of(&delim)), base_(0) {
        places_ = placesAt(0);
    }

    /// Whether the next one is in the block being walked or the two behind, or the end of the text
    /// is, which counts as one. If not, goTo must follow.
    ZEL_INLINE bool isNear() {
        if (places_ != 0) [[likely]]
            return true;
        return isInNextBlock() || isInNextBlock();
    }
    /// Position of the next one, which is near.
    ZEL_INLINE int take() {
        const int at = static_cast<int>(base_) + countTrailingZeros(places_) / Mask<T>::kStep;
        places_ &= places_ - 1;
        return at;
    }
    /// Goes on from there, be it the end or behind it.
    ZEL_INLINE void goTo(ptrdiff_t at) {
        base_ = at - kBlock;
        places_ = 0;
    }

private:
    // The vectors whose lanes fill a word.
    static constexpr int kLanes = Vec<T>::kLanes;
    static constexpr int kVectors = 64 / (kLanes * Mask<T>::kStep);
    static constexpr ptrdiff_t kBlock = kVectors * kLanes;

    ZEL_INLINE bool isInNextBlock() {
        base_ += kBlock;
        if (base_ >= len_) {
            // Where there is no bit, take() answers the position behind the block: the end.
            base_ = len_ - kBlock;
            return true;
        }
        places_ = placesAt(base_);
        return places_ != 0;
    }
    ZEL_INLINE uint64_t placesAt(ptrdiff_t at) const {
        const T* const block = src_ + at;
        const ptrdiff_t left = len_ - at;
        uint64_t places = 0;
        if (left >= kBlock) {
            for (int i = 0; i < kVectors; ++i) {
                const uint64_t found = inGeneralRegister(
                    equalBits(Vec<T>::load(block + i * kLanes), delim_.values[0]));
                places |= found << (i * kLanes * Mask<T>::kStep);
            }
            return places;
        }
        for (int i = 0; i * kLanes < left; ++i) {
            const ptrdiff_t rest = left - i * kLanes;
            const int n = static_cast<int>(rest < kLanes ? rest : kLanes);
            const Mask<T> found = delim_.maskFirst(block + i * kLanes, n) & Mask<T>::firstN(n);
            places |= found.bits << (i * kLanes * Mask<T>::kStep);
        }
        return places;
    }

    const T* src_;
    int len_;
    EqualsAnyOf<T, 1> delim_;
    ptrdiff_t base_;
    uint64_t places_;
};

/// Copies the tokens of src one by one into the slots. A slot is checked when its token is due.
template <typename T>
ZEL_INLINE ZelStatus splitElements(const T* src, int len, T delim, T* const* slots, int* slotLens,
                                   int* numSlots) {
    Delimiters<T> delimiters(src, len, delim);
    ZelStatus status = zelStatusOk;
    ptrdiff_t pos = 0;
    const int slotCount = *numSlots;
    int left = slotCount;
    while (left > 0 && pos < len) {
        if (*slots == nullptr) return zelStatusNullPointer;
        const int room = *slotLens;
        if (room < 0) return zelStatusLengthError;
        if (!delimiters.isNear()) [[unlikely]] {
            const LongTokens tokens =
                copyLongTokens(src + pos, len - pos, delim, slots, slotLens, left);
            pos += tokens.end;
            slots += tokens.count;
            slotLens += tokens.count;
            left -= tokens.count;
            if (tokens.isCutShort) status = zelStatusTruncatedWarning;
            delimiters.goTo(pos);
            continue;
        }
        const int end = delimiters.take();
        const int token = end - static_cast<int>(pos);
        const int copied = least(token, room);
        if (token > room) status = zelStatusTruncatedWarning;
        *slotLens = copied;
        copyElements(src + pos, *slots, copied);
        // Past the delimiter; behind the last token there is none, and pos passes over the end.
        pos = ptrdiff_t{end} + 1;
        ++slots;
        ++slotLens;
        --left;
    }
    *numSlots = slotCount - left;
    return pos < len ? zelStatusSplitIncompleteWarning : status;
}

}  // namespace zel::ZEL_ISA
