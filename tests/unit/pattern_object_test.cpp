// The life cycle of pattern objects: size, header, allocation and release, setters, argument
// checks. The program defines the core library's allocator itself, so that it can count its calls
// and make it fail.
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "compile_support.h"
#include "zelcore.h"

namespace {

int mallocCalls = 0;
int lastMallocSize = 0;
int freeCalls = 0;
void* lastFreed = nullptr;
bool mallocFails = false;

}  // namespace

extern "C" void* zelMalloc(int len) {
    ++mallocCalls;
    lastMallocSize = len;
    return mallocFails ? nullptr : malloc(static_cast<size_t>(len));
}

extern "C" void zelFree(void* ptr) {
    ++freeCalls;
    lastFreed = ptr;
    free(ptr);
}

namespace zel {
namespace {

class PatternObject : public testing::Test {
protected:
    void SetUp() override {
        mallocCalls = freeCalls = lastMallocSize = 0;
        lastFreed = nullptr;
        mallocFails = false;
    }
};

int sizeOf(const char* pattern) {
    int size = -1;
    EXPECT_EQ(zelsRegExpGetSize(pattern, &size), zelStatusOk);
    return size;
}

// ---- Size
// ----------------------------------------------------------------------------------------

TEST_F(PatternObject, SizeGrowsByOneNodeForEachByte) {
    EXPECT_EQ(sizeOf(""), 48056);
    EXPECT_EQ(sizeOf("a"), 48080);
    EXPECT_EQ(sizeOf("0123456789"), 48296);
    EXPECT_EQ(sizeOf("\xC3\xA9"), 48104);
    EXPECT_EQ(sizeOf("((("), 48128);  // the pattern is not examined
    EXPECT_EQ(mallocCalls, 0);
}

TEST_F(PatternObject, SizeRefusesNullPointers) {
    int size = 7;
    EXPECT_EQ(zelsRegExpGetSize(nullptr, &size), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpGetSize("a", nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpGetSize(nullptr, nullptr), zelStatusNullPointer);
    EXPECT_EQ(size, 7);
}

/// A pattern of many equal bytes that costs one page of memory: the same page again and again.
class HugePattern {
public:
    explicit HugePattern(size_t length) : mapped_((length / kChunk + 1) * kChunk) {
        const int file = memfd_create("pattern", 0);
        EXPECT_GE(file, 0);
        EXPECT_EQ(ftruncate(file, kChunk), 0);
        base_ = static_cast<char*>(
            mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        EXPECT_NE(base_, MAP_FAILED);
        for (size_t at = 0; at < mapped_; at += kChunk) {
            const bool last = at + kChunk == mapped_;
            const int sharing = last ? MAP_PRIVATE : MAP_SHARED;
            EXPECT_EQ(
                mmap(base_ + at, kChunk, PROT_READ | PROT_WRITE, sharing | MAP_FIXED, file, 0),
                base_ + at);
        }
        close(file);
        memset(base_, 'a', kChunk);
        memset(base_ + mapped_ - kChunk, 'a', kChunk);
        base_[length] = '\0';
    }
    ~HugePattern() { munmap(base_, mapped_); }
    HugePattern(const HugePattern&) = delete;
    HugePattern& operator=(const HugePattern&) = delete;

    const char* text() const { return base_; }

private:
    static constexpr size_t kChunk = 1 << 20;
    size_t mapped_;
    char* base_;
};

// The largest pattern whose object has a size that a positive 32-bit number can hold.
constexpr size_t kLongestPattern = (INT32_MAX - 48056) / 24;
static_assert(kLongestPattern == 89476482);

TEST_F(PatternObject, SizeIsTheLow32BitsOfTheTrueOne) {
    EXPECT_EQ(sizeOf(HugePattern(kLongestPattern).text()), 2147483624);
    EXPECT_EQ(sizeOf(HugePattern(kLongestPattern + 1).text()), INT32_MIN);
    const size_t wrapped = 178956971;
    EXPECT_EQ(sizeOf(HugePattern(wrapped).text()), 48064);
}

TEST_F(PatternObject, AllocationRefusesSizesBeyond32Bits) {
    for (const size_t length : {kLongestPattern + 1, size_t{178956971}}) {
        const HugePattern pattern(length);
        ZelRegExpState* state = nullptr;
        int errOffset = -77;
        EXPECT_EQ(zelsRegExpInitAlloc(pattern.text(), nullptr, &state, &errOffset),
                  zelStatusNullPointer);
        EXPECT_EQ(mallocCalls, 0);
        EXPECT_EQ(state, nullptr);
        EXPECT_EQ(errOffset, -77);
    }
    mallocFails = true;
    ZelRegExpState* state = nullptr;
    int errOffset = 0;
    EXPECT_EQ(zelsRegExpInitAlloc(HugePattern(kLongestPattern).text(), nullptr, &state, &errOffset),
              zelStatusNullPointer);
    EXPECT_EQ(mallocCalls, 1);
    EXPECT_EQ(lastMallocSize, 2147483624);
}

// ---- Init
// ----------------------------------------------------------------------------------------

TEST_F(PatternObject, InitFillsTheHeader) {
    const Compiled compiled = compile("(a)(b)|(?:c)*d", "gi");
    EXPECT_EQ(compiled.status, zelStatusOk);
    EXPECT_EQ(compiled.magic, 0x78456772u);
    EXPECT_EQ(compiled.options, 0x14u);
    EXPECT_EQ(compiled.nodeCount, 12);
    EXPECT_EQ(compiled.groupCount, 3);
    EXPECT_EQ(compiled.trailingLiteral, -2);
    EXPECT_EQ(compiled.matchLimit, 10000);
    EXPECT_EQ(compiled.format, 1);
}

TEST_F(PatternObject, MagicReadsRgExInMemory) {
    GuardedBlock block("a");
    int errOffset;
    ASSERT_EQ(zelsRegExpInit("a", nullptr, block.state(), &errOffset), zelStatusOk);
    EXPECT_EQ(memcmp(block.bytes(), "rgEx", 4), 0);
}

TEST_F(PatternObject, EmptyPatternHasNoNodesAndOneGroup) {
    const Compiled compiled = compile("");
    EXPECT_EQ(compiled.status, zelStatusOk);
    EXPECT_EQ(compiled.nodeCount, 0);
    EXPECT_EQ(compiled.groupCount, 1);
    EXPECT_EQ(compiled.trailingLiteral, -1);
}

TEST_F(PatternObject, OptionsComeInAnyOrderAndNumber) {
    const struct {
        const char* options;
        Zel32u flags;
    } rows[] = {
        {nullptr, 0}, {"", 0},         {"s", 0x1},      {"m", 0x2},    {"i", 0x4},     {"x", 0x8},
        {"g", 0x10},  {"gimsx", 0x1F}, {"xsmig", 0x1F}, {"iiii", 0x4}, {"gigi", 0x14},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(compile("a", row.options).options, row.flags);
    }
    // Inline changes concern nodes only.
    EXPECT_EQ(compile("(?ims)a", "g").options, 0x10u);
}

TEST_F(PatternObject, WorkAreasAndReservedWordStayUntouched) {
    const char* const pattern = "(a|b)*(?<=c)[d-f]{2,3}ghi";
    GuardedBlock block(pattern);
    int errOffset;
    ASSERT_EQ(zelsRegExpInit(pattern, nullptr, block.state(), &errOffset), zelStatusOk);
    for (size_t i = 28; i < 48032; ++i) ASSERT_EQ(block.bytes()[i], 0xA5) << i;
}

TEST_F(PatternObject, CompiledObjectNeedsNoPattern) {
    // compile() overwrites the pattern before it reads the object.
    EXPECT_EQ(compile("hello(world)").nodes,
              (Nodes{run("hello"), capture(1, 1, 1), run("world"), close(1)}));
}

TEST_F(PatternObject, InitRefusesNullPointersBeforeItWrites) {
    GuardedBlock block("a");
    int errOffset = -77;
    EXPECT_EQ(zelsRegExpInit(nullptr, "q", block.state(), &errOffset), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpInit("a", "q", nullptr, &errOffset), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpInit("a", nullptr, block.state(), nullptr), zelStatusNullPointer);
    EXPECT_EQ(errOffset, -77);
    for (size_t i = 0; i < block.size(); ++i) ASSERT_EQ(block.bytes()[i], 0xA5) << i;
}

TEST_F(PatternObject, MagicAppearsOnceTheStructureIsSound) {
    int errOffset;
    GuardedBlock options("a");
    EXPECT_EQ(zelsRegExpInit("a", "?", options.state(), &errOffset), zelStatusRegExpOptionsError);
    EXPECT_NE(options.read<Zel32u>(0), 0x78456772u);
    GuardedBlock structure("(a");
    EXPECT_EQ(zelsRegExpInit("(a", nullptr, structure.state(), &errOffset),
              zelStatusRegExpGroupingError);
    EXPECT_NE(structure.read<Zel32u>(0), 0x78456772u);
    GuardedBlock later("a**");
    EXPECT_EQ(zelsRegExpInit("a**", nullptr, later.state(), &errOffset),
              zelStatusRegExpQuantifierError);
    EXPECT_EQ(later.read<Zel32u>(0), 0x78456772u);
}

TEST_F(PatternObject, InitAgainStartsFromScratch) {
    GuardedBlock block("0123456789");
    int errOffset;
    ASSERT_EQ(zelsRegExpInit("(a)bc", "i", block.state(), &errOffset), zelStatusOk);
    ASSERT_EQ(zelsRegExpSetFormat(0, block.state()), zelStatusOk);
    ASSERT_EQ(zelsRegExpSetMatchLimit(5, block.state()), zelStatusOk);
    ASSERT_EQ(zelsRegExpInit("d", nullptr, block.state(), &errOffset), zelStatusOk);
    EXPECT_EQ(block.read<Zel32u>(4), 0u);
    EXPECT_EQ(block.read<int>(8), 1);
    EXPECT_EQ(block.read<int>(12), 1);
    EXPECT_EQ(block.read<int>(16), 0);
    EXPECT_EQ(block.read<int>(20), 10000);
    EXPECT_EQ(block.read<int>(24), 1);
}

// ---- InitAlloc and Free
// --------------------------------------------------------------------------

TEST_F(PatternObject, InitAllocMakesOneBlockOfTheRightSize) {
    ZelRegExpState* state = nullptr;
    int errOffset = -77;
    ASSERT_EQ(zelsRegExpInitAlloc("0123456789", "g", &state, &errOffset), zelStatusOk);
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(mallocCalls, 1);
    EXPECT_EQ(lastMallocSize, 48296);
    EXPECT_EQ(freeCalls, 0);
    EXPECT_EQ(errOffset, -77);
    EXPECT_EQ(state->magic, 0x78456772u);
    EXPECT_EQ(state->options, 0x10u);
    EXPECT_EQ(zelsRegExpFree(state), zelStatusOk);
    EXPECT_EQ(freeCalls, 1);
    EXPECT_EQ(lastFreed, state);
}

TEST_F(PatternObject, InitAllocReleasesTheBlockOfABadPattern) {
    const struct {
        const char* pattern;
        const char* options;
        ZelStatus status;
        int errOffset;
    } rows[] = {
        {"(a", nullptr, zelStatusRegExpGroupingError, 2},
        {"a**", nullptr, zelStatusRegExpQuantifierError, 2},
        {"[z-a]", nullptr, zelStatusRegExpCharClassError, 3},
        {"\\9", nullptr, zelStatusRegExpBackRefError, 0},
        {"ab\\", nullptr, zelStatusRegExpEscapeError, 3},
        {"a", "q", zelStatusRegExpOptionsError, 0},
    };
    for (const auto& row : rows) {
        SetUp();
        int other = 0;
        ZelRegExpState* state = reinterpret_cast<ZelRegExpState*>(&other);
        int errOffset = -77;
        EXPECT_EQ(zelsRegExpInitAlloc(row.pattern, row.options, &state, &errOffset), row.status);
        EXPECT_EQ(errOffset, row.errOffset);
        EXPECT_EQ(state, nullptr);
        EXPECT_EQ(mallocCalls, 1);
        EXPECT_EQ(freeCalls, 1);
    }
}

TEST_F(PatternObject, InitAllocReportsAFailedAllocationAsNullPointer) {
    mallocFails = true;
    int other = 0;
    ZelRegExpState* state = reinterpret_cast<ZelRegExpState*>(&other);
    int errOffset = -77;
    EXPECT_EQ(zelsRegExpInitAlloc("a", nullptr, &state, &errOffset), zelStatusNullPointer);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(errOffset, -77);
    EXPECT_EQ(mallocCalls, 1);
}

TEST_F(PatternObject, InitAllocRefusesNullPointers) {
    ZelRegExpState* state = nullptr;
    int errOffset = -77;
    EXPECT_EQ(zelsRegExpInitAlloc("a", nullptr, nullptr, &errOffset), zelStatusNullPointer);
    EXPECT_EQ(mallocCalls, 0);
    EXPECT_EQ(zelsRegExpInitAlloc(nullptr, nullptr, &state, &errOffset), zelStatusNullPointer);
    EXPECT_EQ(mallocCalls, 0);
    EXPECT_EQ(zelsRegExpInitAlloc("a", nullptr, &state, nullptr), zelStatusNullPointer);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(mallocCalls, freeCalls);
    EXPECT_EQ(errOffset, -77);
}

TEST_F(PatternObject, FreeAcceptsNull) {
    EXPECT_EQ(zelsRegExpFree(nullptr), zelStatusOk);
}

// ---- Setters
// -------------------------------------------------------------------------------------

TEST_F(PatternObject, FormatIsZeroOrOne) {
    GuardedBlock block("a");
    int errOffset;
    ASSERT_EQ(zelsRegExpInit("a", nullptr, block.state(), &errOffset), zelStatusOk);
    EXPECT_EQ(zelsRegExpSetFormat(0, block.state()), zelStatusOk);
    EXPECT_EQ(block.read<int>(24), 0);
    EXPECT_EQ(zelsRegExpSetFormat(1, block.state()), zelStatusOk);
    EXPECT_EQ(block.read<int>(24), 1);
    for (const int bad : {2, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(zelsRegExpSetFormat(bad, block.state()), zelStatusBadArgError) << bad;
        EXPECT_EQ(block.read<int>(24), 1);
    }
    EXPECT_EQ(zelsRegExpSetFormat(1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpSetFormat(2, nullptr), zelStatusNullPointer);
}

TEST_F(PatternObject, MatchLimitIsNotNegative) {
    GuardedBlock block("a");
    int errOffset;
    ASSERT_EQ(zelsRegExpInit("a", nullptr, block.state(), &errOffset), zelStatusOk);
    for (const int good : {0, 1, 10000, INT32_MAX}) {
        EXPECT_EQ(zelsRegExpSetMatchLimit(good, block.state()), zelStatusOk) << good;
        EXPECT_EQ(block.read<int>(20), good);
    }
    for (const int bad : {-1, INT32_MIN}) {
        EXPECT_EQ(zelsRegExpSetMatchLimit(bad, block.state()), zelStatusLengthError) << bad;
        EXPECT_EQ(block.read<int>(20), INT32_MAX);
    }
    EXPECT_EQ(zelsRegExpSetMatchLimit(1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpSetMatchLimit(-1, nullptr), zelStatusNullPointer);
}

TEST_F(PatternObject, SettersDoNotLookAtTheMagic) {
    GuardedBlock block("a");
    EXPECT_EQ(zelsRegExpSetFormat(0, block.state()), zelStatusOk);
    EXPECT_EQ(zelsRegExpSetMatchLimit(3, block.state()), zelStatusOk);
    EXPECT_EQ(block.read<int>(20), 3);
    EXPECT_EQ(block.read<int>(24), 0);
}

}  // namespace
}  // namespace zel
