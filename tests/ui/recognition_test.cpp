// Every receiver that can be simulated is recognised, and its page shows what it told.
#include "tests/ui/expected.h"
#include "tests/ui/gridPicture.h"
#include "tests/ui/pageInside.h"
#include "tests/ui/uiTest.h"
#include "tools/simulator/simTime.h"

#include "gnss/julianDay.h"

#include <cmath>

namespace {

using expected::way;

struct modelCase {
    const char* Test;
    simModel Simulated;
    const char* Name;
    const char* Protocol;
    double AngleStep;  // degrees; how finely it tells of its place
    double HeightStep;
};

constexpr double Micro = 1e-7;
constexpr double Single = 5e-6;  // of single precision in radians

constexpr modelCase Cases[] = {
    {"UBlox7", simModel::UBlox7, "u-blox 7", "UBX", Micro, 1e-3},
    {"M8", simModel::M8, "u-blox 8/M8", "UBX", Micro, 1e-3},
    {"M9", simModel::M9, "u-blox 9/M9", "UBX", Micro, 1e-3},
    {"NeoM9N", simModel::NeoM9N, "u-blox Neo-M9N", "UBX", Micro, 1e-3},
    {"ZedF9R", simModel::ZedF9R, "u-blox Zed-F9R", "UBX", Micro, 1e-3},
    {"M10", simModel::M10, "u-blox 10/M10", "UBX", Micro, 1e-3},
    {"MaxM10S", simModel::MaxM10S, "u-blox Max-M10S", "UBX", Micro, 1e-3},
    {"NeoF10N", simModel::NeoF10N, "u-blox Neo-F10N", "UBX", Micro, 1e-3},
    {"Acutime", simModel::Acutime, "Trimble® Acutime™ Gold", "TSIP", Micro, 1e-3},
    {"Lassen", simModel::Lassen, "Trimble® Lassen-SK8™", "TSIP", Single, 1e-3},
    {"Resolution", simModel::Resolution, "Trimble® Resolution T®", "TSIP", Single, 1e-3},
    {"NMEA", simModel::NMEA, "Generic NMEA", "NMEA", 1e-4 / 60, 0.1},
    {"NVS", simModel::NVS, "NVS NV08C-CSM v5.1", "NMEA", 1e-5 / 60, 0.1},
};

void PrintTo(const modelCase& one, std::ostream* stream)
{
    *stream << one.Name;
}

// Compares and remembers what differs.
class difference
{
public:
    void Number(const char* name, double shown, double told, double step)
    {
        if (std::fabs(shown - told) > step * 0.6 + std::fabs(told) * 1e-7)
            Text << name << " shows " << shown << " of " << told << "\n";
    }
    void Words(const char* name, const std::string& shown, const std::string& told)
    {
        if (shown != told)
            Text << name << " shows " << shown << " of " << told << "\n";
    }
    std::string Found() const { return Text.str(); }

private:
    std::ostringstream Text;
};

class recognition : public uiTest, public testing::WithParamInterface<modelCase>
{
protected:
    static constexpr int haste = 3;
    static constexpr size_t most = 5;          // moments that may still be shown of what is not told at each
    static constexpr uint32_t tallForm = 960;  // has room for all rows of satellites

    static simOptions OptionsFor(simModel model)
    {
        simOptions options;
        options.Model = model;
        // Dates of weeks that have rolled over are placed by today's, so these must not be ahead of it.
        const clockDate today = clockTodayUTC();
        const int64_t days = int64_t{julianDay({today.Year, today.Month, today.Day})} - dayOf1970;
        options.StartUtcNs = ((days - 1) * secondsPerDay + noon) * simSecond;
        return options;
    }

    gnss::UI* Page() const { return Program.Form->Page; }
    way How() const { return expected::WayOf(GetParam().Simulated); }

    std::string Differences(const simTruth& told) const
    {
        difference found;
        CompareCommon(found, told);
        if (GetParam().Protocol == std::string("UBX"))
            CompareUBX(found, told);
        if (GetParam().Protocol == std::string("TSIP"))
            CompareTSIP(found, told);
        if (GetParam().Protocol == std::string("NMEA"))
            found.Words("fix", nmeaParts::FixQualityOf(Page())->Name(), "GPS fix (SPS)");
        return found.Found();
    }

    // Whether the last that the receiver told before it fell silent is there; of what is told only in part,
    // or behind the rest, that of the moment before.
    std::string DifferencesToLast()
    {
        const std::deque<simTruth> told = Device->Told();
        const size_t candidates = std::min<size_t>(told.size(), How() == way::Tsip ? most : 1);
        std::string all;
        for (size_t back = 1; back <= candidates; ++back) {
            const std::string one = Differences(told[told.size() - back]);
            if (one.empty())
                return {};
            all += std::to_string(back) + " back:\n" + one;
        }
        return all;
    }

    std::string GridDifferenceToLast()
    {
        const std::deque<simTruth> told = Device->Told();
        const size_t candidates = std::min<size_t>(told.size(), most);
        std::string all;
        for (size_t back = 1; back <= candidates; ++back) {
            const std::string one =
                gridDifference(pageParts::SatsOf(Page()), expected::RowsOf(told[told.size() - back], How()));
            if (one.empty())
                return {};
            all += std::to_string(back) + " back: " + one + "\n";
        }
        return all;
    }

private:
    static constexpr int64_t dayOf1970 = 2440588;
    static constexpr int64_t secondsPerDay = 86400;
    static constexpr int64_t noon = 43200;
    static constexpr double hundredth = 0.01;

