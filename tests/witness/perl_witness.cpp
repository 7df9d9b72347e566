// The library beside Perl: perl_witness PERL SCRIPT COUNT. Writes generated cases to a file, lets
// Perl answer them all in one process, and compares its answers with the library's.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include "ordinary.h"

namespace {

std::string hex(const std::string& bytes) {
    std::string text;
    for (char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace witness;
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s PERL SCRIPT COUNT\n", argv[0]);
        return 2;
    }
    char path[] = "/tmp/perl_witness_XXXXXX";
    int descriptor = mkstemp(path);
    FILE* cases = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
    if (!cases) {
        std::perror(path);
        return 2;
    }
    std::map<int, std::pair<OrdinaryCase, std::string>> expected;
    for (int i = 0; i < std::atoi(argv[3]); ++i) {
        differential::Random random(1987, static_cast<uint64_t>(i));
        OrdinaryCase test = makeOrdinaryCase(random);
        Answer ours = ask(test);
        if (!ours.compiles || !ours.comparable) continue;
        // Perl skips start positions wrongly for a look-ahead that may be empty.
        if (test.pattern.find("(?=") != std::string::npos) continue;
        // It also lets captures survive a group that was left again: the whole match is the
        // witness.
        if (!ours.spans.empty()) ours.spans.resize(1);
        expected[i] = {test, describe(ours.spans)};
        std::fprintf(cases, "%d,%s,%s,%s\n", i, test.options.c_str(), hex(test.pattern).c_str(),
                     hex(test.text).c_str());
    }
    std::fclose(cases);
    std::string command = std::string("'") + argv[1] + "' '" + argv[2] + "' < " + path;
    FILE* answers = popen(command.c_str(), "r");
    int failures = 0;
    size_t compared = 0;
    char line[4096];
    while (answers && std::fgets(line, sizeof line, answers)) {
        line[std::strcspn(line, "\n")] = 0;
        char* rest;
        int number = static_cast<int>(std::strtol(line, &rest, 10));
        const auto& [test, ours] = expected[number];
        ++compared;
        if (ours == rest + 1) continue;
        if (++failures <= 20) {
            std::printf("/%s/%s on \"%s\": library %s, perl %s\n", test.pattern.c_str(),
                        test.options.c_str(), test.text.c_str(), ours.c_str(), rest + 1);
        }
    }
    int status = answers ? pclose(answers) : -1;
    std::remove(path);
    std::printf("%zu of %zu cases answered, %d differ\n", compared, expected.size(), failures);
    return failures == 0 && status == 0 && compared == expected.size() && compared > 5000 ? 0 : 1;
}
