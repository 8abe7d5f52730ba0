// Builds NMEA sentences as a receiver would send them.
#pragma once

#include "gnss/gnssNMEA.h"
#include "tests/gnss/decoderListener.h"

#include <string>

// "$", the text, its checksum and a line end.
inline std::string sentence(const std::string& text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    unsigned sum = 0;
    for (const char each : text)
        sum ^= static_cast<uint8_t>(each);
    return "$" + text + '*' + digits[sum >> 4] + digits[sum & 15] + "\r\n";
}

// The sentence that brings waiting satellites on screen.
inline std::string rmc()
{
    return sentence("GNRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W,A");
}

class gsv
{
public:
    explicit gsv(const std::string& talker) : Text(talker + "GSV,1,1,00") {}

    gsv& sat(const std::string& id, int elevation = 40, int azimuth = 130, const std::string& level = "44")
    {
        Text += "," + id + "," + std::to_string(elevation) + "," + std::to_string(azimuth) + "," + level;
        return *this;
    }
    gsv& sat(unsigned id, int elevation = 40, int azimuth = 130, const std::string& level = "44")
    {
        return sat(std::to_string(id), elevation, azimuth, level);
    }
    gsv& signal(char id)
    {
        Signal = id;
        return *this;
    }

    // NOLINTNEXTLINE(google-explicit-constructor): it is a sentence.
    operator std::string() const { return sentence(Signal == 0 ? Text : Text + "," + Signal); }

private:
    std::string Text;
    char Signal = 0;
};

// A GSA sentence with up to 12 ids between commas; `system` is left out when it is 0.
inline std::string gsa(const std::string& ids, char system = 0)
{
    std::string text = "GNGSA,A,3," + ids;
    for (auto count = std::count(ids.begin(), ids.end(), ','); count < 11; ++count)
        text += ",";
    text += ",1.5,0.9,1.2";
    if (system != 0)
        text += std::string(",") + system;
    return sentence(text);
}

inline std::string describeNMEA(const gnssNMEA& receiver)
{
    std::string text = describeModel(receiver) + receiver.Line;
    for (const SatInfo& satellite : receiver.SatsNew)
        describeTo(text, satellite);
    return text +
           describeFields(receiver.DGPSAge, receiver.DGPSStation, receiver.MagVar, receiver.FixQuality);
}

// A fresh decoder with an ear at each end.
class gnssNMEATest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    void Feed(const std::string& stream) { Listener.Feed(stream); }

    // Gives the satellites of the sentences in between to the live list.
    void Show(const std::string& satellites) { Feed(satellites + rmc()); }

    decoderListener<gnssNMEA> Listener;
    gnssNMEA& Receiver = Listener.Receiver;
};
