// The background writer of a locked file: its queue, and the thread that empties it.

#include "foundations/file/fileLocked.h"

#include "foundations/heap/mem.h"
#include "platform/crash.h"
#include "platform/thread.h"

#include <cstring>
#include <new>

struct fileLocked::Queued {
    uint64_t Offset;
    Queued* Next;
    uint64_t Length;
};

namespace {

// The header, with the bytes behind it rounded up to whole words.
constexpr uint64_t Overhead = 31;

}  // namespace

void fileLocked::StartWriter()
{
    State &= ~uint32_t{WriterRuns};
    Writer = std::thread([this] { WriterBody(); });
    while (!Has(WriterRuns))
        threadYield();
}

void fileLocked::WriterBody()
{
    const crashThreadStack stack;
    threadName("file writer");
    State &= ~uint32_t{StopRequested};
    State |= WriterRuns;
    for (;;) {
        // What is accepted after the stop was asked for is written too, so both are looked at again.
        const bool stop = Has(StopRequested);
        if (!Head()) {
            if (stop)
                return;
            Wake.Sleep();
        }
        while (Queued* const head = Head()) {
            WriteQueued(*head);
            Unlink(*head);
            memFree(head);
        }
    }
}

void fileLocked::WriteQueued(const Queued& entry)
{
    // After the disk refused, what is queued is dropped.
    if (!Has(ReadOnly))
        WriteAt(entry.Offset, &entry + 1, static_cast<uint32_t>(entry.Length), false);
}

fileLocked::Queued* fileLocked::Head()
{
    const thrSpinHold hold(QueueLock);
    return QueueFirst;
}

// Only now, with its bytes in the file, does an entry leave the queue: readers wait for an empty one.
void fileLocked::Unlink(const Queued& head)
{
    const thrSpinHold hold(QueueLock);
    QueueFirst = head.Next;
    if (!QueueFirst)
        QueueLast = nullptr;
}

void fileLocked::AwaitQueue()
{
    while (Head())
        threadYield();
}

uint64_t fileLocked::Enqueue(const void* data, uint32_t count)
{
    void* const block = memAlloc(count + Overhead, true);
    if (!block)
        return 0;
    Queued* const entry = ::new (block) Queued{WritePos, nullptr, count};
    std::memcpy(entry + 1, data, count);
    {
        const thrSpinHold hold(QueueLock);
        (QueueLast ? QueueLast->Next : QueueFirst) = entry;
        QueueLast = entry;
    }
    WritePos += count;
    RaiseSize(WritePos);
    Wake.Wake();
    return count;
}
