// Keeps deep searches from running off the machine stack. The engine recurses at choice points; in
// front of a recursion it asks here whether there is room. The ordinary answer is one comparison
// with a limit near the point where the search began. Only a search that gets past it makes the
// guard find out where the thread's stack really ends.
#pragma once

#include <stddef.h>

namespace zel {

class StackGuard {
public:
    // A search may use this much before anybody asks. The smallest threads have some 12 KiB: what
    // lies above the search takes 3 or 4 of them, a level of the engine that goes past the limit
    // before it asks takes 1, and asking itself takes nearly 4. Whoever makes one of them larger
    // has to make another smaller; small_stack_test tells.
    static constexpr ptrdiff_t kNearThread = 4 * 1024;

    /// To be called at the start of a search.
    void start();

    /// Whether there is room for the library's own frames and `bytes` more. To be called in front
    /// of the function in whose frame they are.
    bool hasRoom(size_t bytes = 0) {
        const char* here = static_cast<const char*>(__builtin_frame_address(0));
        return __builtin_expect(here - bytes > limit_, 1) || extend(here, bytes);
    }

private:
    enum Reach { kNear, kNearOnMain, kAll };

    bool extend(const char* here, size_t bytes);

    const char* limit_;
    Reach reach_;  // what the limit stands for
};

}  // namespace zel
