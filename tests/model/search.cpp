// The search driver: narrows the text to the last occurrence of the pattern's trailing literal,
// tries start positions from left to right, and copies capture records into the caller's array.
#include "search.h"
#include "matcher.h"

namespace model {
namespace {

thread_local int lastStepsLeft = 0;

int upperAscii(int byte) {
    return byte >= 0x61 && byte <= 0x7A ? byte - 0x20 : byte;
}

bool literalAt(const Zel8u* text, const Zel8u* literal, int count, bool ignoreCase) {
    for (int i = 0; i < count; ++i) {
        bool same =
            ignoreCase ? upperAscii(text[i]) == upperAscii(literal[i]) : text[i] == literal[i];
        if (!same) return false;
    }
    return true;
}

/// Length of the text up to the end of the last occurrence of the trailing literal.
int narrowedLength(const Zel8u* text, int length, const ZelRegExpState& state) {
    if (state.trailingLiteral < 0) return length;
    const Node& node = state.nodes()[state.trailingLiteral];
    bool ignoreCase = (node.extra & static_cast<int>(zel::kOptionIgnoreCase)) != 0;
    Zel8u letter = static_cast<Zel8u>(node.value);
    const Zel8u* literal = &letter;
    int count = 1;
    if (node.kind == zel::NodeString) {
        literal = static_cast<const Zel8u*>(node.data);
        count = node.count;
    }
    for (int i = length - count; i >= 0; --i) {
        if (literalAt(text + i, literal, count, ignoreCase)) return i + count;
    }
    return 0;
}

struct Search {
    const Zel8u* text;
    int length;  // narrowed
    ZelRegExpState& state;
    Context c;
    bool startOnly = false;
    bool lineStart = false;

    Search(const Zel8u* subject, int subjectLength, ZelRegExpState& object)
        : text(subject), length(narrowedLength(subject, subjectLength, object)), state(object) {
        c = {};
        c.end = state.nodeCount;
        c.numCaptures = state.groupCount;
        c.steps = state.matchLimit;
        c.format = state.format;
        c.textStart = text;
        c.nodes = state.nodes();
        c.captures = state.captures;
        c.groups = state.groups;
        c.numGroups = 1;
        for (int k = 0; k < state.nodeCount; ++k) {
            bool close = c.nodes[k].kind == zel::NodeGroupingClose;
            if (close && c.nodes[k].value >= c.numGroups) c.numGroups = c.nodes[k].value + 1;
        }
        chooseStarts();
    }

    void chooseStarts() {
        if (c.end < 1 || c.nodes[0].kind != zel::NodePosition) return;
        if (findBar(c, 0, 0, c.end) >= 0) return;
        int value = c.nodes[0].value;
        if (value == 'A' || value == 'G') startOnly = true;
        if (value == '^') {
            lineStart = (state.options & zel::kOptionMultiLine) != 0;
            startOnly = !lineStart;
        }
        bool optional = c.end >= 2 &&
                        (c.nodes[1].kind == zel::NodeQuantifierMin ||
                         c.nodes[1].kind == zel::NodeQuantifierMax) &&
                        c.nodes[1].value == 0;
        if (optional) startOnly = false;
    }

    /// One attempt at one position: all top-level alternatives in order.
    bool attempt(int position) {
        for (int i = 1; i < c.numCaptures; ++i) c.captures[i] = {nullptr, -1};
        c.captures[0] = {text + position, 0};
        for (int i = 0; i < c.numGroups; ++i) c.groups[i] = {};
        c.flags = state.options;
        c.end = state.nodeCount;
        int start = 0;
        for (;;) {
            if (runFrom(start, text + position, length - position, c) == 0) return true;
            int bar = findBar(c, 0, start, c.end);
            if (bar < 0) return false;
            c.flags = static_cast<Zel32u>(c.nodes[bar].count);
            start = bar + 1;
        }
    }

    int behindCharacter(int position) const {
        if (position >= length || c.format != zel::kFormatUtf8) return position + 1;
        return position + decodeUtf8(text + position, length - position).length;
    }

    bool mayStartAt(int position) const {
        if (startOnly) return position == 0;
        return !lineStart || position == 0 || text[position - 1] == 0x0A;
    }

    /// Attempts from `position` on; the position of the first success, or -1.
    int findFrom(int position) {
        for (; position <= length; position = behindCharacter(position)) {
            if (mayStartAt(position) && attempt(position)) return position;
        }
        return -1;
    }
};

ZelStatus findFirst(Search& search, ZelRegExpFind* result, int* numFind) {
    *numFind = smaller(*numFind, search.c.numCaptures);
    if (search.findFrom(0) >= 0) {
        for (int i = 0; i < *numFind; ++i) {
            result[i] = {const_cast<Zel8u*>(search.c.captures[i].text),
                         search.c.captures[i].length};
        }
        return zelStatusOk;
    }
    if (search.c.steps < 0) return zelStatusRegExpMatchLimitError;
    *numFind = 0;
    return zelStatusOk;
}

ZelStatus findAll(Search& search, ZelRegExpFind* result, int* numFind, bool wholeMatchToo) {
    Context& c = search.c;
    int firstSlot = !wholeMatchToo && c.numCaptures > 1 ? 1 : 0;
    int perMatch = c.numCaptures - firstSlot;
    int capacity = *numFind;
    int written = 0;
    auto finish = [&](ZelStatus status) {
        *numFind = written;
        return status;
    };
    auto append = [&] {
        for (int i = firstSlot; i < c.numCaptures; ++i) {
            result[written++] = {const_cast<Zel8u*>(c.captures[i].text), c.captures[i].length};
        }
    };
    int position = 0;
    for (;;) {
        if (written > capacity - perMatch) return finish(zelStatusOk);
        int found = search.findFrom(position);
        if (found >= 0) append();
        if (c.steps < 0) return finish(zelStatusRegExpMatchLimitError);
        if (found < 0) return finish(zelStatusOk);
        if (c.consumed() > 0) {
            position = found + c.consumed();
            continue;
        }
        // Behind an empty match: another try at the same place, for a match that is not empty.
        position = search.behindCharacter(found);
        if (written > capacity - perMatch || found >= search.length) continue;
        c.noEmpty = 1;
        bool again = search.attempt(found) && c.consumed() > 0;
        c.noEmpty = 0;
        if (again) {
            append();
            position = found + c.consumed();
        }
        if (c.steps < 0) return finish(zelStatusRegExpMatchLimitError);
    }
}

}  // namespace

int stepsLeft() {
    return lastStepsLeft;
}

ZelStatus findWith(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                   ZelRegExpFind* pResult, int* pNumFind, bool wholeMatchToo) {
    if (!pSrc || !pRegExpState || !pResult) return zelStatusNullPointer;
    if (srcLen < 0) return zelStatusLengthError;
    if (*pNumFind < 1) return zelStatusSizeError;
    if (pRegExpState->magic != zel::kRegExpMagic) return zelStatusContextMatchError;
    Search search(pSrc, srcLen, *pRegExpState);
    ZelStatus status = (pRegExpState->options & zel::kOptionGlobal)
                           ? findAll(search, pResult, pNumFind, wholeMatchToo)
                           : findFirst(search, pResult, pNumFind);
    lastStepsLeft = search.c.steps;
    return status;
}

ZelStatus zelsRegExpFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                            ZelRegExpFind* pResult, int* pNumFind) {
    return findWith(pSrc, srcLen, pRegExpState, pResult, pNumFind, false);
}

}  // namespace model
