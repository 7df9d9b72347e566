// Pattern sets: the block and its slots, and searches that must give the records of single searches
// whatever the number of threads. The thread count comes from this file instead of libzelcore, as a
// host may replace it, so that every combination of capacity and team is reached on any machine.
#include <dirent.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <omp.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "regexp/program.h"
#include "regexp/services/multi.h"
#include "zelchmx.h"
#include "zelcore.h"

namespace {
int threadCount = 2;
}

extern "C" int ownGetNumThreads(void) {
    return threadCount;
}

namespace {

using namespace zel;

constexpr Zel8u kCanary = 0xA5;

const Zel8u* bytes(const std::string& s) {
    return reinterpret_cast<const Zel8u*>(s.c_str());
}

/// A set in a block of exactly its size at a chosen offset from 16-byte alignment, with a canary
/// behind it.
class Set {
public:
    explicit Set(int capacity, size_t misalignment = 0) {
        EXPECT_EQ(zelsRegExpMultiGetSize(capacity, &size_), zelStatusOk);
        const size_t header = sizeof(ZelRegExpMultiState);
        const size_t size = std::max(static_cast<size_t>(std::max(size_, 0)), header);
        memory_.assign(size + misalignment + 16 + 16, kCanary);
        const auto address = reinterpret_cast<uintptr_t>(memory_.data());
        block_ = memory_.data() + (16 - address % 16) % 16 + misalignment;
        end_ = block_ + size;
        EXPECT_EQ(zelsRegExpMultiInit(get(), capacity), zelStatusOk);
    }

    ZelRegExpMultiState* get() const { return reinterpret_cast<ZelRegExpMultiState*>(block_); }
    ZelRegExpMultiState* operator->() const { return get(); }
    bool canaryIntact() const {
        return std::all_of(end_, const_cast<Zel8u*>(memory_.data() + memory_.size()),
                           [](Zel8u b) { return b == kCanary; });
    }

private:
    int size_ = 0;
    std::vector<Zel8u> memory_;
    Zel8u* block_ = nullptr;
    Zel8u* end_ = nullptr;
};

/// A stand-in for a pattern where only its address matters.
ZelRegExpState* dummy(size_t number) {
    static Zel8u area[4096];
    return reinterpret_cast<ZelRegExpState*>(area + 8 * number);
}

// ---- The block ----------------------------------------------------------------------------------

TEST(MultiGetSize, AsksTwelveBytesForEachSlotAndTwentyFourMore) {
    int size = 0;
    EXPECT_EQ(zelsRegExpMultiGetSize(1, &size), zelStatusOk);
    EXPECT_EQ(size, 36);
    EXPECT_EQ(zelsRegExpMultiGetSize(10, &size), zelStatusOk);
    EXPECT_EQ(size, 144);
    EXPECT_EQ(zelsRegExpMultiGetSize(178956968, &size), zelStatusOk);
    EXPECT_EQ(size, 2147483640);
}

TEST(MultiGetSize, RefusesNullAndExactlyZeroPatterns) {
    int size = 77;
    EXPECT_EQ(zelsRegExpMultiGetSize(0, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiGetSize(1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiGetSize(0, &size), zelStatusSizeError);
    EXPECT_EQ(size, 77);
    EXPECT_EQ(zelsRegExpMultiGetSize(-1, &size), zelStatusOk);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(zelsRegExpMultiGetSize(-100, &size), zelStatusOk);
    EXPECT_EQ(size, -1176);
}

TEST(MultiGetSize, KeepsTheLowThirtyTwoBitsOfALargeSize) {
    int size = 0;
    EXPECT_EQ(zelsRegExpMultiGetSize(178956969, &size), zelStatusOk);
    EXPECT_EQ(size, -2147483644);
    EXPECT_EQ(zelsRegExpMultiGetSize(400000000, &size), zelStatusOk);
    EXPECT_EQ(size, 505032728);
    EXPECT_EQ(zelsRegExpMultiGetSize(INT_MAX, &size), zelStatusOk);
    EXPECT_EQ(size, 12);
    EXPECT_EQ(zelsRegExpMultiGetSize(INT_MIN, &size), zelStatusOk);
    EXPECT_EQ(size, 24);
}

TEST(MultiInit, RefusesNullAndExactlyZeroPatterns) {
    Zel8u block[64];
    memset(block, kCanary, sizeof block);
    auto* state = reinterpret_cast<ZelRegExpMultiState*>(block);
    EXPECT_EQ(zelsRegExpMultiInit(nullptr, 1), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiInit(nullptr, 0), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiInit(state, 0), zelStatusSizeError);
    EXPECT_TRUE(std::all_of(block, block + 64, [](Zel8u b) { return b == kCanary; }));
}

TEST(MultiInit, LaysOutHeaderPatternsAndIdentifiersInOneBlock) {
    for (int capacity : {1, 2, 3, 10, 100}) {
        const Set set(capacity);
        const auto* block = reinterpret_cast<const Zel8u*>(set.get());
        int storedCapacity;
        const Zel8u* tables[2];
        memcpy(&storedCapacity, block, 4);
        memcpy(tables, block + 8, 16);
        EXPECT_EQ(storedCapacity, capacity);
        EXPECT_EQ(tables[0], block + 24);
        EXPECT_EQ(tables[1], block + 24 + 8 * capacity);
        EXPECT_TRUE(
            std::all_of(block + 24, block + 24 + 12 * capacity, [](Zel8u b) { return b == 0; }));
        EXPECT_TRUE(set.canaryIntact());
    }
}

TEST(MultiInit, ANegativeCapacityMakesASetWithoutSlots) {
    const Set set(-5);
    EXPECT_EQ(set->capacity, -5);
    EXPECT_TRUE(set.canaryIntact());
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 1, set.get()), zelStatusRegExpMultiFullError);
    EXPECT_EQ(zelsRegExpMultiDelete(1, set.get()), zelStatusRegExpMultiNoIdError);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(0), 1, set.get()), zelStatusRegExpMultiNoIdError);
}

