// Position assertions. They work on bytes in both formats. \b and \B look at the byte at the
// position even at the end of the text: a caller keeps one readable byte there.
#include "regexp/match/context.h"
#include "regexp/match/predicates.h"

namespace zel {

namespace {

bool atWordBoundary(const Zel8u* text, const RegExpMatchContext& context) {
    const Zel8u before = text == context.textStart ? Zel8u{' '} : text[-1];
    return kWordBytes.has(before) != kWordBytes.has(*text);
}

bool holds(int assertion, const Zel8u* text, int length, const RegExpMatchContext& context) {
    const bool multiLine = (context.flags & kOptionMultiLine) != 0;
    const bool atStart = text == context.textStart;
    switch (assertion) {
        case '^':
            return atStart || (multiLine && length != 0 && text[-1] == '\n');
        case '$':
            if (multiLine) return length == 0 || *text == '\n';
            return length == 0 || (length == 1 && *text == '\n');
        case 'A':
        case 'G':
            return atStart;
        case 'Z':
            return length == 0 || (length == 1 && *text == '\n');
        case 'z':
            return length == 0;
        case 'b':
            return atWordBoundary(text, context);
        case 'B':
            return !atWordBoundary(text, context);
        case kLineStartMarker:
            return atStart || text[-1] == '\n';
        default:
            return false;
    }
}

}  // namespace

int ownsNodePosition(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int index = context.node;
    const Node* quantifier = quantifierAt(context, index + 1);
    if (quantifier != nullptr && quantifier->value == 0) {
        context.node = index + 2;
        return 0;
    }
    if (!holds(context.nodes[index].value, text, length, context)) return 1;
    context.node = index + 1;
    return 0;
}

}  // namespace zel
