// What the tests of the instances share: every string function of every instruction set as a table,
// and memory whose ends lie against pages that cannot be touched.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "string/kernels/instances.h"
#include "zelchmx.h"

namespace zel::test {

/// The functions of one instance, under their public names.
struct Instance {
    const char* name;
    Isa isa;
#define ZEL_MEMBER(function) decltype(&::function) function;
#define ZEL_KERNEL_MEMBER(function) decltype(&kernels::function) function;
    ZEL_STRING_EXPORTS(ZEL_MEMBER)
    ZEL_KERNELS(ZEL_KERNEL_MEMBER)
#undef ZEL_MEMBER
#undef ZEL_KERNEL_MEMBER

    // A family's member for elements of type T.
#define ZEL_FAMILY(family)             \
    template <typename T>              \
    auto family() const {              \
        if constexpr (sizeof(T) == 1)  \
            return zels##family##_8u;  \
        else                           \
            return zels##family##_16u; \
    }
    ZEL_FAMILY(Find)
    ZEL_FAMILY(FindRev)
    ZEL_FAMILY(FindC)
    ZEL_FAMILY(FindRevC)
    ZEL_FAMILY(FindCAny)
    ZEL_FAMILY(FindRevCAny)
#undef ZEL_FAMILY
    template <typename T>
    auto SplitC() const {
        if constexpr (sizeof(T) == 1)
            return zelsSplitC_8u_D2L;
        else
            return zelsSplitC_16u_D2L;
    }
};

#define ZEL_SSE2(function) sse2::function,
#define ZEL_AVX2(function) avx2::function,
#define ZEL_AVX512(function) avx512::function,
inline constexpr Instance kInstances[] = {
    {"sse2", Isa::Sse2, ZEL_STRING_EXPORTS(ZEL_SSE2) ZEL_KERNELS(ZEL_SSE2)},
    {"avx2", Isa::Avx2, ZEL_STRING_EXPORTS(ZEL_AVX2) ZEL_KERNELS(ZEL_AVX2)},
    {"avx512", Isa::Avx512, ZEL_STRING_EXPORTS(ZEL_AVX512) ZEL_KERNELS(ZEL_AVX512)},
};
#undef ZEL_SSE2
#undef ZEL_AVX2
#undef ZEL_AVX512

/// A test that runs once per instance; an instance that this processor cannot run is skipped.
class EachInstance : public testing::TestWithParam<Instance> {
protected:
    void SetUp() override {
        if (!isSupported(GetParam().isa))
            GTEST_SKIP() << "this processor has no " << GetParam().name;
    }
    const Instance& library() const { return GetParam(); }
};

inline std::string nameOf(const testing::TestParamInfo<Instance>& instance) {
    return instance.param.name;
}
#define ZEL_INSTANTIATE(suite) \
    INSTANTIATE_TEST_SUITE_P(All, suite, testing::ValuesIn(kInstances), nameOf)

/// Pages of memory between two that fault.
class GuardedPages {
public:
    static constexpr size_t kPage = 4096;

    explicit GuardedPages(size_t pages) : size_(pages * kPage) {
        void* const all =
            mmap(nullptr, size_ + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (all == MAP_FAILED) throw std::bad_alloc();
        begin_ = static_cast<Zel8u*>(all) + kPage;
        if (mprotect(begin_, size_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    }
    ~GuardedPages() { munmap(begin_ - kPage, size_ + 2 * kPage); }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    Zel8u* begin() const { return begin_; }
    Zel8u* end() const { return begin_ + size_; }
    size_t size() const { return size_; }
    void fill(Zel8u byte) { memset(begin_, byte, size_); }

    /// Room for n elements: against the first page, against the last one, or in between at an
    /// address with the given distance from a multiple of 64.
    template <typename T>
    T* atStart() const {
        return reinterpret_cast<T*>(begin_);
    }
    template <typename T>
    T* atEnd(size_t n) const {
        return reinterpret_cast<T*>(end()) - n;
    }
    template <typename T>
    T* at(size_t alignment) const {
        return reinterpret_cast<T*>(begin_ + kPage + alignment);
    }

private:
    Zel8u* begin_;
    size_t size_;
};

/// Calls visit(p) with every placement of n elements: at both guards and at every alignment.
template <typename T, typename Visit>
void forEachPlacement(const GuardedPages& pages, size_t n, Visit visit) {
    visit(pages.atStart<T>());
    visit(pages.atEnd<T>(n));
    for (size_t alignment = 0; alignment < 64; alignment += sizeof(T))
        visit(pages.at<T>(alignment));
}

/// Lengths around every size at which an algorithm may change its way.
inline std::vector<int> lengthsToTry() {
    std::vector<int> lengths;
    for (int n = 0; n <= 300; ++n) lengths.push_back(n);
    for (int n : {511, 512, 513, 640, 1000, 1023, 1024, 1025, 2049, 4000}) lengths.push_back(n);
    return lengths;
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    /// From 0 to n - 1.
    int below(int n) { return n < 2 ? 0 : static_cast<int>(engine_() % static_cast<unsigned>(n)); }
    bool oneIn(int n) { return below(n) == 0; }

private:
    std::mt19937 engine_;
};

}  // namespace zel::test
