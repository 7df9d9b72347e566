// Reading and matching characters in a row. What a character is, and which node accepts it, are the
// engine's own tests.
#include "regexp/match/character_sequence.h"

#include <string.h>

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
    Part& part = parts_[count_];
    part.node = &node;
    part.first = firstBytes(node, flags_, true);
    buildCharacterSet(node, flags_, part.set);
    part.learnt.clear();
    part.set.learnt = &part.learnt;
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

const Zel8u* CharacterSequence::matchAt(const Zel8u* text, const Zel8u* end) const {
    for (int i = 0; i < count_; ++i) {
        const Part& part = parts_[i];
        int count = 0;
        for (; count < part.max && text < end; ++count) {
            const int length = acceptedLength(part.set, *part.node, text, end, flags_);
            if (length == 0) break;
            text += length;
        }
        if (count < part.min) return nullptr;
    }
    return text;
}

/// What is known by now of the parts' sets; to be made again as more is.
void CharacterSequence::makePattern(kernels::CharacterPattern& pattern) const {
    static_assert(kernels::CharacterPattern::kUnbounded == kUnbounded);
    pattern.count = count_;
    for (int i = 0; i < count_; ++i) {
        const Part& part = parts_[i];
        const ClassSet& set = part.set;
        kernels::CharacterSet& known = pattern.sets[i];
        pattern.min[i] = part.min;
        pattern.max[i] = part.max;
        memcpy(known.bytes, set.bytes.words, sizeof known.bytes);
        memcpy(known.bytes + 2, part.first.words + 2, sizeof known.bytes / 2);
        known.isTested = set.wide == ClassSet::kTestWide;
        known.elsewhere = set.elsewhere;
        if (!known.isTested) continue;
        known.known = 0;
        for (int lead = 0; lead < 32; ++lead)
            known.known |= Zel32u{part.learnt.met[lead] == WideAnswers::kKnown} << lead;
        memcpy(known.twoBytes, part.learnt.answers, sizeof known.twoBytes);
    }
}

int CharacterSequence::collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results,
                               int capacity) const {
    // A stretch that is not well-formed, and a match that is very long, goes character by
    // character.
    constexpr ptrdiff_t kStretch = 64;
    struct Context {
        const CharacterSequence* sequence;
        const Zel8u* end;
    } context = {this, end};
    kernels::CharacterPattern pattern;
    pattern.context = &context;
    pattern.accepts = [](const void* given, int part, const Zel8u* text) {
        const Context& asked = *static_cast<const Context*>(given);
        const CharacterSequence& sequence = *asked.sequence;
        const Part& asks = sequence.parts_[part];
        return acceptedLength(asks.set, *asks.node, text, asked.end, sequence.flags_) != 0;
    };
    const ByteSet& first = parts_[0].first;
    int written = 0;
    const Zel8u* orderly = start;  // from here on the kernel is worth a try
    for (const Zel8u* text = start; written < capacity && text < end;) {
        if (!first.has(*text)) {
            text += kernels::findByteIn(text, static_cast<int>(end - text), first.words);
            text = characterBoundary(text, start, end);
            continue;
        }
        if (text >= orderly) {
            int resume = 0;
            makePattern(pattern);
            written += kernels::collectCharacters(text, static_cast<int>(end - text), &pattern,
                                                  results + written, capacity - written, &resume);
            text += resume;
            if (resume < kStretch) orderly = text + kStretch;
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
