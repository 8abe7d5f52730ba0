#include "bench/gnssStreams.h"

#include <string_view>

namespace {

class ubxMessage
{
public:
    ubxMessage(uint8_t messageClass, uint8_t id) : Bytes{messageClass, id, 0, 0} {}

    ubxMessage& Put(uint64_t value, unsigned width)
    {
        for (unsigned place = 0; place < width; place++)
            Bytes.push_back(static_cast<uint8_t>(value >> (8 * place)));
        return *this;
    }

    // Filled up with zeroes.
    ubxMessage& Text(std::string_view text, size_t width)
    {
        Bytes.insert(Bytes.end(), text.begin(), text.end());
        Bytes.insert(Bytes.end(), width - text.size(), 0);
        return *this;
    }

    void To(gnssStream& stream)
    {
        const size_t size = Bytes.size() - 4;
        Bytes[2] = static_cast<uint8_t>(size);
        Bytes[3] = static_cast<uint8_t>(size >> 8);
        uint8_t sumA = 0;
        uint8_t sumB = 0;
        for (const uint8_t byte : Bytes) {
            sumA = static_cast<uint8_t>(sumA + byte);
            sumB = static_cast<uint8_t>(sumB + sumA);
        }
        stream.push_back(0xB5);
        stream.push_back(0x62);
        stream.insert(stream.end(), Bytes.begin(), Bytes.end());
        stream.push_back(sumA);
        stream.push_back(sumB);
    }

private:
    gnssStream Bytes;
};

void UbxEpoch(gnssStream& stream, unsigned second)
{
    const uint64_t time = uint64_t{second} * 1000;
    ubxMessage position(0x01, 0x02);
    position.Put(time, 4).Put(85'000'000 + second, 4).Put(470'000'000 + second, 4).Put(500'000, 4);
    position.Put(452'000, 4).Put(1200, 4).Put(1900, 4).To(stream);
    ubxMessage dilution(0x01, 0x04);
    dilution.Put(time, 4);
    for (unsigned at = 0; at < 7; at++)
        dilution.Put(100 + at, 2);
    dilution.To(stream);
    ubxMessage sats(0x01, 0x35);
    sats.Put(time, 4).Put(1, 1).Put(40, 1).Put(0, 2);
    for (unsigned sat = 0; sat < 40; sat++)
        sats.Put(sat / 10 * 2, 1)
            .Put(1 + sat % 10, 1)
            .Put(20 + (sat + second) % 30, 1)
            .Put(sat * 2, 1)
            .Put(sat * 9, 2)
            .Put(0, 2)
            .Put(0x1F, 4);
    sats.To(stream);
    ubxMessage signals(0x01, 0x43);
    signals.Put(time, 4).Put(0, 1).Put(70, 1).Put(0, 2);
    for (unsigned at = 0; at < 70; at++)
        signals.Put(at % 40 / 10 * 2, 1).Put(1 + at % 10, 1).Put(at < 40 ? 0 : 3, 1).Put(0, 5).Put(at, 8);
    signals.To(stream);
    ubxMessage date(0x01, 0x21);
    date.Put(time, 4).Put(20, 4).Put(0, 4).Put(2026, 2).Put(11, 1).Put(20, 1).Put(12, 1).Put(0, 1);
    date.Put(second % 60, 1).Put(7, 1).To(stream);
    ubxMessage velocity(0x01, 0x12);
    velocity.Put(time, 4).Put(0, 8).Put(0, 8).Put(120, 4).Put(second % 360 * 100'000, 4).Put(0, 8).To(stream);
    ubxMessage(0x0D, 0x01).Put(time, 4).Put(0, 4).Put(1234, 4).Put(2400, 2).Put(0, 2).To(stream);
}

void UbxVersion(gnssStream& stream)
{
    ubxMessage version(0x0A, 0x04);
    version.Text("EXT CORE 1.00", 30).Text("00190000", 10);
    version.Text("PROTVER=33.40", 30).Text("MOD=ZED-F9R", 30).To(stream);
}

void UbxSpectrum(gnssStream& stream, unsigned second)
{
    constexpr unsigned blocks = 2;
    constexpr unsigned bins = 256;
    ubxMessage spectrum(0x0A, 0x31);
    spectrum.Put(0, 1).Put(blocks, 1).Put(0, 2);
    for (unsigned block = 0; block < blocks; block++) {
        for (unsigned bin = 0; bin < bins; bin++)
            spectrum.Put(100 + (bin * 7 + second) % 60, 1);
        spectrum.Put(128'000'000, 4).Put(500'000, 4).Put(1'575'420'000, 4).Put(38, 1).Put(0, 3);
    }
    spectrum.To(stream);
}

}  // namespace

gnssEpochs gnssStreamUBX()
{
    return gnssRepeat(UbxEpoch);
}

gnssEpochs gnssStreamSpectrum()
{
    return gnssRepeat([](gnssStream& stream, unsigned second) {
        if (second == 0)
            UbxVersion(stream);
        UbxEpoch(stream, second);
        UbxSpectrum(stream, second);
    });
}
