#include "harness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>

namespace bench {
namespace {

// A contestant that needs longer than this for one pass over a row's input is not repeated: the
// verified pass is its one sample.
constexpr double kSlowPassSeconds = 0.25;

constexpr int kRounds = 15;
constexpr int kQuickRounds = 5;

// Keeps what was measured last of each contestant, and prints nothing.
class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double iterations = static_cast<double>(run.iterations);
            last[run.run_name.function_name] = {run.iterations,
                                                run.cpu_accumulated_time / iterations,
                                                run.real_accumulated_time / iterations};
        }
    }

    struct Times {
        benchmark::IterationCount iterations;
        double cpu;
        double wall;
    };
    std::map<std::string, Times> last;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

const char* kindName(Kind kind) {
    switch (kind) {
        case Kind::Library:
            return "library";
        case Kind::Package:
            return "package";
        case Kind::Loop:
            return "loop";
        case Kind::Ceiling:
            return "ceiling";
    }
    return "";
}

std::string fullName(const Row& row) {
    std::string name = row.family;
    if (!row.variant.empty()) name += ", " + row.variant;
    if (!row.size.empty()) name += ", " + row.size;
    return name;
}

bool takeOption(const char* argument, const char* option, std::string& value) {
    const std::size_t length = std::strlen(option);
    if (std::strncmp(argument, option, length) != 0) return false;
    value = argument + length;
    return true;
}

}  // namespace

Suite::Suite(const char* name, int argc, char** argv)
    : name_(name), rowFilter_("."), contestantFilter_(".") {
    std::vector<std::string> passedOn;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--quick") == 0) {
            quick_ = true;
        } else if (!takeOption(argv[i], "--out=", outPath_) &&
                   !takeOption(argv[i], "--rows=", rowFilter_) &&
                   !takeOption(argv[i], "--contestants=", contestantFilter_)) {
            passedOn.emplace_back(argv[i]);
        }
    }
    std::vector<std::string> arguments{
        argv[0], quick_ ? "--benchmark_min_time=0.004" : "--benchmark_min_time=0.005"};
    arguments.insert(arguments.end(), passedOn.begin(), passedOn.end());
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) std::exit(2);
}

bool Suite::wants(const Row& row) const {
    return std::regex_search(fullName(row), std::regex(rowFilter_));
}

void Suite::run(const Row& row, const std::vector<Runner>& runners, std::size_t calls) {
    begin(row);
    for (const Runner& runner : runners) {
        if (!takesPart(runner.name)) continue;
        const double began = now();
        std::int64_t answer = 0;
        try {
            answer = runner.once();
        } catch (const std::exception& error) {
            std::cerr << fullName(row) << ": " << runner.name << " gave up: " << error.what()
                      << '\n';
            continue;
        }
        const double seconds = now() - began;
        enter(runner.name, runner.kind, {answer}, seconds, calls,
              [&runner](benchmark::State& state) {
                  for (auto _ : state) benchmark::DoNotOptimize(runner.once());
              });
    }
    measure(calls);
}

bool Suite::takesPart(const std::string& contestant) const {
    return std::regex_search(contestant, std::regex(contestantFilter_));
}

void Suite::begin(const Row& row) {
    row_ = row;
    entrants_.clear();
    expected_.clear();
    expectedFrom_.clear();
    ++rowsRun_;
}

void Suite::enter(const std::string& name, Kind kind, const Answers& answers, double seconds,
                  std::size_t calls, std::function<void(benchmark::State&)> loop) {
    if (kind != Kind::Ceiling) {
        if (expectedFrom_.empty()) {
            expected_ = answers;
            expectedFrom_ = name;
        } else if (answers != expected_) {
            std::size_t at = 0;
            while (answers[at] == expected_[at]) ++at;
            std::cerr << fullName(row_) << ": " << name << " answers " << answers[at] << " where "
                      << expectedFrom_ << " answers " << expected_[at] << " (input " << at << " of "
                      << answers.size() << ", the last being the digest of the output)\n";
            ++failures_;
            return;
        }
    }
    if (!takesPart(name)) return;
    entrants_.push_back({name, kind, std::move(loop), {}});
    if (seconds > kSlowPassSeconds)
        entrants_.back().samples = {seconds / static_cast<double>(calls) * 1e9};
}

