// zelgrep: a small grep whose searching is done by libzelchmx alone. Every line is a text of its
// own, as in other greps; block_plan.h tells why many lines can still be searched in one call.
//
// From the outside in: `main` reads the options, `Grep::run` walks the files, `Grep::searchFile`
// walks the blocks of a file and the matching lines of a block, `Grep::print` shows a line.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "block_plan.h"
#include "input.h"
#include "line_finder.h"
#include "pattern.h"
#include "progress.h"

namespace zelgrep {
namespace {

constexpr int kExitFound = 0;
constexpr int kExitNothing = 1;
constexpr int kExitError = 2;

constexpr int kDefaultLimit = 10'000'000;
constexpr int kLimitMessagesPerFile = 3;
constexpr std::size_t kBinaryProbe = 32768;

constexpr char kUsage[] =
    "Usage: zelgrep [OPTION]... PATTERN [FILE]...\n"
    "       zelgrep [OPTION]... -e PATTERN [-e PATTERN]... [FILE]...\n"
    "Prints the lines that a pattern matches. Without FILE, or with -, reads standard input.\n"
    "\n"
    "  -e PATTERN  search for PATTERN; may be given more than once\n"
    "  -i          letters match in either case\n"
    "  -x          extended syntax: blanks and comments in the pattern are skipped\n"
    "  -s          the dot matches a newline too (see -z)\n"
    "  -m          ^ and $ match at line breaks too (see -z)\n"
    "  -b          text is bytes, not UTF-8\n"
    "  -l LIMIT    the steps that one search may take (default 10000000)\n"
    "\n"
    "  -n          print line numbers\n"
    "  -o          print only what matched, each match on a line of its own\n"
    "  -g N        print only what group N matched (0: the whole match)\n"
    "  -c          print only the number of lines that match, per file\n"
    "  -q          print nothing; the exit status tells\n"
    "  -a          print lines of binary files too\n"
    "\n"
    "  -r          search the files below each directory\n"
    "  -z          lines end in a zero byte, not in a newline\n"
    "  -S          tell at the end how much was searched and how fast\n"
    "  -L          search line by line, never whole blocks; only for comparison\n"
    "  -h          print this text\n"
    "\n"
    "Exit status: 0 when a line matched, 1 when none did, 2 after an error.\n";

struct Options {
    std::vector<std::string> patterns;
    std::string letters;  // of i m s x
    bool bytes = false;
    int limit = kDefaultLimit;
    bool lineNumbers = false;
    bool onlyMatching = false;
    int group = 0;
    bool count = false;
    bool quiet = false;
    bool text = false;
    bool recursive = false;
    bool statistics = false;
    bool lineByLine = false;
    char separator = '\n';
    std::vector<std::string> files;
};

struct Colors {
    const char* name = "";
    const char* number = "";
    const char* punctuation = "";
    const char* match = "";
    const char* reset = "";
};

Colors colorsFor(int file) {
    const char* terminal = getenv("TERM");
    if (!isatty(file) || terminal == nullptr || strcmp(terminal, "dumb") == 0) return {};
    return {"\033[35m", "\033[32m", "\033[36m", "\033[1;31m", "\033[m"};
}

long long totalSize(const std::vector<std::string>& files) {
    long long total = 0;
    for (const std::string& file : files) {
        std::error_code error;
        const auto size = std::filesystem::file_size(file, error);
        if (!error) total += static_cast<long long>(size);
    }
    return total;
}

class Grep {
public:
    explicit Grep(const Options& options) : options_(options) {}

    int run();

private:
    struct Searcher {
        std::unique_ptr<Pattern> pattern;
        std::unique_ptr<LineFinder> finder;
    };

    bool compile();
    void collectFiles();
    void searchFile(const std::string& name, Progress& progress);
    void searchBlock(Span block, Progress& progress);
    Span nextLine(const Zel8u* from);
    long long lineNumberAt(const Zel8u* position);
    void print(Span line);
    void printSpans(Span line);
    void printPrefix(Span line);
    void write(const Zel8u* begin, const Zel8u* end);
    bool findSpans(Span line);
    void complain(const std::string& about, const std::string& message);
    void limitReached(Span line, int limit);

    const Options& options_;
    std::vector<Searcher> searchers_;
    std::vector<std::string> files_;
    Colors colors_ = colorsFor(STDOUT_FILENO);
    bool withName_ = false;
    bool failed_ = false;
    long long bytesSearched_ = 0;
    long long linesMatched_ = 0;

