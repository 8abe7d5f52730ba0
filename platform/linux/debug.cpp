#include "platform/debug.h"

#include "platform/crash.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

// Keeps a write to a pipe that nobody reads from ending the process.
class pipeSignalHeld
{
public:
    pipeSignalHeld()
    {
        sigset_t pending;
        sigemptyset(&pending);
        sigpending(&pending);
        WasPending = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&Signal);
        sigaddset(&Signal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &Signal, &Before);
    }

    ~pipeSignalHeld()
    {
        const timespec none = {};
        if (!WasPending)
            sigtimedwait(&Signal, nullptr, &none);
        pthread_sigmask(SIG_SETMASK, &Before, nullptr);
    }

    pipeSignalHeld(const pipeSignalHeld&) = delete;
    pipeSignalHeld& operator=(const pipeSignalHeld&) = delete;

private:
    sigset_t Signal;
    sigset_t Before;
    bool WasPending;
};

// The read that asks the system to copy between two places of one process: how many bytes came.
size_t ReadDirectly(const void* address, void* target, size_t bytes, bool& refused)
{
    const iovec local = {target, bytes};
    const iovec remote = {const_cast<void*>(address), bytes};
    const ssize_t done = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
    refused = done < 0 && errno != EFAULT;
    return done < 0 ? 0 : static_cast<size_t>(done);
}

// Where the direct read is forbidden, the system still looks at the bytes when they are sent through a pipe.
// The call is made without the library's wrapper, for the address may be anything.
bool ReadByPipe(const char* address, char* target, size_t bytes)
{
    constexpr size_t AtOnce = 4096;  // fits into every pipe
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    bool good = true;
    while (good && bytes > 0) {
        const size_t part = std::min(bytes, AtOnce);
        const ssize_t sent = syscall(SYS_write, ends[1], address, part);
        if (sent < 0 && errno == EINTR)
            continue;
        good = sent > 0 && read(ends[0], target, static_cast<size_t>(sent)) == sent;
        if (!good)
            break;
        address += sent;
        target += sent;
        bytes -= static_cast<size_t>(sent);
    }
    close(ends[0]);
    close(ends[1]);
    return good;
}

}  // namespace

void debugWrite(std::string_view text)
{
    const pipeSignalHeld held;
    char part[512];
    size_t used = 0;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        part[used++] = text[i];
        if (used < sizeof(part))
            continue;
        if (!crashFileWrite(STDERR_FILENO, part, used))
            return;
        used = 0;
    }
    crashFileWrite(STDERR_FILENO, part, used);
}

bool debugAttached()
{
    const int file = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    // The line asked for is among the first ten.
    char status[2048];
    const ssize_t size = read(file, status, sizeof(status));
    close(file);
    if (size <= 0)
        return false;
    constexpr std::string_view Tracer = "\nTracerPid:\t";
    const std::string_view text(status, static_cast<size_t>(size));
    const size_t found = text.find(Tracer);
    if (found == std::string_view::npos)
        return false;
    const std::string_view number = text.substr(found + Tracer.size(), 1);
    return number >= "1" && number <= "9";
}

void debugBreak()
{
#if defined(__x86_64__) || defined(__i386__)
    // Unlike a raised signal it cannot be ignored, and a debugger stops at the line of the caller.
    __asm__ volatile("int3");
#else
    raise(SIGTRAP);
#endif
}

bool debugRead(const void* address, void* target, size_t bytes)
{
    if (bytes > UINTPTR_MAX - reinterpret_cast<uintptr_t>(address))
        return false;
    const char* from = static_cast<const char*>(address);
    char* to = static_cast<char*>(target);
    while (bytes > 0) {
        bool refused = false;
        const size_t done = ReadDirectly(from, to, bytes, refused);
        if (refused)
            return ReadByPipe(from, to, bytes);
        if (done == 0)
            return false;
        from += done;
        to += done;
        bytes -= done;
    }
    return true;
}
