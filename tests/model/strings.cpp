// The string functions, one template per function for both element widths. Every loop runs element
// by element; the checks stand in the order in which they are promised.
#include <cstring>
#include <vector>

#include "model.h"
#include "string/case_tables.h"

namespace model {
namespace {

constexpr ZelStatus ok = zelStatusOk;
constexpr ZelStatus nullPointer = zelStatusNullPointer;
constexpr ZelStatus lengthError = zelStatusLengthError;
constexpr ZelStatus sizeError = zelStatusSizeError;

template <typename T>
int measure(const T* text) {
    int length = 0;
    while (text[length] != 0) ++length;
    return length;
}

template <typename T>
bool equalAt(const T* a, const T* b, int count) {
    for (int i = 0; i < count; ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

template <typename T>
bool contains(const T* set, int count, T value) {
    for (int i = 0; i < count; ++i) {
        if (set[i] == value) return true;
    }
    return false;
}

template <typename T>
void copyUp(const T* source, T* destination, long long count) {
    for (long long i = 0; i < count; ++i) destination[i] = source[i];
}

template <typename T>
void move(const T* source, T* destination, long long count) {
    std::vector<T> copy(source, source + (count > 0 ? count : 0));
    for (long long i = 0; i < count; ++i) destination[i] = copy[static_cast<size_t>(i)];
}

// ---- Search ----

template <typename T>
ZelStatus find(const T* source, int length, const T* pattern, int patternLength, int* index) {
    if (!source || !pattern || !index) return nullPointer;
    if (length < 0 || patternLength < 0) return lengthError;
    *index = -1;
    if (patternLength == 0) return ok;
    for (int i = 0; i <= length - patternLength; ++i) {
        if (equalAt(source + i, pattern, patternLength)) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findRev(const T* source, int length, const T* pattern, int patternLength, int* index) {
    if (!source || !pattern || !index) return nullPointer;
    if (length < 0 || patternLength < 0) return lengthError;
    *index = -1;
    if (patternLength == 0) return ok;
    for (int i = length - patternLength; i >= 0; --i) {
        if (equalAt(source + i, pattern, patternLength)) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findC(const T* source, int length, T value, int* index) {
    if (!source || !index) return nullPointer;
    if (length < 0) return lengthError;
    *index = -1;
    for (int i = 0; i < length; ++i) {
        if (source[i] == value) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findRevC(const T* source, int length, T value, int* index) {
    if (!source || !index) return nullPointer;
    if (length < 0) return lengthError;
    *index = -1;
    for (int i = length - 1; i >= 0; --i) {
        if (source[i] == value) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findCAny(const T* source, int length, const T* set, int setLength, int* index) {
    if (!source || !set || !index) return nullPointer;
    if (length < 0 || setLength < 0) return lengthError;
    *index = -1;
    for (int i = 0; i < length; ++i) {
        if (contains(set, setLength, source[i])) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findRevCAny(const T* source, int length, const T* set, int setLength, int* index) {
    if (!source || !set || !index) return nullPointer;
    if (length < 0 || setLength < 0) return lengthError;
    *index = -1;
    for (int i = length - 1; i >= 0; --i) {
        if (contains(set, setLength, source[i])) {
            *index = i;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus findZ(const T* source, const T* pattern, int* index) {
    if (!source || !pattern) return nullPointer;
    return find(source, measure(source), pattern, measure(pattern), index);
}

template <typename T>
ZelStatus findCZ(const T* source, T value, int* index) {
    if (!source) return nullPointer;
    return findC(source, measure(source), value, index);
}

// ---- Case ----

int caseWord(Zel16u c) {
    using namespace zel::case_tables;
    return A[Y[X[c >> 6] | (c & 63)]];
}

Zel16u lower(Zel16u c) {
    int word = caseWord(c);
    int delta = word >> 22;
    return (word & (1 << 21)) ? static_cast<Zel16u>(c + delta) : c;
}

Zel16u upper(Zel16u c) {
    int word = caseWord(c);
    int delta = word >> 22;
    return (word & (1 << 20)) ? static_cast<Zel16u>(c - delta) : c;
}

template <typename T>
T lowerLatin(T c) {
    return c >= 65 && c <= 90 ? static_cast<T>(c + 32) : c;
}

template <typename T>
T upperLatin(T c) {
    return c >= 97 && c <= 122 ? static_cast<T>(c - 32) : c;
}

template <typename T>
ZelStatus convert(const T* source, T* destination, int length, T (*rule)(T)) {
    if (!source || !destination) return nullPointer;
    if (length < 0) return lengthError;
    for (int i = 0; i < length; ++i) destination[i] = rule(source[i]);
    return ok;
}

// ---- Comparison ----

template <typename T>
T same(T c) {
    return c;
}

template <typename T>
ZelStatus compare(const T* a, const T* b, int length, int* result, T (*fold)(T)) {
    if (!a || !b || !result) return nullPointer;
    if (length < 0) return lengthError;
    *result = 0;
    for (int i = 0; i < length; ++i) {
        if (a[i] == b[i]) continue;
        int difference = fold(a[i]) - fold(b[i]);
        if (difference != 0) {
            *result = difference;
            return ok;
        }
    }
    return ok;
}

template <typename T>
ZelStatus equal(const T* a, const T* b, int length, int* result) {
    if (!a || !b || !result) return nullPointer;
    if (length < 0) return lengthError;
    *result = equalAt(a, b, length) ? 1 : 0;
    return ok;
}

// ---- Editing ----

template <typename T>
ZelStatus insert(const T* source, int length, const T* text, int textLength, T* destination,
                 int start) {
    if (!source || !text || !destination) return nullPointer;
    if (length < 0 || textLength < 0 || start < 0 || start > length) return lengthError;
    if (textLength == 0) return ok;
    copyUp(source, destination, start);
    move(source + start, destination + start + textLength, length - start);
    copyUp(text, destination + start, textLength);
    return ok;
}

template <typename T>
ZelStatus insertInPlace(const T* text, int textLength, T* buffer, int* length, int start) {
    if (!text || !buffer || !length) return nullPointer;
    if (textLength < 0) return lengthError;
    if (*length < 0 || start < 0 || start > *length) return lengthError;
    if (textLength == 0) return ok;
    move(buffer + start, buffer + start + textLength, *length - start);
    copyUp(text, buffer + start, textLength);
    *length += textLength;
    return ok;
}

template <typename T>
ZelStatus remove(const T* source, int length, T* destination, int start, int removed) {
    if (!source || !destination) return nullPointer;
    long long tail = static_cast<long long>(start) + removed;
    if (removed < 0 || start < 0 || length < tail) return lengthError;
    copyUp(source, destination, start);
    copyUp(source + tail, destination + start, length - tail);
    return ok;
}

template <typename T>
ZelStatus removeInPlace(T* buffer, int* length, int start, int removed) {
    if (!buffer || !length) return nullPointer;
    if (removed < 0) return lengthError;
    long long tail = static_cast<long long>(start) + removed;
    if (*length < 0 || start < 0 || tail > *length) return lengthError;
    move(buffer + tail, buffer + start, *length - tail);
    *length -= removed;
    return ok;
}

template <typename T>
ZelStatus replaceC(const T* source, T* destination, int length, T oldValue, T newValue) {
    if (!source || !destination) return nullPointer;
    if (length < 0) return lengthError;
    for (int i = 0; i < length; ++i) {
        destination[i] = source[i] == oldValue ? newValue : source[i];
    }
    return ok;
}

template <typename T>
ZelStatus concat(const T* a, int aLength, const T* b, int bLength, T* destination) {
    if (!a || !b || !destination) return nullPointer;
    if (aLength < 0 || bLength < 0) return lengthError;
    copyUp(a, destination, aLength);
    copyUp(b, destination + aLength, bLength);
    return ok;
}

template <typename T>
ZelStatus concatList(const T* const* list, const int* lengths, int count, const T* delimiter,
                     T* destination) {
    if (!list || !lengths || !destination) return nullPointer;
    if (count < 1) return sizeError;
    for (int k = 0; k < count; ++k) {
        if (!list[k]) return nullPointer;
        if (lengths[k] < 0) return lengthError;
        if (k > 0 && delimiter) *destination++ = *delimiter;
        for (int i = 0; i < lengths[k]; ++i) *destination++ = list[k][i];
    }
    return ok;
}

template <typename T>
ZelStatus split(const T* source, int length, T delimiter, T* const* list, int* lengths,
                int* count) {
    if (!source || !list || !lengths || !count) return nullPointer;
    if (length < 0) return lengthError;
    if (*count < 1) return sizeError;
    int remaining = length;
    int position = 0;
    ZelStatus status = ok;
    int i = 0;
    while (i < *count) {
        if (remaining < 1) {
            *count = i;
            return status;
        }
        if (!list[i]) return nullPointer;
        if (lengths[i] < 0) return lengthError;
        int token = 0;
        while (token < remaining && source[position + token] != delimiter) ++token;
        if (token <= lengths[i]) {
            lengths[i] = token;
        } else {
            status = zelStatusTruncatedWarning;
        }
        copyUp(source + position, list[i], lengths[i]);
        position += token + 1;
        remaining -= token + 1;
        ++i;
    }
    *count = i;
    return remaining >= 1 ? static_cast<ZelStatus>(zelStatusSplitIncompleteWarning) : status;
}

// ---- Trimming ----

template <typename T>
ZelStatus trimAny(const T* source, int length, const T* set, int setLength, T* destination,
                  int* kept, bool atStart, bool atEnd) {
    if (!source || !set || !destination || !kept) return nullPointer;
    if (length < 0 || setLength < 0) return lengthError;
    int first = 0;
    int last = length - 1;
    if (atStart) {
        while (first < length && contains(set, setLength, source[first])) ++first;
    }
    if (atEnd) {
        while (last >= first && contains(set, setLength, source[last])) --last;
    }
    *kept = last - first + 1;
    copyUp(source + first, destination, *kept);
    return ok;
}

template <typename T>
ZelStatus trimC(const T* source, int length, T value, T* destination, int* kept) {
    return trimAny(source, length, &value, 1, destination, kept, true, true);
}

template <typename T>
ZelStatus trimCInPlace(T* buffer, int* length, T value) {
    if (!buffer || !length) return nullPointer;
    if (*length < 0) return lengthError;
    return trimAny(buffer, *length, &value, 1, buffer, length, true, true);
}

// ---- Hashing ----

template <typename T>
ZelStatus hash(const T* source, int length, Zel32u* value) {
    if (!source || !value) return nullPointer;
    if (length < 0) return lengthError;
    Zel32u h = 0;
    for (int i = 0; i < length; ++i) h = (h << 1) ^ source[i];
    *value = h;
    return ok;
}

template <typename T>
ZelStatus hashSJ2(const T* source, int length, Zel32u* value) {
    if (!source || !value) return nullPointer;
    if (length < 0) return lengthError;
    Zel32u h = 0;
    for (int i = 0; i < length; ++i) h = h * 31 + source[i];
    *value = h;
    return ok;
}

template <typename T>
ZelStatus hashMSCS(const T* source, int length, Zel32u* value) {
    if (!source || !value) return nullPointer;
    if (length < 0) return lengthError;
    Zel32u h = 5381;
    for (int i = 0; i < length && source[i] != 0; ++i) h = (h * 33) ^ source[i];
    *value = h;
    return ok;
}

// ---- Blocks ----

template <typename T>
ZelStatus copyBlock(const T* source, T* destination, int length) {
    if (!source || !destination) return nullPointer;
    if (length < 1) return sizeError;
    copyUp(reinterpret_cast<const Zel8u*>(source), reinterpret_cast<Zel8u*>(destination),
           static_cast<long long>(length) * static_cast<long long>(sizeof(T)));
    return ok;
}

template <typename T>
ZelStatus moveBlock(const T* source, T* destination, int length) {
    if (!source || !destination) return nullPointer;
    if (length < 1) return sizeError;
    move(reinterpret_cast<const Zel8u*>(source), reinterpret_cast<Zel8u*>(destination),
         static_cast<long long>(length) * static_cast<long long>(sizeof(T)));
    return ok;
}

}  // namespace

ZelStatus zelsCopy_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return copyBlock(pSrc, pDst, len);
}
ZelStatus zelsCopy_16s(const Zel16s* pSrc, Zel16s* pDst, int len) {
    return copyBlock(pSrc, pDst, len);
}
ZelStatus zelsMove_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return moveBlock(pSrc, pDst, len);
}
ZelStatus zelsMove_16s(const Zel16s* pSrc, Zel16s* pDst, int len) {
    return moveBlock(pSrc, pDst, len);
}
ZelStatus zelsZero_8u(Zel8u* pDst, int len) {
    if (!pDst) return nullPointer;
    if (len < 1) return sizeError;
    for (int i = 0; i < len; ++i) pDst[i] = 0;
    return ok;
}

ZelStatus zelsFind_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex) {
    return find(pSrc, len, pFind, lenFind, pIndex);
}
ZelStatus zelsFind_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind, int* pIndex) {
    return find(pSrc, len, pFind, lenFind, pIndex);
}
ZelStatus zelsFindRev_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex) {
    return findRev(pSrc, len, pFind, lenFind, pIndex);
}
ZelStatus zelsFindRev_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                          int* pIndex) {
    return findRev(pSrc, len, pFind, lenFind, pIndex);
}
ZelStatus zelsFindC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex) {
    return findC(pSrc, len, valFind, pIndex);
}
ZelStatus zelsFindC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex) {
    return findC(pSrc, len, valFind, pIndex);
}
ZelStatus zelsFindRevC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex) {
    return findRevC(pSrc, len, valFind, pIndex);
}
ZelStatus zelsFindRevC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex) {
    return findRevC(pSrc, len, valFind, pIndex);
}
ZelStatus zelsFindCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                          int* pIndex) {
    return findCAny(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}
ZelStatus zelsFindCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                           int* pIndex) {
    return findCAny(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}
ZelStatus zelsFindRevCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                             int* pIndex) {
    return findRevCAny(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}
ZelStatus zelsFindRevCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                              int* pIndex) {
    return findRevCAny(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}
ZelStatus zelsFind_Z_8u(const Zel8u* pSrcZ, const Zel8u* pFindZ, int* pIndex) {
    return findZ(pSrcZ, pFindZ, pIndex);
}
ZelStatus zelsFind_Z_16u(const Zel16u* pSrcZ, const Zel16u* pFindZ, int* pIndex) {
    return findZ(pSrcZ, pFindZ, pIndex);
}
ZelStatus zelsFindC_Z_8u(const Zel8u* pSrcZ, Zel8u valFind, int* pIndex) {
    return findCZ(pSrcZ, valFind, pIndex);
}
ZelStatus zelsFindC_Z_16u(const Zel16u* pSrcZ, Zel16u valFind, int* pIndex) {
    return findCZ(pSrcZ, valFind, pIndex);
}

ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult, same<Zel8u>);
}
ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult, same<Zel16u>);
}
ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                        int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult, lowerLatin<Zel8u>);
}
ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                         int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult, lowerLatin<Zel16u>);
}
ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                    int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult, lower);
}
ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}
ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsUppercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert(pSrc, pDst, len, upper);
}
ZelStatus zelsUppercase_16u_I(Zel16u* pSrcDst, int len) {
    return convert<Zel16u>(pSrcDst, pSrcDst, len, upper);
}
ZelStatus zelsLowercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert(pSrc, pDst, len, lower);
}
ZelStatus zelsLowercase_16u_I(Zel16u* pSrcDst, int len) {
    return convert<Zel16u>(pSrcDst, pSrcDst, len, lower);
}
ZelStatus zelsUppercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return convert(pSrc, pDst, len, upperLatin<Zel8u>);
}
ZelStatus zelsUppercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert(pSrc, pDst, len, upperLatin<Zel16u>);
}
ZelStatus zelsUppercaseLatin_8u_I(Zel8u* pSrcDst, int len) {
    return convert<Zel8u>(pSrcDst, pSrcDst, len, upperLatin<Zel8u>);
}
ZelStatus zelsUppercaseLatin_16u_I(Zel16u* pSrcDst, int len) {
    return convert<Zel16u>(pSrcDst, pSrcDst, len, upperLatin<Zel16u>);
}
ZelStatus zelsLowercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return convert(pSrc, pDst, len, lowerLatin<Zel8u>);
}
ZelStatus zelsLowercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert(pSrc, pDst, len, lowerLatin<Zel16u>);
}
ZelStatus zelsLowercaseLatin_8u_I(Zel8u* pSrcDst, int len) {
    return convert<Zel8u>(pSrcDst, pSrcDst, len, lowerLatin<Zel8u>);
}
ZelStatus zelsLowercaseLatin_16u_I(Zel16u* pSrcDst, int len) {
    return convert<Zel16u>(pSrcDst, pSrcDst, len, lowerLatin<Zel16u>);
}