void Suite::measure(std::size_t calls) {
    std::vector<Entrant*> repeated;
    for (Entrant& entrant : entrants_) {
        if (entrant.samples.empty()) repeated.push_back(&entrant);
    }
    Collector collector;
    const auto turn = [&](benchmark::IterationCount iterations, Entrant& entrant) {
        benchmark::ClearRegisteredBenchmarks();
        auto* const one = benchmark::RegisterBenchmark(entrant.name.c_str(), entrant.loop);
        if (iterations != 0) one->Iterations(iterations);
        benchmark::RunSpecifiedBenchmarks(&collector, ".");
        return collector.last[entrant.name];
    };
    // The first turn of each warms up and tells how many passes the others take.
    std::map<const Entrant*, benchmark::IterationCount> iterations;
    for (Entrant* const entrant : repeated) iterations[entrant] = turn(0, *entrant).iterations;
    for (int round = 0; round < (quick_ ? kQuickRounds : kRounds); ++round) {
        std::shuffle(repeated.begin(), repeated.end(), order_);
        for (Entrant* const entrant : repeated) {
            const Collector::Times times = turn(iterations[entrant], *entrant);
            const double seconds = row_.wallTime ? times.wall : times.cpu;
            entrant->samples.push_back(seconds / static_cast<double>(calls) * 1e9);
        }
    }
    report();
}

double Suite::timesLibrary(const Entrant& entrant) const {
    const auto library = std::find_if(entrants_.begin(), entrants_.end(),
                                      [](const Entrant& one) { return one.kind == Kind::Library; });
    if (library == entrants_.end()) return 0;
    std::vector<double> ratios = entrant.samples;
    if (ratios.size() == library->samples.size()) {
        for (std::size_t i = 0; i < ratios.size(); ++i) ratios[i] /= library->samples[i];
        return median(ratios);
    }
    return median(ratios) / median(library->samples);
}

void Suite::report() {
    std::cerr << fullName(row_) << ':';
    for (const Entrant& entrant : entrants_) {
        const auto [least, most] =
            std::minmax_element(entrant.samples.begin(), entrant.samples.end());
        const double ns = median(entrant.samples);
        char line[1024];
        std::snprintf(line, sizeof line,
                      "%s,\"%s\",\"%s\",\"%s\",%.1f,\"%s\",%s,%zu,%.3f,%.3f,%.3f,%.3f,%g,%g,\"%s\"",
                      name_.c_str(), row_.family.c_str(), row_.variant.c_str(), row_.size.c_str(),
                      row_.bytes, entrant.name.c_str(), kindName(entrant.kind),
                      entrant.samples.size(), ns, *least, *most, timesLibrary(entrant),
                      row_.mustRatio, row_.mustNs, row_.mustPeer.c_str());
        lines_.emplace_back(line);
        std::fprintf(stderr, "  %s %.4g ns", entrant.name.c_str(), ns);
        if (row_.bytes > 0) std::fprintf(stderr, " (%.4g GB/s)", row_.bytes / ns);
    }
    std::cerr << '\n';
}

int Suite::finish() {
    if (!outPath_.empty()) {
        std::ofstream out(outPath_);
        out << "suite,family,variant,size,bytes,contestant,kind,samples,median_ns,min_ns,max_ns,"
               "times_library,must_ratio,must_ns,must_peer\n";
        for (const std::string& line : lines_) out << line << '\n';
        out.flush();
        if (!out) {
            std::cerr << "cannot write " << outPath_ << '\n';
            return 1;
        }
    }
    std::cerr << rowsRun_ << " rows, " << failures_ << " wrong answers\n";
    return failures_ == 0 && rowsRun_ > 0 ? 0 : 1;
}

double Suite::now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void Suite::clearOutput(unsigned char* output, std::size_t bytes) {
    if (bytes != 0) std::memset(output, 0xAA, bytes);
}

std::int64_t Suite::digest(const unsigned char* output, std::size_t bytes) {
    std::uint64_t hash = 14695981039346656037u;
    std::size_t i = 0;
    for (; i + 8 <= bytes; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, output + i, 8);
        hash = (hash ^ word) * 1099511628211u;
        hash ^= hash >> 29;
    }
    for (; i < bytes; ++i) hash = (hash ^ output[i]) * 1099511628211u;
    return static_cast<std::int64_t>(hash);
}

void Suite::keepSigns(Answers& answers) {
    for (std::int64_t& answer : answers) answer = (answer > 0) - (answer < 0);
}

}  // namespace bench