TEST(MultiInitAlloc, AllocatesAnEmptySet) {
    ZelRegExpMultiState* set = nullptr;
    ASSERT_EQ(zelsRegExpMultiInitAlloc(&set, 7), zelStatusOk);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->capacity, 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(set->patterns[i], nullptr);
        EXPECT_EQ(set->identifiers[i], 0u);
    }
    EXPECT_EQ(zelsRegExpMultiFree(set), zelStatusOk);
}

TEST(MultiInitAlloc, RefusesNullAndExactlyZeroPatterns) {
    ZelRegExpMultiState* set = reinterpret_cast<ZelRegExpMultiState*>(dummy(0));
    EXPECT_EQ(zelsRegExpMultiInitAlloc(nullptr, 1), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiInitAlloc(nullptr, 0), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiInitAlloc(&set, 0), zelStatusSizeError);
    EXPECT_EQ(static_cast<void*>(set), dummy(0));
}

TEST(MultiInitAlloc, ASizeThatIsNoPositiveThirtyTwoBitNumberIsANullPointerError) {
    for (int capacity : {-2, -3, -1000, INT_MIN, 178956969, 400000000, INT_MAX}) {
        ZelRegExpMultiState* set = reinterpret_cast<ZelRegExpMultiState*>(dummy(0));
        EXPECT_EQ(zelsRegExpMultiInitAlloc(&set, capacity), zelStatusNullPointer) << capacity;
        EXPECT_EQ(set, nullptr) << capacity;
    }
}

// The size for a capacity of -1 is 12, less than the header that is written.
TEST(MultiInitAlloc, ACapacityOfMinusOneGetsABlockThatHoldsTheHeader) {
    ZelRegExpMultiState* set = nullptr;
    ASSERT_EQ(zelsRegExpMultiInitAlloc(&set, -1), zelStatusOk);
    EXPECT_EQ(set->capacity, -1);
    EXPECT_EQ(zelsRegExpMultiFree(set), zelStatusOk);
}

TEST(MultiFree, AcceptsNull) {
    EXPECT_EQ(zelsRegExpMultiFree(nullptr), zelStatusOk);
}

