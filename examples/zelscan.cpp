// zelscan: looks for many named patterns in log files at once, on all processors.
//
//     zelscan rules.txt /var/log/syslog
//
// A rules file has a name and a pattern on each line. All rules become one pattern set; the input
// is read in large blocks of whole lines, and each block is searched with the whole set in one
// call. So a rule sees many lines: ^ and $ match at each of them, but [^x] or \s match a line break
// too, unless the rule says otherwise.
//
// From the outside in: `main` reads the options, `Scanner::scanFile` walks the blocks of a file,
// `RuleSet::search` finds the hits of a block, `Scanner::printHits` shows their lines.
#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zelchmx.h>
#include <zelcore.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kExitHits = 0;
constexpr int kExitNothing = 1;
constexpr int kExitError = 2;

constexpr std::size_t kBlockSize = std::size_t{4} << 20;

constexpr char kUsage[] =
    "Usage: zelscan [OPTION]... RULES [FILE]...\n"
    "Prints the lines that a rule hits, and then a table of the rules. Without FILE, or with -,\n"
    "reads standard input.\n"
    "\n"
    "  -c        print only the table\n"
    "  -i        letters match in either case\n"
    "  -b        text is bytes, not UTF-8\n"
    "  -l LIMIT  the steps that one rule may take in one block of lines (default: no limit)\n"
    "  -S        tell at the end how much was searched and how fast\n"
    "\n"
    "A line of RULES is a name, blanks, and a pattern; empty lines and lines that begin with # "
    "are\n"
    "skipped. The environment variable OMP_NUM_THREADS sets the number of threads.\n";

struct Options {
    bool tableOnly = false;
    bool ignoreCase = false;
    bool bytes = false;
    bool speed = false;
    int limit = INT_MAX;
};

[[noreturn]] void fail(const std::string& message) {
    fflush(stdout);
    fprintf(stderr, "zelscan: %s\n", message.c_str());
    exit(kExitError);
}

const Zel8u* asBytes(const char* text) {
    return reinterpret_cast<const Zel8u*>(text);
}

/// Whole lines; the byte behind them can be read.
struct Block {
    const Zel8u* text;
    int length;

    const Zel8u* end() const { return text + length; }
    const Zel8u* lineEnd(const Zel8u* from) const {
        const void* newline = memchr(from, '\n', static_cast<std::size_t>(end() - from));
        return newline == nullptr ? end() : static_cast<const Zel8u*>(newline);
    }
};

struct Rule {
    struct Release {
        void operator()(ZelRegExpState* state) const { zelsRegExpFree(state); }
    };

    std::string name;
    std::unique_ptr<ZelRegExpState, Release> pattern;
    int recordsPerMatch = 1;
    std::vector<ZelRegExpFind> find = std::vector<ZelRegExpFind>(256);
    long long hits = 0;
    long long lines = 0;
    bool gaveUp = false;
};

/// A place in a block that a rule hits.
struct Hit {
    const Zel8u* place;
    const Rule* rule;
};

// ---- The rules ----------------------------------------------------------------------------------

class RuleSet {
public:
    RuleSet(const char* fileName, const Options& options);

    /// Adds the hits of a block, at most one for each rule and line.
    void search(Block block, std::vector<Hit>& hits);

    const std::vector<Rule>& rules() const { return rules_; }

private:
    struct Release {
        void operator()(ZelRegExpMultiState* set) const { zelsRegExpMultiFree(set); }
    };

    void addRule(const std::string& where, const std::string& line, const Options& options);
    void makeSet();
    static void collect(Block block, Rule& rule, int found, std::vector<Hit>& hits);

    std::vector<Rule> rules_;
    std::unique_ptr<ZelRegExpMultiState, Release> set_;
    std::vector<Rule*> ruleOfSlot_;  // null for a slot that stays empty
    std::vector<ZelRegExpMultiFind> results_;
};

ZelRegExpState* compile(const std::string& pattern, const Options& options, ZelStatus& status,
                        int& offset) {
    ZelRegExpState* state = nullptr;
    status =
        zelsRegExpInitAlloc(pattern.c_str(), options.ignoreCase ? "gmi" : "gm", &state, &offset);
    if (status != zelStatusOk) return nullptr;
    zelsRegExpSetFormat(options.bytes ? 0 : 1, state);
    zelsRegExpSetMatchLimit(options.limit, state);
    return state;
}

