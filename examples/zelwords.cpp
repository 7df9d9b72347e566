// zelwords: counts the words of files or of standard input and prints the most frequent ones.
//
//     zelwords -n 20 letters.txt
//
// A word is what stands between blanks, without the punctuation around it; capitals count as small
// letters. The text is UTF-8, and a byte that is not counts as Latin-1. All the work on strings is
// the library's, on 16-bit strings, since their case functions know more than ASCII:
//
//     convert - lower case - blanks - split - trim - hash - compare
//
// `Splitter` and `WordCounts` are the parts to read; the rest is options and files.
#include <errno.h>
#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <zelchmx.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

constexpr int kExitError = 2;

constexpr char kUsage[] =
    "Usage: zelwords [-n COUNT] [FILE]...\n"
    "Prints how often the most frequent words occur. Without FILE, or with -, reads standard\n"
    "input.\n"
    "\n"
    "  -n COUNT  the number of words to print, 0 for all (default 10)\n";

constexpr Zel16u kBlanks[] = {'\t', '\n', '\v', '\f', '\r', 0x00A0, 0x2028, 0x2029, 0x3000};

// The punctuation of ASCII, and quotes, dashes and dots of others.
constexpr Zel16u kPunctuation[] = {
    '!',    '"',    '#',    '$',    '%',    '&',    '\'',   '(',    ')',    '*',    '+',    ',',
    '-',    '.',    '/',    ':',    ';',    '<',    '=',    '>',    '?',    '@',    '[',    '\\',
    ']',    '^',    '_',    '`',    '{',    '|',    '}',    '~',    0x00A1, 0x00AB, 0x00B7, 0x00BB,
    0x00BF, 0x2010, 0x2011, 0x2012, 0x2013, 0x2014, 0x2015, 0x2018, 0x2019, 0x201A, 0x201C, 0x201D,
    0x201E, 0x2022, 0x2026, 0x2039, 0x203A, 0x3001, 0x3002, 0x300C, 0x300D};
constexpr int kPunctuationCount = sizeof kPunctuation / sizeof kPunctuation[0];

/// A word in somebody else's memory.
struct Word {
    const Zel16u* text;
    int length;
};

/// Words and how often they occurred: a hash table with linear probing. The words themselves stand
/// one behind the other in one vector.
class WordCounts {
public:
    struct Entry {
        Zel32u hash;
        int length;
        std::size_t offset;
        long long count;
    };

    void add(Word word);

    /// Most frequent first, and in the order of their code units where they are equally frequent.
    std::vector<Entry> sorted() const;
    Word word(const Entry& entry) const { return {text_.data() + entry.offset, entry.length}; }

private:
    static constexpr int kFree = -1;

    std::size_t findSlot(Word word, Zel32u hash) const;
    void grow();

    std::vector<Zel16u> text_;
    std::vector<Entry> entries_;
    std::vector<int> slots_ = std::vector<int>(1024, kFree);  // indices of entries; a power of 2
};

/// The slot that holds the word, or the free one where it belongs.
std::size_t WordCounts::findSlot(Word word, Zel32u hash) const {
    std::size_t slot = hash & (slots_.size() - 1);
    for (;; slot = (slot + 1) & (slots_.size() - 1)) {
        if (slots_[slot] == kFree) return slot;
        const Entry& entry = entries_[static_cast<std::size_t>(slots_[slot])];
        if (entry.hash != hash || entry.length != word.length) continue;
        int equal = 0;
        zelsEqual_16u(text_.data() + entry.offset, word.text, word.length, &equal);
        if (equal) return slot;
    }
}

void WordCounts::add(Word word) {
    Zel32u hash = 0;
    zelsHashSJ2_16u32u(word.text, word.length, &hash);
    const std::size_t slot = findSlot(word, hash);
    if (slots_[slot] != kFree) {
        ++entries_[static_cast<std::size_t>(slots_[slot])].count;
        return;
    }
    slots_[slot] = static_cast<int>(entries_.size());
    entries_.push_back({hash, word.length, text_.size(), 1});
    text_.insert(text_.end(), word.text, word.text + word.length);
    if (entries_.size() * 2 > slots_.size()) grow();
}

void WordCounts::grow() {
    slots_.assign(slots_.size() * 2, kFree);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        slots_[findSlot(word(entries_[i]), entries_[i].hash)] = static_cast<int>(i);
    }
}

std::vector<WordCounts::Entry> WordCounts::sorted() const {
    std::vector<Entry> result = entries_;
    std::sort(result.begin(), result.end(), [this](const Entry& a, const Entry& b) {
        if (a.count != b.count) return a.count > b.count;
        int order = 0;
        zelsCompare_16u(word(a).text, word(b).text, std::min(a.length, b.length), &order);
        return order != 0 ? order < 0 : a.length < b.length;
    });
    return result;
}

/// Cuts lines into words. A split needs a slot for every token, and each slot room for the longest,
/// so lines are taken in pieces, which end at a blank if they hold one.
class Splitter {
public:
    explicit Splitter(WordCounts& counts) : counts_(counts) {
        for (std::size_t i = 0; i < kPiece; ++i) slots_[i] = tokens_.data() + i * kPiece;
    }