// ---- Slots --------------------------------------------------------------------------------------

TEST(MultiAdd, RefusesNullThenIdentifierZeroThenAFullSet) {
    const Set set(1);
    EXPECT_EQ(zelsRegExpMultiAdd(nullptr, 1, set.get()), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiAdd(nullptr, 0, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiAdd(nullptr, 0, set.get()), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 0, set.get()), zelStatusRegExpMultiIdError);
    EXPECT_EQ(set->patterns[0], nullptr);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 1, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(1), 0, set.get()), zelStatusRegExpMultiIdError);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(1), 2, set.get()), zelStatusRegExpMultiFullError);
}

TEST(MultiAdd, ASetOfCapacityZeroIsFull) {
    const Set set(1);
    set->capacity = 0;
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 1, set.get()), zelStatusRegExpMultiFullError);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 0, set.get()), zelStatusRegExpMultiIdError);
    EXPECT_EQ(set->patterns[0], nullptr);
    EXPECT_EQ(zelsRegExpMultiDelete(1, set.get()), zelStatusRegExpMultiNoIdError);
}

TEST(MultiAdd, AFullSetTakesAPatternAgainAfterADelete) {
    const Set set(3);
    for (Zel32u id = 1; id <= 3; ++id) {
        EXPECT_EQ(zelsRegExpMultiAdd(dummy(id), id, set.get()), zelStatusOk);
        EXPECT_EQ(set->patterns[id - 1], dummy(id));
        EXPECT_EQ(set->identifiers[id - 1], id);
    }
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(4), 4, set.get()), zelStatusRegExpMultiFullError);
    EXPECT_EQ(zelsRegExpMultiDelete(2, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[1], nullptr);
    EXPECT_EQ(set->identifiers[1], 0u);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(4), 4, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[1], dummy(4));
    EXPECT_EQ(set->identifiers[1], 4u);
    EXPECT_TRUE(set.canaryIntact());
}

TEST(MultiAdd, FillsTheLowestEmptySlotOfEverySetAtEveryAddress) {
    for (size_t misalignment = 0; misalignment < 16; ++misalignment) {
        for (int capacity = 1; capacity <= 9; ++capacity) {
            for (unsigned occupied = 0; occupied < 1u << capacity; ++occupied) {
                const Set set(capacity, misalignment);
                int lowest = -1;
                for (int i = capacity - 1; i >= 0; --i) {
                    if (occupied >> i & 1) {
                        set->patterns[i] = dummy(static_cast<size_t>(i));
                        set->identifiers[i] = 5;
                    } else {
                        lowest = i;
                    }
                }
                const ZelStatus status = zelsRegExpMultiAdd(dummy(99), 7, set.get());
                if (lowest < 0) {
                    ASSERT_EQ(status, zelStatusRegExpMultiFullError);
                } else {
                    ASSERT_EQ(status, zelStatusOk);
                    // Copies, because a misaligned object has no address to take.
                    ZelRegExpState* const pattern = set->patterns[lowest];
                    const Zel32u identifier = set->identifiers[lowest];
                    ASSERT_EQ(pattern, dummy(99));
                    ASSERT_EQ(identifier, 7u);
                }
                ASSERT_TRUE(set.canaryIntact());
            }
        }
    }
}

// Only a pointer of eight zero bytes is null: one half may well be zero.
TEST(MultiAdd, ASlotIsOccupiedWhenOneHalfOfItsPointerIsZero) {
    for (uintptr_t address : {uintptr_t{0x100000000}, uintptr_t{0x00000010}}) {
        const Set set(4);
        for (int i = 0; i < 4; ++i) set->patterns[i] = reinterpret_cast<ZelRegExpState*>(address);
        EXPECT_EQ(findEmptySlot(set->patterns, 4), -1);
    }
}