    void CompareCommon(difference& found, const simTruth& told) const
    {
        gnss::UI* page = Page();
        const modelCase& model = GetParam();
        const int64_t seconds = told.UtcNs / simSecond;
        found.Number("date", pageParts::DateOf(page)->Value(),
                     static_cast<double>(seconds / secondsPerDay + dayOf1970), 1e-3);
        found.Number("time", pageParts::TimeOf(page)->Value(), static_cast<double>(seconds % secondsPerDay),
                     1e-3);
        found.Number("latitude", pageParts::LatitudeOf(page)->Value(), told.Place.Latitude, model.AngleStep);
        found.Number("longitude", pageParts::LongitudeOf(page)->Value(), told.Place.Longitude,
                     model.AngleStep);
        found.Number("altitude", pageParts::AltitudeOf(page)->ValueGetF(), told.Place.Altitude,
                     model.HeightStep);
        found.Number("sea level", pageParts::SeaLevelOf(page)->ValueGetF(), told.Place.Separation,
                     model.HeightStep);
        found.Number("HDOP", pageParts::HDOPOf(page)->ValueGetF(), told.HDOP, hundredth);
        found.Number("VDOP", pageParts::VDOPOf(page)->ValueGetF(), told.VDOP, hundredth);
        found.Number("PDOP", pageParts::PDOPOf(page)->ValueGetF(), told.PDOP, hundredth);
        // This one never says which time it tells.
        const bool isUTC = model.Simulated != simModel::Lassen;
        found.Words("date's label", pageParts::DateCaptionOf(page)->Name(), isUTC ? "Date UTC" : "Date GPS");
        found.Words("time's label", pageParts::TimeCaptionOf(page)->Name(), isUTC ? "Time UTC" : "Time GPS");
    }

    void CompareUBX(difference& found, const simTruth& told) const
    {
        gnss::UI* page = Page();
        const simGpsTime next = simGpsOf(told.UtcNs + simSecond);
        found.Words("latitude", pageParts::LatitudeOf(page)->Name(),
                    expected::AngleText(std::round(told.Place.Latitude / Micro) * Micro, true, 4));
        found.Words("longitude", pageParts::LongitudeOf(page)->Name(),
                    expected::AngleText(std::round(told.Place.Longitude / Micro) * Micro, false, 4));
        found.Number("TDOP", ubxParts::TDOPOf(page)->ValueGetF(), told.TDOP, hundredth);
        found.Number("week of the pulse", ubxParts::PPSWeekOf(page)->ValueGetF(), next.Week, 1e-3);
        found.Number("time of the pulse", ubxParts::PPSTimeOf(page)->ValueGetF(),
                     static_cast<double>(next.TowNs) / simSecond, 1e-3);
    }

    void CompareTSIP(difference& found, const simTruth& told) const
    {
        gnss::UI* page = Page();
        const simGpsTime utc = simGpsOf(told.UtcNs - simLeapSeconds * simSecond);
        found.Number("TDOP", tsipParts::TDOPOf(page)->ValueGetF(), told.TDOP, hundredth);
        found.Number("UTC offset", tsipParts::UTCOffsetOf(page)->ValueGetF(), simLeapSeconds, 1e-3);
        found.Number("week", tsipParts::WeekOf(page)->ValueGetF(), utc.Week, 1e-3);
        found.Number("time of week", tsipParts::WeekTimeOf(page)->ValueGetF(),
                     static_cast<double>(utc.TowNs) / simSecond, 1.0);
        found.Words("decoding", tsipParts::DecodeStatusOf(page)->Name(), "Doing Fixes");
    }
};

TEST_P(recognition, ShowsWhatTheReceiverTells)
{
    Device.emplace(OptionsFor(GetParam().Simulated));
    // Those that are asked for their satellites are asked by the clock.
    if (How() != way::Tsip && road::BearsHaste())
        Device->Hasten(haste);
    Program.OpenAt(Device->Port());
    ASSERT_TRUE(comes([&] { return Program.Shows(GetParam().Name, GetParam().Protocol); }))
        << Program.Status() << ", " << Program.Protocol();
    Program.Form->Height(tallForm);
    const size_t before = Device->Told().size();
    ASSERT_TRUE(comes([&] { return Device->Told().size() >= before + 3 && DifferencesToLast().empty(); }))
        << DifferencesToLast();
    Device->Freeze();
    EXPECT_TRUE(comes([&] { return DifferencesToLast().empty(); })) << DifferencesToLast();
    // Answers may still be under way.
    EXPECT_TRUE(comes([&] { return GridDifferenceToLast().empty(); }, std::chrono::seconds(2)))
        << GridDifferenceToLast();
}

INSTANTIATE_TEST_SUITE_P(EveryModel, recognition, testing::ValuesIn(Cases),
                         [](const auto& one) { return std::string(one.param.Test); });

}  // namespace
