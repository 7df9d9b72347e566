// zelsed: replaces what a pattern matches in every line of files or of standard input, the first
// match of a line or all of them. Lines and files may be of any size: when a call did not have the
// room it needed, the room grows and the line is done again; what a call left unwritten is written
// from where it stopped.
//
//     zelsed -g '(\w+)@(\w+)' '$2 at $1' letters.txt
//
// `Replacer` is the part to read; the rest is options and files.
#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zelchmx.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kExitError = 2;
constexpr int kDefaultLimit = 10'000'000;

constexpr char kUsage[] =
    "Usage: zelsed [OPTION]... PATTERN TEMPLATE [FILE]...\n"
    "Prints each line with the first match of PATTERN replaced by TEMPLATE. Without FILE, or with\n"
    "-, reads standard input.\n"
    "\n"
    "  -g        replace every match of a line\n"
    "  -i        letters match in either case\n"
    "  -b        text is bytes, not UTF-8\n"
    "  -l LIMIT  the steps that one line may take (default 10000000)\n"
    "\n"
    "In TEMPLATE, $& is the match and $1 to $9 are its groups; a backslash is dropped.\n";

struct Options {
    bool all = false;
    bool ignoreCase = false;
    bool bytes = false;
    int limit = kDefaultLimit;
};

/// A line without its newline. The byte behind it can be read.
struct Line {
    const Zel8u* text;
    int length;
};

const Zel8u* asBytes(const std::string& text) {
    return reinterpret_cast<const Zel8u*>(text.c_str());
}

int asInt(std::size_t n) {
    return static_cast<int>(n);
}

void write(const Zel8u* text, std::ptrdiff_t length) {
    fwrite(text, 1, static_cast<std::size_t>(length), stdout);
}

/// A parsed template, and what its text tells about the length of an expansion.
class Template {
public:
    Template(const std::string& text, std::string& error);

    const ZelRegExpReplaceState* state() const {
        return reinterpret_cast<const ZelRegExpReplaceState*>(memory_.get());
    }
    /// What it expands to when all groups are empty.
    const std::string& literals() const { return literals_; }
    bool isEmpty() const { return literals_.empty() && references_ == 0; }
    /// At most this many bytes, for one match or for several.
    long long longestExpansion(const std::vector<ZelRegExpFind>& find, int found) const;

private:
    std::string text_;  // the parsed template points into it
    std::unique_ptr<char[]> memory_;
    std::string literals_;
    int references_ = 0;
};

Template::Template(const std::string& text, std::string& error) : text_(text) {
    int size = 0;
    zelsRegExpReplaceGetSize(asBytes(text_), &size);
    memory_ = std::make_unique<char[]>(static_cast<std::size_t>(size));
    const ZelStatus status = zelsRegExpReplaceInit(
        asBytes(text_), reinterpret_cast<ZelRegExpReplaceState*>(memory_.get()));
    if (status != zelStatusOk) {
        error = "in the template, a $ is followed neither by & nor by the number of a group";
        return;
    }
    for (std::size_t i = 0; i < text_.size(); ++i) {
        if (text_[i] == '\\') continue;
        if (text_[i] != '$') {
            literals_ += text_[i];
            continue;
        }
        ++references_;
        if (text_[i + 1] == '&') {
            ++i;
        } else {
            while (isdigit(static_cast<unsigned char>(text_[i + 1]))) ++i;
        }
    }
}

long long Template::longestExpansion(const std::vector<ZelRegExpFind>& find, int found) const {
    long long longest = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(found); ++i) {
        longest += asInt(literals_.size());
        longest += static_cast<long long>(references_) * std::max(find[i].lenMatch, 0);
    }
    return longest;
}

class Replacer {
public:
    /// When the pattern or the template is malformed, `error` gets a message and the object must
    /// not be used.
    Replacer(const std::string& pattern, const std::string& replacement, const Options& options,
             std::string& error);