TEST(MultiDelete, RefusesNullThenIdentifierZeroThenAMissingIdentifier) {
    const Set set(2);
    EXPECT_EQ(zelsRegExpMultiDelete(1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiDelete(0, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiDelete(0, set.get()), zelStatusRegExpMultiIdError);
    EXPECT_EQ(zelsRegExpMultiDelete(1, set.get()), zelStatusRegExpMultiNoIdError);
}

TEST(MultiModify, RefusesNullThenIdentifierZeroThenAMissingIdentifier) {
    const Set set(2);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(0), 1, nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiModify(nullptr, 0, set.get()), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(0), 0, set.get()), zelStatusRegExpMultiIdError);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(0), 1, set.get()), zelStatusRegExpMultiNoIdError);
}

TEST(MultiModify, ReplacesThePatternAndKeepsTheIdentifier) {
    const Set set(2);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(1), 11, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(2), 12, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(3), 12, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[0], dummy(1));
    EXPECT_EQ(set->patterns[1], dummy(3));
    EXPECT_EQ(set->identifiers[1], 12u);
}

TEST(Multi, TheLowerOfTwoSlotsWithOneIdentifierIsDeletedAndModifiedFirst) {
    const Set set(4);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 1, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(1), 9, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(2), 9, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiModify(dummy(3), 9, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[1], dummy(3));
    EXPECT_EQ(set->patterns[2], dummy(2));
    EXPECT_EQ(zelsRegExpMultiDelete(9, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[1], nullptr);
    EXPECT_EQ(set->patterns[2], dummy(2));
    EXPECT_EQ(zelsRegExpMultiDelete(9, set.get()), zelStatusOk);
    EXPECT_EQ(set->patterns[2], nullptr);
    EXPECT_EQ(zelsRegExpMultiDelete(9, set.get()), zelStatusRegExpMultiNoIdError);
}

TEST(MultiAdd, TheLargestIdentifierIsAnIdentifier) {
    const Set set(1);
    EXPECT_EQ(zelsRegExpMultiAdd(dummy(0), 0xFFFFFFFF, set.get()), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiDelete(0xFFFFFFFF, set.get()), zelStatusOk);
}

// ---- Sharing out --------------------------------------------------------------------------------

TEST(MultiDivision, TenSlotsForFourThreads) {
    const Division division(10, 4);
    const auto range = [&](int member) {
        const Division::Range r = division.rangeOf(member);
        return std::pair(r.first, r.last - 1);
    };
    EXPECT_EQ(range(0), std::pair(0, 1));
    EXPECT_EQ(range(1), std::pair(2, 3));
    EXPECT_EQ(range(2), std::pair(4, 5));
    EXPECT_EQ(range(3), std::pair(6, 9));
}

TEST(MultiDivision, EverySlotBelongsToExactlyOneMember) {
    for (int team = 1; team <= 9; ++team) {
        for (int capacity = 1; capacity <= 40; ++capacity) {
            const Division division(capacity, team);
            int next = 0;
            for (int member = 0; member < team; ++member) {
                const Division::Range range = division.rangeOf(member);
                EXPECT_EQ(range.first, next);
                EXPECT_EQ(range.last - range.first,
                          capacity / team + (member == team - 1 ? capacity % team : 0));
                next = range.last;
            }
            EXPECT_EQ(next, capacity);
        }
    }
}

// ---- Searching ----------------------------------------------------------------------------------

class Pattern {
public:
    explicit Pattern(const std::string& text, const char* options = "") {
        int errorOffset = 0;
        EXPECT_EQ(zelsRegExpInitAlloc(text.c_str(), options, &object_, &errorOffset), zelStatusOk)
            << text;
        EXPECT_EQ(zelsRegExpSetMatchLimit(INT_MAX, object_), zelStatusOk);
    }
    Pattern(Pattern&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;
    ~Pattern() { zelsRegExpFree(object_); }
    ZelRegExpState* get() const { return object_; }

private:
    ZelRegExpState* object_ = nullptr;
};

/// What one search of one pattern leaves behind.
struct Outcome {
    ZelStatus status = 0;
    int numFind = 0;
    std::vector<std::pair<const Zel8u*, int>> records;

    bool operator==(const Outcome&) const = default;
};

constexpr int kRoom = 8;

Outcome outcomeOf(ZelStatus status, int numFind, const ZelRegExpFind* find) {
    Outcome outcome{status, numFind, {}};
    if (status != zelStatusOk) return outcome;
    for (int i = 0; i < numFind; ++i)
        outcome.records.emplace_back(find[i].pMatch, find[i].lenMatch);
    return outcome;
}

Outcome searchAlone(const std::string& text, ZelRegExpState* pattern) {
    ZelRegExpFind find[kRoom];
    int numFind = kRoom;
    const ZelStatus status =
        zelsRegExpFind_8u(bytes(text), static_cast<int>(text.size()), pattern, find, &numFind);
    return outcomeOf(status, numFind, find);
}

/// Result records for a set, each with room of its own, in a state that a search must change.
class Results {
public:
    explicit Results(int capacity)
        : find_(static_cast<size_t>(capacity) * kRoom), records_(static_cast<size_t>(capacity)) {
        for (size_t i = 0; i < records_.size(); ++i) {
            records_[i] = {-77, 0xDEAD, kRoom, -78, find_.data() + i * kRoom};
        }
    }
    ZelRegExpMultiFind* get() { return records_.data(); }
    ZelRegExpMultiFind& operator[](int i) { return records_[static_cast<size_t>(i)]; }
    bool untouched(int i) {
        const ZelRegExpMultiFind& record = (*this)[i];
        return record.searched == -77 && record.identifier == 0xDEAD && record.numFind == kRoom &&
               record.status == -78 && record.pFind == find_.data() + i * kRoom;
    }
    Outcome outcome(int i) {
        const ZelRegExpMultiFind& record = (*this)[i];
        return outcomeOf(record.status, record.numFind, record.pFind);
    }

private:
    std::vector<ZelRegExpFind> find_;
    std::vector<ZelRegExpMultiFind> records_;
};

/// A text with something for every pattern below, long enough for a team or not.
std::string makeText(size_t size) {
    const std::string line =
        "Jan 12 10:07:55 host7 sshd[211]: Failed login for root from 10.0.0.9\n";
    std::string text;
    while (text.size() < size) text += line;
    text.resize(size);
    return text;
}

const char* const kPatterns[] = {"(\\d+)\\.(\\d+)",  "root",   "[A-Z][a-z]+ \\d+", "nothing here",
                                 "sshd\\[(\\d+)\\]", "\\w+$",  "(x)?Failed",       "o.*?f",
                                 "(a|b)+",           "host\\d"};

/// One pattern object for each slot, some with "g"; null where the slot stays empty.
std::vector<std::unique_ptr<Pattern>> makePatterns(int capacity, bool withGaps) {
    std::vector<std::unique_ptr<Pattern>> patterns;
    for (int i = 0; i < capacity; ++i) {
        if (withGaps && i % 3 == 1) {
            patterns.push_back(nullptr);
        } else {
            patterns.push_back(std::make_unique<Pattern>(
                kPatterns[static_cast<size_t>(i) % std::size(kPatterns)], i % 2 ? "g" : ""));
        }
    }
    return patterns;
}

void fill(const Set& set, const std::vector<std::unique_ptr<Pattern>>& patterns) {
    for (size_t i = 0; i < patterns.size(); ++i) {
        // Gaps are made by Delete, as a caller would.
        ZelRegExpState* const pattern = patterns[i] ? patterns[i]->get() : dummy(i);
        ASSERT_EQ(zelsRegExpMultiAdd(pattern, static_cast<Zel32u>(1000 + i), set.get()),
                  zelStatusOk);
    }
    for (size_t i = 0; i < patterns.size(); ++i) {
        if (patterns[i]) continue;
        ASSERT_EQ(zelsRegExpMultiDelete(static_cast<Zel32u>(1000 + i), set.get()), zelStatusOk);
    }
}

void checkSet(int capacity, bool withGaps, const std::string& text) {
    SCOPED_TRACE("capacity " + std::to_string(capacity) + ", threads " +
                 std::to_string(threadCount) + ", text " + std::to_string(text.size()));
    const auto patterns = makePatterns(capacity, withGaps);
    const Set set(capacity);
    fill(set, patterns);
    Results results(capacity);
    ASSERT_EQ(zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()), results.get(),
                                     set.get()),
              zelStatusOk);
    for (int i = 0; i < capacity; ++i) {
        const auto& pattern = patterns[static_cast<size_t>(i)];
        if (!pattern) {
            EXPECT_TRUE(results.untouched(i)) << i;
            continue;
        }
        EXPECT_EQ(results[i].searched, 1) << i;
        EXPECT_EQ(results[i].identifier, static_cast<Zel32u>(1000 + i));
        EXPECT_EQ(results.outcome(i), searchAlone(text, pattern->get())) << i;
    }
}

