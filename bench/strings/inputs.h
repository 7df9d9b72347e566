// Memory for the inputs of a row. Short inputs come as a set of jobs that all stay in the nearest
// cache, so that no single alignment or address decides; the random mix is a thousand jobs at any
// alignment; from 4 KiB on a row has one job, aligned as the C library aligns large blocks.
#pragma once

#include <cstdlib>
#include <cstring>
#include <new>

#include "strings/jobs.h"
#include "strings/texts.h"

namespace bench {

inline constexpr Size kSizes[] = {
    {"8 B", 8},         {"32 B", 32},        {"256 B", 256},          {"4 KiB", 4096},
    {"1 MiB", 1 << 20}, {"64 MiB", 1 << 26}, {"1..64 B", Must::kMix},
};

// A zeroed block that hands out pieces from its start to its end.
class Arena {
public:
    explicit Arena(std::size_t bytes)
        : size_(bytes + 4096), block_(std::calloc(1, size_), &std::free) {
        if (block_ == nullptr) throw std::bad_alloc();
        const auto address = reinterpret_cast<std::uintptr_t>(block_.get());
        used_ = (4096 - address % 4096) % 4096;
        start_ = used_;
    }

    // `skew` bytes after the next multiple of 16.
    template <class T>
    T* take(std::size_t count, std::size_t skew) {
        used_ = (used_ + 15) / 16 * 16 + skew;
        T* const piece = reinterpret_cast<T*>(base() + used_);
        used_ += count * sizeof(T);
        if (used_ > size_) throw std::bad_alloc();
        return piece;
    }

    std::shared_ptr<void> block() const { return block_; }
    unsigned char* output() const { return base() + start_; }
    std::size_t outputBytes() const { return used_ - start_; }

private:
    unsigned char* base() const { return static_cast<unsigned char*>(block_.get()); }

    std::size_t size_;
    std::shared_ptr<void> block_;
    std::size_t used_ = 0;
    std::size_t start_ = 0;
};

// The lengths in bytes of the jobs that one row consists of.
inline std::vector<int> jobLengths(Size size, Random& random) {
    if (size.bytes == Must::kMix) {
        std::vector<int> lengths(1024);
        for (int& length : lengths) length = random.between(1, 64);
        return lengths;
    }
    return std::vector<int>(size.bytes <= 256 ? 16 : 1, size.bytes);
}

// What a job has besides its source text.
struct Layout {
    int argLen = 0;          // elements of the argument
    bool argAsLong = false;  // the argument is as long as the source
    int dstPerElement = 0;
};

// The writable form of a job while its input is made.
template <class T>
struct Draft {
    T* src;
    int len;
    T* arg;
    int argLen;
    Job<T>* job;  // for the scalar fields
};

// The jobs of a row: `fill(Draft<T>&, Random&)` writes each one's texts and sets its scalars.
template <class T, class Fill>
Cases<Job<T>> makeCases(Size size, Layout layout, Fill fill) {
    Random random(20260101);
    std::vector<int> lengths = jobLengths(size, random);
    const bool mixed = size.bytes == Must::kMix;
    std::size_t elements = 0;
    for (int& length : lengths) {
        length = std::max(1, length / static_cast<int>(sizeof(T)));
        elements += static_cast<std::size_t>(length) + 1;
    }
    const std::size_t spare = lengths.size() * 32;
    const std::size_t argElements =
        layout.argAsLong ? elements : static_cast<std::size_t>(layout.argLen + 1) * lengths.size();
    const std::size_t perElement = static_cast<std::size_t>(layout.dstPerElement);
    const std::size_t dstElements = perElement == 0 ? 0 : perElement * elements + argElements;

    Arena sources(elements * sizeof(T) + spare + 4096);
    Arena arguments(argElements * sizeof(T) + spare + 4096);
    Arena outputs(dstElements * sizeof(T) + spare + 4096);
    // Different starts within a page, so that no two streams of a job share their cache sets.
    sources.take<char>(16, 0);
    arguments.take<char>(1104, 0);
    outputs.take<char>(2192, 0);

    Cases<Job<T>> cases;
    cases.jobs.reserve(lengths.size());
    for (const int length : lengths) {
        const auto skew = [&] {
            return mixed
                       ? static_cast<std::size_t>(random.below(16 / static_cast<int>(sizeof(T)))) *
                             sizeof(T)
                       : std::size_t{0};
        };
        Job<T> job;
        Draft<T> draft{};
        draft.len = length;
        draft.argLen = layout.argAsLong ? length : layout.argLen;
        draft.src = sources.take<T>(static_cast<std::size_t>(length) + 1, skew());
        draft.arg = arguments.take<T>(static_cast<std::size_t>(draft.argLen) + 1, skew());
        draft.job = &job;
        job.src = draft.src;
        job.arg = draft.arg;
        if (perElement != 0) {
            const std::size_t room = static_cast<std::size_t>(length) * perElement +
                                     static_cast<std::size_t>(draft.argLen);
            job.dst = outputs.take<T>(room, skew());
            job.dstLen = static_cast<int>(room);
        }
        fill(draft, random);
        job.len = draft.len;
        job.argLen = draft.argLen;
        cases.jobs.push_back(job);
    }
    cases.storage = {sources.block(), arguments.block(), outputs.block()};
    if (perElement != 0) {
        cases.output = outputs.output();
        cases.outputBytes = outputs.outputBytes();
    }
    return cases;
}

template <class J>
double meanBytes(const Cases<J>& cases) {
    double bytes = 0;
    for (const J& job : cases.jobs) bytes += static_cast<double>(job.len) * sizeof(*job.src);
    return bytes / static_cast<double>(cases.jobs.size());
}

}  // namespace bench
