// One buffer, one byte larger than what is ever read into it: the byte behind a text must be
// readable. An unfinished last line moves to the front before the next read; a line longer than the
// buffer doubles it.
#include "input.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelgrep {
namespace {

constexpr std::size_t kFirstSize = std::size_t{1} << 20;

}  // namespace

Input::~Input() {
    close();
}

void Input::close() {
    if (file_ > STDIN_FILENO) ::close(file_);
    file_ = -1;
}

std::string Input::open(const std::string& name) {
    close();
    file_ = name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file_ < 0) return strerror(errno);
    struct stat status {};
    if (fstat(file_, &status) != 0) return strerror(errno);
    if (S_ISDIR(status.st_mode)) return "is a directory";
    size_ = S_ISREG(status.st_mode) ? status.st_size : 0;
    used_ = given_ = 0;
    atEnd_ = false;
    return {};
}

bool Input::read(char separator, Span& block, std::string& error) {
    if (buffer_.empty()) buffer_.resize(kFirstSize + 1);
    if (given_ > 0) {
        used_ -= given_;
        if (used_ > 0)
            zelsMove_8u(buffer_.data() + given_, buffer_.data(), static_cast<int>(used_));
        given_ = 0;
    }
    while (!atEnd_) {
        if (used_ + 1 == buffer_.size()) {
            if (buffer_.size() > INT_MAX / 2) {
                error = "a line is too long";
                return false;
            }
            buffer_.resize(2 * buffer_.size() - 1);
        }
        const ssize_t got = ::read(file_, buffer_.data() + used_, buffer_.size() - 1 - used_);
        if (got < 0) {
            if (errno == EINTR) continue;
            error = strerror(errno);
            return false;
        }
        atEnd_ = got == 0;
        const std::size_t before = used_;
        used_ += static_cast<std::size_t>(got);
        int last = -1;
        zelsFindRevC_8u(buffer_.data() + before, static_cast<int>(got),
                        static_cast<Zel8u>(separator), &last);
        if (last >= 0) {
            given_ = before + static_cast<std::size_t>(last) + 1;
            break;
        }
    }
    if (given_ == 0) given_ = used_;  // the file ends without a separator
    buffer_[used_] = static_cast<Zel8u>(separator);
    block = {buffer_.data(), buffer_.data() + given_};
    return given_ > 0;
}

}  // namespace zelgrep