class MultiFind : public testing::Test {
protected:
    void TearDown() override { threadCount = 2; }

    const std::string shortText_ = makeText(150);
    const std::string longText_ = makeText(kTeamMinimumWork);
};

TEST_F(MultiFind, RefusesNullPointersBeforeTheLength) {
    const Set set(1);
    Results results(1);
    for (int length : {5, 0, -1}) {
        EXPECT_EQ(zelsRegExpMultiFind_8u(nullptr, length, results.get(), set.get()),
                  zelStatusNullPointer);
        EXPECT_EQ(zelsRegExpMultiFind_8u(bytes("hello"), length, results.get(), nullptr),
                  zelStatusNullPointer);
        EXPECT_EQ(zelsRegExpMultiFind_8u(bytes("hello"), length, nullptr, set.get()),
                  zelStatusNullPointer);
    }
}

TEST_F(MultiFind, RefusesALengthBelowOneBeforeAnySlotIsSearched) {
    const Pattern pattern("a");
    const Set set(1);
    Results results(1);
    ASSERT_EQ(zelsRegExpMultiAdd(pattern.get(), 1, set.get()), zelStatusOk);
    for (int length : {0, -1, INT_MIN}) {
        EXPECT_EQ(zelsRegExpMultiFind_8u(bytes("a"), length, results.get(), set.get()),
                  zelStatusSizeError);
        EXPECT_TRUE(results.untouched(0));
    }
}

