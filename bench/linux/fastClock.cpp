// A clock that runs faster, for a program that is told nothing of it: preloaded into the program, it stands
// before the calls of the system that tell the time or wait until a time. SKY_CLOCK_SPEED says how many
// seconds pass for the program in one of the machine's. With SKY_CLOCK_SPARES_MAIN the main thread is left
// alone.
//
// It covers what the platform of this program uses. Processor times stay as they are.
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace {

constexpr int64_t nsPerSecond = 1'000'000'000;
constexpr int64_t nsPerMs = 1'000'000;

template <class Function>
Function* realOf(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int64_t nsOf(const timespec& time)
{
    return time.tv_sec * nsPerSecond + time.tv_nsec;
}

timespec timeOf(int64_t ns)
{
    return {ns / nsPerSecond, ns % nsPerSecond};
}

int realClock(clockid_t clock, timespec* now)
{
    static const auto real = realOf<decltype(clock_gettime)>("clock_gettime");
    return real(clock, now);
}

bool isSpared()
{
    static const bool wanted = std::getenv("SKY_CLOCK_SPARES_MAIN") != nullptr;
    static thread_local const bool isMain = gettid() == getpid();
    return wanted && isMain;
}

double speed()
{
    static const char* const text = std::getenv("SKY_CLOCK_SPEED");
    static const double value = text == nullptr ? 1 : std::strtod(text, nullptr);
    return isSpared() ? 1 : value;
}

bool isFast(clockid_t clock)
{
    return clock == CLOCK_REALTIME || clock == CLOCK_MONOTONIC || clock == CLOCK_REALTIME_COARSE ||
           clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_BOOTTIME;
}

// When the program began, by each of its two clocks.
int64_t beginning(clockid_t clock)
{
    const auto nowOf = [](clockid_t of) {
        timespec now{};
        realClock(of, &now);
        return nsOf(now);
    };
    static const int64_t steady = nowOf(CLOCK_MONOTONIC);
    static const int64_t calendar = nowOf(CLOCK_REALTIME);
    const bool isCalendar = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE;
    return isCalendar ? calendar : steady;
}

int64_t fastOf(clockid_t clock, int64_t real)
{
    const int64_t began = beginning(clock);
    return began + static_cast<int64_t>(static_cast<double>(real - began) * speed());
}

timespec realDeadline(clockid_t clock, const timespec& deadline)
{
    const int64_t began = beginning(clock);
    return timeOf(began + static_cast<int64_t>(static_cast<double>(nsOf(deadline) - began) / speed()));
}

timespec realSpan(const timespec& span)
{
    return timeOf(static_cast<int64_t>(static_cast<double>(nsOf(span)) / speed()));
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now)
{
    const int result = realClock(clock, now);
    if (result == 0 && isFast(clock))
        *now = timeOf(fastOf(clock, nsOf(*now)));
    return result;
}

time_t time(time_t* now)
{
    timespec exact{};
    clock_gettime(CLOCK_REALTIME, &exact);
    if (now != nullptr)
        *now = exact.tv_sec;
    return exact.tv_sec;
}

int nanosleep(const timespec* span, timespec* left)
{
    static const auto real = realOf<decltype(nanosleep)>("nanosleep");
    const timespec shorter = realSpan(*span);
    const int result = real(&shorter, left);
    // What is left is told in the program's time, or a sleep that is taken up again would be too short.
    if (result != 0 && left != nullptr)
        *left = timeOf(static_cast<int64_t>(static_cast<double>(nsOf(*left)) * speed()));
    return result;
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* span, timespec* left)
{
    static const auto real = realOf<decltype(clock_nanosleep)>("clock_nanosleep");
    if (!isFast(clock))
        return real(clock, flags, span, left);
    if ((flags & TIMER_ABSTIME) == 0)
        return nanosleep(span, left) == 0 ? 0 : errno;
    const timespec deadline = realDeadline(clock, *span);
    return real(clock, flags, &deadline, left);
}

int poll(pollfd* files, nfds_t count, int milliseconds)
{
    // Finer than whole milliseconds, or each short wait would end at once.
    static const auto real = realOf<decltype(ppoll)>("ppoll");
    if (milliseconds < 0)
        return real(files, count, nullptr, nullptr);
    const timespec span = realSpan(timeOf(milliseconds * nsPerMs));
    return real(files, count, &span, nullptr);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline)
{
    static const auto real = realOf<decltype(pthread_cond_timedwait)>("pthread_cond_timedwait");
    const timespec sooner = realDeadline(CLOCK_REALTIME, *deadline);
    return real(condition, mutex, &sooner);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                           const timespec* deadline)
{
    static const auto real = realOf<decltype(pthread_cond_clockwait)>("pthread_cond_clockwait");
    const timespec sooner = realDeadline(clock, *deadline);
    return real(condition, mutex, clock, &sooner);
}

}  // extern "C"
