#include "platform/comm.h"

#include "platform/commRate.h"
#include "platform/handleTable.h"
#include "platform/win32/systemHandle.h"
#include "platform/win32/text.h"

#include <atomic>
#include <cstring>
#include <windows.h>

namespace {

// The port is open for overlapped calls, because nothing ends a plain one that waits on a dead line.
struct serialLine {
    systemHandle File;
    systemHandle Closing;  // an event, set from commClose on
    std::atomic<bool> Closed{false};
};

// Never destroyed, for static objects may close their port after the end of main.
handleTable<serialLine>& lines()
{
    static handleTable<serialLine>& only = *new handleTable<serialLine>;
    return only;
}

constexpr size_t FlagsAt = offsetof(DCB, BaudRate) + sizeof(DCB::BaudRate);
constexpr uint32_t FlagBinary = 0x1;  // always on, the system knows nothing else

uint32_t flagsIn(const DCB& block)
{
    uint32_t flags = 0;
    std::memcpy(&flags, reinterpret_cast<const char*>(&block) + FlagsAt, sizeof(flags));
    return flags;
}

void setFlags(DCB& block, uint32_t flags)
{
    flags |= FlagBinary;
    std::memcpy(reinterpret_cast<char*>(&block) + FlagsAt, &flags, sizeof(flags));
}

commControl controlOf(const DCB& block)
{
    return {block.BaudRate, flagsIn(block), block.ByteSize, block.Parity, block.StopBits};
}

bool canBe(const commControl& control)
{
    return control.BaudRate > 0 && control.DataBits >= 5 && control.DataBits <= 8 &&
           control.Parity <= SPACEPARITY && control.StopBits <= TWOSTOPBITS;
}

bool readState(HANDLE file, DCB& block)
{
    block = {};
    block.DCBlength = sizeof(block);
    return GetCommState(file, &block) != FALSE;
}

// Reads give what is there, and writes take their time.
bool setTimeouts(HANDLE file)
{
    COMMTIMEOUTS limits = {MAXDWORD, 0, 0, 0, 0};
    return SetCommTimeouts(file, &limits) != FALSE;
}

bool isName(std::string_view name)
{
    return !name.empty() && name.find_first_of("/\\") == std::string_view::npos;
}

// Runs one overlapped call to its end; closing the port cuts it short. True when all bytes went through.
template <typename call>
bool transfer(const serialLine& port, uint32_t count, uint32_t& done, const call& start)
{
    OVERLAPPED state = {};
    const systemHandle finished(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    state.hEvent = finished.Get();
    if (!finished.IsOpen() || port.Closed)
        return false;
    if (start(&state) == FALSE) {
        if (GetLastError() != ERROR_IO_PENDING)
            return false;
        const HANDLE both[] = {finished.Get(), port.Closing.Get()};
        if (WaitForMultipleObjects(2, both, FALSE, INFINITE) != WAIT_OBJECT_0)
            CancelIoEx(port.File.Get(), &state);
    }
    // The system writes to `state` until the call has ended, also when it was cancelled.
    DWORD bytes = 0;
    const bool good = GetOverlappedResult(port.File.Get(), &state, &bytes, TRUE) != FALSE;
    done = bytes;
    return good && bytes == count;
}

}  // namespace

commHandle commOpen(std::string_view name)
{
    const std::optional<std::u16string> units = isName(name) ? textTo16(name) : std::nullopt;
    if (!units)
        return commNone;
    const std::u16string path = u"\\\\.\\" + *units;
    const auto port = std::make_shared<serialLine>();
    port->File = systemHandle(CreateFileW(textUnits(path), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
    port->Closing = systemHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!port->File.IsOpen() || !port->Closing.IsOpen())
        return commNone;
    // Disks and other devices have such names too, but no such state.
    DCB block = {};
    if (!readState(port->File.Get(), block) || !setTimeouts(port->File.Get()))
        return commNone;
    PurgeComm(port->File.Get(), PURGE_RXCLEAR);
    return lines().Add(port);
}

void commClose(commHandle handle)
{
    const std::shared_ptr<serialLine> port = lines().Take(handle);
    if (!port)
        return;
    port->Closed = true;
    SetEvent(port->Closing.Get());
    PurgeComm(port->File.Get(), PURGE_RXABORT | PURGE_RXCLEAR);
}

bool commDefault(commHandle handle, commControl& control)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    COMMCONFIG configuration = {};
    DWORD size = sizeof(configuration);
    configuration.dwSize = size;
    if (!port || GetCommConfig(port->File.Get(), &configuration, &size) == FALSE)
        return false;
    control = controlOf(configuration.dcb);
    return true;
}

bool commGetControl(commHandle handle, commControl& control)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    DCB block = {};
    if (!port || !readState(port->File.Get(), block))
        return false;
    control = controlOf(block);
    return true;
}

