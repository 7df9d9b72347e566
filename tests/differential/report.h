// How the differential programs describe a case: as text that can be pasted into a C++ source.
#pragma once

#include <signal.h>

#include <functional>
#include <string>

namespace differential {

/// The bytes as a C++ string literal.
std::string quoted(const std::string& bytes);

/// Says on standard error which case was running when the program crashes or hangs.
class CrashReporter {
public:
    CrashReporter();
    /// Gives the thread its own signal stack back, which a sanitizer releases when the thread ends.
    ~CrashReporter();
    CrashReporter(const CrashReporter&) = delete;
    CrashReporter& operator=(const CrashReporter&) = delete;
    /// `describe` is called only in a crash; it must stay valid until the next call.
    static void running(const std::function<std::string()>* describe);
    /// The number of the case, which a crash that destroyed the description still tells.
    static void numbered(long long number);

private:
    stack_t previous_{};
};

/// Runs `work` on a thread with a stack deep enough for the model's recursion.
void onDeepStack(const std::function<void()>& work);

}  // namespace differential
