#include "bench/gnssStreams.h"

#include <bit>
#include <string>

namespace {

constexpr size_t StreamSize = 256 * 1024;

// --- NMEA

// A number with at least so many digits.
std::string Digits(unsigned value, unsigned width)
{
    std::string text = std::to_string(value);
    text.insert(0, width > text.size() ? width - text.size() : 0, '0');
    return text;
}

void Sentence(gnssStream& stream, const std::string& body)
{
    unsigned sum = 0;
    for (const char letter : body)
        sum ^= static_cast<unsigned char>(letter);
    constexpr char hex[] = "0123456789ABCDEF";
    const std::string whole = "$" + body + "*" + hex[sum >> 4] + hex[sum & 15] + "\r\n";
    stream.insert(stream.end(), whole.begin(), whole.end());
}

// Ten satellites of one constellation, four in a sentence.
void Gsv(gnssStream& stream, const std::string& talker, unsigned first, unsigned second, char signal)
{
    for (unsigned part = 0; part < 3; part++) {
        std::string body = talker + "GSV,3," + Digits(part + 1, 1) + ",10";
        for (unsigned sat = part * 4; sat < 10 && sat < part * 4 + 4; sat++)
            body += "," + Digits(first + sat, 2) + "," + Digits(5 + sat * 8, 2) + "," +
                    Digits((sat * 35 + second) % 360, 3) + "," + Digits(20 + (sat + second) % 30, 2);
        Sentence(stream, body + "," + signal);
    }
}

std::string GsaIds(unsigned first)
{
    std::string ids;
    for (unsigned sat = 0; sat < 12; sat++)
        ids += sat < 8 ? "," + Digits(first + sat, 2) : ",";
    return ids;
}

void NmeaEpoch(gnssStream& stream, unsigned second)
{
    const std::string time =
        Digits(second / 3600 % 24, 2) + Digits(second / 60 % 60, 2) + Digits(second % 60, 2) + ".00";
    const std::string place =
        "4717." + Digits(11'399 + second % 100, 5) + ",N,00834." + Digits(91'512 + second % 50, 5) + ",E";
    Sentence(stream, "GNRMC," + time + ",A," + place + ",0.004,77.52,201126,,,A,V");
    Sentence(stream, "GNVTG,77.52,T,,M,0.004,N,0.008,K,A");
    Sentence(stream, "GNGGA," + time + "," + place + ",1,24,0.56,499.6,M,48.0,M,,");
    constexpr unsigned First[] = {1, 65, 1, 1};
    for (unsigned system = 0; system < 4; system++)
        Sentence(stream, "GNGSA,A,3" + GsaIds(First[system]) + ",1.05,0.56,0.88," + Digits(system + 1, 1));
    Gsv(stream, "GP", 1, second, '1');
    Gsv(stream, "GL", 65, second, '1');
    Gsv(stream, "GA", 1, second, '7');
    Gsv(stream, "GB", 1, second, '1');
    Sentence(stream, "GNGLL," + place + "," + time + ",A,A");
}

// --- TSIP

class tsipPacket
{
public:
    explicit tsipPacket(uint8_t id) : Bytes{id} {}

    tsipPacket& Put(uint64_t value, unsigned width)
    {
        for (unsigned place = width; place > 0; place--)
            Bytes.push_back(static_cast<uint8_t>(value >> (8 * (place - 1))));
        return *this;
    }

    tsipPacket& Single(float value) { return Put(std::bit_cast<uint32_t>(value), 4); }
    tsipPacket& Double(double value) { return Put(std::bit_cast<uint64_t>(value), 8); }

    void To(gnssStream& stream) const
    {
        constexpr uint8_t DLE = 0x10;
        constexpr uint8_t ETX = 0x03;
        stream.push_back(DLE);
        for (const uint8_t byte : Bytes) {
            stream.push_back(byte);
            if (byte == DLE)
                stream.push_back(byte);
        }
        stream.push_back(DLE);
        stream.push_back(ETX);
    }

private:
    gnssStream Bytes;
};

void TsipSatellites(gnssStream& stream, unsigned second)
{
    tsipPacket levels(0x47);
    levels.Put(8, 1);
    for (unsigned sat = 0; sat < 8; sat++)
        levels.Put(1 + sat * 3, 1).Single(30.0f + static_cast<float>((sat + second) % 20));
    levels.To(stream);
    for (unsigned sat = 0; sat < 8; sat++) {
        tsipPacket tracking(0x5C);
        tracking.Put(1 + sat * 3, 1).Put(sat << 3, 1).Put(2, 1).Put(0, 1).Single(42.5f);
        tracking.Single(100.0f).Single(0.5f).Single(1.5f).Put(0, 4).To(stream);
    }
    tsipPacket selection(0x6D);
    selection.Put(0x84, 1).Single(1.9f).Single(1.0f).Single(1.6f).Single(0.9f);
    for (unsigned sat = 0; sat < 8; sat++)
        selection.Put(1 + sat * 3, 1);
    selection.To(stream);
}

void TsipEpoch(gnssStream& stream, unsigned second)
{
    tsipPacket primary(0x8F);
    primary.Put(0xAB, 1).Put(432'000 + second, 4).Put(2400, 2).Put(18, 2).Put(3, 1);
    primary.Put(second % 60, 1).Put(second / 60 % 60, 1).Put(12, 1).Put(20, 1).Put(11, 1).Put(2026, 2);
    primary.To(stream);
    tsipPacket supplemental(0x8F);
    supplemental.Put(0xAC, 1).Put(7, 1).Put(0, 1).Put(100, 1).Put(0, 4).Put(0, 2).Put(0, 2).Put(0, 1);
    supplemental.Put(0, 1).Put(0, 1).Put(0, 1).Single(12.5f).Single(0.25f).Put(0, 4).Single(0.0f);
    supplemental.Single(38.5f).Double(0.82).Double(0.14).Double(499.6).Single(3.5f).Put(0, 4).To(stream);
    TsipSatellites(stream, second);
}

}  // namespace

gnssEpochs gnssRepeat(const std::function<void(gnssStream& stream, unsigned second)>& epoch)
{
    gnssEpochs epochs;
    while (epochs.Bytes.size() < StreamSize)
        epoch(epochs.Bytes, epochs.Count++);
    return epochs;
}

gnssEpochs gnssStreamNMEA()
{
    return gnssRepeat(NmeaEpoch);
}

gnssEpochs gnssStreamTSIP()
{
    return gnssRepeat(TsipEpoch);
}
