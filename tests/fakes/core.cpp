#include "tests/fakes/core.h"

#include "tests/fakes/fakes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>

namespace {

struct closureRow {
    std::string Function;
    unsigned Remaining;
    std::function<void()> Closure;
};

struct coreState {
    std::vector<std::string> Calls;
    std::vector<closureRow> Closures;
    std::map<std::string, std::deque<fakeFailure>> Failures;
};

// Never destroyed, for static objects may call the platform after the end of main.
coreState& state()
{
    static coreState& only = *new coreState;
    return only;
}

fakes::verdict judge(const std::string& function)
{
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Failures.find(function);
    if (found == state().Failures.end() || found->second.empty())
        return {};
    fakeFailure& failure = found->second.front();
    if (failure.Skip > 0) {
        --failure.Skip;
        return {};
    }
    const fakes::verdict result{true, failure.Status};
    if (--failure.Times == 0)
        found->second.pop_front();
    return result;
}

void runClosures(const std::string& function)
{
    for (const std::function<void()>& closure : fakes::takeClosures(function))
        closure();
}

void appendUtf8(std::string& text, char32_t code)
{
    const auto tail = [&](unsigned shift) { text += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

}  // namespace

namespace fakes {

std::mutex& stateMutex()
{
    static std::mutex& only = *new std::mutex;
    return only;
}

verdict enter(const std::string& function, const std::string& arguments)
{
    record(function, arguments);
    return ask(function);
}

verdict ask(const std::string& function)
{
    runClosures(function);
    return judge(function);
}

std::vector<std::function<void()>> takeClosures(const std::string& function)
{
    const std::lock_guard lock(stateMutex());
    std::vector<std::function<void()>> due;
    for (closureRow& row : state().Closures) {
        if (row.Function == function && --row.Remaining == 0)
            due.push_back(std::move(row.Closure));
    }
    std::erase_if(state().Closures, [](const closureRow& row) { return row.Remaining == 0; });
    return due;
}

void record(const std::string& function, const std::string& arguments)
{
    const std::lock_guard lock(stateMutex());
    state().Calls.push_back(arguments.empty() ? function : function + ' ' + arguments);
}

void misuse(const char* what)
{
    std::fprintf(stderr, "The platform is misused: %s\n", what);
    std::abort();
}

std::string narrow(std::u16string_view text)
{
    std::string result;
    for (size_t index = 0; index < text.size(); ++index) {
        const char32_t unit = text[index];
        const bool pair = unit >= 0xD800 && unit < 0xDC00 && index + 1 < text.size() &&
                          text[index + 1] >= 0xDC00 && text[index + 1] < 0xE000;
        if (pair)
            appendUtf8(result, 0x10000 + ((unit - 0xD800) << 10) + (text[++index] - 0xDC00u));
        else
            appendUtf8(result, unit >= 0xD800 && unit < 0xE000 ? U'?' : unit);
    }
    return result;
}

}  // namespace fakes

void fakeReset()
{
    // Closures may own objects whose destructors call the platform, so they go once the mutex is free.
    std::vector<closureRow> closures;
    const std::lock_guard lock(fakes::stateMutex());
    closures.swap(state().Closures);
    state().Calls.clear();
    state().Failures.clear();
    fakes::resetCrash();
    fakes::resetDebug();
    fakes::resetClock();
    fakes::resetHeap();
    fakes::resetFile();
    fakes::resetRegistry();
    fakes::resetLocale();
    fakes::resetProcess();
    fakes::resetComm();
    fakes::resetSocket();
    fakes::resetWindow();
    fakes::resetDraw();
}

std::vector<std::string> fakeCalls()
{
    const std::lock_guard lock(fakes::stateMutex());
    return state().Calls;
}

void fakeClearCalls()
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Calls.clear();
}

size_t fakeCallCount(const std::string& beginning)
{
    const std::lock_guard lock(fakes::stateMutex());
    const auto begins = [&](const std::string& call) { return call.starts_with(beginning); };
    return static_cast<size_t>(std::count_if(state().Calls.begin(), state().Calls.end(), begins));
}

void fakeOnCall(const std::string& function, unsigned nth, std::function<void()> closure)
{
    if (nth == 0)
        fakes::misuse("the first call is number 1");
    const std::lock_guard lock(fakes::stateMutex());
    state().Closures.push_back({function, nth, std::move(closure)});
}

void fakeFail(const std::string& function, const fakeFailure& failure)
{
    if (failure.Times == 0)
        return;
    const std::lock_guard lock(fakes::stateMutex());
    state().Failures[function].push_back(failure);
}
