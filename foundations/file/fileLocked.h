// A file with its own read and write positions, held under an exclusive lock for the life of the object if so
// asked, with an optional thread that writes in the background.
#pragma once

#include "foundations/thread/thrGate.h"
#include "foundations/thread/thrSpin.h"
#include "platform/file.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>

class fileLocked
{
public:
    // Bits of the mode given to the constructor and of State. A mode's bits stay in State.
    enum : uint32_t {
        StopRequested = 0x001,  // state: the writer shall end
        WriterRuns = 0x002,     // state
        IsOpen = 0x004,         // state
        Create = 0x008,         // make the file and its folders if missing
        Unbuffered = 0x010,     // past the system's cache, with the multiples that fileAccess asks for
        DiskRefused = 0x020,    // state: the disk refused a write
        WriteFailed = 0x040,    // state
        Exclusive = 0x080,      // no one else has the file, and its start is locked
        Wait = 0x100,           // with Exclusive: wait for the file and for the lock, without limit
        Existed = 0x200,        // state: the file was there already
        Append = 0x400,         // WritePos starts at Size
        ReadOnly = 0x800,       // no writes, or none any more
        Background = 0x1000,    // a thread of its own does the writing
    };

    // The two modes of the settings.
    static constexpr uint32_t ModeRead = ReadOnly | Exclusive | Wait;
    static constexpr uint32_t ModeWrite = Create | Exclusive | Wait;

    enum class Origin : uint8_t {
        Start,
        WritePosition,
        End,
    };

    // Opens the file. Whether that worked is told by IsOpen in State.
    fileLocked(const std::u16string& path, uint32_t mode);

    // Writes what is still queued, then ends the lock and the handle.
    virtual ~fileLocked();

    fileLocked(const fileLocked&) = delete;
    fileLocked& operator=(const fileLocked&) = delete;

    // Reads from ReadPos on and moves it. Sees every write accepted before. Gives the bytes read: 0 if not
    // open, at the end, and on failure. Any thread.
    uint64_t Read(void* buffer, uint64_t count);

    // Writes at WritePos and moves it, or queues that for the background writer. Gives the bytes accepted.
    // One thread at a time, as for Seek and SetEnd.
    uint64_t Write(const void* data, uint64_t count);
    uint64_t WriteString(const std::string& text);

    // Writes now. `atWritePosition` tells that a full write moves WritePos along. Gives the bytes written.
    uint64_t WriteAt(uint64_t offset, const void* data, uint32_t count, bool atWritePosition);

    // Moves WritePos to `offset` from the origin, but not before 0 nor behind Size. False if not open.
    bool Seek(int64_t offset, Origin origin);

    // Ends the file at WritePos, once queued writes are done. False if not open or the system refuses.
    bool SetEnd();

    // Called after a failed write on the thread that made it: the caller's or the background writer's. Assign
    // it before the first write.
    std::function<void()> OnError;

    std::atomic<uint32_t> State{0};
    std::atomic<uint64_t> Size{0};      // bytes in the file as far as this object knows
    std::atomic<uint64_t> ReadPos{0};   // next read offset
    std::atomic<uint64_t> WritePos{0};  // next write offset

private:
    // One queued write; its bytes follow the header in the same block of the checked heap.
    struct Queued;

    void Open();
    fileStatus OpenExisting(const fileAccess& access);
    fileStatus MakeFile(const fileAccess& access);
    void MakeFolders() const;
    void StartWriter();
    void WriterBody();
    void WriteQueued(const Queued& entry);
    Queued* Head();
    void Unlink(const Queued& head);
    void AwaitQueue();
    uint32_t ReadChunk(void* buffer, uint32_t count);
    uint64_t WriteChunk(const void* data, uint32_t count);
    uint64_t Enqueue(const void* data, uint32_t count);
    void WriteDone(fileStatus status, bool full);
    void RaiseSize(uint64_t end);
    bool Has(uint32_t bits) const { return (State & bits) == bits; }

    Queued* QueueLast = nullptr;
    Queued* QueueFirst = nullptr;
    std::thread Writer;
    fileHandle Handle = fileNone;
    thrSpin ReadLock;
    thrSpin IoLock;
    thrGate Wake;
    thrSpin QueueLock;
    std::u16string Path;
};
