// What goes over a connection of the fake platform, and waiting for it.
#include "platform/socket.h"

#include "tests/fakes/socketCall.h"

#include <algorithm>
#include <cstring>

namespace {

using fakes::end;
using fakes::network;
using fakes::socketCall;

constexpr int64_t NsPerMs = 1'000'000;

bool otherHasEnded(const end& here)
{
    const std::shared_ptr<end> other = here.Other.lock();
    return !other || other->Ended;
}

// How many of the bytes go out now.
size_t roomFor(const end& other, size_t count)
{
    size_t room = count;
    if (network().RoomIsLimited)
        room = static_cast<size_t>(std::min<uint64_t>(room, network().Room));
    if (!other.IsPeer)
        room = std::min(room, fakes::EndRoom - std::min(fakes::EndRoom, other.Unread.size()));
    return room;
}

size_t deliver(end& here, const char* bytes, size_t count)
{
    const std::shared_ptr<end> other = here.Other.lock();
    // Nobody is there any more, of which the first to write learns only afterwards.
    if (!other || other->Closed) {
        fakes::networkFail(here, fakes::CodeReset);
        return count;
    }
    const size_t taken = roomFor(*other, count);
    (other->IsPeer ? other->Received : other->Unread).append(bytes, taken);
    if (network().RoomIsLimited)
        network().Room -= taken;
    network().Changed.notify_all();
    return taken;
}

socketEvents eventsOf(const fakes::socketState& socket, bool wantWritable)
{
    socketEvents events;
    if (socket.Listens) {
        events.Readable = !socket.Waiting.empty();
        return events;
    }
    if (!socket.End) {
        events.HungUp = true;
        return events;
    }
    events.Readable = !socket.End->Unread.empty();
    events.HungUp =
        !events.Readable && (socket.End->Failure != fakes::CodeNone || otherHasEnded(*socket.End));
    events.Writable = wantWritable && fakes::networkHasRoom(*socket.End);
    return events;
}

bool hasEvent(const socketEvents& events)
{
    return events.Readable || events.Writable || events.HungUp;
}

// -1, 0 or 1, as socketPoll gives it.
int lookAround(const socketCall& call, bool wantWritable, socketEvents& events)
{
    if (call->Closed) {
        call.Fail(fakes::CodeNoSocket);
        return -1;
    }
    events = eventsOf(*call, wantWritable);
    return hasEvent(events) ? 1 : 0;
}

}  // namespace

int64_t socketSend(socketHandle handle, const void* data, size_t count)
{
    socketCall call(handle, "socketSend", std::to_string(count));
    if (!call)
        return -1;
    if (!call->End) {
        call.Fail(fakes::CodeNotConnected);
        return -1;
    }
    end& here = *call->End;
    if (!call.Await([&] { return fakes::networkHasRoom(here); }))
        return -1;
    if (here.Failure != fakes::CodeNone || here.Ended) {
        call.Fail(here.Failure != fakes::CodeNone ? here.Failure : fakes::CodeShutdown);
        return -1;
    }
    return static_cast<int64_t>(deliver(here, static_cast<const char*>(data), count));
}

int64_t socketReceive(socketHandle handle, void* buffer, size_t count)
{
    socketCall call(handle, "socketReceive", std::to_string(count));
    if (!call)
        return -1;
    if (!call->End) {
        call.Fail(fakes::CodeNotConnected);
        return -1;
    }
    end& here = *call->End;
    const auto isReady = [&] {
        return !here.Unread.empty() || here.Failure != fakes::CodeNone || otherHasEnded(here);
    };
    if (!call.Await(isReady))
        return -1;
    if (here.Failure != fakes::CodeNone) {
        call.Fail(here.Failure);
        return -1;
    }
    const size_t taken = std::min(count, here.Unread.size());
    std::memcpy(buffer, here.Unread.data(), taken);
    here.Unread.erase(0, taken);
    network().Changed.notify_all();
    return static_cast<int64_t>(taken);
}

bool socketAvailable(socketHandle handle, uint32_t& count)
{
    const socketCall call(handle, "socketAvailable", {});
    if (!call)
        return false;
    count = call->End ? static_cast<uint32_t>(call->End->Unread.size()) : 0;
    return true;
}

int socketPoll(socketHandle handle, bool wantWritable, uint32_t milliseconds, socketEvents& events)
{
    events = {};
    socketCall call(handle, "socketPoll", {}, true);
    if (!call)
        return -1;
    int seen = lookAround(call, wantWritable, events);
    if (seen != 0 || milliseconds == 0)
        return seen;
    const fakes::clockView clock = fakes::clockNow();
    const int64_t deadline = clock.Now + milliseconds * NsPerMs;
    call.LetOthersRun(clock.SleepMoves ? milliseconds : 0);
    seen = lookAround(call, wantWritable, events);
    while (seen == 0 && !clock.SleepMoves && fakes::clockNow().Now < deadline) {
        call.LetOthersRun(0);
        seen = lookAround(call, wantWritable, events);
    }
    return seen;
}
