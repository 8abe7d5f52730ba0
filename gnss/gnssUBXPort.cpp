#include "gnss/gnssUBX.h"

#include "gnss/ubxKeys.h"
#include "gnss/ubxMessage.h"

namespace {

constexpr size_t CommsHeader = 8;
constexpr size_t CommsBlock = 40;

struct portRow {
    uint16_t Id;      // portId of MON-COMMS
    uint8_t PortId;   // the same port in CFG-PRT and at the end of message keys
    uint32_t OutUBX;  // CFG-...OUTPROT-UBX
    uint32_t OutNMEA;
};

constexpr portRow Ports[] = {
    {0x0000, 0, 0x10720001, 0x10720002},  // I2C
    {0x0100, 1, 0x10740001, 0x10740002},  // UART1
    {0x0201, 2, 0x10760001, 0x10760002},  // UART2
    {0x0300, 3, 0x10780001, 0x10780002},  // USB
};

struct commsBlock {
    uint16_t PortId;
    uint32_t RxBytes;
};

commsBlock BlockOf(ubxPayload payload, size_t port)
{
    const ubxPayload block = payload.Part(CommsHeader + CommsBlock * port, CommsBlock);
    return {block.u2(0), block.u4(12)};  // portId, rxBytes
}

size_t PortCount(ubxPayload payload)
{
    return payload.u1(1);  // nPorts
}

}  // namespace

// MON-COMMS: what each port has received. The poll itself is all that the receiver is sent between two
// answers, so the port whose count moves is the one on which the link arrives.
void gnssUBX::Decode_MonCOMMS(ubxPayload payload)
{
    if (payload.size() < CommsHeader || payload.size() < CommsHeader + CommsBlock * PortCount(payload))
        return;
    if (ConfigState == State::CommsFirst)
        PortsRemember(payload);
    else if (ConfigState == State::CommsSecond)
        PortFind(payload);
}

void gnssUBX::PortsRemember(ubxPayload payload)
{
    PortRxBytes.clear();
    for (size_t port = 0; port < PortCount(payload); port++)
        PortRxBytes.push_back(BlockOf(payload, port).RxBytes);
    Send(ubx::MON, ubx::MonCOMMS, nullptr, 0);
    ConfigState = State::CommsSecond;
}

void gnssUBX::PortFind(ubxPayload payload)
{
    const size_t count = std::min(PortCount(payload), PortRxBytes.size());
    for (size_t port = 0; port < count; port++) {
        const commsBlock block = BlockOf(payload, port);
        if (block.RxBytes == PortRxBytes[port])
            continue;
        for (const portRow& row : Ports) {
            if (row.Id == block.PortId) {
                PortId = row.PortId;
                return PortSetByKey();
            }
        }
    }
}

// Leaves UBX as the only output of the port.
void gnssUBX::PortSetByKey()
{
    const portRow& row = Ports[PortId];
    ValueBegin(ubxKey::WriteRAM);
    ValueSet8(row.OutUBX, 1);
    ValueSet8(row.OutNMEA, 0);
    SendFrame(ubx::CfgVALSET);
    ConfigState = State::PortSet;
}

void gnssUBX::PortSendBack()
{
    Send(ubx::CFG, ubx::CfgPRT, ConfigBlock, ubx::CfgPRTSize);
}