    /// Prints the line with its matches replaced. When the search fails, the line is printed as it
    /// is, and the status tells why.
    ZelStatus print(Line line);

private:
    struct Release {
        void operator()(ZelRegExpState* state) const { zelsRegExpFree(state); }
    };
    using Pattern = std::unique_ptr<ZelRegExpState, Release>;

    /// The lengths and the count as a call gives them back.
    struct Result {
        ZelStatus status;
        int used;
        int made;
        int found;
    };

    static Pattern compile(const std::string& text, const std::string& letters,
                           const Options& options, std::string& error);
    Result replace(Line line);
    bool fits(long long bytes);
    ZelStatus printFirst(Line line);
    ZelStatus printAll(Line line);
    ZelStatus printEmptyLine(Line line);

    bool all_;
    Template template_;
    Pattern pattern_;
    int recordsPerMatch_ = 1;
    std::vector<ZelRegExpFind> find_;
    std::vector<Zel8u> out_;
    int capacity_ = 1024;  // what calls are told of out_
};

Replacer::Pattern Replacer::compile(const std::string& text, const std::string& letters,
                                    const Options& options, std::string& error) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    const ZelStatus status = zelsRegExpInitAlloc(
        text.c_str(), (letters + (options.ignoreCase ? "i" : "")).c_str(), &state, &offset);
    if (status != zelStatusOk) {
        error = "the pattern does not compile: status " + std::to_string(status) + " at byte " +
                std::to_string(offset);
        return nullptr;
    }
    zelsRegExpSetFormat(options.bytes ? 0 : 1, state);
    zelsRegExpSetMatchLimit(options.limit, state);
    return Pattern(state);
}

Replacer::Replacer(const std::string& pattern, const std::string& replacement,
                   const Options& options, std::string& error)
    : all_(options.all),
      template_(replacement, error),
      pattern_(compile(pattern, all_ ? "g" : "", options, error)),
      find_(1001) {
    // With an empty first alternative there always is a match, and a first match lowers the number
    // of records to one for the match and one for each group.
    std::string ignored;
    const Pattern counter = compile("|" + pattern, "", options, ignored);
    if (!counter) return;
    int records = asInt(find_.size());
    if (zelsRegExpFind_8u(asBytes(""), 0, counter.get(), find_.data(), &records) == zelStatusOk)
        recordsPerMatch_ = records;
}

ZelStatus Replacer::print(Line line) {
    const ZelStatus status = line.length == 0 ? printEmptyLine(line)
                             : all_           ? printAll(line)
                                              : printFirst(line);
    if (status != zelStatusOk) write(line.text, line.length);
    return status;
}

Replacer::Result Replacer::replace(Line line) {
    // Without "g" a call may write behind its capacity; twice the larger of capacity and source is
    // always enough.
    const std::size_t room = static_cast<std::size_t>(std::max(capacity_, line.length)) * 2;
    if (out_.size() < room) out_.resize(room);
    Result result = {zelStatusOk, line.length, capacity_, asInt(find_.size())};
    result.status =
        zelsRegExpReplace_8u(line.text, &result.used, out_.data(), &result.made, find_.data(),
                             &result.found, pattern_.get(), template_.state());
    return result;
}

/// True when so many bytes fit the capacity that the last call had; else the next call has more.
bool Replacer::fits(long long bytes) {
    if (bytes < capacity_) return true;
    if (bytes > INT_MAX / 2) {
        fprintf(stderr, "zelsed: a line becomes too long\n");
        exit(kExitError);
    }
    capacity_ = static_cast<int>(bytes) * 2;
    return false;
}

ZelStatus Replacer::printFirst(Line line) {
    for (;;) {
        const Result result = replace(line);
        if (result.status != zelStatusOk) return result.status;
        if (result.found == 0) {
            write(line.text, line.length);
            return zelStatusOk;
        }
        // Prefix and expansion must be there. The rest of the line stands in the line already.
        const ZelRegExpFind match = find_[0];
        const std::ptrdiff_t start = match.pMatch - line.text;
        if (!fits(start + template_.longestExpansion(find_, result.found))) continue;
        write(out_.data(), result.made);
        std::ptrdiff_t rest = result.used;
        if (template_.isEmpty())
            rest = std::min<std::ptrdiff_t>(start + match.lenMatch, line.length);
        write(line.text + rest, line.length - rest);
        return zelStatusOk;
    }
}