    /// A byte that continues no UTF-8 sequence must stand behind the line.
    void addLine(const char* text, int length);

private:
    static constexpr int kPiece = 512;

    void addPiece(const Zel16u* piece, int length);

    WordCounts& counts_;
    std::vector<Zel16u> line_;
    std::vector<Zel16u> tokens_ = std::vector<Zel16u>(kPiece * kPiece);
    Zel16u* slots_[kPiece];
};

void Splitter::addLine(const char* text, int length) {
    if (length == 0) return;
    // No character has more 16-bit units than bytes.
    if (line_.size() < static_cast<std::size_t>(length)) {
        line_.resize(static_cast<std::size_t>(length));
    }
    Zel16u* at = line_.data();
    int remaining = length;
    zelsConvertUTF_8u16u(reinterpret_cast<const Zel8u*>(text), &length, at, &remaining, 0);
    zelsLowercase_16u_I(at, remaining);
    for (const Zel16u blank : kBlanks) zelsReplaceC_16u(at, at, remaining, blank, ' ');

    while (remaining > kPiece) {
        int lastBlank = 0;
        zelsFindRevC_16u(at, kPiece, ' ', &lastBlank);
        const int piece = lastBlank < 0 ? kPiece : lastBlank + 1;
        addPiece(at, piece);
        at += piece;
        remaining -= piece;
    }
    addPiece(at, remaining);
}

void Splitter::addPiece(const Zel16u* piece, int length) {
    int lengths[kPiece];
    std::fill(lengths, lengths + kPiece, kPiece);
    int count = kPiece;
    zelsSplitC_16u_D2L(piece, length, ' ', slots_, lengths, &count);
    for (int i = 0; i < count; ++i) {
        zelsTrimCAny_16u(slots_[i], lengths[i], kPunctuation, kPunctuationCount, slots_[i],
                         &lengths[i]);
        if (lengths[i] > 0) counts_.add({slots_[i], lengths[i]});
    }
}

void print(const WordCounts& counts, std::size_t most) {
    std::vector<Zel8u> bytes;
    const std::vector<WordCounts::Entry> entries = counts.sorted();
    for (std::size_t i = 0; i < std::min(most, entries.size()); ++i) {
        const Word word = counts.word(entries[i]);
        int units = word.length, room = 3 * word.length;
        bytes.resize(static_cast<std::size_t>(room));
        zelsConvertUTF_16u8u(word.text, &units, bytes.data(), &room, 0);
        printf("%7lld %.*s\n", entries[i].count, room, reinterpret_cast<const char*>(bytes.data()));
    }
}

/// Counts the words of a file. Returns false when something failed; the message is out by then.
bool countFile(FILE* file, const char* name, Splitter& splitter) {
    bool good = true;
    char* buffer = nullptr;
    std::size_t size = 0;
    ssize_t length;
    while ((length = getline(&buffer, &size, file)) > 0) {
        if (length > INT_MAX) {
            fprintf(stderr, "zelwords: %s: a line is too long\n", name);
            good = false;
            break;
        }
        splitter.addLine(buffer, static_cast<int>(length));  // a zero stands behind it
    }
    free(buffer);
    if (ferror(file)) {
        fprintf(stderr, "zelwords: %s: %s\n", name, strerror(errno));
        good = false;
    }
    return good;
}

bool countFileNamed(const char* name, Splitter& splitter) {
    if (strcmp(name, "-") == 0) return countFile(stdin, "(standard input)", splitter);
    FILE* const file = fopen(name, "r");
    if (file == nullptr) {
        fprintf(stderr, "zelwords: %s: %s\n", name, strerror(errno));
        return false;
    }
    const bool good = countFile(file, name, splitter);
    fclose(file);
    return good;
}

[[noreturn]] void usage(FILE* stream, int exitStatus) {
    fputs(kUsage, stream);
    exit(exitStatus);
}

std::size_t parseCount(const char* text) {
    char* end = nullptr;
    errno = 0;
    const long value = strtol(text, &end, 10);
    if (errno != 0 || end == text || *end != 0 || value < 0) usage(stderr, kExitError);
    return value == 0 ? SIZE_MAX : static_cast<std::size_t>(value);
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t most = 10;
    for (int letter; (letter = getopt(argc, argv, "n:h")) != -1;) {
        switch (letter) {
            case 'n':
                most = parseCount(optarg);
                break;
            case 'h':
                usage(stdout, 0);
            default:
                usage(stderr, kExitError);
        }
    }
    WordCounts counts;
    Splitter splitter(counts);
    bool good = true;
    if (optind == argc) good = countFileNamed("-", splitter);
    for (int i = optind; i < argc; ++i) good = countFileNamed(argv[i], splitter) && good;
    print(counts, most);
    if (fflush(stdout) != 0) {
        fprintf(stderr, "zelwords: standard output: %s\n", strerror(errno));
        good = false;
    }
    return good ? 0 : kExitError;
}
