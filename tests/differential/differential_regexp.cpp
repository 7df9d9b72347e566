// Compiler and search of the library against the plain model, on generated cases:
//   differential_regexp SEED COUNT [FIRST [REPORTS]]
//   differential_regexp SEED show NUMBER
// Every case has a number; a failing one is shrunk and printed as a C++ initializer, with what the
// two sides gave.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "regexp_case.h"
#include "report.h"

int main(int argc, char** argv) {
    using namespace differential;
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s SEED COUNT [FIRST [REPORTS]]\n", argv[0]);
        return 2;
    }
    uint64_t seed = std::strtoull(argv[1], nullptr, 10);
    long long count = std::atoll(argv[2]);
    if (std::string(argv[2]) == "show" && argc > 3) {
        Random random(seed, std::strtoull(argv[3], nullptr, 10));
        std::printf("%s\n", makeRegexpCase(random).text().c_str());
        return 0;
    }
    long long first = argc > 3 ? std::atoll(argv[3]) : 0;
    size_t mostReports = argc > 4 ? std::strtoull(argv[4], nullptr, 10) : 20;
    std::set<std::string> reports;
    long long failures = 0;
    auto start = std::chrono::steady_clock::now();
    onDeepStack([&] {
        for (long long i = first; i < first + count && reports.size() < mostReports; ++i) {
            Random random(seed, static_cast<uint64_t>(i));
            RegexpCase test = makeRegexpCase(random);
            CrashReporter::numbered(i);
            if (compare(test).empty()) continue;
            ++failures;
            RegexpCase smallest = shrink(test);
            std::string line = smallest.text() + " // " + compare(smallest);
            if (!reports.insert(line).second) continue;
            std::printf("case %lld: %s\n", i, line.c_str());
            std::fflush(stdout);
        }
    });
    std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    const RegexpTotals& totals = regexpTotals();
    std::printf(
        "%lld cases in %.1f s (%.0f a second): %lld compiled, %lld rejected, %lld searches, "
        "%lld matched, %lld step counts, %lld steps; %lld failures\n",
        count, seconds.count(), static_cast<double>(count) / seconds.count(), totals.compiled,
        totals.rejected, totals.searches, totals.matched, totals.boundaries, totals.steps,
        failures);
    return failures == 0 ? 0 : 1;
}
