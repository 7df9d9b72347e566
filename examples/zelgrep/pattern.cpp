// Everything that zelgrep asks of the regular-expression functions stands here.
#include "pattern.h"

#include <algorithm>
#include <string_view>

namespace zelgrep {
namespace {

const char* meaningOf(ZelStatus status) {
    switch (status) {
        case zelStatusRegExpEscapeError:
            return "malformed escape, or a property of no known name";
        case zelStatusRegExpCharClassError:
            return "malformed bracket class";
        case zelStatusRegExpBackRefError:
            return "reference to a group that does not exist";
        case zelStatusRegExpGroupingError:
            return "malformed or unbalanced parentheses";
        case zelStatusRegExpQuantifierError:
            return "a quantifier with nothing to repeat, or with bad bounds";
        case zelStatusRegExpOptionsError:
            return "an unknown option letter";
        case zelStatusNullPointer:
            return "the pattern is too long, or memory is exhausted";
        default:
            return "unexpected status";
    }
}

// The line of the pattern that holds the fault, and a caret under it.
std::string pointAt(std::string_view text, std::size_t offset) {
    offset = std::min(offset, text.size());
    const std::size_t before = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    std::string shown, margin;
    for (std::size_t i = begin; i < text.size() && text[i] != '\n'; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        shown += byte < 0x20 || byte == 0x7F ? ' ' : text[i];
        const bool startsCharacter = (byte & 0xC0) != 0x80;
        if (i < offset && startsCharacter) margin += ' ';
    }
    return "    " + shown + "\n    " + margin + "^";
}

int asInt(std::size_t n) {
    return static_cast<int>(n);
}

Outcome outcomeOf(ZelStatus status, int count) {
    if (status == zelStatusRegExpMatchLimitError) return Outcome::kLimit;
    return status == zelStatusOk && count > 0 ? Outcome::kFound : Outcome::kNone;
}

}  // namespace

Pattern::Pattern(const std::string& text, const std::string& options, bool bytes, int limit,
                 const BlockPlan& plan, std::string& error)
    : bytes_(bytes),
      limit_(limit),
      atOnce_(plan.many ? kManyMatches : 1),
      found_(1001),
      nothing_(reinterpret_cast<ZelRegExpReplaceState*>(nothingMemory_)) {
    zelsRegExpReplaceInit(nullptr, nothing_);
    Object counter;
    if (!compile(first_, text, options, error) || !compile(all_, text, options + "g", error) ||
        (plan.possible &&
         !compile(block_, plan.pattern, options + (plan.many ? "mg" : "m"), error)) ||
        !compile(counter, "|" + text, options, error))
        return;

    // With an empty first alternative any text matches, and a first match lowers the count of
    // records to the number of groups plus one.
    const Zel8u empty[1] = {};
    int count = asInt(found_.size());
    if (zelsRegExpFind_8u(empty, 0, counter.get(), found_.data(), &count) == zelStatusOk)
        groups_ = count - 1;
}

bool Pattern::compile(Object& object, const std::string& text, const std::string& options,
                      std::string& error) const {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    const ZelStatus status = zelsRegExpInitAlloc(text.c_str(), options.c_str(), &state, &offset);
    if (status != zelStatusOk) {
        error = std::string("the pattern does not compile: ") + meaningOf(status) + " (" +
                std::to_string(status) + ")\n" + pointAt(text, static_cast<std::size_t>(offset));
        return false;
    }
    object.reset(state);
    zelsRegExpSetFormat(bytes_ ? 0 : 1, state);
    zelsRegExpSetMatchLimit(limit_, state);
    return true;
}

Outcome Pattern::findInLine(Span line) {
    int count = 1;
    const ZelStatus status =
        zelsRegExpFind_8u(line.begin, line.length(), first_.get(), found_.data(), &count);
    return outcomeOf(status, count);
}

Outcome Pattern::findInBlock(Span block, int budget, std::vector<const Zel8u*>& matches) {
    int count = atOnce_;
    zelsRegExpSetMatchLimit(budget, block_.get());
    const ZelStatus status =
        zelsRegExpFind_8u(block.begin, block.length(), block_.get(), found_.data(), &count);
    const Outcome outcome = outcomeOf(status, count);
    matches.clear();
    if (outcome == Outcome::kFound)
        for (int i = 0; i < count; ++i)
            matches.push_back(found_[static_cast<std::size_t>(i)].pMatch);
    return outcome;
}

Outcome Pattern::findAll(Span line, int group, std::vector<Span>& spans) {
    // A search for all matches reports the groups alone, if the pattern has any.
    const int perMatch = std::max(groups_, 1);
    int count;
    ZelStatus status;
    for (;;) {
        count = asInt(found_.size());
        status = zelsRegExpFind_8u(line.begin, line.length(), all_.get(), found_.data(), &count);
        if (count + perMatch <= asInt(found_.size())) break;
        found_.resize(found_.size() * 2);  // full: there may be more matches
    }

    if (groups_ == 0 || group > 0) {
        collect(line, count, perMatch, std::max(group - 1, 0), spans);
    } else if (line.length() > 0) {
        // Replacing all matches runs the same search, but reports the whole match in front of its
        // groups. The replaced text is of no interest.
        const int matches = count / groups_;
        found_.resize(std::max(found_.size(), static_cast<std::size_t>(matches + 1) *
                                                  static_cast<std::size_t>(groups_ + 1)));
        int length = line.length();
        Zel8u unused[1];
        int unusedLength = 1;
        count = asInt(found_.size());
        zelsRegExpReplace_8u(line.begin, &length, unused, &unusedLength, found_.data(), &count,
                             all_.get(), nothing_);
        collect(line, std::min(count, matches * (groups_ + 1)), groups_ + 1, 0, spans);
    }
    return outcomeOf(status, count);
}

void Pattern::collect(Span line, int records, int perMatch, int group,
                      std::vector<Span>& spans) const {
    for (int i = group; i < records; i += perMatch) {
        const ZelRegExpFind& record = found_[static_cast<std::size_t>(i)];
        if (record.lenMatch < 1) continue;
        // The length of a match counts what a lazy repetition consumed before it failed, too.
        const auto rest = line.end - record.pMatch;
        spans.push_back(
            {record.pMatch, record.pMatch + std::min<std::ptrdiff_t>(record.lenMatch, rest)});
    }
}

}  // namespace zelgrep
