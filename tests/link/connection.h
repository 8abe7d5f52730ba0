// A connection under test and what it told.
#pragma once

#include "link/netTCPCli.h"
#include "tests/link/runningClock.h"

#include <mutex>
#include <string>
#include <vector>

constexpr uint16_t peerPort = 4003;

inline socketAddress loopback(uint16_t port)
{
    socketAddress address;
    address.Port = port;
    const uint8_t host[] = {127, 0, 0, 1};
    std::copy(std::begin(host), std::end(host), address.Host);
    return address;
}

// Writes down what a connection or a server tells, from whatever thread.
class witness
{
public:
    template <class Link>
    void Watch(Link& link)
    {
        link.OnEvent = [this](const uint32_t& event) { Note(event); };
        link.OnError = [this](const std::string& text) { NoteError(text); };
    }

    void Note(uint32_t event)
    {
        const std::lock_guard lock(Mutex);
        Seen.push_back(event);
    }

    void NoteError(const std::string& text)
    {
        const std::lock_guard lock(Mutex);
        Texts.push_back(text);
    }

    std::vector<uint32_t> Events() const
    {
        const std::lock_guard lock(Mutex);
        return Seen;
    }

    std::vector<std::string> Errors() const
    {
        const std::lock_guard lock(Mutex);
        return Texts;
    }

    size_t Count(uint32_t event) const
    {
        const std::lock_guard lock(Mutex);
        return static_cast<size_t>(std::count(Seen.begin(), Seen.end(), event));
    }

private:
    mutable std::mutex Mutex;
    std::vector<uint32_t> Seen;
    std::vector<std::string> Texts;
};

inline void sendText(netTCPCli& client, const std::string& text)
{
    client.Send(reinterpret_cast<const uint8_t*>(text.data()), text.size());
}
