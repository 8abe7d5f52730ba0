// A message about a crash. The program that crashed cannot show it: it is started again to do only that.
#include "platform/crash.h"

#include "platform/debug.h"
#include "platform/linux/crashTell.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The message has the caption in the place of the program's name, which nobody types.
constexpr const char* Captions[] = {crashWritten, crashNotWritten};

std::atomic<bool> ByProgram{false};
std::atomic<int> MouseHeldBy{-1};

void ShowBy(const char* caption, const char* text)
{
    const pid_t child = _Fork();
    if (child == 0) {
        const char* const words[] = {caption, text, nullptr};
        execve("/proc/self/exe", const_cast<char* const*>(words), environ);
        _exit(1);
    }
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

void crashTell(const char* caption, const char* text)
{
    debugWrite(caption);
    debugWrite(": ");
    debugWrite(text);
    debugWrite("\n");
    if (!ByProgram.load())
        return;
    if (const int connection = MouseHeldBy.load(); connection >= 0)
        shutdown(connection, SHUT_RDWR);
    ShowBy(caption, text);
}

void crashMouseHeldBy(int connection)
{
    MouseHeldBy = connection;
}

void crashTellByProgram()
{
    ByProgram = true;
}

bool crashMessageOf(int count, char** words, const char*& caption, const char*& text)
{
    if (count != 2)
        return false;
    for (const char* const known : Captions) {
        if (std::strcmp(words[0], known) != 0)
            continue;
        caption = known;
        text = words[1];
        return true;
    }
    return false;
}