/// The number of capturing groups: with an empty first alternative there always is a match, and a
/// first match lowers the number of records to one for the match and one for each group.
int countGroups(const std::string& pattern) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    if (zelsRegExpInitAlloc(("|" + pattern).c_str(), "", &state, &offset) != zelStatusOk) return 0;
    std::vector<ZelRegExpFind> find(1001);
    int records = static_cast<int>(find.size());
    const ZelStatus status = zelsRegExpFind_8u(asBytes(""), 0, state, find.data(), &records);
    zelsRegExpFree(state);
    return status == zelStatusOk ? records - 1 : 0;
}

RuleSet::RuleSet(const char* fileName, const Options& options) {
    FILE* const file = fopen(fileName, "r");
    if (file == nullptr) fail(std::string(fileName) + ": " + strerror(errno));
    char* buffer = nullptr;
    size_t size = 0;
    ssize_t length;
    for (int number = 1; (length = getline(&buffer, &size, file)) > 0; ++number) {
        if (buffer[length - 1] == '\n') --length;
        addRule(std::string(fileName) + ":" + std::to_string(number),
                std::string(buffer, static_cast<std::size_t>(length)), options);
    }
    free(buffer);
    fclose(file);
    if (rules_.empty()) fail(std::string(fileName) + ": there are no rules");
    makeSet();
}

void RuleSet::addRule(const std::string& where, const std::string& line, const Options& options) {
    const std::size_t name = line.find_first_not_of(" \t");
    if (name == std::string::npos || line[name] == '#') return;
    const std::size_t nameEnd = line.find_first_of(" \t", name);
    const std::size_t pattern = line.find_first_not_of(" \t", nameEnd);
    if (pattern == std::string::npos) fail(where + ": a rule is a name, blanks and a pattern");
    const std::string text = line.substr(pattern);

    Rule rule;
    rule.name = line.substr(name, nameEnd - name);
    ZelStatus status;
    int offset = 0;
    rule.pattern.reset(compile(text, options, status, offset));
    if (status != zelStatusOk) {
        fail(where + ": the pattern does not compile: status " + std::to_string(status) + "\n    " +
             text + "\n    " + std::string(static_cast<std::size_t>(offset), ' ') + "^");
    }
    const int groups = countGroups(text);
    if (groups > 0) {
        // A search for all matches reports only the groups of such a pattern, and none of them need
        // have taken part. A group at the very end always has, and shifts no group's number.
        rule.pattern.reset(compile("(?:" + text + ")()", options, status, offset));
        if (status != zelStatusOk) fail(where + ": the pattern has too many groups");
        rule.recordsPerMatch = groups + 1;
    }
    rules_.push_back(std::move(rule));
}

/// The set is searched in equal runs of neighbouring slots, one run for each thread, if it has more
/// slots than threads. So it gets a multiple of the thread count, and the rules are dealt out to
/// the runs in turn: rules that stand side by side in the file often cost the same.
void RuleSet::makeSet() {
    constexpr Zel32u kGap = 0xFFFFFFFF;
    const int count = static_cast<int>(rules_.size());
    const int threads = ownGetNumThreads();
    const int run = std::max((count + threads - 1) / threads, 2);
    const int capacity = run * threads;

    ZelRegExpMultiState* set = nullptr;
    if (zelsRegExpMultiInitAlloc(&set, capacity) != zelStatusOk) fail("memory is exhausted");
    set_.reset(set);
    results_.assign(static_cast<std::size_t>(capacity), ZelRegExpMultiFind{});
    for (int slot = 0; slot < capacity; ++slot) {
        const int rule = slot % run * threads + slot / run;
        ruleOfSlot_.push_back(rule < count ? &rules_[static_cast<std::size_t>(rule)] : nullptr);
        const Rule& member = rule < count ? *ruleOfSlot_.back() : rules_.front();
        zelsRegExpMultiAdd(member.pattern.get(),
                           rule < count ? static_cast<Zel32u>(rule) + 1 : kGap, set);
    }
    while (zelsRegExpMultiDelete(kGap, set) == zelStatusOk) continue;
}

