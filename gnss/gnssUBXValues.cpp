// The payloads of the configuration by keys, built in `Frame` key by key, all little-endian.
#include "gnss/gnssUBX.h"

#include "gnss/ubxMessage.h"

void gnssUBX::ValueBegin(uint8_t layer)
{
    Frame.clear();
    ValueAppend(uint32_t{layer} << 8, 4);  // version, layer, two reserved
}

void gnssUBX::ValueKey(uint32_t key)
{
    ValueAppend(key, 4);
}

void gnssUBX::ValueSet8(uint32_t key, uint8_t value)
{
    ValueKey(key);
    ValueAppend(value, 1);
}

void gnssUBX::ValueSet32(uint32_t key, uint32_t value)
{
    ValueKey(key);
    ValueAppend(value, 4);
}

void gnssUBX::ValueSet64(uint32_t key, uint64_t value)
{
    ValueKey(key);
    ValueAppend(value, 8);
}

void gnssUBX::ValueAppend(uint64_t value, size_t width)
{
    for (size_t place = 0; place < width; place++)
        Frame.push_back(static_cast<uint8_t>(value >> (8 * place)));
}

void gnssUBX::SendFrame(uint8_t id)
{
    Send(ubx::CFG, id, Frame.data(), Frame.size());
}
