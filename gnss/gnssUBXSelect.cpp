#include "gnss/gnssUBX.h"

#include "gnss/ubxKeys.h"
#include "gnss/ubxMessage.h"

void gnssUBX::GNSSSelect(bool beiDouB1C, bool beiDouB1I, bool beiDouB2a, bool beiDouB2I, bool galileoE1,
                         bool galileoE5a, bool galileoE5b, bool glonassL1, bool glonassL2, bool gpsL1CA,
                         bool gpsL2C, bool gpsL5, bool imes, bool navICL5, bool qzssL1CA, bool qzssL1S,
                         bool qzssL2C, bool qzssL5, bool sbas)
{
    const bool wishes[ubxSignalCount] = {
        beiDouB1C, beiDouB1I, beiDouB2a, beiDouB2I, galileoE1, galileoE5a, galileoE5b,
        glonassL1, glonassL2, gpsL1CA,   gpsL2C,    gpsL5,     imes,       navICL5,
        qzssL1CA,  qzssL1S,   qzssL2C,   qzssL5,    sbas,
    };
    ubxSignalSet requested;
    for (const ubxSignalRow& row : ubxSignalTable)
        requested.Set(row.Signal, wishes[static_cast<size_t>(row.Signal)]);

    const uint32_t identity = Identity;
    const auto model = static_cast<uint8_t>(identity >> 16);
    const auto protVer = static_cast<uint16_t>(identity);
    const ubxSignalSet selected = ubxSignalRules(model, Select.Load(), requested);
    // From here on a report of the receiver may no longer undo what is written below.
    if (protVer < ubx::ProtVerKeys)
        PendingGNSS = 1;
    Select.Store(selected);
    PendingGNSS = 1;
}

// Each constellation's signals, then its enable key, which is on if any of them is.
void gnssUBX::SelectSetByKey()
{
    const ubxSignalSet selected = Select.Load();
    ValueBegin(ubxKey::WriteRAM);
    for (const ubxEnableRow& enable : ubxEnableTable) {
        bool any = false;
        for (const ubxSignalRow& row : ubxSignalTable) {
            if (row.Enable != enable.Constellation)
                continue;
            const bool on = selected.Has(row.Signal);
            any = any || on;
            if (ubxModel::In(Model, row.Models))
                ValueSet8(row.Key, on ? 1 : 0);
        }
        if (ubxModel::In(Model, enable.Models))
            ValueSet8(enable.Key, any ? 1 : 0);
    }
    SendFrame(ubx::CfgVALSET);
}

// Where the answer to the poll was lost the work area holds another message, whose byte is no count of
// blocks: no more than the area goes out, whatever it says.
void gnssUBX::SelectSendBack()
{
    const size_t size = ubx::CfgGNSSHeader + ubx::CfgGNSSBlock * ConfigBlock[3];  // numConfigBlocks
    if (size <= ConfigBlockSize)
        Send(ubx::CFG, ubx::CfgGNSS, ConfigBlock, size);
}
