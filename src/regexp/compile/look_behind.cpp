// How many characters a look-behind body takes. One walk over the body's nodes; a nested group is
// measured on a level of its own, kept on a small stack instead of by recursion, so that deep
// nesting costs no machine stack. Only the minimum of a quantifier counts, and nodes that are not
// known here (back-references, \C, option groups and so on) count nothing: both by design.
#include "regexp/compile/compiler.h"

namespace zel {
namespace {

struct Level {
    int end;          // node index at which the level ends
    int length;       // of the current branch so far
    int lastAtom;     // length of what a quantifier would repeat
    int firstBranch;  // length of the first branch, -1 before its end
};

/// Lengths that no text can have all count as the same.
int saturate(long length) {
    return static_cast<int>(length < __INT_MAX__ ? length : __INT_MAX__);
}

/// Ends a branch; false when its length is not that of the first.
bool endBranch(Level& level) {
    if (level.firstBranch < 0) level.firstBranch = level.length;
    return level.length == level.firstBranch;
}

}  // namespace

int measureLookBehind(const Node* nodes, int first, int last) {
    Level levels[kMaxGroups];
    int depth = 0;
    levels[0] = {last, 0, 0, -1};
    for (int i = first;; ++i) {
        Level& level = levels[depth];
        if (i == level.end) {
            if (!endBranch(level)) return -1;
            if (depth == 0) return level.length;
            Level& outer = levels[--depth];
            outer.length = saturate(static_cast<long>(outer.length) + level.length);
            outer.lastAtom = level.length;
            continue;  // i is the nested group's close
        }
        const Node& node = nodes[i];
        switch (node.kind) {
            case NodeCharacterClass:
                i += node.count;
                [[fallthrough]];
            case NodeLetter:
            case NodeLetterRange:
            case NodeLetterUtf8:
            case NodeUnicodeCategory:
            case NodeUnicodeProperty:
            case NodeUnicodeScript:
            case NodeCombLetter:
                level.length = saturate(static_cast<long>(level.length) + 1);
                level.lastAtom = 1;
                break;
            case NodeString:
                level.length = saturate(static_cast<long>(level.length) + node.count);
                break;
            case NodeQuantifierMin:
            case NodeQuantifierMax:
                if (node.value > 0) {
                    const long more = (node.value - 1L) * level.lastAtom;
                    level.length = saturate(level.length + more);
                }
                break;
            case NodeGroupingLookBehind:
            case NodeGroupingLookBehindNot:
            case NodeGroupingLookAhead:
            case NodeGroupingLookAheadNot:
                i += node.count + 1;
                break;
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
            case NodeGroupingAtom:
                levels[++depth] = {i + 1 + node.count, 0, 0, -1};
                break;
            case NodeAlternative:
                if (!endBranch(level)) return -1;
                level.length = 0;
                level.lastAtom = 0;
                break;
            default:
                break;
        }
    }
}

}  // namespace zel
