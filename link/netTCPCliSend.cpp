// What a connection sends: at once where the system takes it, else through a queue that its thread empties.
#include "link/netTCPCli.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

// Its own bytes stand right behind it in memory.
struct netSendNode {
    netSendNode* Next;
    const uint8_t* External;  // the bytes, if they are somebody else's
    uint32_t Left;
    uint32_t Offset;  // already sent

    const uint8_t* Bytes() const
    {
        return External != nullptr ? External : reinterpret_cast<const uint8_t*>(this + 1);
    }
};

namespace {

netSendNode* makeNode(const uint8_t* data, uint32_t size, bool noCopy)
{
    void* const memory = ::operator new(sizeof(netSendNode) + (noCopy ? 0 : size));
    auto* const node = new (memory) netSendNode{nullptr, noCopy ? data : nullptr, size, 0};
    if (!noCopy)
        std::memcpy(node + 1, data, size);
    return node;
}

void freeNode(netSendNode* node)
{
    ::operator delete(node);
}

}  // namespace

void netTCPCli::Send(const uint8_t* data, size_t size, bool noCopy)
{
    if (!Is(Connected | Accepted) || Is(Finished))
        return;
    const thrSpinHold hold(SendLock);
    SendPiece(data, size, noCopy);
}

void netTCPCli::SendTwo(const uint8_t* dataA, size_t sizeA, const uint8_t* dataB, size_t sizeB, bool noCopyA,
                        bool noCopyB)
{
    if (!Is(Connected | Accepted) || Is(Finished))
        return;
    const thrSpinHold hold(SendLock);
    SendPiece(dataA, sizeA, noCopyA);
    SendPiece(dataB, sizeB, noCopyB);
}

// With SendLock held, as all below it but for the part of the thread.
void netTCPCli::SendPiece(const uint8_t* data, size_t size, bool noCopy)
{
    constexpr size_t most = std::numeric_limits<uint32_t>::max();
    for (size_t done = 0; done < size;) {
        const auto piece = static_cast<uint32_t>(std::min(most, size - done));
        SendLocked(data + done, piece, noCopy);
        done += piece;
    }
}

// Nothing overtakes what is queued.
void netTCPCli::SendLocked(const uint8_t* data, uint32_t size, bool noCopy)
{
    uint32_t sent = 0;
    if (SendQueue == nullptr && !SendNow(data, size, sent))
        return;
    TxBytes += sent;
    if (sent < size)
        Queue(data + sent, size - sent, noCopy);
}

// False when the piece is lost.
bool netTCPCli::SendNow(const uint8_t* data, uint32_t size, uint32_t& sent)
{
    const socketHandle socket = Socket;
    if (socket == socketNone)
        return false;
    const int64_t count = socketSend(socket, data, size);
    if (count >= 0) {
        sent = static_cast<uint32_t>(count);
        return true;
    }
    switch (socketFaultOf(socketError())) {
    case socketFault::WouldBlock:
        return true;
    case socketFault::Shutdown:
        return false;
    default:
        TellError("Error while sending data - ");
        Disconnect(false);
        return false;
    }
}

// A peer that does not read must not fill this machine's memory.
void netTCPCli::Queue(const uint8_t* data, uint32_t size, bool noCopy)
{
    if (uint64_t{QueuedBytes} + size > QueueLimit) {
        Abandon();
        return;
    }
    netSendNode* const node = makeNode(data, size, noCopy);
    QueuedBytes += size;
    if (SendQueue == nullptr)
        SendQueue = node;
    else
        SendTail->Next = node;
    SendTail = node;
}

// On the thread of the connection: sends from the head of the queue. False when the connection is over.
bool netTCPCli::SendQueued(socketHandle socket)
{
    netSendNode* const node = SendQueue;
    if (node == nullptr)
        return true;
    const int64_t count = socketSend(socket, node->Bytes() + node->Offset, node->Left);
    if (count < 0) {
        const socketFault fault = socketFaultOf(socketError());
        if (fault != socketFault::WouldBlock && fault != socketFault::Shutdown)
            TellError("Error while sending more data - ");
        return fault == socketFault::WouldBlock;
    }
    const auto sent = static_cast<uint32_t>(count);
    node->Left -= sent;
    node->Offset += sent;
    QueuedBytes -= sent;
    TxBytes += sent;
    if (node->Left == 0)
        freeNode(Unlink());
    return true;
}

netSendNode* netTCPCli::Unlink()
{
    const thrSpinHold hold(SendLock);
    netSendNode* const node = SendQueue;
    if (node != nullptr)
        SendQueue = node->Next;
    return node;
}

void netTCPCli::DropQueue()
{
    while (netSendNode* const node = Unlink())
        freeNode(node);
    QueuedBytes = 0;
}