TEST_F(MultiFind, ASetWithoutSlotsIsSearchedAtOnce) {
    const Set set(1);
    Results results(1);
    for (int capacity : {0, -1, INT_MIN}) {
        set->capacity = capacity;
        EXPECT_EQ(zelsRegExpMultiFind_8u(bytes("a"), 1, results.get(), set.get()), zelStatusOk);
        EXPECT_TRUE(results.untouched(0));
    }
}

TEST_F(MultiFind, GivesTheRecordsOfSingleSearchesForAnyCapacityAndThreadCount) {
    for (int threads : {1, 2, 3, 4}) {
        threadCount = threads;
        for (int capacity : {1, threads, threads + 1, 4 * threads + 3}) {
            for (bool withGaps : {false, true}) {
                checkSet(capacity, withGaps, shortText_);
                checkSet(capacity, withGaps, longText_);
            }
        }
    }
}

TEST_F(MultiFind, ReportsAFailingSearchInItsRecordOnly) {
    for (const std::string& text : {shortText_, longText_}) {
        for (int threads : {1, 2, 8}) {
            threadCount = threads;
            const auto patterns = makePatterns(6, false);
            const Set set(6);
            fill(set, patterns);
            Results results(6);
            ASSERT_EQ(zelsRegExpSetMatchLimit(0, patterns[0]->get()), zelStatusOk);
            results[1].numFind = 0;
            results[2].pFind = nullptr;
            patterns[4]->get()->magic ^= 1;
            ASSERT_EQ(zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()),
                                             results.get(), set.get()),
                      zelStatusOk);
            EXPECT_EQ(results[0].status, zelStatusRegExpMatchLimitError);
            EXPECT_EQ(results[1].status, zelStatusSizeError);
            EXPECT_EQ(results[2].status, zelStatusNullPointer);
            EXPECT_EQ(results[3].status, zelStatusOk);
            EXPECT_EQ(results[4].status, zelStatusContextMatchError);
            EXPECT_EQ(results.outcome(5), searchAlone(text, patterns[5]->get()));
            for (int i = 0; i < 6; ++i) {
                EXPECT_EQ(results[i].searched, 1);
                EXPECT_EQ(results[i].identifier, static_cast<Zel32u>(1000 + i));
            }
        }
    }
}

