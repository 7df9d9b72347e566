// Editing of valid arguments: insertion, removal, replacement of one element by another, and the
// splitting of a string into tokens. Pointers are advanced step by step, never by the sum of two
// lengths, so that lengths near 2^31 stay exact.
#pragma once

#include "core/block.h"
#include "string/kernels/find_any.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// Writes src[0..start), insert, src[start..len) to dst, which may be src. The tail moves first, so
/// that an insertion in place does not overwrite it.
template <typename T>
void insertElements(const T* src, int len, const T* insert, int lenInsert, T* dst, int start) {
    copyElements(src, dst, start);
    moveElements(src + start, dst + start + lenInsert, len - start);
    copyElements(insert, dst + start, lenInsert);
}

/// Writes src[0..start), src[start + lenRemove..len) to dst, which may be src.
template <typename T>
void removeElements(const T* src, int len, T* dst, int start, int lenRemove) {
    copyElements(src, dst, start);
    copyElements(src + start + lenRemove, dst + start, len - start - lenRemove);
}

/// Copies src to dst, which may be src, with valNew for valOld.
template <typename T>
void replaceElement(const T* src, T* dst, int len, T valOld, T valNew) {
    for (int i = 0; i < len; ++i) dst[i] = src[i] == valOld ? valNew : src[i];
}

/// Copies the tokens of src one by one into the slots. A slot is checked when its token is due.
template <typename T>
ZelStatus splitElements(const T* src, int len, T delim, T* const* slots, int* slotLens,
                        int* numSlots) {
    const int slotCount = *numSlots;
    ZelStatus status = zelStatusOk;
    long pos = 0;
    int i = 0;
    for (; i < slotCount && pos < len; ++i) {
        if (slots[i] == nullptr) return zelStatusNullPointer;
        if (slotLens[i] < 0) return zelStatusLengthError;
        const int remaining = static_cast<int>(len - pos);
        const int delimAt = findElement(src + pos, remaining, delim);
        const int token = delimAt == kNotFound ? remaining : delimAt;
        if (token <= slotLens[i]) {
            slotLens[i] = token;
        } else {
            status = zelStatusTruncatedWarning;
        }
        copyElements(src + pos, slots[i], slotLens[i]);
        // Past the delimiter; behind the last token there is none, and pos passes over the end.
        pos += token + 1L;
    }
    *numSlots = i;
    return pos < len ? zelStatusSplitIncompleteWarning : status;
}

}  // namespace zel::ZEL_ISA