ZelStatus zelsInsert_8u(const Zel8u* pSrc, int len, const Zel8u* pInsert, int lenInsert,
                        Zel8u* pDst, int startIndex) {
    return insert(pSrc, len, pInsert, lenInsert, pDst, startIndex);
}
ZelStatus zelsInsert_16u(const Zel16u* pSrc, int len, const Zel16u* pInsert, int lenInsert,
                         Zel16u* pDst, int startIndex) {
    return insert(pSrc, len, pInsert, lenInsert, pDst, startIndex);
}
ZelStatus zelsInsert_8u_I(const Zel8u* pInsert, int lenInsert, Zel8u* pSrcDst, int* pSrcDstLen,
                          int startIndex) {
    return insertInPlace(pInsert, lenInsert, pSrcDst, pSrcDstLen, startIndex);
}
ZelStatus zelsInsert_16u_I(const Zel16u* pInsert, int lenInsert, Zel16u* pSrcDst, int* pSrcDstLen,
                           int startIndex) {
    return insertInPlace(pInsert, lenInsert, pSrcDst, pSrcDstLen, startIndex);
}
ZelStatus zelsRemove_8u(const Zel8u* pSrc, int len, Zel8u* pDst, int startIndex, int lenRemove) {
    return remove(pSrc, len, pDst, startIndex, lenRemove);
}
ZelStatus zelsRemove_16u(const Zel16u* pSrc, int len, Zel16u* pDst, int startIndex, int lenRemove) {
    return remove(pSrc, len, pDst, startIndex, lenRemove);
}
ZelStatus zelsRemove_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove) {
    return removeInPlace(pSrcDst, pSrcDstLen, startIndex, lenRemove);
}
ZelStatus zelsRemove_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove) {
    return removeInPlace(pSrcDst, pSrcDstLen, startIndex, lenRemove);
}
ZelStatus zelsReplaceC_8u(const Zel8u* pSrc, Zel8u* pDst, int len, Zel8u valOld, Zel8u valNew) {
    return replaceC(pSrc, pDst, len, valOld, valNew);
}
ZelStatus zelsReplaceC_16u(const Zel16u* pSrc, Zel16u* pDst, int len, Zel16u valOld,
                           Zel16u valNew) {
    return replaceC(pSrc, pDst, len, valOld, valNew);
}
ZelStatus zelsConcat_8u(const Zel8u* pSrc1, int len1, const Zel8u* pSrc2, int len2, Zel8u* pDst) {
    return concat(pSrc1, len1, pSrc2, len2, pDst);
}
ZelStatus zelsConcat_16u(const Zel16u* pSrc1, int len1, const Zel16u* pSrc2, int len2,
                         Zel16u* pDst) {
    return concat(pSrc1, len1, pSrc2, len2, pDst);
}
ZelStatus zelsConcat_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                            Zel8u* pDst) {
    return concatList<Zel8u>(pSrcList, pSrcLenList, numSrc, nullptr, pDst);
}
ZelStatus zelsConcat_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel16u* pDst) {
    return concatList<Zel16u>(pSrcList, pSrcLenList, numSrc, nullptr, pDst);
}
ZelStatus zelsConcatC_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel8u valDelim, Zel8u* pDst) {
    return concatList(pSrcList, pSrcLenList, numSrc, &valDelim, pDst);
}
ZelStatus zelsConcatC_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                              Zel16u valDelim, Zel16u* pDst) {
    return concatList(pSrcList, pSrcLenList, numSrc, &valDelim, pDst);
}
ZelStatus zelsSplitC_8u_D2L(const Zel8u* pSrc, int len, Zel8u valDelim, Zel8u* const* pDstList,
                            int* pDstLenList, int* pNumDst) {
    return split(pSrc, len, valDelim, pDstList, pDstLenList, pNumDst);
}
ZelStatus zelsSplitC_16u_D2L(const Zel16u* pSrc, int len, Zel16u valDelim, Zel16u* const* pDstList,
                             int* pDstLenList, int* pNumDst) {
    return split(pSrc, len, valDelim, pDstList, pDstLenList, pNumDst);
}

