#include "tools/simulator/simUart.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

constexpr unsigned DataBits = 8;

bool HasParity(const simLine& line)
{
    return line.Parity != 'N';
}

bool ParityBit(uint8_t byte, const simLine& line)
{
    const bool odd = (std::popcount(byte) & 1) != 0;
    return line.Parity == 'O' ? !odd : odd;
}

// The levels of a line over time, in bits of the sender; it rests high.
class waveform
{
public:
    waveform(std::span<const uint8_t> sent, const simLine& line)
    {
        for (const uint8_t byte : sent)
            AddByte(byte, line);
    }

    bool At(double bit) const
    {
        const auto index = static_cast<size_t>(bit);
        return index >= Levels.size() || Levels[index];
    }

    double Length() const { return static_cast<double>(Levels.size()); }

    // The first start of a low level from here on, or the end.
    double NextFall(double bit) const
    {
        if (!At(bit))
            return bit;
        auto index = static_cast<size_t>(bit);
        while (index < Levels.size() && Levels[index])
            ++index;
        return static_cast<double>(index);
    }

private:
    void AddByte(uint8_t byte, const simLine& line)
    {
        Levels.push_back(false);
        for (unsigned bit = 0; bit < DataBits; ++bit)
            Levels.push_back((byte >> bit & 1) != 0);
        if (HasParity(line))
            Levels.push_back(ParityBit(byte, line));
        Levels.insert(Levels.end(), line.StopBits, true);
    }

    std::vector<bool> Levels;
};

}  // namespace

unsigned simUartBits(const simLine& line)
{
    return 1 + DataBits + (HasParity(line) ? 1 : 0) + line.StopBits;
}

bool simUartAgrees(const simLine& sender, const simLine& listener)
{
    if (sender.Baud == 0 || listener.Baud == 0)
        return false;
    constexpr double Tolerance = 0.03;
    const double ratio = static_cast<double>(sender.Baud) / listener.Baud;
    const bool odd = sender.Parity == 'O';
    return std::fabs(ratio - 1) < Tolerance && odd == (listener.Parity == 'O');
}

simBytes simUartMisread(std::span<const uint8_t> sent, const simLine& sender, const simLine& listener)
{
    // A host that sets no rate has hung up.
    if (sender.Baud == 0 || listener.Baud == 0)
        return {};
    const waveform wave(sent, sender);
    const double step =
        static_cast<double>(sender.Baud) / listener.Baud;  // sender's bits in one of the listener's
    simBytes heard;
    double at = 0;
    while ((at = wave.NextFall(at)) < wave.Length()) {
        // Each bit is looked at in its middle, counted from the fall that began the byte.
        const auto sample = [&](unsigned bit) { return wave.At(at + step * (bit + 0.5)); };
        uint8_t byte = 0;
        for (unsigned bit = 0; bit < DataBits; ++bit)
            byte = static_cast<uint8_t>(byte | (sample(1 + bit) ? 1u << bit : 0u));
        unsigned next = 1 + DataBits;
        bool good = true;
        if (HasParity(listener))
            good = sample(next++) == ParityBit(byte, listener);
        good = good && sample(next);
        heard.push_back(good ? byte : 0);
        at += step * (next + 0.5);
        // After a broken byte the listener waits for the line to rest before it looks for the next.
        while (!wave.At(at) && at < wave.Length())
            at += step;
    }
    return heard;
}

simBytes simPace::Due(int64_t nowNs, double bytesPerSecond)
{
    if (!Started) {
        Started = true;
        LastNs = nowNs;
    }
    Credit += static_cast<double>(nowNs - LastNs) * 1e-9 * bytesPerSecond;
    LastNs = nowNs;
    const auto count = std::min(Waiting.size(), static_cast<size_t>(std::max(Credit, 0.0)));
    simBytes due(Waiting.begin(), Waiting.begin() + static_cast<ptrdiff_t>(count));
    Waiting.erase(Waiting.begin(), Waiting.begin() + static_cast<ptrdiff_t>(count));
    // A line that rests saves nothing up.
    Credit = Waiting.empty() ? 0 : Credit - static_cast<double>(count);
    return due;
}
