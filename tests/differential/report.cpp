#include "report.h"

#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace differential {
namespace {

const std::function<std::string()>* runningCase = nullptr;
long long runningNumber = -1;
bool installed = false;

// The number first, by the plainest means: a library that ran wild may have destroyed all else.
void onSignal(int signal) {
    char line[64] = "crash in case ";
    if (signal == SIGALRM) std::memcpy(line, "hung ", 5);
    size_t size = std::strlen(line);
    char digits[24];
    int count = 0;
    for (long long rest = runningNumber; rest > 0 || count == 0; rest /= 10) {
        digits[count++] = static_cast<char>('0' + rest % 10);
    }
    while (count > 0) line[size++] = digits[--count];
    line[size++] = '\n';
    syscall(SYS_write, STDERR_FILENO, line, size);
    // The process ends here, so what a handler may not do in general does no harm.
    if (runningCase) std::fprintf(stderr, "%s\n", (*runningCase)().c_str());
    std::fflush(stderr);
    _exit(3);
}

}  // namespace

std::string quoted(const std::string& bytes) {
    std::string text = "\"";
    for (char byte : bytes) {
        unsigned char c = static_cast<unsigned char>(byte);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += byte;
        } else if (c == '?' && text.back() == '?') {
            text += "\\?";  // no trigraph
        } else if (c >= 0x20 && c < 0x7F) {
            text += byte;
        } else {
            char octal[8];
            std::snprintf(octal, sizeof octal, "\\%03o", c);
            text += octal;
        }
    }
    return text + "\"";
}

CrashReporter::CrashReporter() {
    installed = true;
    static char stack[1 << 16];
    stack_t alternate{};
    alternate.ss_sp = stack;
    alternate.ss_size = sizeof stack;
    sigaltstack(&alternate, &previous_);
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_ONSTACK;
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM}) {
        sigaction(signal, &action, nullptr);
    }
}

CrashReporter::~CrashReporter() {
    sigaltstack(&previous_, nullptr);
}

void CrashReporter::running(const std::function<std::string()>* describe) {
    constexpr unsigned longestSeconds = 60;
    runningCase = describe;
    if (!installed) return;
    alarm(describe ? longestSeconds : 0);
}

void CrashReporter::numbered(long long number) {
    runningNumber = number;
}

void onDeepStack(const std::function<void()>& work) {
    constexpr size_t stackSize = size_t{2} << 30;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    pthread_t thread;
    auto entry = [](void* argument) -> void* {
        CrashReporter reporter;
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&work))) {
        std::perror("pthread_create");
        std::exit(2);
    }
    pthread_join(thread, nullptr);
}

}  // namespace differential
