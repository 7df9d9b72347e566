// What a search works out ahead of its attempts.
#include "regexp/match/plan.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <sys/mman.h>

TEST(Plan, BillOfALongRunExceedsEveryBudgetInsteadOfOverflowing) {
    // Untouched pages all read as zero; they cost no memory.
    constexpr size_t kLength = 160 << 20;
    void* memory =
        mmap(nullptr, kLength, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    const Zel8u* text = static_cast<const Zel8u*>(memory);
    zel::Plan plan;
    plan.clear();
    plan.kind = zel::Plan::kRun;
    plan.price = 1000;
    plan.runPrice = 1000;
    plan.first.add(0);
    EXPECT_GT(plan.bill(text, text + kLength, text + kLength, INT_MAX), INT_MAX);
    munmap(memory, kLength);
}
