// Reading and matching characters in a row. What a character is, and which node accepts it, are the
// engine's own tests.
#include "regexp/match/character_sequence.h"

#include "regexp/match/character.h"
#include "regexp/match/class_matcher.h"
#include "string/kernels/api.h"

namespace zel {

bool CharacterSequence::readPart(const Node& node) {
    switch (node.kind) {
        case NodeCharacterClass:
        case NodeLetterRange:
        case NodeLetterUtf8:
        case NodeUnicodeCategory:
        case NodeUnicodeProperty:
        case NodeUnicodeScript:
            break;
        default:
            return false;
    }
    if (count_ == 0) first_ = firstBytes(node, flags_, true);
    Part& part = parts_[count_];
    part.node = &node;
    part.isCategory = node.kind == NodeUnicodeCategory;
    part.groups = part.isCategory ? acceptedGroups(node) : 0;
    buildCharacterSet(node, flags_, part.set);
    if (part.set.wide == ClassSet::kTestWide) return true;
    for (int lead = 2; lead < 32; ++lead) {
        part.set.met[lead] = ClassSet::kKnown;
        part.set.answers[lead] = part.set.elsewhere ? ~uint64_t{0} : 0;
    }
    return true;
}

bool CharacterSequence::read(const ZelRegExpState& state) {
    const Node* nodes = state.nodes();
    if (state.format != kFormatUtf8) return false;
    flags_ = state.options;
    for (int index = 0; index < state.nodeCount; ++count_) {
        if (count_ == kMaxParts || !readPart(nodes[index])) return false;
        Part& part = parts_[count_];
        index += part.node->kind == NodeCharacterClass ? 1 + part.node->count : 1;
        part.min = part.max = 1;
        if (index == state.nodeCount || !isQuantifier(nodes[index])) continue;
        // Only the end of the pattern takes what it can get.
        const Node& repeat = nodes[index++];
        part.min = repeat.value;
        part.max = repeat.count > part.min ? repeat.count : part.min;
        if (repeat.kind != NodeQuantifierMax) return false;
        if (part.min != part.max && index != state.nodeCount) return false;
    }
    return count_ > 0 && parts_[0].min > 0;
}

/// Takes at most part.max characters. The lengths that a processor can guess are written as
/// branches: computed ones would have to be known before the next character is read.
const Zel8u* CharacterSequence::takeRun(const Part& part, const Zel8u* text, const Zel8u* end,
                                        int& count) const {
    const ClassSet& set = part.set;
    count = 0;
    for (; count < part.max && text < end; ++count) {
        const unsigned byte = *text;
        if (byte < 0x80) {
            if (!set.bytes.has(*text)) break;
            ++text;
            continue;
        }
        const unsigned lead = byte - 0xC0u;
        if (lead < 32 && set.met[lead] == ClassSet::kKnown && end - text > 1 &&
            (text[1] & 0xC0) == 0x80) {
            if (((set.answers[lead] >> (text[1] & 0x3F)) & 1) == 0) break;
            text += 2;
            continue;
        }
        if (lead - 32 < 16 && (part.isCategory || set.wide != ClassSet::kTestWide)) {
            const Utf8Char character = decodeUtf8Sequence(text, end - text);
            if (character.wellFormed) {
                const bool accepted =
                    part.isCategory ? inGroups(part.groups, character.value) : set.elsewhere;
                if (!accepted) break;
                text += 3;
                continue;
            }
        }
        const int length = acceptedLength(set, *part.node, text, end, flags_);
        if (length == 0) break;
        text += length;
    }
    return text;
}

const Zel8u* CharacterSequence::matchAt(const Zel8u* text, const Zel8u* end) const {
    for (int i = 0; i < count_; ++i) {
        int count = 0;
        text = takeRun(parts_[i], text, end, count);
        if (count < parts_[i].min) return nullptr;
    }
    return text;
}

int CharacterSequence::collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results,
                               int capacity) const {
    int written = 0;
    for (const Zel8u* text = start; written < capacity && text < end;) {
        if (!first_.has(*text)) {
            text += kernels::findByteIn(text, static_cast<int>(end - text), first_.words);
            text = characterBoundary(text, start, end);
            continue;
        }
        const Zel8u* matchEnd = matchAt(text, end);
        if (matchEnd == nullptr) {
            text += utf8Length(text, end - text);
            continue;
        }
        results[written++] = {const_cast<Zel8u*>(text), static_cast<int>(matchEnd - text)};
        text = matchEnd;
    }
    return written;
}

}  // namespace zel