void RuleSet::search(Block block, std::vector<Hit>& hits) {
    for (std::size_t slot = 0; slot < results_.size(); ++slot) {
        if (ruleOfSlot_[slot] == nullptr) continue;
        results_[slot].pFind = ruleOfSlot_[slot]->find.data();
        results_[slot].numFind = static_cast<int>(ruleOfSlot_[slot]->find.size());
    }
    zelsRegExpMultiFind_8u(block.text, block.length, results_.data(), set_.get());
    for (std::size_t slot = 0; slot < results_.size(); ++slot) {
        Rule* const rule = ruleOfSlot_[slot];
        if (rule == nullptr) continue;
        ZelStatus status = results_[slot].status;
        int found = results_[slot].numFind;
        while (found + rule->recordsPerMatch > static_cast<int>(rule->find.size())) {
            // Out of records: there may be more hits.
            rule->find.resize(rule->find.size() * 2);
            found = static_cast<int>(rule->find.size());
            status = zelsRegExpFind_8u(block.text, block.length, rule->pattern.get(),
                                       rule->find.data(), &found);
        }
        if (status != zelStatusOk) rule->gaveUp = true;
        collect(block, *rule, found, hits);
    }
}

/// The last record of a match is a group that did take part, or the match itself.
void RuleSet::collect(Block block, Rule& rule, int found, std::vector<Hit>& hits) {
    const Zel8u* lineEnd = nullptr;  // of the line that was hit last
    for (int i = rule.recordsPerMatch - 1; i < found; i += rule.recordsPerMatch) {
        const Zel8u* const place = rule.find[static_cast<std::size_t>(i)].pMatch;
        // An empty match behind the last newline hits no line.
        if (place == block.end() && place[-1] == '\n') continue;
        ++rule.hits;
        if (lineEnd != nullptr && place <= lineEnd) continue;
        ++rule.lines;
        lineEnd = block.lineEnd(place);
        hits.push_back({place, &rule});
    }
}

// ---- The input ----------------------------------------------------------------------------------

/// Reads a file in blocks of whole lines. A line longer than the buffer doubles it.
class Input {
public:
    explicit Input(const char* name)
        : file_(strcmp(name, "-") == 0 ? stdin : fopen(name, "r")), buffer_(kBlockSize + 1) {}
    ~Input() {
        if (file_ != nullptr && file_ != stdin) fclose(file_);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    bool failed() const { return file_ == nullptr || ferror(file_) != 0; }
    bool read(Block& block);

private:
    FILE* file_;
    std::vector<Zel8u> buffer_;  // one byte larger than what is read into it
    std::size_t used_ = 0;
    std::size_t given_ = 0;  // how much of it the last block was
};

bool Input::read(Block& block) {
    used_ -= given_;
    memmove(buffer_.data(), buffer_.data() + given_, used_);
    given_ = 0;
    while (given_ == 0) {
        const std::size_t free = buffer_.size() - 1 - used_;
        const std::size_t added = fread(buffer_.data() + used_, 1, free, file_);
        const std::size_t before = used_;
        used_ += added;
        if (added < free) {
            given_ = used_;
            break;
        }
        const void* const newline = memrchr(buffer_.data() + before, '\n', added);
        if (newline != nullptr) {
            given_ =
                static_cast<std::size_t>(static_cast<const Zel8u*>(newline) + 1 - buffer_.data());
        } else if (buffer_.size() > INT_MAX / 2) {
            fail("a line is too long");
        } else {
            buffer_.resize(buffer_.size() * 2);
        }
    }
    block = {buffer_.data(), static_cast<int>(given_)};
    return given_ > 0;
}

class Scanner {
public:
    Scanner(RuleSet& rules, const Options& options) : rules_(rules), options_(options) {}

    /// `shownName` precedes each line printed. False when the file cannot be read.
    bool scanFile(const char* name, const char* shownName);
    long long bytes() const { return bytes_; }

private:
    void printHits(Block block, const char* shownName, long long firstLine);

