#include "platform/debug.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <utility>

namespace {

// What no program can own: the page at null, and what the address width of today's machines leaves out.
constexpr uintptr_t FirstAddress = 0x1000;
constexpr uintptr_t EndOfAddresses = static_cast<uintptr_t>(0x7FFFFFFFF000);

struct memoryRange {
    uintptr_t First;
    size_t Bytes;
};

struct debugState {
    std::string Text;
    bool Attached = false;
    bool BreakReturns = false;
    std::vector<memoryRange> Unreadable;
};

debugState& state()
{
    static debugState& only = *new debugState;
    return only;
}

bool readable(uintptr_t first, size_t bytes)
{
    if (first < FirstAddress || first >= EndOfAddresses || bytes > EndOfAddresses - first)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    for (const memoryRange& range : state().Unreadable) {
        if (first < range.First + range.Bytes && range.First < first + bytes)
            return false;
    }
    return true;
}

// Reads what the sanitizers would not let pass: the edges of a region, memory that another thread changes.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread, gnu::noinline]] void
copyBytes(const void* address, void* target, size_t bytes)
{
    const volatile unsigned char* const from = static_cast<const volatile unsigned char*>(address);
    unsigned char* const to = static_cast<unsigned char*>(target);
    for (size_t index = 0; index < bytes; ++index)
        to[index] = from[index];
}

}  // namespace

void fakes::resetDebug()
{
    state() = {};
}

void debugWrite(std::string_view text)
{
    fakes::enter("debugWrite", std::string(text));
    const std::lock_guard lock(fakes::stateMutex());
    state().Text += text;
}

bool debugAttached()
{
    if (fakes::ask("debugAttached").Scripted)
        return false;
    const std::lock_guard lock(fakes::stateMutex());
    return state().Attached;
}

void debugBreak()
{
    fakes::enter("debugBreak");
    bool returns = false;
    {
        const std::lock_guard lock(fakes::stateMutex());
        returns = state().BreakReturns;
    }
    if (!returns)
        throw fakeBreak{};
}

bool debugRead(const void* address, void* target, size_t bytes)
{
    if (fakes::ask("debugRead").Scripted || !readable(reinterpret_cast<uintptr_t>(address), bytes))
        return false;
    copyBytes(address, target, bytes);
    return true;
}

void fakeBreakReturns(bool returns)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().BreakReturns = returns;
}

std::string fakeDebugText()
{
    const std::lock_guard lock(fakes::stateMutex());
    return state().Text;
}

void fakeDebugAttached(bool attached)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Attached = attached;
}

void fakeUnreadable(const void* address, size_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Unreadable.push_back({reinterpret_cast<uintptr_t>(address), bytes});
}