TEST_F(MultiFind, ChecksARecordAndAPatternThatTheTextExcludes) {
    const Set set(8);
    std::vector<std::unique_ptr<Pattern>> patterns;
    for (Zel32u id = 1; id <= 8; ++id) {
        patterns.push_back(std::make_unique<Pattern>("absent", ""));
        ASSERT_EQ(zelsRegExpMultiAdd(patterns.back()->get(), id, set.get()), zelStatusOk);
    }
    Results results(8);
    results[1].numFind = 0;
    results[2].pFind = nullptr;
    patterns[3]->get()->magic ^= 1;
    ASSERT_EQ(zelsRegExpMultiFind_8u(bytes(shortText_), 100, results.get(), set.get()),
              zelStatusOk);
    EXPECT_EQ(results[1].status, zelStatusSizeError);
    EXPECT_EQ(results[1].numFind, 0);
    EXPECT_EQ(results[2].status, zelStatusNullPointer);
    EXPECT_EQ(results[2].numFind, kRoom);
    EXPECT_EQ(results[3].status, zelStatusContextMatchError);
    EXPECT_EQ(results[3].numFind, kRoom);
    for (int i : {0, 4, 5, 6, 7}) {
        EXPECT_EQ(results[i].status, zelStatusOk);
        EXPECT_EQ(results[i].numFind, 0);
    }
}

TEST_F(MultiFind, OnePatternInEverySlotGivesEverySlotItsRecords) {
    const Pattern pattern("(\\w+) for (\\w+)", "g");
    const Outcome alone = searchAlone(longText_, pattern.get());
    ASSERT_GT(alone.numFind, 0);
    for (int threads : {2, 3, 4}) {
        threadCount = threads;
        const Set set(12);
        for (Zel32u id = 1; id <= 12; ++id) {
            ASSERT_EQ(zelsRegExpMultiAdd(pattern.get(), id, set.get()), zelStatusOk);
        }
        for (int round = 0; round < 10; ++round) {
            Results results(12);
            ASSERT_EQ(zelsRegExpMultiFind_8u(bytes(longText_), static_cast<int>(longText_.size()),
                                             results.get(), set.get()),
                      zelStatusOk);
            for (int i = 0; i < 12; ++i) EXPECT_EQ(results.outcome(i), alone);
        }
    }
}

/// True when the pattern's own work areas still hold the canary.
bool scratchUntouched(const Pattern& pattern) {
    const auto* groups = reinterpret_cast<const Zel8u*>(pattern.get()->groups);
    return std::all_of(groups, groups + 48000, [](Zel8u b) { return b == kCanary; });
}

TEST_F(MultiFind, OnlyTheSerialPathWorksInThePatternsOwnScratch) {
    for (const std::string& text : {shortText_, longText_}) {
        for (int threads : {1, 2, 3}) {
            for (int capacity : {1, 2, 3, 4}) {
                threadCount = threads;
                const Pattern pattern("(\\d+)\\.(\\d+)");
                memset(pattern.get()->groups, kCanary, 48000);
                const Set set(capacity);
                ASSERT_EQ(zelsRegExpMultiAdd(pattern.get(), 1, set.get()), zelStatusOk);
                Results results(capacity);
                ASSERT_EQ(zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()),
                                                 results.get(), set.get()),
                          zelStatusOk);
                EXPECT_EQ(results[0].numFind, 3);
                EXPECT_EQ(scratchUntouched(pattern), capacity > threads)
                    << capacity << " slots, " << threads << " threads";
            }
        }
    }
}