    RuleSet& rules_;
    const Options& options_;
    std::vector<Hit> hits_;
    long long bytes_ = 0;
};

bool Scanner::scanFile(const char* name, const char* shownName) {
    Input input(name);
    Block block;
    long long line = 1;
    while (!input.failed() && input.read(block)) {
        hits_.clear();
        rules_.search(block, hits_);
        if (!options_.tableOnly) {
            printHits(block, shownName, line);
            line += std::count(block.text, block.end(), '\n');
        }
        bytes_ += block.length;
    }
    if (input.failed()) fprintf(stderr, "zelscan: %s: %s\n", name, strerror(errno));
    return !input.failed();
}

void Scanner::printHits(Block block, const char* shownName, long long firstLine) {
    std::sort(hits_.begin(), hits_.end(),
              [](const Hit& a, const Hit& b) { return a.place < b.place; });
    const Zel8u* line = block.text;
    long long number = firstLine;
    for (auto first = hits_.begin(); first != hits_.end();) {
        for (const Zel8u* end; (end = block.lineEnd(line)) < first->place; ++number) line = end + 1;
        const Zel8u* const end = block.lineEnd(line);
        const auto last =
            std::find_if(first, hits_.end(), [&](const Hit& hit) { return hit.place > end; });
        // The rules of a line in the order of the rules file.
        std::sort(first, last, [](const Hit& a, const Hit& b) { return a.rule < b.rule; });

        printf("%s%s%lld", shownName, *shownName == 0 ? "" : ":", number);
        for (const char* before = ": "; first != last; ++first, before = ",") {
            printf("%s%s", before, first->rule->name.c_str());
        }
        printf(": %.*s\n", static_cast<int>(end - line), reinterpret_cast<const char*>(line));
    }
}

void printTable(const std::vector<Rule>& rules) {
    std::size_t width = 4;
    for (const Rule& rule : rules) width = std::max(width, rule.name.size());
    printf("%-*s  %12s  %12s\n", static_cast<int>(width), "rule", "lines", "hits");
    for (const Rule& rule : rules) {
        printf("%-*s  %12lld  %12lld%s\n", static_cast<int>(width), rule.name.c_str(), rule.lines,
               rule.hits, rule.gaveUp ? "  (ran out of steps: there may be more)" : "");
    }
}

[[noreturn]] void usage(FILE* stream, int exitStatus) {
    fputs(kUsage, stream);
    exit(exitStatus);
}

int parseLimit(const char* text) {
    char* end = nullptr;
    errno = 0;
    const long value = strtol(text, &end, 10);
    if (errno != 0 || end == text || *end != 0 || value < 0 || value > INT_MAX)
        usage(stderr, kExitError);
    return static_cast<int>(value);
}

Options parseOptions(int argc, char** argv) {
    Options options;
    for (int letter; (letter = getopt(argc, argv, "cibl:Sh")) != -1;) {
        switch (letter) {
            case 'c':
                options.tableOnly = true;
                break;
            case 'i':
                options.ignoreCase = true;
                break;
            case 'b':
                options.bytes = true;
                break;
            case 'l':
                options.limit = parseLimit(optarg);
                break;
            case 'S':
                options.speed = true;
                break;
            case 'h':
                usage(stdout, 0);
            default:
                usage(stderr, kExitError);
        }
    }
    if (optind == argc) usage(stderr, kExitError);
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parseOptions(argc, argv);
    RuleSet rules(argv[optind++], options);
    Scanner scanner(rules, options);

    const auto start = std::chrono::steady_clock::now();
    bool good = true;
    const bool several = argc - optind > 1;
    if (optind == argc) good = scanner.scanFile("-", "");
    for (int i = optind; i < argc; ++i) {
        good = scanner.scanFile(argv[i], several ? argv[i] : "") && good;
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

    printTable(rules.rules());
    if (fflush(stdout) != 0) fail(std::string("standard output: ") + strerror(errno));
    if (options.speed) {
        fprintf(stderr, "%zu rules over %.1f MB in %.3f s with up to %d threads\n",
                rules.rules().size(), static_cast<double>(scanner.bytes()) / 1e6, seconds.count(),
                ownGetNumThreads());
    }
    bool hit = false;
    for (const Rule& rule : rules.rules()) {
        hit = hit || rule.hits > 0;
        good = good && !rule.gaveUp;
    }
    return !good ? kExitError : hit ? kExitHits : kExitNothing;
}
