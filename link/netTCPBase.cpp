#include "link/netTCPBase.h"

#include "foundations/text/utfError.h"
#include "platform/thread.h"

namespace {

constexpr uint32_t PollMs = 10;

}  // namespace

netTCPBase::netTCPBase()
{
    if (socketStart())
        Set(Started);
}

netTCPBase::~netTCPBase()
{
    Thread.Join();
    if (Is(Started))
        socketEnd();
}

void netTCPBase::CloseSocket()
{
    const socketHandle socket = Socket.exchange(socketNone);
    if (socket != socketNone)
        socketClose(socket);
}

void netTCPBase::Begin(const char* name, std::function<void()> body)
{
    Clear(ThreadBegun | ThreadEnded);
    Thread.Start(name, std::move(body));
    while (!Is(ThreadBegun))
        threadSleep(PollMs);
}

void netTCPBase::EndThread(const std::function<void()>& wake)
{
    while (IsAlive()) {
        CloseSocket();
        wake();
        if (IsAlive())
            threadSleep(PollMs);
    }
    Thread.Join();
}

void netTCPBase::TellError(const char* prefix) const
{
    const uint32_t code = socketError();
    if (OnError)
        OnError(prefix + utfErrorText(code));
}
