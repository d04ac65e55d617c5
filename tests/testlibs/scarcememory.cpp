#include "scarcememory.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// The C library's own functions, under the names that stay when others stand in front of them.
extern "C" void *__libc_malloc(size_t size);
extern "C" void *__libc_calloc(size_t count, size_t size);
extern "C" void *__libc_realloc(void *memory, size_t size);

namespace {

enum ExitCode { Right, Wrong, Thrown, NothingRefused };

/// How many requests are granted before the refused one; negative for no end of them.
long granted = -1;
bool isRefusedFromThereOn = false;
bool wasRefused = false;

bool isRefused()
{
    if (granted < 0) {
        return false;
    }
    if (granted > 0) {
        --granted;
        return false;
    }
    if (!isRefusedFromThereOn) {
        granted = -1;
    }
    wasRefused = true;
    errno = ENOMEM;
    return true;
}

void becomeQuiet()
{
    // Aborting is one of the answers here; it needs no dump and no words.
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::close(STDERR_FILENO);
}

[[noreturn]] void runRefusing(
    long number, testlibs::Refusal refusal, const std::function<bool()> &operation)
{
    becomeQuiet();
    isRefusedFromThereOn = refusal == testlibs::Refusal::AllFromThereOn;
    granted = number;
    ExitCode code = Wrong;
    try {
        code = operation() ? Right : Wrong;
    } catch (const std::bad_alloc &) {
        code = Thrown;
    }
    granted = -1;
    ::_exit(wasRefused ? code : NothingRefused);
}

void countEnding(testlibs::Endings &endings, int status)
{
    if (WIFSIGNALED(status)) {
        ++(WTERMSIG(status) == SIGABRT ? endings.aborted : endings.crashed);
    } else if (WEXITSTATUS(status) == Thrown) {
        ++endings.thrown;
    } else {
        ++(WEXITSTATUS(status) == Right ? endings.right : endings.wrong);
    }
}

} // namespace

extern "C" void *malloc(size_t size)
{
    return isRefused() ? nullptr : __libc_malloc(size);
}

extern "C" void *calloc(size_t count, size_t size)
{
    return isRefused() ? nullptr : __libc_calloc(count, size);
}

extern "C" void *realloc(void *memory, size_t size)
{
    return isRefused() ? nullptr : __libc_realloc(memory, size);
}

namespace testlibs {

Endings refuseEachRequest(Refusal refusal, const std::function<bool()> &operation,
    const std::function<void()> &prepare, const std::function<bool()> &check)
{
    Endings endings;
    for (long number = 0;; ++number) {
        prepare();
        const pid_t process = ::fork();
        if (process == 0) {
            runRefusing(number, refusal, operation);
        }
        int status = 0;
        if (process < 0 || ::waitpid(process, &status, 0) != process) {
            ++endings.wrong;
            return endings;
        }
        if (WIFEXITED(status) && WEXITSTATUS(status) == NothingRefused) {
            return endings;
        }
        countEnding(endings, status);
        endings.leftWrong += check() ? 0 : 1;
    }
}

} // namespace testlibs
