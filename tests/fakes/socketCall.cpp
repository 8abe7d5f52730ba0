#include "tests/fakes/socketCall.h"

#include "tests/fakes/fakes.h"

#include <chrono>

namespace {

// A failure from before the reset counts no more.
struct failure {
    uint32_t Code = 0;
    unsigned Reset = 0;
};

thread_local failure Last;

std::string subject(socketHandle handle, const std::string& arguments)
{
    const std::lock_guard lock(fakes::stateMutex());
    const std::shared_ptr<fakes::socketState> socket = fakes::networkSocket(handle);
    const std::string name = socket ? '#' + std::to_string(socket->Number) : "closed";
    return arguments.empty() ? name : name + ' ' + arguments;
}

// The code with which the script lets this call fail; 0 for none.
uint32_t scriptedCode(const std::string& function)
{
    std::deque<fakes::failureRow>& rows = fakes::network().Failures[function];
    if (rows.empty())
        return fakes::CodeNone;
    fakes::failureRow& row = rows.front();
    if (row.Skip > 0) {
        --row.Skip;
        return fakes::CodeNone;
    }
    const uint32_t code = row.Code;
    if (--row.Times == 0)
        rows.pop_front();
    return code;
}

}  // namespace

namespace fakes {

socketCall::socketCall(const std::string& function, const std::string& arguments)
{
    const bool scripted = enter(function, arguments).Scripted;
    Lock = std::unique_lock(stateMutex());
    Judge(function, scripted);
}

socketCall::socketCall(socketHandle handle, const std::string& function, const std::string& arguments,
                       bool isQuestion)
{
    const bool scripted = (isQuestion ? ask(function) : enter(function, subject(handle, arguments))).Scripted;
    Lock = std::unique_lock(stateMutex());
    Socket = networkSocket(handle);
    if (!Socket)
        Good = Fail(CodeNoSocket);
    else
        Judge(function, scripted);
}

bool socketCall::Fail(uint32_t code) const
{
    Last = {code, network().Resets};
    return false;
}

bool socketCall::Wait()
{
    network().Changed.wait(Lock);
    return !Socket->Closed || Fail(CodeNoSocket);
}

void socketCall::LetOthersRun(uint32_t moveClockByMs)
{
    constexpr int64_t NsPerMs = 1'000'000;
    if (moveClockByMs != 0) {
        Lock.unlock();
        fakeClockMove(moveClockByMs * NsPerMs);
        Lock.lock();
    }
    // A loop that polls would otherwise take a whole processor from the thread that it waits for.
    network().Changed.wait_for(Lock, std::chrono::milliseconds(1));
}

void socketCall::Judge(const std::string& function, bool scripted)
{
    const uint32_t code = scriptedCode(function);
    if (code != CodeNone || scripted)
        Good = Fail(code != CodeNone ? code : fakeCode(socketFault::Other));
}

uint32_t socketLastFailure()
{
    const std::lock_guard lock(stateMutex());
    return Last.Reset == network().Resets ? Last.Code : CodeNone;
}

}  // namespace fakes
