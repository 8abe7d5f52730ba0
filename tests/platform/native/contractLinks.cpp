#include "tests/platform/contractLinks.h"

void contractHoldTime()
{
    // It passes by itself.
}

// Somebody who listens, takes no connection, and has as many waiting as he wants: the system then leaves a
// further one without an answer.
struct contractSilentHost::parts {
    socketHandle Listener = socketNone;
    socketHandle Waiting = socketNone;
};

contractSilentHost::contractSilentHost() : Parts(std::make_unique<parts>())
{
    Parts->Listener = socketOpen();
    Parts->Waiting = socketOpen();
    EXPECT_TRUE(socketBind(Parts->Listener, {socketFamily::IPv4, 0, {127, 0, 0, 1}, 0}));
    EXPECT_TRUE(socketListen(Parts->Listener, 0));
    EXPECT_TRUE(socketLocal(Parts->Listener, Address));
    EXPECT_TRUE(socketConnect(Parts->Waiting, Address));
}

contractSilentHost::~contractSilentHost()
{
    socketClose(Parts->Waiting);
    socketClose(Parts->Listener);
}