ZelStatus zelsTrimC_8u(const Zel8u* pSrc, int len, Zel8u valTrim, Zel8u* pDst, int* pDstLen) {
    return trimC(pSrc, len, valTrim, pDst, pDstLen);
}
ZelStatus zelsTrimC_16u(const Zel16u* pSrc, int len, Zel16u valTrim, Zel16u* pDst, int* pDstLen) {
    return trimC(pSrc, len, valTrim, pDst, pDstLen);
}
ZelStatus zelsTrimC_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, Zel8u valTrim) {
    return trimCInPlace(pSrcDst, pSrcDstLen, valTrim);
}
ZelStatus zelsTrimC_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, Zel16u valTrim) {
    return trimCInPlace(pSrcDst, pSrcDstLen, valTrim);
}
ZelStatus zelsTrimCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim, Zel8u* pDst,
                          int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, true, true);
}
ZelStatus zelsTrimCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                           Zel16u* pDst, int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, true, true);
}
ZelStatus zelsTrimStartCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                               Zel8u* pDst, int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, true, false);
}
ZelStatus zelsTrimStartCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                                Zel16u* pDst, int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, true, false);
}
ZelStatus zelsTrimEndCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                             Zel8u* pDst, int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, false, true);
}
ZelStatus zelsTrimEndCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                              Zel16u* pDst, int* pDstLen) {
    return trimAny(pSrc, len, pTrim, lenTrim, pDst, pDstLen, false, true);
}

ZelStatus zelsHash_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hash(pSrc, len, pHashVal);
}
ZelStatus zelsHash_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hash(pSrc, len, pHashVal);
}
ZelStatus zelsHashSJ2_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hashSJ2(pSrc, len, pHashVal);
}
ZelStatus zelsHashSJ2_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hashSJ2(pSrc, len, pHashVal);
}
ZelStatus zelsHashMSCS_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hashMSCS(pSrc, len, pHashVal);
}
ZelStatus zelsHashMSCS_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hashMSCS(pSrc, len, pHashVal);
}

}  // namespace model
