// The main loop that the differential programs share: make case after case, compare, shrink what
// fails, and print it as a C++ initializer together with what the two sides gave.
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "random.h"
#include "report.h"

namespace differential {

/// Arguments: SEED COUNT [FIRST [REPORTS]], or SEED show NUMBER. Returns the exit status.
template <typename Case>
int runCases(int argc, char** argv, Case (*make)(Random&), std::string (*totals)() = nullptr) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s SEED COUNT [FIRST [REPORTS]]\n       %s SEED show NUMBER\n",
                     argv[0], argv[0]);
        return 2;
    }
    uint64_t seed = std::strtoull(argv[1], nullptr, 10);
    long long first = argc > 3 ? std::atoll(argv[3]) : 0;
    if (std::string(argv[2]) == "show") {
        Random random(seed, static_cast<uint64_t>(first));
        std::printf("%s\n", make(random).text().c_str());
        return 0;
    }
    long long count = std::atoll(argv[2]);
    size_t mostReports = argc > 4 ? std::strtoull(argv[4], nullptr, 10) : 20;
    std::set<std::string> reports;
    long long failures = 0;
    long long done = 0;
    auto start = std::chrono::steady_clock::now();
    onDeepStack([&] {
        for (; done < count && reports.size() < mostReports; ++done) {
            long long number = first + done;
            Random random(seed, static_cast<uint64_t>(number));
            Case test = make(random);
            CrashReporter::numbered(number);
            if (compare(test).empty()) continue;
            ++failures;
            Case smallest = shrink(test);
            std::string line = smallest.text() + " // " + compare(smallest);
            if (!reports.insert(line).second) continue;
            std::printf("case %lld: %s\n", number, line.c_str());
            std::fflush(stdout);
        }
    });
    std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%lld cases in %.1f s (%.0f a second)%s; %lld failures\n", done, seconds.count(),
                static_cast<double>(done) / seconds.count(),
                totals ? (": " + totals()).c_str() : "", failures);
    return failures == 0 ? 0 : 1;
}

}  // namespace differential
