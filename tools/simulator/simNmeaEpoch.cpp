#include "tools/simulator/simNmeaEpoch.h"

#include "tools/simulator/simNmeaText.h"
#include "tools/simulator/simTime.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double KnotsPerMetreSecond = 3600.0 / 1852.0;

struct motion {
    double Speed;  // m/s
    double Track;  // degrees, 0 to 360
};

motion MotionOf(const simEpoch& epoch)
{
    const double track = std::atan2(epoch.EastSpeed, epoch.NorthSpeed) * 180 / std::numbers::pi;
    return {std::hypot(epoch.NorthSpeed, epoch.EastSpeed), track < 0 ? track + 360 : track};
}

std::string_view SolutionTalker(const simNmeaStyle& style)
{
    return style.Mixed ? "GN" : "GP";
}

std::string TimeText(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    // Cut rather than rounded, so that no time says sixty seconds.
    const double unit = std::pow(10.0, style.SecondDecimals);
    const double fraction = std::floor(date.Nanosecond * 1e-9 * unit + 1e-6) / unit;
    return simNmeaReal(date.Hour * 100 + date.Minute, 0, 4) +
           simNmeaReal(date.Second + fraction, style.SecondDecimals, 2);
}

// "4722.61400", where the rounding of the minutes may carry into the degrees.
std::string AngleText(double angle, unsigned degreeDigits, int decimals)
{
    const auto unit = static_cast<int64_t>(std::llround(std::pow(10.0, decimals)));
    const int64_t all = std::llround(std::fabs(angle) * 60 * static_cast<double>(unit));
    const int64_t degrees = all / (60 * unit);
    const double minutes = static_cast<double>(all % (60 * unit)) / static_cast<double>(unit);
    return simNmeaReal(static_cast<double>(degrees), 0, degreeDigits) + simNmeaReal(minutes, decimals, 2);
}

void AddPosition(simNmeaSentence& sentence, const simEpoch& epoch, const simNmeaStyle& style)
{
    if (!epoch.Fixed) {
        sentence.Empty(4);
        return;
    }
    sentence.Text(AngleText(epoch.Place.Latitude, 2, style.MinuteDecimals))
        .Text(epoch.Place.Latitude < 0 ? "S" : "N")
        .Text(AngleText(epoch.Place.Longitude, 3, style.MinuteDecimals))
        .Text(epoch.Place.Longitude < 0 ? "W" : "E");
}

std::string_view ModeText(const simEpoch& epoch)
{
    return epoch.Fixed ? "A" : "N";
}

}  // namespace

std::string simNmeaRMC(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    const motion moves = MotionOf(epoch);
    simNmeaSentence sentence(SolutionTalker(style), "RMC");
    sentence.Text(TimeText(epoch, style)).Text(epoch.Fixed ? "A" : "V");
    AddPosition(sentence, epoch, style);
    if (epoch.Fixed)
        sentence.Real(moves.Speed * KnotsPerMetreSecond, 3).Real(moves.Track, 2);
    else
        sentence.Empty(2);
    sentence.Whole(date.Day * 10'000 + date.Month * 100 + date.Year % 100, 6).Empty(2).Text(ModeText(epoch));
    if (style.Signals)
        sentence.Text("V");
    return sentence.Finished();
}

std::string simNmeaVTG(const simEpoch& epoch, const simNmeaStyle& style)
{
    const motion moves = MotionOf(epoch);
    simNmeaSentence sentence(SolutionTalker(style), "VTG");
    if (epoch.Fixed)
        sentence.Real(moves.Track, 2)
            .Text("T")
            .Empty()
            .Text("M")
            .Real(moves.Speed * KnotsPerMetreSecond, 3)
            .Text("N")
            .Real(moves.Speed * 3.6, 3)
            .Text("K");
    else
        sentence.Empty().Text("T").Empty().Text("M").Empty().Text("N").Empty().Text("K");
    return sentence.Text(ModeText(epoch)).Finished();
}

std::string simNmeaGGA(const simEpoch& epoch, const simNmeaStyle& style)
{
    // Sentences of old count no further than twelve.
    const auto used = std::min<int64_t>(std::ranges::count_if(epoch.Sats, &simSat::Used), 12);
    simNmeaSentence sentence(SolutionTalker(style), "GGA");
    sentence.Text(TimeText(epoch, style));
    AddPosition(sentence, epoch, style);
    sentence.Text(epoch.Fixed ? "1" : "0").Whole(used, 2).Real(epoch.Dop.H, 2);
    if (epoch.Fixed)
        sentence.Real(epoch.Place.Altitude, 1).Text("M").Real(epoch.Place.Separation, 1).Text("M");
    else
        sentence.Empty(4);
    return sentence.Empty(2).Finished();
}

std::string simNmeaGLL(const simEpoch& epoch, const simNmeaStyle& style)
{
    simNmeaSentence sentence(SolutionTalker(style), "GLL");
    AddPosition(sentence, epoch, style);
    return sentence.Text(TimeText(epoch, style))
        .Text(epoch.Fixed ? "A" : "V")
        .Text(ModeText(epoch))
        .Finished();
}

std::string simNmeaZDA(const simEpoch& epoch, const simNmeaStyle& style)
{
    const simDate date = simDateOf(epoch.UtcNs);
    return simNmeaSentence(SolutionTalker(style), "ZDA")
        .Text(TimeText(epoch, style))
        .Whole(date.Day, 2)
        .Whole(date.Month, 2)
        .Whole(date.Year, 4)
        .Text("00")
        .Text("00")
        .Finished();
}