ZelStatus Replacer::printAll(Line line) {
    for (;;) {
        const Result result = replace(line);
        if (result.status != zelStatusOk) return result.status;
        if (result.found + recordsPerMatch_ > asInt(find_.size())) {
            // There may be more matches. Resuming behind the last one would save the room, but hide
            // the text in front from a pattern that looks back.
            find_.resize(find_.size() * 2);
            continue;
        }
        if (!fits(line.length + template_.longestExpansion(find_, result.found))) continue;
        write(out_.data(), result.made);
        return zelStatusOk;
    }
}

/// There is nothing to replace in a text of no bytes, but a pattern may match it, and then only the
/// template's own text takes its place.
ZelStatus Replacer::printEmptyLine(Line line) {
    int found = asInt(find_.size());
    const ZelStatus status = zelsRegExpFind_8u(line.text, 0, pattern_.get(), find_.data(), &found);
    if (status == zelStatusOk && found > 0)
        write(asBytes(template_.literals()), asInt(template_.literals().size()));
    return status;
}

/// Replaces in all lines of a file. Returns false when something failed; messages are out by then.
bool replaceInFile(FILE* file, const char* name, Replacer& replacer) {
    bool good = true;
    char* buffer = nullptr;
    size_t size = 0;
    long long number = 0;
    ssize_t length;
    while ((length = getline(&buffer, &size, file)) > 0) {
        ++number;
        const bool newline = buffer[length - 1] == '\n';
        if (newline) --length;
        if (length > INT_MAX / 2) {
            fprintf(stderr, "zelsed: %s:%lld: the line is too long\n", name, number);
            good = false;
            fwrite(buffer, 1, static_cast<std::size_t>(length), stdout);
        } else {
            const Line line = {reinterpret_cast<const Zel8u*>(buffer), static_cast<int>(length)};
            const ZelStatus status = replacer.print(line);
            if (status != zelStatusOk) {
                fprintf(stderr, "zelsed: %s:%lld: %s\n", name, number,
                        status == zelStatusRegExpMatchLimitError
                            ? "the search took more steps than -l allows; the line stays as it is"
                            : "the search failed; the line stays as it is");
                good = false;
            }
        }
        if (newline) putchar('\n');
    }
    free(buffer);
    if (ferror(file)) {
        fprintf(stderr, "zelsed: %s: %s\n", name, strerror(errno));
        good = false;
    }
    return good;
}

bool replaceInFileNamed(const char* name, Replacer& replacer) {
    if (strcmp(name, "-") == 0) return replaceInFile(stdin, "(standard input)", replacer);
    FILE* const file = fopen(name, "r");
    if (file == nullptr) {
        fprintf(stderr, "zelsed: %s: %s\n", name, strerror(errno));
        return false;
    }
    const bool good = replaceInFile(file, name, replacer);
    fclose(file);
    return good;
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

}  // namespace

int main(int argc, char** argv) {
    Options options;
    for (int letter; (letter = getopt(argc, argv, "gibl:h")) != -1;) {
        switch (letter) {
            case 'g':
                options.all = true;
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
            case 'h':
                usage(stdout, 0);
            default:
                usage(stderr, kExitError);
        }
    }
    if (argc - optind < 2) usage(stderr, kExitError);

    std::string error;
    Replacer replacer(argv[optind], argv[optind + 1], options, error);
    if (!error.empty()) {
        fprintf(stderr, "zelsed: %s\n", error.c_str());
        return kExitError;
    }
    optind += 2;
    bool good = true;
    if (optind == argc) good = replaceInFileNamed("-", replacer);
    for (int i = optind; i < argc; ++i) good = replaceInFileNamed(argv[i], replacer) && good;
    if (fflush(stdout) != 0) {
        fprintf(stderr, "zelsed: standard output: %s\n", strerror(errno));
        good = false;
    }
    return good ? 0 : kExitError;
}