    // Of the file being searched.
    Input input_;
    std::string name_;
    long long matchedInFile_ = 0;
    long long limitsInFile_ = 0;
    bool binary_ = false;
    Span block_{};
    const Zel8u* countedTo_ = nullptr;  // lines of the block are counted up to here
    long long linesCounted_ = 0;
    std::vector<Span> spans_;
};

void Grep::complain(const std::string& about, const std::string& message) {
    failed_ = true;
    fflush(stdout);
    fprintf(stderr, "zelgrep: %s%s%s\n", about.c_str(), about.empty() ? "" : ": ", message.c_str());
}

bool Grep::compile() {
    int groups = 0;
    for (const std::string& text : options_.patterns) {
        std::string error;
        BlockPlan plan = planFor(text, options_.letters);
        auto pattern = std::make_unique<Pattern>(text, options_.letters, options_.bytes,
                                                 options_.limit, plan, error);
        if (!error.empty()) {
            complain("", error);
            return false;
        }
        groups = std::max(groups, pattern->groups());
        if (options_.lineByLine) plan.possible = false;
        auto finder =
            std::make_unique<LineFinder>(*pattern, plan, options_.separator,
                                         [this](Span line) { limitReached(line, options_.limit); });
        searchers_.push_back({std::move(pattern), std::move(finder)});
    }
    if (options_.group > groups) {
        complain("", "there is no group " + std::to_string(options_.group) + "; the pattern has " +
                         std::to_string(groups));
        return false;
    }
    return true;
}

void Grep::collectFiles() {
    namespace fs = std::filesystem;
    for (const std::string& name : options_.files) {
        std::error_code error;
        if (!options_.recursive || !fs::is_directory(name, error)) {
            files_.push_back(name);
            continue;
        }
        withName_ = true;
        constexpr auto kSkip = fs::directory_options::skip_permission_denied;
        for (auto it = fs::recursive_directory_iterator(name, kSkip, error);
             it != fs::recursive_directory_iterator(); it.increment(error)) {
            std::error_code ignored;
            if (!it->is_symlink(ignored) && it->is_regular_file(ignored))
                files_.push_back(it->path().string());
        }
        if (error) complain(name, error.message());
    }
    if (options_.files.empty()) files_.push_back("-");
    withName_ = withName_ || files_.size() > 1;
}

int Grep::run() {
    if (!compile()) return kExitError;
    collectFiles();
    const auto started = std::chrono::steady_clock::now();
    {
        Progress progress(isatty(STDERR_FILENO) ? totalSize(files_) : 0);
        for (const std::string& file : files_) {
            searchFile(file, progress);
            if (options_.quiet && linesMatched_ > 0) break;
        }
    }
    if (fflush(stdout) != 0) complain("standard output", strerror(errno));
    if (options_.statistics) {
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - started;
        const double megabytes = static_cast<double>(bytesSearched_) / 1e6;
        fprintf(stderr, "%lld lines matched in %.1f MB; %.3f s, %.0f MB/s\n", linesMatched_,
                megabytes, seconds.count(), megabytes / seconds.count());
    }
    if (failed_ && !(options_.quiet && linesMatched_ > 0)) return kExitError;
    return linesMatched_ > 0 ? kExitFound : kExitNothing;
}

void Grep::searchFile(const std::string& name, Progress& progress) {
    name_ = name == "-" ? "(standard input)" : name;
    if (const std::string error = input_.open(name); !error.empty()) {
        complain(name_, error);
        return;
    }
    matchedInFile_ = limitsInFile_ = linesCounted_ = 0;
    binary_ = false;
    std::string error;
    for (bool first = true; input_.read(options_.separator, block_, error); first = false) {
        if (first && !options_.text && options_.separator != '\0') {
            const auto probe = std::min(kBinaryProbe, static_cast<std::size_t>(block_.length()));
            binary_ = memchr(block_.begin, 0, probe) != nullptr;
        }
        countedTo_ = block_.begin;
        searchBlock(block_, progress);
        if (options_.quiet && linesMatched_ > 0) return;
        if (options_.lineNumbers) lineNumberAt(block_.end);
        bytesSearched_ += block_.length();
        progress.add(block_.length());
    }
    progress.hide();
    if (!error.empty()) complain(name_, error);
    if (limitsInFile_ > kLimitMessagesPerFile)
        complain(name_, "... and " + std::to_string(limitsInFile_ - kLimitMessagesPerFile) +
                            " more lines");
    if (options_.count && !options_.quiet) {
        if (withName_)
            printf("%s%s%s:%s", colors_.name, name_.c_str(), colors_.punctuation, colors_.reset);
        printf("%lld\n", matchedInFile_);
    } else if (binary_ && matchedInFile_ > 0 && !options_.quiet) {
        printf("zelgrep: %s: binary file matches\n", name_.c_str());
    }
}

void Grep::searchBlock(Span block, Progress& progress) {
    for (Searcher& searcher : searchers_) searcher.finder->start(block);
    const bool show = !options_.count && !options_.quiet && !binary_;
    for (Span line = nextLine(block.begin); line.begin < block.end; line = nextLine(line.end + 1)) {
        ++matchedInFile_;
        ++linesMatched_;
        if (show) {
            progress.hide();
            print(line);
        } else if (!options_.count) {
            return;  // one match says it all
        }
    }
}

Span Grep::nextLine(const Zel8u* from) {
    Span best{block_.end, block_.end};
    if (from >= block_.end) return best;
    for (Searcher& searcher : searchers_) {
        const Span line = searcher.finder->next(from);
        if (line.begin < best.begin) best = line;
    }
    return best;
}

long long Grep::lineNumberAt(const Zel8u* position) {
    linesCounted_ += std::count(countedTo_, position, static_cast<Zel8u>(options_.separator));
    countedTo_ = position;
    return linesCounted_ + 1;
}

void Grep::limitReached(Span line, int limit) {
    failed_ = true;
    if (++limitsInFile_ > kLimitMessagesPerFile) return;
    std::string where = name_;
    if (options_.lineNumbers) {
        const auto number =
            linesCounted_ + 1 +
            std::count(countedTo_, line.begin, static_cast<Zel8u>(options_.separator));
        where += ':';
        where += std::to_string(number);
    }
    complain(where, "a search ran out of its " + std::to_string(limit) +
                        " steps and was given up; -l sets a higher limit");
}

bool Grep::findSpans(Span line) {
    spans_.clear();
    for (Searcher& searcher : searchers_) {
        Pattern& pattern = *searcher.pattern;
        if (options_.group > pattern.groups()) continue;
        if (pattern.findAll(line, options_.group, spans_) == Outcome::kLimit)
            limitReached(line, options_.limit);
    }
    if (searchers_.size() > 1)
        std::stable_sort(spans_.begin(), spans_.end(), [](const Span& a, const Span& b) {
            return a.begin != b.begin ? a.begin < b.begin : a.end > b.end;
        });
    return !spans_.empty();
}

void Grep::print(Span line) {
    if (options_.onlyMatching) {
        if (findSpans(line)) printSpans(line);
        return;
    }
    printPrefix(line);
    if (*colors_.match != '\0' && findSpans(line)) {
        const Zel8u* at = line.begin;
        for (const Span& span : spans_) {
            if (span.end <= at) continue;
            const Zel8u* begin = std::max(span.begin, at);
            write(at, begin);
            fputs(colors_.match, stdout);
            write(begin, span.end);
            fputs(colors_.reset, stdout);
            at = span.end;
        }
        write(at, line.end);
    } else {
        write(line.begin, line.end);
    }
    putchar(options_.separator);
}

void Grep::printSpans(Span line) {
    const Zel8u* at = line.begin;
    for (const Span& span : spans_) {
        if (span.begin < at) continue;  // inside another pattern's match
        printPrefix(line);
        fputs(colors_.match, stdout);
        write(span.begin, span.end);
        fputs(colors_.reset, stdout);
        putchar(options_.separator);
        at = span.end;
    }
}

void Grep::printPrefix(Span line) {
    if (withName_)
        printf("%s%s%s:%s", colors_.name, name_.c_str(), colors_.punctuation, colors_.reset);
    if (options_.lineNumbers)
        printf("%s%lld%s:%s", colors_.number, lineNumberAt(line.begin), colors_.punctuation,
               colors_.reset);
}

void Grep::write(const Zel8u* begin, const Zel8u* end) {
    fwrite(begin, 1, static_cast<std::size_t>(end - begin), stdout);
}

bool parseNumber(const char* text, int& number) {
    char* end = nullptr;
    errno = 0;
    const long value = strtol(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0' || value < 0 || value > 0x7FFFFFFF) return false;
    number = static_cast<int>(value);
    return true;
}

// Returns an exit status, or -1 to go on.
int parse(int argc, char** argv, Options& options) {
    const auto refuse = [](const std::string& message) {
        fprintf(stderr, "zelgrep: %s\nTry 'zelgrep -h'.\n", message.c_str());
        return kExitError;
    };
    for (int letter; (letter = getopt(argc, argv, "e:isxmbl:nog:cqarzSLh")) != -1;) {
        switch (letter) {
            case 'e':
                options.patterns.emplace_back(optarg);
                break;
            case 'i':
            case 's':
            case 'x':
            case 'm':
                options.letters += static_cast<char>(letter);
                break;
            case 'b':
                options.bytes = true;
                break;
            case 'l':
                if (!parseNumber(optarg, options.limit))
                    return refuse("-l needs a number of steps");
                break;
            case 'n':
                options.lineNumbers = true;
                break;
            case 'g':
                if (!parseNumber(optarg, options.group)) return refuse("-g needs a group number");
                options.onlyMatching = true;
                break;
            case 'o':
                options.onlyMatching = true;
                break;
            case 'c':
                options.count = true;
                break;
            case 'q':
                options.quiet = true;
                break;
            case 'a':
                options.text = true;
                break;
            case 'r':
                options.recursive = true;
                break;
            case 'z':
                options.separator = '\0';
                break;
            case 'S':
                options.statistics = true;
                break;
            case 'L':
                options.lineByLine = true;
                break;
            case 'h':
                fputs(kUsage, stdout);
                return kExitFound;
            default:
                fputs("Try 'zelgrep -h'.\n", stderr);
                return kExitError;
        }
    }
    if (options.patterns.empty()) {
        if (optind == argc) return refuse("no pattern");
        options.patterns.emplace_back(argv[optind++]);
    }
    options.files.assign(argv + optind, argv + argc);
    return -1;
}

}  // namespace
}  // namespace zelgrep

int main(int argc, char** argv) {
    zelgrep::Options options;
    if (const int status = zelgrep::parse(argc, argv, options); status >= 0) return status;
    return zelgrep::Grep(options).run();
}
