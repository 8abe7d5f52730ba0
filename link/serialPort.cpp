#include "link/serialPort.h"

#include "platform/thread.h"

namespace {

// Every event of the line but the one that the last byte has been sent.
constexpr uint32_t EventMask = 0x1FB;

// For drivers that set no limit of their own.
constexpr uint32_t QueueSize = 4096;

constexpr uint32_t SentPollMs = 50;

// What a setting of flow control adds to the plain levels of DTR and RTS, which it takes the place of.
struct flowRow {
    uint32_t Add;
    uint32_t Remove;
};
constexpr flowRow FlowRows[] = {
    {0, 0},
    {commFlag::OutCTS | commFlag::RTSHandshake, commFlag::RTSEnable},
    {commFlag::OutDSR | commFlag::DTRHandshake, commFlag::DTREnable},
    {commFlag::OutX | commFlag::InX, 0},
};

constexpr uint8_t ParityLast = 4;
constexpr uint8_t StopBitsOfIndex[] = {0, 2};

uint32_t withFlag(uint32_t flags, uint32_t flag, bool on)
{
    return on ? flags | flag : flags & ~flag;
}

// Whether the value is a new one.
template <class Field, class Value>
bool stored(Field& field, Value value)
{
    if (field == value)
        return false;
    field = value;
    return true;
}

}  // namespace

serialPort::~serialPort()
{
    Close();
}

bool serialPort::Open()
{
    const std::lock_guard lock(StateLock);
    return OpenLocked();
}

void serialPort::Close()
{
    const std::lock_guard lock(StateLock);
    CloseLocked();
}

bool serialPort::OpenLocked()
{
    CloseLocked();
    if (portName.empty())
        return false;
    const commHandle port = commOpen(portName);
    if (port == commNone)
        return false;
    PrepareLine(port);
    handle = port;
    receiveThread.Start("serial receive", [this] { ReceiveLoop(); });
    writeThread.Start("serial write", [this] { WriteLoop(); });
    return true;
}

void serialPort::CloseLocked()
{
    const commHandle port = handle.exchange(commNone);
    if (port == commNone)
        return;
    commClose(port);
    queueWake.Wake();
    receiveThread.Join();
    writeThread.Join();
}

// Starts from the driver's default and not from what the last user left. A setting that fails is left as it
// is.
void serialPort::PrepareLine(commHandle port)
{
    commControl fromDriver;
    if (commDefault(port, fromDriver))
        commSetControl(port, fromDriver);
    commQueue queues;
    commQueueLimits(port, queues);
    if (queues.Receive == 0)
        queues.Receive = QueueSize;
    if (queues.Transmit == 0)
        queues.Transmit = QueueSize;
    commSetQueues(port, queues);
    writeChunk = queues.Transmit;

    commGetControl(port, dcb);
    dcb.Flags = withFlag(dcb.Flags, commFlag::DSRSensitivity, (dsrSensitivity & 1) != 0);
    dcb.BaudRate = baudRate;
    ApplyDataBits();
    ApplyHandshake();
    ApplyParity();
    ApplyStopBits();
    commSetControl(port, dcb);
    commSetEvents(port, EventMask);
}

void serialPort::ApplyHandshake()
{
    if (handshake == HandshakeKeep)
        return;
    uint32_t flags = dcb.Flags & ~commFlag::FlowControl;
    flags = withFlag(flags, commFlag::RTSEnable, rtsOn > 0);
    flags = withFlag(flags, commFlag::DTREnable, dtrOn > 0);
    if (handshake < std::size(FlowRows))
        flags = (flags & ~FlowRows[handshake].Remove) | FlowRows[handshake].Add;
    dcb.Flags = flags;
}

void serialPort::ApplyParity()
{
    dcb.Parity = parity <= ParityLast ? parity : uint8_t{0};
    dcb.Flags = withFlag(dcb.Flags, commFlag::Parity, parity > 0);
}

void serialPort::ApplyStopBits()
{
    dcb.StopBits = StopBitsOfIndex[stopBits < std::size(StopBitsOfIndex) ? stopBits : 0];
}

void serialPort::ApplyDataBits()
{
    dcb.DataBits = dataBits;
}

bool serialPort::SetBaudRate(uint32_t rate)
{
    const std::lock_guard lock(StateLock);
    if (rate == baudRate)
        return true;
    const uint32_t former = baudRate;
    baudRate = rate;
    const commHandle port = handle;
    if (port == commNone)
        return true;
    dcb.BaudRate = rate;
    if (commSetControl(port, dcb))
        return true;
    baudRate = former;
    return false;
}

void serialPort::SetHandshake(uint8_t mode)
{
    const std::lock_guard lock(StateLock);
    if (stored(handshake, mode))
        Apply(&serialPort::ApplyHandshake);
}

void serialPort::SetParity(uint8_t value)
{
    const std::lock_guard lock(StateLock);
    if (stored(parity, value))
        Apply(&serialPort::ApplyParity);
}

void serialPort::SetStopBits(uint8_t index)
{
    const std::lock_guard lock(StateLock);
    if (stored(stopBits, index))
        Apply(&serialPort::ApplyStopBits);
}

void serialPort::SetDataBits(uint8_t count)
{
    const std::lock_guard lock(StateLock);
    if (stored(dataBits, count))
        Apply(&serialPort::ApplyDataBits);
}

void serialPort::Apply(void (serialPort::*setting)())
{
    const commHandle port = handle;
    if (port == commNone)
        return;
    (this->*setting)();
    commSetControl(port, dcb);
}

void serialPort::SetPortName(const std::string& name)
{
    const std::lock_guard lock(StateLock);
    portName = name;
}

std::string serialPort::PortName() const
{
    const std::lock_guard lock(StateLock);
    return portName;
}

uint32_t serialPort::BaudRate() const
{
    const std::lock_guard lock(StateLock);
    return baudRate;
}

// The verdict never turns good again within one call.
bool serialPort::WaitSent(bool wait)
{
    if (!IsOpen())
        return true;
    bool sent = true;
    for (;;) {
        commLevel level;
        if (sendQueue != nullptr || (commPending(handle, level) && level.Unsent != 0))
            sent = false;
        if (!wait || sent)
            return sent;
        threadSleep(SentPollMs);
    }
}
