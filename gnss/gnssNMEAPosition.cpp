#include "gnss/gnssNMEA.h"
#include "gnss/nmeaNumber.h"
#include "gnss/nmeaTables.h"

#include <algorithm>
#include <cmath>

namespace {

using fields = gnssNMEA::fields;

std::string_view take(fields& left)
{
    const std::string_view first = left.front();
    left = left.subspan(1);
    return first;
}

char letterOf(std::string_view field)
{
    return field.empty() ? '\0' : field.front();
}

struct division {
    double Quotient;   // rounded down
    double Remainder;  // as fmod gives it
};

division divide(double number, double by)
{
    // Sentences carry such numbers alone; the general way costs much more.
    constexpr double plain = 1e15;
    if (number >= 0 && number < plain) {
        const auto quotient = static_cast<double>(static_cast<int64_t>(number / by));
        const double remainder = number - quotient * by;
        if (remainder >= 0)
            return {quotient, remainder};
    }
    return {std::floor(number / by), std::fmod(number, by)};
}

// "4807.038" is 48 degrees and 7.038 minutes.
double degreesOf(std::string_view field)
{
    const division degrees = divide(nmeaDouble(field), 100);
    return degrees.Quotient + degrees.Remainder * (1.0 / 60);
}

}  // namespace

// 4807.038,N
void gnssNMEA::DecodeLatitude(fields& left)
{
    if (left.size() < 2)
        return;
    Latitude = degreesOf(take(left));
    if (take(left) == "S")
        Latitude = -Latitude;
}

// 01131.000,E
void gnssNMEA::DecodeLongitude(fields& left)
{
    if (left.size() < 2)
        return;
    Longitude = degreesOf(take(left));
    if (take(left) == "W")
        Longitude = -Longitude;
}

// 123519.25
void gnssNMEA::DecodeTime(fields& left)
{
    if (left.empty())
        return;
    const double number = nmeaDouble(take(left));
    const division hours = divide(number, 10000);
    const double minutes = divide(hours.Remainder, 100).Quotient;
    TimeOfDay = hours.Quotient * 3600 + minutes * 60 + divide(number, 100).Remainder;
}

// $GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,1.5,0120*55
void gnssNMEA::DecodeGGA(fields& left)
{
    if (left.empty())
        return;
    DecodeTime(left);
    Valid |= ValidTime;

    DecodeLatitude(left);
    DecodeLongitude(left);
    if (left.empty())
        return;
    const int64_t quality = nmeaInteger(take(left));
    if (quality >= 0 && !FixQualityName(static_cast<uint8_t>(std::min<int64_t>(quality, UINT8_MAX))).empty())
        FixQuality = static_cast<uint8_t>(quality);

    if (left.empty())
        return;
    take(left);  // number of satellites
    if (left.empty())
        return;
    HDOP = nmeaFloat(take(left));
    if (left.empty())
        return;
    Altitude = nmeaFloat(take(left));
    Valid |= ValidPosition;
    DecodeDifferential(left);
}

// M,46.9,M,1.5,0120
void gnssNMEA::DecodeDifferential(fields& left)
{
    if (left.size() < 2 || take(left) != "M")
        return;
    SeaLevel = nmeaFloat(take(left));
    if (left.size() < 2 || take(left) != "M")
        return;
    DGPSAge = nmeaFloat(take(left));
    if (!left.empty())
        DGPSStation = static_cast<uint32_t>(nmeaInteger(take(left)));
}

// $GPGLL,4807.038,N,01131.000,E,123519,A,A*45
void gnssNMEA::DecodeGLL(fields& left)
{
    DecodeLatitude(left);
    DecodeLongitude(left);
    DecodeTime(left);
    if (left.size() < 2)
        return;
    if (take(left) != "A")
        FixQuality = 0;
    else if (FixQuality == 0)
        FixQuality = nmeaMeaning<uint8_t>(NmeaModesGLL, letterOf(take(left)), 0);
}

// $GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W,A*05
void gnssNMEA::DecodeRMC(fields& left)
{
    CommitSats();
    DecodeTime(left);
    if (left.empty())
        return;
    DecodeStatus(letterOf(take(left)));
    if (left.empty())
        return;
    DecodeLatitude(left);
    DecodeLongitude(left);
    Valid |= ValidPosition;
    if (left.empty())
        return;
    DecodeSpeed(left);
    if (left.empty())
        return;
    Track = nmeaFloat(take(left));
    if (!left.empty() && letterOf(left.front()) == 'T')
        take(left);
    if (left.empty())
        return;
    DecodeDate(take(left));
    if (left.empty())
        return;
    DecodeVariation(left);
    if (!left.empty() && FixQuality != 0)
        DecodeMode(letterOf(take(left)));
}

// A: the fix is good, V: it is not.
void gnssNMEA::DecodeStatus(char status)
{
    if (status == 'A' && FixQuality == 0)
        FixQuality = 1;
    else if (status == 'V')
        FixQuality = 0;
}

// 022.4 or 022.4,N or 041.5,K
void gnssNMEA::DecodeSpeed(fields& left)
{
    constexpr float kmhPerKnot = 1.852F;
    Speed = nmeaFloat(take(left));
    if (left.empty())
        return;
    const char unit = letterOf(left.front());
    if (unit != 'K')
        Speed *= kmhPerKnot;
    if (unit == 'K' || unit == 'N')
        take(left);
}

// 230394
void gnssNMEA::DecodeDate(std::string_view date)
{
    const auto number = static_cast<uint32_t>(nmeaInteger(date));
    const uint32_t year = number % 100;
    Day = static_cast<uint8_t>(number / 10000);
    Month = static_cast<uint8_t>(number % 10000 / 100);
    // The two digits stand for 1970 to 2069.
    Year = static_cast<uint16_t>(year + (year < 70 ? 2000 : 1900));
    Valid |= ValidTime;
}

// 003.1,W
void gnssNMEA::DecodeVariation(fields& left)
{
    MagVar = nmeaFloat(take(left));
    if (left.empty())
        return;
    const char direction = letterOf(left.front());
    if (direction == 'W')
        MagVar = -MagVar;
    // A receiver that knows no variation leaves both fields empty.
    if (left.front().empty() || direction == 'W' || direction == 'E')
        take(left);
}

void gnssNMEA::DecodeMode(char mode)
{
    FixQuality = nmeaMeaning<uint8_t>(NmeaModesRMC, mode, 0);
}
