// The two threads of an open port, and the queue between its callers and the second of them.
#include "foundations/heap/mem.h"
#include "link/serialPort.h"
#include "platform/thread.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr uint32_t PollMs = 10;

// The head of a node, and what keeps its bytes from ending on the heap's own.
constexpr size_t NodeRoom = 31;
static_assert(sizeof(serialSendNode) <= NodeRoom);

uint8_t* bytesOf(serialSendNode* node)
{
    return reinterpret_cast<uint8_t*>(node) + sizeof(serialSendNode);
}

// What it takes of the queue's limit.
uint64_t costOf(const serialSendNode& node)
{
    return node.Size + NodeRoom;
}

}  // namespace

// While data flow it runs without sleeping; an idle port is looked at every 10 ms.
void serialPort::ReceiveLoop()
{
    std::vector<uint8_t> block;
    bool justRead = true;
    for (commHandle port = handle; port != commNone; port = handle) {
        if (!justRead)
            threadSleep(PollMs);
        justRead = ReceiveBlock(port, block);
        uint32_t status = 0;
        if (commModemStatus(port, status))
            modemStatus = status;
    }
}

bool serialPort::ReceiveBlock(commHandle port, std::vector<uint8_t>& block)
{
    commLevel level;
    if (!commPending(port, level) || level.Received == 0)
        return false;
    block.resize(level.Received);
    uint32_t count = 0;
    if (!commRead(port, block.data(), level.Received, count))
        return false;
    if (count != 0 && onData) {
        block.resize(count);
        onData(block);
    }
    return true;
}

void serialPort::Write(const uint8_t* data, size_t size)
{
    if (!IsOpen() || size == 0)
        return;
    void* const memory = memAlloc(size + NodeRoom, true);
    if (memory == nullptr)
        return;
    auto* const node = new (memory) serialSendNode{nullptr, size, size};
    std::memcpy(bytesOf(node), data, size);
    {
        // Asked again under the lock: what comes behind the closing must not wait for the next opening.
        const thrSpinHold hold(queueLock);
        const uint64_t queued = queuedBytes + costOf(*node);
        if (!IsOpen() || (queuedBytes != 0 && queued > QueueLimit)) {
            memFree(memory);
            return;
        }
        queuedBytes = queued;
        std::atomic<serialSendNode*>* tail = &sendQueue;
        while (serialSendNode* const next = *tail)
            tail = &next->Next;
        *tail = node;
    }
    queueWake.Wake();
}

// While data wait and CTS is off this loop spins; only the receive thread brings news of CTS.
void serialPort::WriteLoop()
{
    bool heldBack = false;
    while (IsOpen()) {
        WaitForData(heldBack);
        heldBack = IsHeldBack();
        if (!heldBack)
            SendHead();
    }
    DropQueue();
}

void serialPort::WaitForData(bool heldBack)
{
    if (!heldBack) {
        if (sendQueue == nullptr)
            queueWake.Sleep();
        return;
    }
    while (IsOpen() && sendQueue == nullptr)
        threadSleep(PollMs);
}

bool serialPort::IsHeldBack() const
{
    return handshake == HandshakeRTS && (modemStatus & commCTS) == 0;
}

// A call that fails ends the node and loses the rest of it.
void serialPort::SendHead()
{
    const commHandle port = handle;
    serialSendNode* const node = sendQueue;
    if (port == commNone || node == nullptr)
        return;
    uint64_t sent = 0;
    while (sent < node->Size) {
        const auto piece = static_cast<uint32_t>(std::min(writeChunk, node->Size - sent));
        uint32_t done = 0;
        if (!commWrite(port, bytesOf(node) + sent, piece, done) || done == 0)
            break;
        sent += done;
    }
    node->Remaining = sent;
    memFree(Unlink());
}

serialSendNode* serialPort::Unlink()
{
    const thrSpinHold hold(queueLock);
    serialSendNode* const node = sendQueue;
    if (node == nullptr)
        return nullptr;
    sendQueue = node->Next.load();
    queuedBytes -= costOf(*node);
    return node;
}

void serialPort::DropQueue()
{
    while (serialSendNode* const node = Unlink())
        memFree(node);
}
