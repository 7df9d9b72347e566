// Every instance of the split against a plain loop, where tokens are long: those are copied while
// they are searched, in another way than short ones are.
#include <algorithm>

#include "instances_support.h"

namespace zel::test {
namespace {

class SplitInstances : public EachInstance {};
ZEL_INSTANTIATE(SplitInstances);

template <typename T>
void splitsAsAPlainLoopDoes(const Instance& library, unsigned seed) {
    constexpr T kUntouched = 9;
    Random random(seed);
    const GuardedPages sources(8);
    const GuardedPages destinations(16);
    for (int round = 0; round < 3000; ++round) {
        std::vector<T> text;
        std::vector<T> alphabet = {'a', 'b', T(0xFF2C), T(0x2C00)};
        if (sizeof(T) == 1) alphabet = {'a', 'b', 0xFF, 0x2B};
        const int tokens = random.below(8);
        for (int i = 0; i < tokens; ++i) {
            if (i > 0) text.push_back(',');
            const int length = random.oneIn(3) ? random.below(70) : random.below(900);
            for (int k = 0; k < length; ++k)
                text.push_back(alphabet[static_cast<size_t>(random.below(4))]);
        }
        if (random.oneIn(4)) text.push_back(',');
        const auto len = static_cast<int>(text.size());
        T* const src =
            random.oneIn(2) ? sources.atEnd<T>(text.size()) : sources.at<T>(sizeof(T) * 5);
        std::copy(text.begin(), text.end(), src);

        // The slots follow each other up to the guard, with at least an element between them.
        const int slotCount = 1 + random.below(8);
        std::vector<int> rooms;
        std::vector<int> gaps;  // in front of the slots
        std::vector<int> expectedLens;
        std::vector<std::vector<T>> expected;
        ZelStatus status = zelStatusOk;
        int count = 0;
        int pos = 0;
        int total = 0;
        for (int i = 0; i < slotCount; ++i) {
            const auto stop = std::find(src + std::min(pos, len), src + len, T(','));
            const int token = pos < len ? static_cast<int>(stop - src) - pos : 0;
            const int some[] = {token,     token + 1,   std::max(token - 1, 0),
                                token / 2, token + 300, 0};
            const int room = some[random.below(random.oneIn(3) ? 6 : 2)];
            rooms.push_back(room);
            expected.emplace_back();
            expectedLens.push_back(room);
            gaps.push_back(1 + random.below(20));
            total += room + gaps.back();
            if (pos >= len) continue;
            expected.back().assign(src + pos, src + pos + std::min(token, room));
            expectedLens.back() = std::min(token, room);
            if (token > room) status = zelStatusTruncatedWarning;
            pos += token + 1;
            ++count;
        }
        if (pos < len) status = zelStatusSplitIncompleteWarning;
        T* const first = destinations.atEnd<T>(static_cast<size_t>(total));
        std::fill(first, first + total, kUntouched);
        std::vector<T*> slots(static_cast<size_t>(slotCount));
        T* behind = first + total;
        for (int i = slotCount; i-- > 0;) {
            const auto k = static_cast<size_t>(i);
            slots[k] = behind - rooms[k];
            behind = slots[k] - gaps[k];
        }

        std::vector<int> lens = rooms;
        int found = slotCount;
        ASSERT_EQ((library.SplitC<T>())(src, len, ',', slots.data(), lens.data(), &found), status);
        ASSERT_EQ(found, count);
        ASSERT_EQ(lens, expectedLens);
        for (int i = 0; i < slotCount; ++i) {
            const auto k = static_cast<size_t>(i);
            const std::vector<T>& token = expected[k];
            ASSERT_TRUE(std::equal(token.begin(), token.end(), slots[k])) << round << " " << i;
            const T* const end = i + 1 < slotCount ? slots[k + 1] : first + total;
            for (const T* p = slots[k] + token.size(); p < end; ++p) ASSERT_EQ(*p, kUntouched);
        }
        ASSERT_TRUE(std::equal(text.begin(), text.end(), src));
    }
}

TEST_P(SplitInstances, LongTokens_8u) {
    splitsAsAPlainLoopDoes<Zel8u>(library(), 1);
}
TEST_P(SplitInstances, LongTokens_16u) {
    splitsAsAPlainLoopDoes<Zel16u>(library(), 2);
}

TEST_P(SplitInstances, ASlotBehindALongTokenIsCheckedWhenItsTokenIsDue) {
    std::vector<Zel8u> text(900, 'a');
    text[300] = text[600] = ',';
    const auto len = static_cast<int>(text.size());
    Zel8u room[3][400];
    Zel8u* const none[] = {room[0], nullptr, room[2]};
    int lens[] = {400, 400, 400};
    int count = 3;
    EXPECT_EQ(library().zelsSplitC_8u_D2L(text.data(), len, ',', none, lens, &count),
              zelStatusNullPointer);
    EXPECT_EQ(lens[0], 300);
    EXPECT_EQ(lens[1], 400);
    EXPECT_EQ(count, 3);
    EXPECT_TRUE(std::equal(room[0], room[0] + 300, text.begin()));

    Zel8u* const all[] = {room[0], room[1], room[2]};
    int negative[] = {400, -1, 400};
    EXPECT_EQ(library().zelsSplitC_8u_D2L(text.data(), len, ',', all, negative, &count),
              zelStatusLengthError);
    EXPECT_EQ(negative[0], 300);
    EXPECT_EQ(negative[1], -1);
    EXPECT_EQ(count, 3);

    // Of a slot that no token is due for nothing is asked.
    int two[] = {400, 400, -1};
    EXPECT_EQ(library().zelsSplitC_8u_D2L(text.data(), 600, ',', all, two, &count), zelStatusOk);
    EXPECT_EQ(count, 2);
}

// First the token's end is found, then it is copied, element by element.
TEST_P(SplitInstances, ALongTokenWhoseSlotOverlapsIt) {
    Random random(3);
    for (int round = 0; round < 4000; ++round) {
        const int length = 200 + random.below(700);
        const int before = random.below(500);
        std::vector<Zel8u> memory(2500);
        for (Zel8u& c : memory) c = static_cast<Zel8u>('a' + random.below(26));
        Zel8u* const src = memory.data() + 600;
        src[length] = ',';
        Zel8u* const slot = src - before + random.below(1000);
        int room = random.oneIn(2) ? length : random.below(1000);
        std::vector<Zel8u> expected = memory;
        for (int i = 0; i < std::min(room, length); ++i) {
            const ptrdiff_t from = 600 + i;
            expected[static_cast<size_t>(slot - memory.data() + i)] =
                expected[static_cast<size_t>(from)];
        }
        const int copied = std::min(room, length);
        int count = 1;
        ASSERT_EQ(library().zelsSplitC_8u_D2L(src, length + 5, ',', &slot, &room, &count),
                  zelStatusSplitIncompleteWarning);
        ASSERT_EQ(room, copied);
        ASSERT_EQ(memory, expected) << slot - src << " " << length;
    }
}

}  // namespace
}  // namespace zel::test
