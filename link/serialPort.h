// One serial port: its line settings, a thread that receives, a thread that sends, and a queue between.
//
// It moves bytes and knows no protocol. A port is closed or open; settings may be made in both states and
// wait for Open in the first. Errors on the line are told to nobody: a read is tried again, a write that
// fails loses its bytes, and a device that has gone looks like silence.
//
// All operations may be called from any thread but the port's own two; Write from every thread.
#pragma once

#include "foundations/thread/thrGate.h"
#include "foundations/thread/thrSpin.h"
#include "link/linkThread.h"
#include "platform/comm.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

// Bytes that wait to be sent; they stand right behind it in memory.
struct serialSendNode {
    std::atomic<serialSendNode*> Next;
    uint64_t Size;
    uint64_t Remaining;  // the count that was sent, once it was
};

class serialPort
{
public:
    enum Handshake : uint8_t {
        HandshakeNone,  // only the plain levels of DTR and RTS
        HandshakeRTS,   // RTS/CTS
        HandshakeDTR,   // DTR/DSR
        HandshakeX,     // XON/XOFF
        HandshakeKeep,  // whatever the driver has
    };

    serialPort() = default;

    // Closes the port first.
    ~serialPort();
    serialPort(const serialPort&) = delete;
    serialPort& operator=(const serialPort&) = delete;

    // Opens the port of that name with the settings as they stand; an open port is closed first. False when
    // the name is empty or the port cannot be opened; it is then closed.
    bool Open();

    // Ends both threads within some tens of milliseconds. What is still queued is lost.
    void Close();

    bool IsOpen() const { return handle.load() != commNone; }

    // What waits for the line may come to this many bytes, the queue's own included.
    static constexpr uint64_t QueueLimit = uint64_t{256} * 1024;

    // Queues a copy of the bytes. Nothing when the port is closed, for no bytes, when there is no memory for
    // them, and behind so much that it would pass QueueLimit: whoever says more than a line can carry loses
    // what is too much. Bytes that find nothing waiting are always taken. Never waits for the line.
    void Write(const uint8_t* data, size_t size);

    // Whether everything that was queued has left. With `wait` a call that finds anything pending at its
    // first look does not return.
    bool WaitSent(bool wait);

    // False, with the old rate kept, when an open port refuses the new one.
    bool SetBaudRate(uint32_t rate);

    void SetHandshake(uint8_t mode);
    void SetParity(uint8_t value);              // 0 none, 1 odd, 2 even, 3 mark, 4 space
    void SetStopBits(uint8_t index);            // 0 one, 1 two
    void SetDataBits(uint8_t count);            // 5 to 8
    void SetPortName(const std::string& name);  // the short one; from the next Open on
    std::string PortName() const;

    uint32_t BaudRate() const;

    // Runs on the receive thread with each block received; it may take the bytes, and may call Write. Set it
    // while the port is closed. May be empty.
    std::function<void(std::vector<uint8_t>& block)> onData;

    // From the next Open on. Set them while the port is closed.
    uint8_t dsrSensitivity = 0;  // its lowest bit: bytes that arrive while DSR is off are dropped
    uint8_t dtrOn = 0;           // above 0: DTR is on
    uint8_t rtsOn = 0;           // above 0: RTS is on

private:
    bool OpenLocked();
    void CloseLocked();
    void PrepareLine(commHandle port);
    void ApplyHandshake();
    void ApplyParity();
    void ApplyStopBits();
    void ApplyDataBits();
    void Apply(void (serialPort::*setting)());

    void ReceiveLoop();
    bool ReceiveBlock(commHandle port, std::vector<uint8_t>& block);
    void WriteLoop();
    bool IsHeldBack() const;
    void WaitForData(bool heldBack);
    void SendHead();
    void DropQueue();
    serialSendNode* Unlink();

    // Guards everything that Open, Close and the setters touch.
    mutable std::mutex StateLock;

    commControl dcb;                           // the settings as they were last handed over
    std::atomic<commHandle> handle{commNone};  // also what tells both threads to end
    linkThread receiveThread;
    linkThread writeThread;
    uint64_t writeChunk = 0;  // the most bytes in one commWrite
    std::atomic<serialSendNode*> sendQueue{nullptr};
    thrSpin queueLock;         // guards the links of sendQueue, and the count
    uint64_t queuedBytes = 0;  // of all that is linked
    thrGate queueWake;
    std::string portName;
    uint32_t baudRate = 9600;
    std::atomic<uint32_t> modemStatus{0};
    std::atomic<uint8_t> handshake{HandshakeKeep};
    uint8_t parity = 0;
    uint8_t stopBits = 0;
    uint8_t dataBits = 8;
};
