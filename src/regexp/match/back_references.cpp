// Back-references: the text that a group captured, once more. A group that has not taken part
// matches nowhere; one that captured nothing matches everywhere, except at the end of the text,
// where the engine does not even ask.
#include <string.h>

#include "regexp/match/predicates.h"
#include "regexp/match/repetition.h"

namespace zel {

namespace {

struct Reference {
    const Zel8u* captured;
    int size;
    bool ignoreCase;

    explicit Reference(const RegExpMatchContext& context) {
        const CaptureRecord& slot = context.captures[context.nodes[context.node].value];
        captured = slot.text;
        size = slot.length;
        ignoreCase = (context.flags & kOptionIgnoreCase) != 0;
    }

    bool isSet() const { return size >= 0; }

    bool copyAt(const Zel8u* text, int length) const {
        if (size > length) return false;
        if (!ignoreCase) return memcmp(text, captured, static_cast<size_t>(size)) == 0;
        for (int i = 0; i < size; ++i) {
            if (!sameByte(text[i], captured[i], true)) return false;
        }
        return true;
    }

    /// Takes `count` copies in a row; false when one is missing.
    bool copiesAt(const Zel8u* text, int length, int count) const {
        if (!isSet() || static_cast<long>(size) * count > length) return false;
        for (int i = 0; i < count && size > 0; ++i) {
            if (!copyAt(text + i * size, length - i * size)) return false;
        }
        return true;
    }
};

}  // namespace

int ownsNodeBackReference(const Zel8u* text, int length, RegExpMatchContext& context) {
    const Reference reference(context);
    if (!reference.isSet() || !reference.copyAt(text, length)) return 1;
    return giveBack(text, length, context, context.node + 1, 1, reference.size, 1,
                    [](const Zel8u*) { return 0; });
}

int ownsNodeBackReferenceQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context) {
    const Reference reference(context);
    const Node& quantifier = context.nodes[context.node + 1];
    const int min = quantifier.value;
    const int max = quantifier.count < length ? quantifier.count : length;
    if (min != 0 && !reference.copiesAt(text, length, min)) return 1;
    int count = min;
    int offset = min == 0 ? 0 : min * reference.size;
    if (reference.size == 0 && count < max) count = max;  // empty copies always fit
    while (count < max && reference.isSet() && reference.copyAt(text + offset, length - offset)) {
        offset += reference.size;
        ++count;
    }
    const int size = reference.size;
    return giveBack(text, length, context, context.node + 2, count, offset, min,
                    [size](const Zel8u*) { return size; });
}

int ownsNodeBackReferenceQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const Reference reference(context);
    const int rest = context.node + 2;
    const Node& quantifier = context.nodes[context.node + 1];
    if (quantifier.value != 0 && !reference.copiesAt(text, length, quantifier.value)) return 1;
    int offset = quantifier.value == 0 ? 0 : quantifier.value * reference.size;
    whole.length = wrappingSum(whole.length, offset);
    for (int count = quantifier.value;; ++count) {
        if (runFrom(rest, text + offset, length - offset, context) == 0) return 0;
        // An empty copy would only lead to the same place again.
        if (count >= quantifier.count || reference.size <= 0 || isHopeless(context) ||
            !reference.copyAt(text + offset, length - offset)) {
            break;
        }
        offset += reference.size;
        whole.length = wrappingSum(whole.length, reference.size);
    }
    whole.length = wrappingDifference(whole.length, offset);
    return 1;
}

}  // namespace zel
