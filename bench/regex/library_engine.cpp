// The library as its users call it: find-all through option "g" with the largest match limit and
// room for every record, first match and sets with the defaults.

#include <zelchmx.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "regex/engine.h"

namespace bench {
namespace {

struct FreePattern {
    void operator()(ZelRegExpState* state) const { zelsRegExpFree(state); }
};
using Pattern = std::unique_ptr<ZelRegExpState, FreePattern>;

std::string optionsOf(const Query& query, const char* more) {
    std::string options = more;
    if (query.ignoreCase) options += 'i';
    if (query.multiLine) options += 'm';
    return options;
}

Pattern compilePattern(const Query& query, const char* moreOptions) {
    ZelRegExpState* state = nullptr;
    int errorOffset = 0;
    if (zelsRegExpInitAlloc(query.pattern, optionsOf(query, moreOptions).c_str(), &state,
                            &errorOffset) != zelStatusOk)
        return nullptr;
    zelsRegExpSetFormat(query.utf8 ? 1 : 0, state);
    zelsRegExpSetMatchLimit(INT_MAX, state);
    return Pattern(state);
}

const Zel8u* bytes(std::string_view text) {
    return reinterpret_cast<const Zel8u*>(text.data());
}

class LibraryMatcher : public Matcher {
public:
    LibraryMatcher(const Query& query, Pattern all, Pattern first)
        : groups_(query.groups), all_(std::move(all)), first_(std::move(first)) {}

    Tally findAll(std::string_view text) override {
        if (capacity_ == 0) makeRoom(text, static_cast<std::size_t>(std::max(1, groups_)));
        int count = static_cast<int>(capacity_);
        Tally tally;
        const ZelStatus status = zelsRegExpFind_8u(bytes(text), static_cast<int>(text.size()),
                                                   all_.get(), records_.get(), &count);
        if (status != zelStatusOk) {
            tally.matches = status;
            return tally;
        }
        tally.matches = count / std::max(1, groups_);
        for (int i = 0; i < count; ++i) add(tally, records_[i], text);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        ZelRegExpFind records[16];
        Tally tally;
        for (const std::string_view subject : subjects) {
            int count = groups_ + 1;
            zelsRegExpFind_8u(bytes(subject), static_cast<int>(subject.size()), first_.get(),
                              records, &count);
            if (count == 0) continue;
            ++tally.matches;
            for (int i = groups_ == 0 ? 0 : 1; i < count; ++i) add(tally, records[i], subject);
        }
        return tally;
    }

    bool canReplace() const override { return true; }
    std::int64_t replaceAll(std::string_view text, const char* replacement) override {
        if (replaceState_.empty()) {
            makeRoom(text, static_cast<std::size_t>(groups_ + 1));
            const Zel8u* const source = reinterpret_cast<const Zel8u*>(replacement);
            int size = 0;
            zelsRegExpReplaceGetSize(source, &size);
            replaceState_.resize(static_cast<std::size_t>(size) / 8 + 1);
            zelsRegExpReplaceInit(source, replacementState());
            output_.resize(text.size() * 2 + 4096);
        }
        int sourceLength = static_cast<int>(text.size());
        int outputLength = static_cast<int>(output_.size());
        int count = static_cast<int>(capacity_);
        zelsRegExpReplace_8u(bytes(text), &sourceLength, output_.data(), &outputLength,
                             records_.get(), &count, all_.get(), replacementState());
        return textDigest({reinterpret_cast<const char*>(output_.data()),
                           static_cast<std::size_t>(outputLength)});
    }

private:
    static void add(Tally& tally, const ZelRegExpFind& record, std::string_view text) {
        if (record.pMatch != nullptr) tally.add(record.pMatch - bytes(text), record.lenMatch);
    }

    // No pattern of the rows matches less than one byte. The room is not initialised: touching all
    // of it would count as part of a search.
    void makeRoom(std::string_view text, std::size_t recordsPerMatch) {
        capacity_ = (text.size() + 1) * recordsPerMatch;
        records_ = std::make_unique_for_overwrite<ZelRegExpFind[]>(capacity_);
    }

    ZelRegExpReplaceState* replacementState() {
        return reinterpret_cast<ZelRegExpReplaceState*>(replaceState_.data());
    }

    int groups_;
    Pattern all_;
    Pattern first_;
    std::size_t capacity_ = 0;
    std::unique_ptr<ZelRegExpFind[]> records_;
    std::vector<std::uint64_t> replaceState_;  // words, for their alignment
    std::vector<Zel8u> output_;
};

class LibraryEngine : public Engine {
public:
    const char* name() const override { return "zelchmx"; }
    Kind kind() const override { return Kind::Library; }

    std::unique_ptr<Matcher> compile(const Query& query) const override {
        Pattern all = compilePattern(query, "g");
        Pattern first = compilePattern(query, "");
        if (all == nullptr || first == nullptr) return nullptr;
        return std::make_unique<LibraryMatcher>(query, std::move(all), std::move(first));
    }

    // Into memory the caller has at hand, which is what the library is made for.
    bool compileOnly(const Query& query) const override {
        static std::vector<std::uint64_t> block;
        int size = 0;
        zelsRegExpGetSize(query.pattern, &size);
        if (block.size() * 8 < static_cast<std::size_t>(size))
            block.resize(static_cast<std::size_t>(size) / 8 + 1);
        int errorOffset = 0;
        const char* const options = query.ignoreCase ? "i" : query.multiLine ? "m" : "";
        return zelsRegExpInit(query.pattern, options,
                              reinterpret_cast<ZelRegExpState*>(block.data()),
                              &errorOffset) == zelStatusOk;
    }
};

class LibrarySet : public SetMatcher {
public:
    explicit LibrarySet(const std::vector<Query>& queries)
        : finds_(queries.size()), records_(queries.size()) {
        const int count = static_cast<int>(queries.size());
        zelsRegExpMultiInitAlloc(&set_, count);
        for (std::size_t i = 0; i < queries.size(); ++i) {
            patterns_.push_back(compilePattern(queries[i], ""));
            zelsRegExpMultiAdd(patterns_.back().get(), static_cast<Zel32u>(i + 1), set_);
            finds_[i].pFind = &records_[i];
        }
    }
    ~LibrarySet() override { zelsRegExpMultiFree(set_); }

    std::int64_t countHits(const std::vector<std::string_view>& lines) override {
        std::int64_t hits = 0;
        for (const std::string_view line : lines) {
            for (ZelRegExpMultiFind& find : finds_) find.numFind = 1;
            zelsRegExpMultiFind_8u(bytes(line), static_cast<int>(line.size()), finds_.data(), set_);
            for (const ZelRegExpMultiFind& find : finds_) hits += find.numFind;
        }
        return hits;
    }

private:
    ZelRegExpMultiState* set_ = nullptr;
    std::vector<Pattern> patterns_;
    std::vector<ZelRegExpMultiFind> finds_;
    std::vector<ZelRegExpFind> records_;
};

}  // namespace

void addLibrary(EngineList& engines) {
    engines.push_back(std::make_unique<LibraryEngine>());
}

std::unique_ptr<SetMatcher> librarySet(const std::vector<Query>& patterns) {
    return std::make_unique<LibrarySet>(patterns);
}

}  // namespace bench
