// Memory between two inaccessible pages, so that a read or write outside a range that touches
// either end stops the program at once.
#pragma once

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "zelchmx.h"

namespace differential {

class GuardedArea {
public:
    explicit GuardedArea(size_t capacity) {
        constexpr size_t page = 4096;
        capacity_ = (capacity + page - 1) / page * page;
        void* block = mmap(nullptr, capacity_ + 2 * page, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED) std::abort();
        begin_ = static_cast<Zel8u*>(block) + page;
        mprotect(block, page, PROT_NONE);
        mprotect(begin_ + capacity_, page, PROT_NONE);
    }
    GuardedArea(const GuardedArea&) = delete;
    GuardedArea& operator=(const GuardedArea&) = delete;

    size_t capacity() const { return capacity_; }
    /// The first bytes, right behind the lower inaccessible page.
    Zel8u* low() { return begin_; }
    /// The last `size` bytes, right in front of the upper inaccessible page.
    Zel8u* high(size_t size) { return begin_ + capacity_ - size; }

    /// Places the bytes at one of the two ends.
    Zel8u* place(const std::string& bytes, bool atHighEnd) {
        Zel8u* target = atHighEnd ? high(bytes.size()) : low();
        std::memcpy(target, bytes.data(), bytes.size());
        return target;
    }

private:
    Zel8u* begin_;
    size_t capacity_;
};

}  // namespace differential
