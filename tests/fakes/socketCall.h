// How each function on sockets of the fake platform begins and fails.
#pragma once

#include "tests/fakes/core.h"
#include "tests/fakes/network.h"

namespace fakes {

// One call: the script was asked, the mutex is held while this lives. False when the call has failed already,
// for its script or its handle; the failure is noted.
class socketCall
{
public:
    // A call of no socket.
    socketCall(const std::string& function, const std::string& arguments);

    // A call on a socket. One that is a question is not recorded.
    socketCall(socketHandle handle, const std::string& function, const std::string& arguments,
               bool isQuestion = false);

    explicit operator bool() const { return Good; }
    socketState* operator->() const { return Socket.get(); }
    socketState& operator*() const { return *Socket; }

    // Notes why the call fails; false, to be handed on.
    bool Fail(uint32_t code) const;

    // Waits until something has changed on the network; false, with the failure noted, when the socket was
    // closed.
    bool Wait();

    // Moves the clock, and gives the mutex back until others have changed something or a moment is over.
    void LetOthersRun(uint32_t moveClockByMs);

    // Waits as a blocking socket does until `ready` gives true; false, with the failure noted, on one that
    // does not block or is closed.
    template <typename question>
    bool Await(const question& ready)
    {
        while (!ready()) {
            if (!Socket->Blocks)
                return Fail(CodeWouldBlock);
            if (!Wait())
                return false;
        }
        return true;
    }

private:
    void Judge(const std::string& function, bool scripted);

    std::unique_lock<std::mutex> Lock;
    std::shared_ptr<socketState> Socket;
    bool Good = true;
};

// The calling thread's last failure.
uint32_t socketLastFailure();

}  // namespace fakes
