// The text of the hand-written loops; included by the translation unit of each build and by nothing
// else. They use no library function, so that nothing compiled for one build is merged with the
// other's.
#pragma once

#include "peers/loops.h"

namespace bench {

template <class Build, class T>
int Loop<Build, T>::findC(const T* src, int len, T value) {
    for (int i = 0; i < len; ++i) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::findRevC(const T* src, int len, T value) {
    for (int i = len - 1; i >= 0; --i) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::findCAny(const T* src, int len, const T* set, int setLen) {
    for (int i = 0; i < len; ++i) {
        for (int k = 0; k < setLen; ++k) {
            if (src[i] == set[k]) return i;
        }
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::findRevCAny(const T* src, int len, const T* set, int setLen) {
    for (int i = len - 1; i >= 0; --i) {
        for (int k = 0; k < setLen; ++k) {
            if (src[i] == set[k]) return i;
        }
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::find(const T* src, int len, const T* needle, int needleLen) {
    for (int i = 0; i + needleLen <= len; ++i) {
        int k = 0;
        while (k < needleLen && src[i + k] == needle[k]) ++k;
        if (k == needleLen) return i;
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::findRev(const T* src, int len, const T* needle, int needleLen) {
    for (int i = len - needleLen; i >= 0; --i) {
        int k = 0;
        while (k < needleLen && src[i + k] == needle[k]) ++k;
        if (k == needleLen) return i;
    }
    return -1;
}

template <class Build, class T>
int Loop<Build, T>::compare(const T* a, const T* b, int len) {
    for (int i = 0; i < len; ++i) {
        if (a[i] != b[i]) return a[i] - b[i];
    }
    return 0;
}

template <class Build, class T>
int Loop<Build, T>::equal(const T* a, const T* b, int len) {
    for (int i = 0; i < len; ++i) {
        if (a[i] != b[i]) return 0;
    }
    return 1;
}

template <class Build, class T>
int Loop<Build, T>::compareIgnoreCaseLatin(const T* a, const T* b, int len) {
    for (int i = 0; i < len; ++i) {
        const int x = a[i] >= 'A' && a[i] <= 'Z' ? a[i] + 32 : a[i];
        const int y = b[i] >= 'A' && b[i] <= 'Z' ? b[i] + 32 : b[i];
        if (x != y) return x - y;
    }
    return 0;
}

template <class Build, class T>
void Loop<Build, T>::uppercaseLatin(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        dst[i] = static_cast<T>(src[i] >= 'a' && src[i] <= 'z' ? src[i] - 32 : src[i]);
    }
}

template <class Build, class T>
void Loop<Build, T>::lowercaseLatin(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) {
        dst[i] = static_cast<T>(src[i] >= 'A' && src[i] <= 'Z' ? src[i] + 32 : src[i]);
    }
}

template <class Build, class T>
void Loop<Build, T>::replaceC(const T* src, T* dst, int len, T from, T to) {
    for (int i = 0; i < len; ++i) dst[i] = src[i] == from ? to : src[i];
}

template <class Build, class T>
T* Loop<Build, T>::copy(const T* src, T* dst, int len) {
    for (int i = 0; i < len; ++i) dst[i] = src[i];
    return dst + len;
}

template <class Build, class T>
void Loop<Build, T>::zero(T* dst, int len) {
    for (int i = 0; i < len; ++i) dst[i] = 0;
}

template <class Build, class T>
int Loop<Build, T>::splitC(const T* src, int len, T value, T* const* slots, int* slotLengths) {
    int count = 0;
    for (int i = 0; i < len; ++i) {
        T* const slot = slots[count];
        int length = 0;
        for (; i < len && src[i] != value; ++i) slot[length++] = src[i];
        slotLengths[count++] = length;
    }
    return count;
}

template <class Build, class T>
int Loop<Build, T>::trimC(const T* src, int len, T value, T* dst) {
    int first = 0;
    while (first < len && src[first] == value) ++first;
    int last = len;
    while (last > first && src[last - 1] == value) --last;
    copy(src + first, dst, last - first);
    return last - first;
}

template <class Build, class T>
int Loop<Build, T>::trimCAny(const T* src, int len, const T* set, int setLen, T* dst) {
    int first = 0;
    while (first < len && findC(set, setLen, src[first]) >= 0) ++first;
    int last = len;
    while (last > first && findC(set, setLen, src[last - 1]) >= 0) --last;
    copy(src + first, dst, last - first);
    return last - first;
}

template <class Build, class T>
Zel32u Loop<Build, T>::hash(const T* src, int len) {
    Zel32u h = 0;
    for (int i = 0; i < len; ++i) h = (h << 1) ^ src[i];
    return h;
}

template <class Build, class T>
Zel32u Loop<Build, T>::hashSJ2(const T* src, int len) {
    Zel32u h = 0;
    for (int i = 0; i < len; ++i) h = h * 31 + src[i];
    return h;
}

template <class Build, class T>
Zel32u Loop<Build, T>::hashMSCS(const T* src, int len) {
    Zel32u h = 5381;
    for (int i = 0; i < len && src[i] != 0; ++i) h = (h * 33) ^ src[i];
    return h;
}

template <class Build>
int UtfLoop<Build>::to16(const Zel8u* src, int len, Zel16u* dst) {
    Zel16u* out = dst;
    for (int i = 0; i < len;) {
        const Zel32u lead = src[i];
        if (lead < 0x80) {
            *out++ = static_cast<Zel16u>(lead);
            i += 1;
        } else if (lead < 0xE0) {
            *out++ = static_cast<Zel16u>((lead & 0x1F) << 6 | (src[i + 1] & 0x3Fu));
            i += 2;
        } else if (lead < 0xF0) {
            *out++ = static_cast<Zel16u>((lead & 0x0F) << 12 | (src[i + 1] & 0x3Fu) << 6 |
                                         (src[i + 2] & 0x3Fu));
            i += 3;
        } else {
            const Zel32u code = (lead & 0x07) << 18 | (src[i + 1] & 0x3Fu) << 12 |
                                (src[i + 2] & 0x3Fu) << 6 | (src[i + 3] & 0x3Fu);
            *out++ = static_cast<Zel16u>(0xD7C0 + (code >> 10));
            *out++ = static_cast<Zel16u>(0xDC00 | (code & 0x3FF));
            i += 4;
        }
    }
    return static_cast<int>(out - dst);
}

template <class Build>
int UtfLoop<Build>::to8(const Zel16u* src, int len, Zel8u* dst) {
    Zel8u* out = dst;
    for (int i = 0; i < len; ++i) {
        Zel32u code = src[i];
        if (code < 0x80) {
            *out++ = static_cast<Zel8u>(code);
        } else if (code < 0x800) {
            *out++ = static_cast<Zel8u>(0xC0 | code >> 6);
            *out++ = static_cast<Zel8u>(0x80 | (code & 0x3F));
        } else if (code < 0xD800 || code > 0xDBFF) {
            *out++ = static_cast<Zel8u>(0xE0 | code >> 12);
            *out++ = static_cast<Zel8u>(0x80 | (code >> 6 & 0x3F));
            *out++ = static_cast<Zel8u>(0x80 | (code & 0x3F));
        } else {
            code = 0x10000 + ((code & 0x3FF) << 10 | (src[++i] & 0x3FFu));
            *out++ = static_cast<Zel8u>(0xF0 | code >> 18);
            *out++ = static_cast<Zel8u>(0x80 | (code >> 12 & 0x3F));
            *out++ = static_cast<Zel8u>(0x80 | (code >> 6 & 0x3F));
            *out++ = static_cast<Zel8u>(0x80 | (code & 0x3F));
        }
    }
    return static_cast<int>(out - dst);
}

}  // namespace bench