bool commSetControl(commHandle handle, const commControl& control)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    DCB block = {};
    if (!port || !canBe(control) || !readState(port->File.Get(), block))
        return false;
    block.BaudRate = control.BaudRate;
    block.ByteSize = control.DataBits;
    block.Parity = control.Parity;
    block.StopBits = control.StopBits;
    setFlags(block, control.Flags);
    // Some drivers take any rate without a word and leave out what they cannot do.
    return SetCommState(port->File.Get(), &block) != FALSE && readState(port->File.Get(), block) &&
           commRateIsNear(control.BaudRate, block.BaudRate);
}

bool commQueueLimits(commHandle handle, commQueue& limits)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    COMMPROP properties = {};
    properties.wPacketLength = sizeof(properties);
    properties.dwProvSpec1 = COMMPROP_INITIALIZED;
    if (!port || GetCommProperties(port->File.Get(), &properties) == FALSE)
        return false;
    limits = {properties.dwMaxRxQueue, properties.dwMaxTxQueue};
    return true;
}

void commSetQueues(commHandle handle, const commQueue& sizes)
{
    if (const std::shared_ptr<serialLine> port = lines().Find(handle))
        SetupComm(port->File.Get(), sizes.Receive, sizes.Transmit);
}

void commSetEvents(commHandle handle, uint32_t mask)
{
    if (const std::shared_ptr<serialLine> port = lines().Find(handle))
        SetCommMask(port->File.Get(), mask);
}

bool commPending(commHandle handle, commLevel& level)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    COMSTAT state = {};
    DWORD errors = 0;
    if (!port || ClearCommError(port->File.Get(), &errors, &state) == FALSE)
        return false;
    level = {state.cbInQue, state.cbOutQue};
    return true;
}

bool commRead(commHandle handle, void* buffer, uint32_t count, uint32_t& done)
{
    done = 0;
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    if (!port)
        return false;
    const auto start = [&](OVERLAPPED* state) {
        return ReadFile(port->File.Get(), buffer, count, nullptr, state);
    };
    return transfer(*port, count, done, start) || done > 0;
}

bool commWrite(commHandle handle, const void* data, uint32_t count, uint32_t& done)
{
    done = 0;
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    if (!port)
        return false;
    const auto start = [&](OVERLAPPED* state) {
        return WriteFile(port->File.Get(), data, count, nullptr, state);
    };
    return transfer(*port, count, done, start);
}

bool commModemStatus(commHandle handle, uint32_t& status)
{
    const std::shared_ptr<serialLine> port = lines().Find(handle);
    if (!port)
        return false;
    DWORD levels = 0;
    if (GetCommModemStatus(port->File.Get(), &levels) == FALSE) {
        // The answer of ports that have no such lines.
        if (GetLastError() != ERROR_NOT_SUPPORTED)
            return false;
        levels = 0;
    }
    status = levels & MS_CTS_ON;
    return true;
}

std::string_view commNamePrefix()
{
    return "COM";
}
