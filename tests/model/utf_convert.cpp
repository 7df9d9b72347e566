// UTF conversion in both directions, character by character. The loops end exactly at "not 0", so a
// count that a caller drove below 0 keeps them going.
#include <climits>

#include "model.h"
#include "utf8.h"

namespace model {

ZelStatus zelsConvertUTF_8u16u(const Zel8u* pSrc, int* pSrcLen, Zel16u* pDst, int* pDstLen,
                               int swapBytes) {
    if (!pSrc || !pSrcLen || !pDst || !pDstLen) return zelStatusNullPointer;
    int remaining = *pSrcLen;
    int room = *pDstLen;
    while (remaining != 0) {
        if (room == 0) break;
        Utf8Character c = decodeUtf8(pSrc, INT_MAX);
        if (c.value > 0xFFFF) {
            Zel16u high = static_cast<Zel16u>(0xD800 | (((c.value - 0x10000) >> 10) & 0x3FF));
            Zel16u low = static_cast<Zel16u>(0xDC00 | ((c.value - 0x10000) & 0x3FF));
            *pDst++ = swapBytes ? low : high;
            *pDst++ = swapBytes ? high : low;
            room -= 2;
        } else {
            *pDst++ = static_cast<Zel16u>(swapBytes ? c.value << 8 : c.value);
            room -= 1;
        }
        pSrc += c.length;
        remaining -= c.length;
    }
    *pSrcLen -= remaining;
    *pDstLen -= room;
    return zelStatusOk;
}

ZelStatus zelsConvertUTF_16u8u(const Zel16u* pSrc, int* pSrcLen, Zel8u* pDst, int* pDstLen,
                               int swapBytes) {
    if (!pSrc || !pSrcLen || !pDst || !pDstLen) return zelStatusNullPointer;
    int remaining = *pSrcLen;
    int room = *pDstLen;
    auto unitAt = [&](int i) {
        int unit = pSrc[i];
        return swapBytes ? ((unit & 0xFF) << 8) | (unit >> 8) : unit;
    };
    while (remaining != 0 && room != 0) {
        int value = unitAt(0);
        int consumed = 1;
        if (value >= 0xD800 && value <= 0xDBFF && remaining != 1) {
            int next = unitAt(1);
            if (next >= 0xDC00 && next <= 0xDFFF) {
                value = (((value & 0x3FF) << 10) | (next & 0x3FF)) + 0x10000;
                consumed = 2;
            }
        }
        int k = 0;
        while (value > utf8Largest[k]) ++k;
        if (k + 1 > room) break;
        int rest = value;
        for (int i = k; i >= 1; --i) {
            pDst[i] = static_cast<Zel8u>(0x80 | (rest & 0x3F));
            rest >>= 6;
        }
        pDst[0] = static_cast<Zel8u>(rest | utf8Marker[k]);
        pDst += k + 1;
        room -= k + 1;
        pSrc += consumed;
        remaining -= consumed;
    }
    *pSrcLen -= remaining;
    *pDstLen -= room;
    return zelStatusOk;
}

}  // namespace model
