// The detection thread: tries line settings until the bytes that come make sense to a decoder.
#include "link/gnssComm.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"
#include "platform/thread.h"

namespace {

constexpr uint32_t StepMs = 100;
constexpr unsigned Steps = 20;

struct lineRow {
    uint32_t BaudRate;
    uint8_t DataBits;
    uint8_t Parity;
    uint8_t StopBits;  // as serialPort::SetStopBits has it
};

constexpr uint8_t ParityOdd = 1;

// In the order in which they are tried.
constexpr lineRow LineRows[] = {
    {4800, 8, 0, 0},  {9600, 8, ParityOdd, 0}, {9600, 8, 0, 0},
    {19200, 8, 0, 0}, {38400, 8, 0, 0},        {115200, 8, 0, 0},
};

// "9600O1 8 bits"
std::string textOf(const lineRow& row)
{
    std::string text;
    text << utfInt('u', uint64_t{row.BaudRate}) << (row.Parity == ParityOdd ? 'O' : 'N')
         << (row.StopBits == 0 ? "1 " : "2 ") << utfInt('u', uint64_t{row.DataBits}) << " bits";
    return text;
}

}  // namespace

void gnssComm::Detect()
{
    do {
        if (Network)
            Probe();
        else
            WalkLineSettings();
    } while (!StopRequested && Detected == 0);
    DropLosers();
}

// A port that cannot be opened is tried again at once, for ever.
void gnssComm::WalkLineSettings()
{
    for (const lineRow& row : LineRows) {
        Close();
        // What came at the last moment came at the setting before.
        if (Detected != 0) {
            Open();
            Probe();
            return;
        }
        SetBaudRate(row.BaudRate);
        SetDataBits(row.DataBits);
        SetParity(row.Parity);
        SetStopBits(row.StopBits);
        if (!Open())
            continue;
        if (OnProbing)
            OnProbing(textOf(row));
        if (Probe())
            return;
    }
}

// Asks the receiver who it is and listens for a while. Whether there is no need to go on.
bool gnssComm::Probe()
{
    RestartDecoders();
    WaitForProof();
    TrustModelOfTSIP();
    return Protocol != ProtocolNone || StopRequested;
}

void gnssComm::RestartDecoders()
{
    const thrSpinHold hold(Lock);
    if (NMEA)
        NMEA->Restart();
    if (TSIP)
        TSIP->Restart();
    if (UBX)
        UBX->Restart();
}

void gnssComm::WaitForProof()
{
    for (unsigned step = 0; step < Steps && !StopRequested && !IsProven(); step++)
        threadSleep(StepMs);
}

// A message of UBX that is under way may still tell that the receiver is one.
bool gnssComm::IsProven()
{
    const thrSpinHold hold(Lock);
    return Detected != 0 && (!UBX || UBX->IsIdle());
}

// A receiver that is silent until asked tells its model before it tells anything that counts as new data.
void gnssComm::TrustModelOfTSIP()
{
    const thrSpinHold hold(Lock);
    if (!TSIP || TSIP->Model == 0)
        return;
    if (!IsDecided())
        Decide(ProtocolTSIP);
    if (OnNewData)
        OnNewData();
}

void gnssComm::DropLosers()
{
    const thrSpinHold hold(Lock);
    if (Protocol != ProtocolNMEA)
        NMEA.reset();
    if (Protocol != ProtocolTSIP)
        TSIP.reset();
    if (Protocol != ProtocolUBX)
        UBX.reset();
}
