// A progress bar on the terminal, for searches that take long enough to wonder.
#pragma once

#include <chrono>

namespace zelgrep {

class Progress {
public:
    /// Nothing is ever shown unless standard error is a terminal and the total is known.
    explicit Progress(long long totalBytes);
    ~Progress() { hide(); }

    void add(long long bytes);

    /// Wipes the bar, so that output on the same terminal does not mix with it.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    long long total_;
    long long done_ = 0;
    bool enabled_;
    bool shown_ = false;
    Clock::time_point started_ = Clock::now();
    Clock::time_point nextShow_;
};

}  // namespace zelgrep
