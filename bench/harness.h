// The benchmark harness: rows, contestants, verification, measurement.
//
// A row is one job on one input. Every contestant that can do the job takes part: a contestant is a
// type with a name, a kind and static functions `run(Tag, const Job&)`, and it can do the job when
// such an overload exists. Before anything is timed, the answers of all contestants to all inputs
// of the row are compared with those of the first one; a contestant with another answer is
// reported, left out, and makes the program fail. Then come the rounds: in each one Google
// Benchmark runs every contestant for a few milliseconds, in random order. A contestant's time is
// the median of its rounds. How it stands to the library is taken within each round and is the
// median of these ratios: a busy host slows whole rounds down, and with them the time of whoever
// had more of those, but not the ratio. Rows run one after another and free their inputs, so only
// one row's data is in memory at a time.
#pragma once

#include <benchmark/benchmark.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace bench {

// What a contestant is: the library, a packaged library, a loop a user would write by hand, or a
// ceiling that does a lighter job and is shown for orientation only.
enum class Kind { Library, Package, Loop, Ceiling };

// The ratio to the best peer at which a row is accepted, or a time, depending on the row's size.
class Must {
public:
    Must() = default;

    // The ratio for inputs of at least `from` and at most `to` bytes; later calls go first.
    Must& ratio(double value, int from, int to) {
        rules_.push_back({from, to, value, 0});
        return *this;
    }
    Must& nanoseconds(double value, int from, int to) {
        rules_.push_back({from, to, 0, value});
        return *this;
    }
    Must& mix(double value) { return ratio(value, kMix, kMix); }

    // Up to 64 bytes and the mix, up to 4 KiB, 1 MiB, more.
    static Must sizes(double small, double medium, double large, double huge = 0) {
        Must must;
        must.ratio(small, kMix, 64).ratio(medium, 65, 4096);
        must.ratio(large, 4097, 1 << 20).ratio(huge, (1 << 20) + 1, kNoEnd);
        return must;
    }
    // A ratio that is asked of inputs too long for the cost of a call to matter.
    static Must beyondShort(double value) { return sizes(0, value, value); }
    static Must everywhere(double value) { return sizes(value, value, value, value); }

    double ratioAt(int bytes) const { return find(bytes).ratio; }
    double nanosecondsAt(int bytes) const { return find(bytes).ns; }

    static constexpr int kMix = 0;
    static constexpr int kNoEnd = 0x7FFFFFFF;

private:
    struct Rule {
        int from;
        int to;
        double ratio;
        double ns;
    };
    Rule find(int bytes) const {
        for (auto rule = rules_.rbegin(); rule != rules_.rend(); ++rule) {
            if (bytes >= rule->from && bytes <= rule->to) return *rule;
        }
        return {};
    }
    std::vector<Rule> rules_;
};

// bytes 0 stands for the random mix of 1 to 64 bytes.
struct Size {
    const char* name;
    int bytes;
};

struct Row {
    std::string family;   // "FindC 8u"
    std::string variant;  // the needle, set or text; empty when the family has only one
    std::string size;
    double bytes = 0;  // mean input bytes of one call
    double mustRatio = 0;
    double mustNs = 0;
    std::string mustPeer{};  // whom mustRatio is against; empty: the best of all
    bool wallTime = false;   // several threads work: time by the clock instead of by the processor
};

// The inputs of a row, whatever keeps their memory alive, and the memory the contestants write to.
template <class Job>
struct Cases {
    std::vector<Job> jobs;
    std::vector<std::shared_ptr<void>> storage;
    unsigned char* output = nullptr;
    std::size_t outputBytes = 0;
};

template <class Contestant, class Tag, class Job>
concept CanDo = requires(const Job& job) {
    { Contestant::run(Tag{}, job) } -> std::convertible_to<std::int64_t>;
};

// A tag whose answers only have to agree in sign says so with `static constexpr bool signOnly`.
template <class Tag>
concept SignOnly = Tag::signOnly;

class Suite {
public:
    // Options: --out=FILE (CSV), --rows=REGEX, --contestants=REGEX (for a profile of one of them),
    // --quick, and everything that Google Benchmark takes.
    Suite(const char* name, int argc, char** argv);

    bool quick() const { return quick_; }

    // Whether the row is asked for; checked before its input is made.
    bool wants(const Row& row) const;

    // Runs one row among all of `Contestants` that can do `Tag` on `Job`.
    template <class Tag, class... Contestants, class Job>
    void run(const Row& row, const Cases<Job>& cases, Tag tag, std::tuple<Contestants...>) {
        begin(row);
        (consider<Contestants>(cases, tag), ...);
        measure(cases.jobs.size());
    }

    // The same for contestants that are made at run time: each has a name, a kind and a function
    // that does the whole job, which is `calls` calls, and returns its answer. One that throws has
    // given up.
    struct Runner {
        std::string name;
        Kind kind;
        std::function<std::int64_t()> once;
    };
    void run(const Row& row, const std::vector<Runner>& runners, std::size_t calls = 1);

    // Writes the table; the exit code of the program.
    int finish();

private:
    using Answers = std::vector<std::int64_t>;
    struct Entrant {
        std::string name;
        Kind kind;
        std::function<void(benchmark::State&)> loop;
        std::vector<double> samples;  // nanoseconds a call, one for each round
    };

    template <class Contestant, class Job, class Tag>
    void consider(const Cases<Job>& cases, Tag tag) {
        if constexpr (CanDo<Contestant, Tag, Job>) {
            Answers answers;
            answers.reserve(cases.jobs.size() + 1);
            clearOutput(cases.output, cases.outputBytes);
            const double began = now();
            for (const Job& job : cases.jobs) answers.push_back(Contestant::run(tag, job));
            const double seconds = now() - began;
            if constexpr (SignOnly<Tag>) keepSigns(answers);
            answers.push_back(digest(cases.output, cases.outputBytes));
            enter(Contestant::name, Contestant::kind, answers, seconds, cases.jobs.size(),
                  [&cases, tag](benchmark::State& state) {
                      for (auto _ : state) {
                          for (const Job& job : cases.jobs) {
                              benchmark::DoNotOptimize(Contestant::run(tag, job));
                              benchmark::ClobberMemory();
                          }
                      }
                  });
        }
    }

    bool takesPart(const std::string& contestant) const;
    void begin(const Row& row);
    void enter(const std::string& name, Kind kind, const Answers& answers, double seconds,
               std::size_t calls, std::function<void(benchmark::State&)> loop);
    void measure(std::size_t calls);
    double timesLibrary(const Entrant& entrant) const;
    void report();

    static double now();
    static void clearOutput(unsigned char* output, std::size_t bytes);
    static std::int64_t digest(const unsigned char* output, std::size_t bytes);
    static void keepSigns(Answers& answers);

    std::string name_;
    std::string outPath_;
    std::string rowFilter_;
    std::string contestantFilter_;
    bool quick_ = false;
    int failures_ = 0;
    int rowsRun_ = 0;

    Row row_;
    Answers expected_;
    std::string expectedFrom_;
    std::vector<Entrant> entrants_;
    std::mt19937 order_{20260101};
    std::vector<std::string> lines_;
};

}  // namespace bench
