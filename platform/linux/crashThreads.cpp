// Where the other threads are: each is asked by a signal, and answers for itself.
#include "platform/linux/crashEvent.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// A question lives in one word: its number, so that a late answer to an old question is known for one, and
// how far it has come.
enum class stage : uint32_t {
    Free,
    Claimed,
    Asked,
    Answering,
    Answered
};
constexpr uint32_t StageBits = 3;

constexpr uint32_t Word(uint32_t number, stage at)
{
    return number << StageBits | static_cast<uint32_t>(at);
}

struct question {
    std::atomic<uint32_t> State{Word(0, stage::Free)};
    crashContext Answer;
};

// More threads than ever report at once.
constexpr size_t QuestionsMost = 4;
constinit question Questions[QuestionsMost];

constexpr long Beat = 200'000;      // ns
constexpr int BeatsToAnswer = 500;  // 100 ms
constexpr uintptr_t IndexMask = 0xFF;
constexpr unsigned NumberShift = 8;

// Not used by the system's libraries.
int AskingSignal()
{
    return SIGRTMAX - 2;
}

void ReadWhere(void* argument)
{
    auto& [machine, context] = *static_cast<std::pair<ucontext_t*, crashContext*>*>(argument);
    crashReadRegisters(*machine, *context);
    crashReadCalls(*machine, *context);
}

void OnAsked(int, siginfo_t* info, void* machine)
{
    if (info->si_code != SI_QUEUE || info->si_pid != getpid())
        return;
    const int error = errno;
    const auto mark = reinterpret_cast<uintptr_t>(info->si_value.sival_ptr);
    const auto number = static_cast<uint32_t>(mark >> NumberShift);
    question& asked = Questions[(mark & IndexMask) % QuestionsMost];
    uint32_t expected = Word(number, stage::Asked);
    if (asked.State.compare_exchange_strong(expected, Word(number, stage::Answering))) {
        asked.Answer = {};
        std::pair<ucontext_t*, crashContext*> where{static_cast<ucontext_t*>(machine), &asked.Answer};
        crashRecord fault;
        crashGuarded(ReadWhere, &where, fault);
        asked.State = Word(number, stage::Answered);
    }
    errno = error;
}

// A free question and its number, or null.
question* Claim(uint32_t& number)
{
    for (question& one : Questions) {
        uint32_t state = one.State.load();
        number = ((state >> StageBits) + 1) & (UINT32_MAX >> StageBits);
        if (state % (1u << StageBits) == static_cast<uint32_t>(stage::Free) &&
            one.State.compare_exchange_strong(state, Word(number, stage::Claimed)))
            return &one;
    }
    return nullptr;
}

bool Send(uint32_t thread, const question& asked, uint32_t number)
{
    siginfo_t info = {};
    info.si_code = SI_QUEUE;
    info.si_pid = getpid();
    info.si_uid = getuid();
    const auto index = static_cast<uintptr_t>(&asked - Questions);
    info.si_value.sival_ptr = reinterpret_cast<void*>(uintptr_t{number} << NumberShift | index);
    return syscall(SYS_rt_tgsigqueueinfo, getpid(), thread, AskingSignal(), &info) == 0;
}

bool AwaitAnswer(const question& asked, uint32_t number)
{
    for (int i = 0; i < BeatsToAnswer; ++i) {
        if (asked.State.load() == Word(number, stage::Answered))
            return true;
        const timespec beat = {0, Beat};
        nanosleep(&beat, nullptr);
    }
    return false;
}

// One that answers while we give up keeps its question for good.
bool GiveUp(question& asked, uint32_t number)
{
    uint32_t expected = Word(number, stage::Asked);
    if (asked.State.compare_exchange_strong(expected, Word(number, stage::Free)))
        return false;
    return AwaitAnswer(asked, number);
}

// The number in a file's name; 0 for "." and "..".
uint32_t NumberIn(const char* name)
{
    uint32_t number = 0;
    for (; *name >= '0' && *name <= '9'; ++name)
        number = number * 10 + static_cast<uint32_t>(*name - '0');
    return number;
}

// The priority of a thread, the 18th field of its line of facts. The second may hold blanks; it ends with
// ")".
uint32_t PriorityOf(uint32_t thread)
{
    constexpr int FieldsBehindName = 16;
    constexpr std::string_view Folder = "/proc/self/task/";
    constexpr std::string_view File = "/stat";
    char path[64] = {};
    char* end = std::copy(Folder.begin(), Folder.end(), path);
    char digits[10];
    size_t count = 0;
    for (; thread > 0; thread /= 10)
        digits[count++] = static_cast<char>('0' + thread % 10);
    end = std::reverse_copy(digits, digits + count, end);
    std::copy(File.begin(), File.end(), end);

    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    char line[512] = {};
    const ssize_t size = read(file, line, sizeof line - 1);
    close(file);
    const char* at = size > 0 ? std::strrchr(line, ')') : nullptr;
    for (int i = 0; i < FieldsBehindName && at != nullptr; ++i)
        at = std::strchr(at + 1, ' ');
    // Threads with a fixed share of time have priorities below zero.
    return at != nullptr && at[1] != '-' ? NumberIn(at + 1) : 0;
}

}  // namespace

void crashThreadsWatch()
{
    struct sigaction action = {};
    action.sa_sigaction = OnAsked;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(AskingSignal(), &action, nullptr);
}

bool crashThreadContext(uint32_t thread, crashContext& context)
{
    uint32_t number = 0;
    question* const asked = Claim(number);
    if (asked == nullptr)
        return false;
    asked->State = Word(number, stage::Asked);
    if (!Send(thread, *asked, number)) {
        asked->State = Word(number, stage::Free);
        return false;
    }
    if (!AwaitAnswer(*asked, number) && !GiveUp(*asked, number))
        return false;
    context = asked->Answer;
    asked->State = Word(number, stage::Free);
    return context.HasControl;
}

uint32_t crashReadThreads(crashSnapshot& snapshot)
{
    const int folder = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return static_cast<uint32_t>(errno);
    alignas(dirent64) char entries[2048];
    long size = 0;
    while ((size = syscall(SYS_getdents64, folder, entries, sizeof entries)) > 0) {
        for (long at = 0; at < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
            at += entry->d_reclen;
            const uint32_t id = NumberIn(entry->d_name);
            if (id != 0 && snapshot.ThreadCount < crashThreadsMost)
                snapshot.Threads[snapshot.ThreadCount++].Id = id;
        }
    }
    close(folder);
    for (unsigned i = 0; i < snapshot.ThreadCount; ++i)
        snapshot.Threads[i].Priority = PriorityOf(snapshot.Threads[i].Id);
    return 0;
}
