#include "link/gnssComm.h"

gnssComm::gnssComm()
{
    SetHandshake(HandshakeNone);
    onData = [this](std::vector<uint8_t>& block) { Port_OnData(block); };
}

gnssComm::~gnssComm()
{
    Stop();
}

bool gnssComm::Start()
{
    if (IsOpen())
        return true;
    if (!Network && !Open())
        return false;
    EndDetection();
    // A walk that was still on may have closed it again.
    if (!Network && !IsOpen() && !Open())
        return false;
    Detected = 0;
    MakeDecoders();
    Thread.Start("detection", [this] { Detect(); });
    return true;
}

void gnssComm::EndDetection()
{
    StopRequested = true;
    Thread.Join();
    StopRequested = false;
}

void gnssComm::Stop()
{
    EndDetection();
    if (!Network)
        Close();
    // A network may still feed. In one step, so that no decoder that is about to go decides once more.
    const thrSpinHold hold(Lock);
    Protocol = ProtocolNone;
    NMEA.reset();
    TSIP.reset();
    UBX.reset();
}

void gnssComm::PortSet(const std::string& name)
{
    const bool running = IsOpen();
    if (running)
        Stop();
    SetPortName(name);
    if (running)
        Start();
}

void gnssComm::MakeDecoders()
{
    const thrSpinHold hold(Lock);
    const uint8_t protocol = Protocol;
    if (!UBXOnly && protocol <= ProtocolNMEA)
        NMEA = std::make_unique<gnssNMEA>();
    if (!UBXOnly && (protocol == ProtocolNone || protocol == ProtocolTSIP))
        TSIP = std::make_unique<gnssTSIP>();
    if (UBXOnly || protocol == ProtocolNone || protocol == ProtocolUBX)
        UBX = std::make_unique<gnssUBX>();
    if (NMEA)
        Connect(*NMEA, ProtocolNMEA);
    if (TSIP)
        Connect(*TSIP, ProtocolTSIP);
    if (UBX)
        Connect(*UBX, ProtocolUBX);
}

void gnssComm::Connect(gnss& decoder, uint8_t protocol)
{
    decoder.OnNewData = [this, protocol] { Decoder_OnNewData(protocol); };
    decoder.OnSend = [this](const uint8_t* bytes, size_t count) { Transmit(bytes, count); };
}

void gnssComm::Transmit(const uint8_t* bytes, size_t count)
{
    if (!Network)
        Write(bytes, count);
    else if (NetSend)
        NetSend(bytes, count);
}

void gnssComm::Port_OnData(std::vector<uint8_t>& block)
{
    if (OnRawData)
        OnRawData(block);
    Feed(block.data(), block.size());
}

bool gnssComm::TakeReset(bool atBoundary)
{
    return atBoundary && ResetPending.exchange(0) != 0;
}

// A reset goes out between two messages, and only the first decoder that is ready gets it.
void gnssComm::Feed(const uint8_t* bytes, size_t count)
{
    const thrSpinHold hold(Lock);
    if (NMEA) {
        NMEA->Feed(bytes, count);
        if (TakeReset(NMEA->IsIdle()))
            NMEA->ResetReceiver();
    }
    if (TSIP) {
        TSIP->Feed(bytes, count);
        if (TakeReset(true))
            TSIP->ResetReceiver();
    }
    if (UBX) {
        UBX->Feed(bytes, count);
        if (TakeReset(UBX->IsIdle()))
            UBX->ResetReceiver();
    }
}

gnss* gnssComm::Decoder() const
{
    switch (Protocol) {
    case ProtocolNMEA:
        return NMEA.get();
    case ProtocolTSIP:
        return TSIP.get();
    case ProtocolUBX:
        return UBX.get();
    default:
        return nullptr;
    }
}

bool gnssComm::IsDecided() const
{
    return Protocol != ProtocolNone && Detected != 0;
}

// With Lock held, from Feed. A UBX receiver counts only once it has told its model.
void gnssComm::Decoder_OnNewData(uint8_t protocol)
{
    if (!IsDecided()) {
        if (protocol == ProtocolUBX && UBX->Model == 0)
            return;
        Decide(protocol);
    }
    if (OnNewData)
        OnNewData();
}

// With Lock held.
void gnssComm::Decide(uint8_t protocol)
{
    Protocol = protocol;
    if (protocol == ProtocolTSIP)
        TSIP->PPSSetup(TSIP->PPSBase);
    if (Detected != 0)
        return;
    if (OnDetectedGNSS)
        OnDetectedGNSS();
    Detected = 1;
}
