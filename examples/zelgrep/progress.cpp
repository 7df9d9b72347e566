// The bar is drawn at most ten times a second, and not at all in the first half of one.
#include "progress.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace zelgrep {

Progress::Progress(long long totalBytes)
    : total_(totalBytes),
      enabled_(totalBytes > 0 && isatty(STDERR_FILENO)),
      nextShow_(started_ + std::chrono::milliseconds(500)) {}

void Progress::add(long long bytes) {
    done_ += bytes;
    if (!enabled_ || Clock::now() < nextShow_) return;
    constexpr int kWidth = 40;
    const double part = std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_));
    const double seconds = std::chrono::duration<double>(Clock::now() - started_).count();
    const std::string bar(static_cast<std::size_t>(part * kWidth), '#');
    fprintf(stderr, "\r[%-*s] %3.0f%%  %.0f MB/s ", kWidth, bar.c_str(), part * 100,
            static_cast<double>(done_) / 1e6 / seconds);
    shown_ = true;
    nextShow_ = Clock::now() + std::chrono::milliseconds(100);
}

void Progress::hide() {
    if (!shown_) return;
    fputs("\r\033[K", stderr);
    shown_ = false;
}

}  // namespace zelgrep
