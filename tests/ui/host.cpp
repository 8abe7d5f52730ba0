#include "tests/ui/host.h"

#include "platform/thread.h"

otherHost::otherHost(uint16_t port, std::string_view greeting)
    : Started(socketStart()), Listener(socketOpen())
{
    constexpr uint32_t Backlog = 5;
    socketAddress own{socketFamily::IPv4, port, {}, 0};
    if (!socketBind(Listener, own) || !socketListen(Listener, Backlog) || !socketLocal(Listener, own) ||
        !socketSetNonBlocking(Listener))
        return;
    Port_ = own.Port;
    Thread = std::jthread([this, greeting](const std::stop_token& stop) { Serve(stop, greeting); });
}

otherHost::~otherHost()
{
    if (Thread.joinable()) {
        Thread.request_stop();
        Thread.join();
    }
    socketClose(Listener);
    if (Started)
        socketEnd();
}

// A guest that ends its half is done with.
void otherHost::Serve(const std::stop_token& stop, std::string_view greeting) const
{
    constexpr uint32_t StepMs = 5;
    std::vector<socketHandle> guests;
    while (!stop.stop_requested()) {
        threadSleep(StepMs);
        socketAddress guest;
        const socketHandle accepted = socketAccept(Listener, guest);
        if (accepted != socketNone && socketSetNonBlocking(accepted)) {
            guests.push_back(accepted);
            if (!greeting.empty())
                socketSend(accepted, greeting.data(), greeting.size());
        }
        std::erase_if(guests, [](socketHandle each) {
            char bytes[256];
            const bool ended = socketReceive(each, bytes, sizeof bytes) == 0;
            if (ended)
                socketClose(each);
            return ended;
        });
    }
    for (const socketHandle each : guests)
        socketClose(each);
}

uint16_t freePort()
{
    return otherHost().Port();
}
