// See pattern_source.h. Every case draws its characters from a small alphabet of its own, so that
// short patterns and short texts meet often.
#include "pattern_source.h"

namespace differential {
namespace {

const std::vector<std::vector<std::string>> alphabets = {
    {"a", "b"},
    {"a", "b", "c"},
    {"a", "B", "b", "A"},
    {"a", "1", "_", " "},
    {"a", "\n", "b"},
    {"a", "é", "É"},
    {"é", "ü", "ä", "x"},
    {"漢", "字", "a"},
    {"😀", "a", "é"},
    {"a", "e\xCC\x81", "\xCC\x81", "\xCD\x82"},
    {"a", "\xC3", "\x80", "\xFF", "é"},
    {"\xC4\x80", "\xC4\x81", "Ā", "ß", "ǅ"},
    {"k", "K", "\xE2\x84\xAA", "[", "{"},
    {"a", "b", "c", "d", "e", "f", "-", "]", "^", "9"},
    {"x", "\r", "\t", "\x0B", "\x0C", " "},
    {"Σ", "σ", "ς", "a"},
    {"а", "я", "ё", "Ж", "-"},
    {"п", "р", "\xD0", "字", "あ"},
    {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", "\xF3\xA0\x87\xB0", "\xF4\x8F\xBF\xBD"},
};

const char metaCharacters[] = "()[]{}*+?|^$.\\-:=!<>#&,";
const char patternNoise[] =
    "ab1()[]{}*+?|^$.\\-:=!<>#,QEpPxcdDsSwWXCAzZGkbB0123456789iL&\n \xC3\xA9";

std::string number(int value) {
    return std::to_string(value);
}

}  // namespace

PatternSource::PatternSource(Random& random) : random_(random), alphabet_(random.pick(alphabets)) {}

std::string PatternSource::character() {
    return random_.pick(alphabet_);
}

std::string PatternSource::noise(int maxCharacters) {
    std::string text;
    int count = random_.below(maxCharacters + 1);
    // Runs of one character now and then, so that loops have something to eat.
    for (int i = 0; i < count; ++i) {
        std::string c = character();
        int repeats = random_.chance(10) ? random_.between(2, 9) : 1;
        for (int k = 0; k < repeats; ++k) text += c;
    }
    return text;
}

// ---- Atoms ----

PatternSource::Part PatternSource::literals() {
    Part part;
    int count = random_.chance(60) ? 1 : random_.between(2, 4);
    for (int i = 0; i < count; ++i) {
        std::string c = character();
        part.sample += c;
        bool isMeta = c.size() == 1 && std::string(metaCharacters).find(c) != std::string::npos;
        if (isMeta || (c.size() == 1 && random_.chance(4))) part.text += "\\";
        part.text += c;
    }
    return part;
}

PatternSource::Part PatternSource::escape() {
    static const Part escapes[] = {
        {"\\n", "\n"},
        {"\\t", "\t"},
        {"\\a", "\x07"},
        {"\\e", "\x1B"},
        {"\\f", "\x0C"},
        {"\\r", "\r"},
        {"\\v", "\x0B"},
        {"\\cA", "\x01"},
        {"\\ca", "\x01"},
        {"\\c\\", "\x1C"},
        {"\\x61", "a"},
        {"\\x", std::string(1, '\0')},
        {"\\x{e9}", "\xE9"},
        {"\\x{100}", "Ā"},
        {"\\x{e9}", "é"},
        {"\\x{6f22}", "漢"},
        {"\\x{101}", "ā"},
        {"\\x{1F600}", "😀"},
        {"\\0", "\0"},
        {"\\012", "\n"},
        {"\\141", "a"},
        {"\\12", "\n"},
        {"\\18", "\x01"},
        {"\\81", std::string(1, '\0')},
        {"\\x{3A3}", "Σ"},
        {"\\x{10400}", "𐐀"},
        {"\\x{E01F0}", "\xF3\xA0\x87\xB1"},
        {"\\x{61}", "a"},
        {"\\x{}", ""},
        {"\\x1", "\x01"},
        {"\\400", std::string(1, '\0')},
        {"\\x{7FFFFFFF}", "\xFD\xBF\xBF\xBF\xBF\xBF"},
        {"\\.", "."},
        {"\\]", "]"},
        {"\\x{FFFFFFFF}", "a"},
    };
    return random_.pick(escapes);
}

PatternSource::Part PatternSource::property() {
    static const Part properties[] = {
        {"L", "a"},
        {"Lu", "A"},
        {"Ll", "a"},
        {"L&", "b"},
        {"Lt", "ǅ"},
        {"Lo", "漢"},
        {"N", "1"},
        {"Nd", "7"},
        {"P", "-"},
        {"Ps", "("},
        {"Z", " "},
        {"Zs", " "},
        {"S", "+"},
        {"M", "\xCC\x81"},
        {"Mn", "\xCC\x81"},
        {"C", "\n"},
        {"Cc", "\n"},
        {"Cn", "\xCD\xB8"},
        {"Co", "\xEE\x80\x80"},
        {"Any", "x"},
        {"InBasicLatin", "a"},
        {"InLatin1Supplement", "é"},
        {"InBasic", "b"},
        {"In", "a"},
        {"InGreek", "Σ"},
        {"InCombiningDiacriticalMarks", "\xCC\x81"},
        {"Latin", "é"},
        {"Greek", "σ"},
        {"Han", "漢"},
        {"Common", " "},
        {"Inherited", "\xCC\x81"},
        {"Cyrillic", "ж"},
        {"InCyrillic", "ё"},
        {"Cs", "a"},
        {"Lm", "ʰ"},
        {"So", "😀"},
        {"Sm", "+"},
        {"Nope", ""},
        {"Lq", "a"},
        {"I", "a"},
    };
    Part part = random_.pick(properties);
    std::string letter = random_.chance(30) ? "\\P" : "\\p";
    if (part.text.size() == 1 && random_.chance(50)) {
        part.text = letter + part.text;
    } else {
        bool inverted = letter == "\\p" && random_.chance(15);
        part.text = letter + (inverted ? "{^" : "{") + part.text + "}";
    }
    if (random_.chance(30)) part.sample = character();
    return part;
}

PatternSource::Part PatternSource::classMember() {
    static const char* const shorthands[] = {"\\d", "\\D", "\\s", "\\S",
                                             "\\w", "\\W", "\\X", "\\b"};
    static const char* const posix[] = {
        "[:alpha:]", "[:digit:]", "[:^digit:]", "[:space:]", "[:punct:]", "[:word:]",
        "[:^word:]", "[:graph:]", "[:xdigit:]", "[:blank:]", "[:upper:]", "[:^lower:]",
        "[.alnum.]", "[=cntrl=]", "[:ascii:]",  "[:print:]", "[:nope:]",  "[:alpha]"};
    static const char* const odd[] = {"-",  "^", "[", "\\-", "\\]", "\\^", "\\E", "\\Qa-]\\E", ".",
                                      "--", " ", "#", "\\B", "\\8", "$",   "|",   "\\Q^\\E"};
    switch (random_.below(12)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            std::string c = character();
            bool special = c == "]" || c == "^" || c == "-" || c == "[" || c == "\\";
            return {special ? "\\" + c : c, c};
        }
        case 4:
        case 5: {
            std::string low = character();
            std::string high = character();
            if (low > high) low.swap(high);
            return {low + "-" + high, random_.chance(50) ? low : high};
        }
        case 6:
            return {random_.pick(shorthands), character()};
        case 7:
            return {random_.pick(posix), character()};
        case 8:
            return property();
        case 9:
            return escape();
        case 10: {
            static const Part ranges[] = {{"a-z", "m"},
                                          {"0-9", "5"},
                                          {"A-Z", "Q"},
                                          {"\\x{80}-\\x{7FF}", "é"},
                                          {"\\x{e0}-\\x{ff}", "é"},
                                          {"\\x{100}-\\x{10FFFF}", "漢"},
                                          {"\\0-\\x{FFFFFFFF}", "x"},
                                          {"à-ö", "é"},
                                          {" -~", "k"},
                                          {"Α-Ω", "σ"},
                                          {"а-я", "ё"},
                                          {"а-яё", "ж"},
                                          {"А-я", "Ж"},
                                          {"一-龥", "字"}};
            return random_.pick(ranges);
        }
        default:
            return {random_.pick(odd), character()};
    }
}

PatternSource::Part PatternSource::bracketClass() {
    Part part;
    bool negated = random_.chance(25);
    part.text = negated ? "[^" : "[";
    int count = random_.chance(40) ? 1 : random_.between(2, 4);
    if (random_.chance(4)) part.text += "]";
    for (int i = 0; i < count; ++i) {
        Part member = classMember();
        part.text += member.text;
        if (i == 0 || random_.chance(50)) part.sample = member.sample;
    }
    part.text += "]";
    if (negated) part.sample = character();
    return part;
}

std::string PatternSource::inlineFlags() {
    static const char* const flags[] = {"i",  "s",   "m",  "x",   "-i", "-s",   "-m", "-x",
                                        "im", "i-s", "sx", "x-i", "",   "ims-", "-"};
    return random_.pick(flags);
}

PatternSource::Part PatternSource::group(int depth) {
    Part body = alternation(depth + 1);
    switch (random_.below(8)) {
        case 0:
        case 1:
        case 2:
        case 3: {
            ++captures_;
            body.text = "(" + body.text + ")";
            break;
        }
        case 4:
            body.text = "(?:" + body.text + ")";
            break;
        case 5:
        case 6:
            body.text = "(?>" + body.text + ")";
            break;
        default:
            body.text = "(?" + inlineFlags() + ":" + body.text + ")";
            break;
    }
    return body;
}

PatternSource::Part PatternSource::lookAround(int depth) {
    static const char* const openings[] = {"(?=", "(?!", "(?<=", "(?<!"};
    int kind = random_.below(4);
    Part body;
    if (kind < 2) {
        body = alternation(depth + 1);
    } else {
        // Mostly bodies of a fixed length.
        body = random_.chance(70) ? literals() : alternation(depth + 1);
        if (random_.chance(20)) body.text += "|" + literals().text;
    }
    bool shows = kind == 2 && random_.chance(60);
    return {openings[kind] + body.text + ")", shows ? body.sample : ""};
}

PatternSource::Part PatternSource::conditional(int depth) {
    Part part;
    std::string condition;
    if (random_.chance(60)) {
        static const char* const numbers[] = {"1", "2", "3", "01", "12", "9"};
        condition = "(" + std::string(random_.pick(numbers)) + ")";
    } else {
        condition = lookAround(depth).text;
    }
    Part yes = sequence(depth + 1);
    part.text = "(?" + condition + yes.text;
    part.sample = yes.sample;
    if (random_.chance(60)) {
        Part no = sequence(depth + 1);
        part.text += "|" + no.text;
        if (random_.chance(50)) part.sample = no.sample;
    }
    if (random_.chance(3)) part.text += "|";
    part.text += ")";
    return part;
}

/// What leaves no node of its own.
PatternSource::Part PatternSource::unwritten() {
    static const char* const texts[] = {"(?#c)", "\\E",  "\\Q\\E", " ",
                                        "\n",    "#c\n", "(?x)",   "(?-x)"};
    return {random_.pick(texts), ""};
}

PatternSource::Part PatternSource::atom(int depth) {
    int choice = random_.below(depth < 4 ? 100 : 78);
    if (choice < 30) return literals();
    if (choice < 37) return {".", character()};
    if (choice < 44) {
        static const Part shorthands[] = {{"\\d", "1"}, {"\\D", "a"}, {"\\s", " "},
                                          {"\\S", "b"}, {"\\w", "a"}, {"\\W", "-"}};
        Part part = random_.pick(shorthands);
        if (random_.chance(50)) part.sample = character();
        return part;
    }
    if (choice < 54) return bracketClass();
    if (choice < 60) {
        static const char* const assertions[] = {"^",   "$",   "\\A", "\\Z", "\\z",
                                                 "\\b", "\\B", "\\G", "^",   "$"};
        return {random_.pick(assertions), ""};
    }
    if (choice < 63) {
        int last = captures_ + (random_.chance(20) ? 1 : 0);
        return {"\\" + number(random_.between(1, last < 1 ? 1 : last)), character()};
    }
    if (choice < 67) return escape();
    if (choice < 71) return property();
    if (choice < 72) return {"\\X", character()};
    if (choice < 73) return {"\\C", character()};
    if (choice < 75) return {"(?" + inlineFlags() + ")", ""};
    if (choice < 77) return unwritten();
    if (choice < 78) return {"\\Q" + literals().text + "\\E", character()};
    if (choice < 91) return group(depth);
    if (choice < 96) return lookAround(depth);
    return conditional(depth);
}

std::string PatternSource::quantifier(int& repeats) {
    std::string text;
    switch (random_.below(10)) {
        case 0:
        case 1:
            text = "*";
            repeats = random_.below(4);
            break;
        case 2:
        case 3:
            text = "+";
            repeats = random_.between(1, 4);
            break;
        case 4:
        case 5:
            text = "?";
            repeats = random_.below(2);
            break;
        case 6:
            repeats = random_.below(5);
            text = "{" + number(repeats) + "}";
            break;
        case 7:
            repeats = random_.below(4);
            text = "{" + number(repeats) + ",}";
            break;
        case 8:
            repeats = random_.below(3);
            text = (repeats == 0 && random_.chance(30) ? "{," : "{" + number(repeats) + ",") +
                   number(repeats + random_.below(4)) + "}";
            break;
        default:
            repeats = random_.below(30);
            text = random_.chance(90) ? "{" + number(repeats) + "," + number(repeats + 20) + "}"
                                      : "{65535}";
            break;
    }
    if (random_.chance(35)) text += "?";
    return text;
}

PatternSource::Part PatternSource::term(int depth) {
    Part part = atom(depth);
    if (!random_.chance(40)) return part;
    int repeats = 1;
    part.text += quantifier(repeats);
    std::string once = part.sample;
    part.sample.clear();
    for (int i = 0; i < repeats && part.sample.size() < 60; ++i) part.sample += once;
    return part;
}

PatternSource::Part PatternSource::sequence(int depth) {
    static const int lengths[] = {0, 1, 1, 1, 2, 2, 2, 2, 3, 3, 4, 5};
    Part part;
    int count = random_.pick(lengths);
    if (depth > 1 && count > 2) count = 2;
    for (int i = 0; i < count; ++i) {
        Part next = term(depth);
        part.text += next.text;
        part.sample += next.sample;
    }
    return part;
}

PatternSource::Part PatternSource::alternation(int depth) {
    Part part = sequence(depth);
    int more = random_.chance(75) ? 0 : random_.between(1, 2);
    for (int i = 0; i < more; ++i) {
        Part next = sequence(depth);
        part.text += "|" + next.text;
        if (random_.chance(50)) part.sample = next.sample;
    }
    return part;
}

void PatternSource::damage(std::string& text, const char* alphabet, int alphabetSize) {
    int edits = random_.between(1, 3);
    for (int i = 0; i < edits; ++i) {
        size_t at = static_cast<size_t>(random_.below(static_cast<int>(text.size()) + 1));
        switch (random_.below(3)) {
            case 0:
                if (at < text.size()) text.erase(at, 1);
                break;
            case 1:
                text.insert(at, 1, alphabet[random_.below(alphabetSize)]);
                break;
            default:
                if (at < text.size()) text[at] = alphabet[random_.below(alphabetSize)];
                break;
        }
    }
}

// ---- What a case is made of ----

std::string PatternSource::pattern() {
    constexpr int noiseSize = static_cast<int>(sizeof(patternNoise)) - 1;
    captures_ = 0;
    if (random_.chance(4)) {
        std::string text;
        int size = random_.below(16);
        for (int i = 0; i < size; ++i) text += patternNoise[random_.below(noiseSize)];
        sample_ = noise(4);
        return text;
    }
    Part part = alternation(0);
    if (random_.chance(6)) part.text = ".*" + part.text;
    if (random_.chance(4)) part.text = "^" + part.text;
    if (random_.chance(12)) damage(part.text, patternNoise, noiseSize);
    std::erase(part.text, '\0');
    sample_ = part.sample;
    return part.text;
}

std::string PatternSource::options() {
    std::string letters;
    if (random_.chance(30)) letters += 'g';
    if (random_.chance(25)) letters += 'i';
    if (random_.chance(15)) letters += 'm';
    if (random_.chance(15)) letters += 's';
    if (random_.chance(12)) letters += 'x';
    if (random_.chance(1)) letters += 'q';
    return letters;
}

std::string PatternSource::subject() {
    std::string text;
    switch (random_.below(8)) {
        case 0:
            text = noise(3);
            break;
        case 1:
            text = noise(12);
            break;
        case 2:
            text = sample_;
            break;
        case 3:
        case 4:
            text = noise(4) + sample_ + noise(4);
            break;
        case 5:
            text = noise(3) + sample_ + sample_ + noise(3) + sample_;
            break;
        case 6:
            text = noise(20) + sample_ + noise(20);
            if (random_.chance(40)) {
                std::string c = character();
                int repeats = random_.between(20, 200);
                for (int i = 0; i < repeats; ++i) text += c;
                if (random_.chance(50)) text += sample_;
            }
            break;
        default:
            text = noise(4) + sample_ + noise(4);
            if (!text.empty()) damage(text, "\xC3\xA9 aB\n\x80\xFF\xE4", 9);
            break;
    }
    if (random_.chance(15)) text += "\n";
    return text;
}

std::string PatternSource::replacement() {
    static const char* const pieces[] = {"$1", "$2", "$&", "x",   "<", ">",  "\\", "$12", "$0",
                                         "$",  "é",  "$3", "abc", "$", "$1", "$&", "\\$1"};
    std::string text;
    int count = random_.below(5);
    for (int i = 0; i < count; ++i) {
        std::string piece = random_.pick(pieces);
        if ((piece == "$" || piece == "$0") && random_.chance(80)) piece = "y";
        text += piece;
    }
    return text;
}

}  // namespace differential