TEST_F(MultiFind, InsideAParallelRegionOfTheCallersTheSetIsSearchedOnTheCallingThread) {
    threadCount = 3;
    const auto patterns = makePatterns(15, true);
    const Set set(15);
    fill(set, patterns);
    std::vector<Outcome> alone(15);
    for (size_t i = 0; i < 15; ++i) {
        if (patterns[i]) alone[i] = searchAlone(longText_, patterns[i]->get());
    }
    int wrong = 0;
    // Both threads search the same set: beyond the thread count that is no race.
#pragma omp parallel num_threads(2) reduction(+ : wrong)
    {
        Results results(15);
        wrong += zelsRegExpMultiFind_8u(bytes(longText_), static_cast<int>(longText_.size()),
                                        results.get(), set.get()) != zelStatusOk;
        for (int i = 0; i < 15; ++i) {
            const auto index = static_cast<size_t>(i);
            wrong += patterns[index] ? results.outcome(i) != alone[index] : !results.untouched(i);
        }
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(MultiFind, TwoThreadsMaySearchTwoSetsThatShareTheirPatterns) {
    threadCount = 2;
    const auto patterns = makePatterns(7, false);
    std::vector<Outcome> alone;
    for (const auto& pattern : patterns) alone.push_back(searchAlone(longText_, pattern->get()));
    const auto work = [&](int& wrong) {
        const Set set(7);
        fill(set, patterns);
        for (int round = 0; round < 10; ++round) {
            Results results(7);
            wrong += zelsRegExpMultiFind_8u(bytes(longText_), static_cast<int>(longText_.size()),
                                            results.get(), set.get()) != zelStatusOk;
            for (int i = 0; i < 7; ++i)
                wrong += results.outcome(i) != alone[static_cast<size_t>(i)];
        }
    };
    int wrong[2] = {};
    std::thread first(work, std::ref(wrong[0]));
    std::thread second(work, std::ref(wrong[1]));
    first.join();
    second.join();
    EXPECT_EQ(wrong[0] + wrong[1], 0);
}

// ---- Teams --------------------------------------------------------------------------------------

int processThreads() {
    int count = 0;
    DIR* const tasks = opendir("/proc/self/task");
    while (const dirent* entry = readdir(tasks)) count += entry->d_name[0] != '.';
    closedir(tasks);
    return count;
}

/// Searches a set with three threads to use, and ends the process with the number of threads that
/// this added (an OpenMP runtime keeps the threads of a team, and may add one of its own).
[[noreturn]] void searchAndExitWithAddedThreads(const std::string& text, int capacity) {
    threadCount = 3;
    const auto patterns = makePatterns(capacity, false);
    const Set set(capacity);
    fill(set, patterns);
    Results results(capacity);
    const int before = processThreads();
    zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()), results.get(), set.get());
    _exit(processThreads() - before);
}

bool addedAtLeastTwo(int status) {
    return WIFEXITED(status) && WEXITSTATUS(status) >= 2 && WEXITSTATUS(status) < 10;
}

class MultiTeamDeathTest : public MultiFind {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(MultiTeamDeathTest, ALargeSetOverALongTextIsSearchedByATeam) {
    EXPECT_EXIT(searchAndExitWithAddedThreads(longText_, 7), addedAtLeastTwo, "");
}

TEST_F(MultiTeamDeathTest, ASetOfAtMostTheThreadCountWakesNoThreads) {
    EXPECT_EXIT(searchAndExitWithAddedThreads(longText_, 3), testing::ExitedWithCode(0), "");
}

TEST_F(MultiTeamDeathTest, AShortTextWakesNoThreads) {
    EXPECT_EXIT(searchAndExitWithAddedThreads(shortText_, 7), testing::ExitedWithCode(0), "");
}

TEST(MultiTeam, IsWorthItFromAFixedProductOfSlotsAndBytesOn) {
    EXPECT_TRUE(worthATeam(1, kTeamMinimumWork));
    EXPECT_FALSE(worthATeam(1, kTeamMinimumWork - 1));
    EXPECT_TRUE(worthATeam(INT_MAX, INT_MAX));
    EXPECT_FALSE(worthATeam(3, 1));
}

}  // namespace
