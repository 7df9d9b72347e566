// Reads a file, or standard input, in large blocks of whole lines.
#pragma once

#include <string>
#include <vector>

#include "pattern.h"

namespace zelgrep {

class Input {
public:
    ~Input();

    /// Opens the file; "-" is standard input. Returns a message when that fails.
    std::string open(const std::string& name);

    /// Reads on. The block ends behind the last separator read, or at the end of the file; the byte
    /// behind it can be read. False at the end of the file and after an error.
    bool read(char separator, Span& block, std::string& error);

    /// The size of the file; 0 when it has none.
    long long size() const { return size_; }

private:
    void close();

    int file_ = -1;
    long long size_ = 0;
    std::vector<Zel8u> buffer_;
    std::size_t used_ = 0;   // bytes in the buffer
    std::size_t given_ = 0;  // bytes of it that the last block covered
    bool atEnd_ = false;
};

}  // namespace zelgrep
