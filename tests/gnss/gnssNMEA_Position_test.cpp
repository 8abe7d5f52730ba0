#include "gnss/gnssNMEA.h"
#include "tests/gnss/nmeaSentence.h"

namespace {

constexpr double Near = 1e-9;
constexpr uint8_t Both = gnss::ValidTime | gnss::ValidPosition;

TEST_F(gnssNMEATest, ReadsAFullGGA)
{
    Feed(sentence("GPGGA,123519.25,4807.038,N,01131.000,E,2,08,0.9,545.4,M,46.9,M,1.5,0120"));
    EXPECT_NEAR(Receiver.TimeOfDay, 12 * 3600 + 35 * 60 + 19.25, Near);
    EXPECT_NEAR(Receiver.Latitude, 48 + 7.038 / 60, Near);
    EXPECT_NEAR(Receiver.Longitude, 11 + 31.0 / 60, Near);
    EXPECT_EQ(Receiver.FixQuality, 2);
    EXPECT_EQ(Receiver.HDOP, 0.9F);
    EXPECT_EQ(Receiver.Altitude, double{545.4F}) << "of 32-bit precision";
    EXPECT_EQ(Receiver.SeaLevel, 46.9F);
    EXPECT_EQ(Receiver.DGPSAge, 1.5F);
    EXPECT_EQ(Receiver.DGPSStation, 120U);
    EXPECT_EQ(Receiver.Valid, Both);
    EXPECT_EQ(Listener.NewData, 1U);
}

TEST_F(gnssNMEATest, NegatesSouthAndWest)
{
    Feed(sentence("GPGLL,3723.2475,S,12158.3416,W,161229.487,A"));
    EXPECT_NEAR(Receiver.Latitude, -(37 + 23.2475 / 60), Near);
    EXPECT_NEAR(Receiver.Longitude, -(121 + 58.3416 / 60), Near);
    Feed(sentence("GPGLL,3723.2475,SS,12158.3416,w,161229.487,A"));
    EXPECT_GT(Receiver.Latitude, 0);
    EXPECT_GT(Receiver.Longitude, 0);
}

TEST_F(gnssNMEATest, ReadsTimesAndDegreesAtTheirBounds)
{
    struct row {
        const char* Text;
        double Time;
    };
    constexpr row rows[] = {
        {"000000", 0},      {"000059.99", 59.99}, {"000100", 60}, {"235959.999", 86399.999},
        {"995999", 360039}, {"240000", 86400},    {"1", 1},       {"", 0}};
    for (const row& each : rows) {
        Feed(sentence(std::string("GPGGA,") + each.Text + ","));
        EXPECT_NEAR(Receiver.TimeOfDay, each.Time, Near) << each.Text;
    }
    Feed("$GPGLL,4759.99999999999999999,N\n");
    EXPECT_NEAR(Receiver.Latitude, 48, 1e-6);
}

TEST_F(gnssNMEATest, SetsEmptyFieldsOfAGGAToZero)
{
    Feed(sentence("GPGGA,123519,4807.038,N,01131.000,E,2,08,0.9,545.4,M,46.9,M,1.5,0120"));
    Receiver.Valid = 0;
    Feed("$GPGGA,,,,,,,,,,,,,,\r\n");
    EXPECT_EQ(Receiver.TimeOfDay, 0);
    EXPECT_EQ(Receiver.Latitude, 0);
    EXPECT_EQ(Receiver.Longitude, 0);
    EXPECT_EQ(Receiver.HDOP, 0);
    EXPECT_EQ(Receiver.Altitude, 0);
    EXPECT_EQ(Receiver.FixQuality, 0);
    EXPECT_EQ(Receiver.Valid, Both);
    EXPECT_EQ(Receiver.SeaLevel, 46.9F) << "without its unit the rest is not read";
    EXPECT_EQ(Receiver.DGPSStation, 120U);
}

TEST_F(gnssNMEATest, SetsNothingByASentenceWithoutFields)
{
    for (const char* text : {"GPGGA", "GPRMC", "GPGLL", "GPGSA"}) {
        Feed(sentence(text));
        EXPECT_EQ(Receiver.Valid, 0) << text;
    }
    EXPECT_EQ(Listener.NewData, 4U);
}

TEST_F(gnssNMEATest, StopsAGGAWhereItsFieldsEnd)
{
    struct row {
        const char* Text;
        uint8_t Valid;
        double Latitude;
        uint8_t Quality;
        float HDOP;
        float SeaLevel;
        float Age;
        uint32_t Station;
    };
    constexpr row rows[] = {
        {"1", 1, 9, 9, 9, 9, 9, 9},
        {"1,300,N", 1, 3, 9, 9, 9, 9, 9},
        {"1,300,N,400,E", 1, 3, 9, 9, 9, 9, 9},
        {"1,300,N,400,E,5", 1, 3, 5, 9, 9, 9, 9},
        {"1,300,N,400,E,5,7", 1, 3, 5, 9, 9, 9, 9},
        {"1,300,N,400,E,5,7,0.5", 1, 3, 5, 0.5F, 9, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20", 3, 3, 5, 0.5F, 9, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,M", 3, 3, 5, 0.5F, 9, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,m,30,M,2,3", 3, 3, 5, 0.5F, 9, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,M,30", 3, 3, 5, 0.5F, 30, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,M,30,M", 3, 3, 5, 0.5F, 30, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,M,30,,2,3", 3, 3, 5, 0.5F, 30, 9, 9},
        {"1,300,N,400,E,5,7,0.5,20,M,30,M,2", 3, 3, 5, 0.5F, 30, 2, 9},
        {"1,300,N,400,E,5,7,0.5,20,M,30,M,2,3", 3, 3, 5, 0.5F, 30, 2, 3},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Text);
        Receiver.Valid = 0;
        Receiver.Latitude = 9;
        Receiver.FixQuality = 9;
        Receiver.HDOP = Receiver.SeaLevel = Receiver.DGPSAge = 9;
        Receiver.DGPSStation = 9;
        Feed(sentence(std::string("GPGGA,") + each.Text));
        EXPECT_EQ(Receiver.Valid, each.Valid);
        EXPECT_EQ(Receiver.Latitude, each.Latitude);
        EXPECT_EQ(Receiver.FixQuality, each.Quality);
        EXPECT_EQ(Receiver.HDOP, each.HDOP);
        EXPECT_EQ(Receiver.SeaLevel, each.SeaLevel);
        EXPECT_EQ(Receiver.DGPSAge, each.Age);
        EXPECT_EQ(Receiver.DGPSStation, each.Station);
    }
}

TEST_F(gnssNMEATest, ReadsALatitudeWithoutItsLetterAsTheNextField)
{
    Feed(sentence("GPGGA,1,5"));
    EXPECT_EQ(Receiver.FixQuality, 5) << "neither coordinate takes a lone field";
    Feed(sentence("GPGLL,123456"));
    EXPECT_EQ(Receiver.TimeOfDay, 12 * 3600 + 34 * 60 + 56);
    EXPECT_EQ(Receiver.Latitude, 0);
}

TEST_F(gnssNMEATest, KeepsTheFixQualityWhenAGGATellsAnImpossibleOne)
{
    for (const char* quality : {"9", "10", "256", "99999999999999999999", "-1"}) {
        Receiver.FixQuality = 3;
        Feed(sentence(std::string("GPGGA,1,300,N,400,E,") + quality));
        EXPECT_EQ(Receiver.FixQuality, 3) << quality;
    }
    Feed(sentence("GPGGA,1,300,N,400,E,8"));
    EXPECT_EQ(Receiver.FixQuality, 8);
}

TEST_F(gnssNMEATest, TakesTheFixQualityOfAGLLOnlyWhereThereIsNone)
{
    struct row {
        uint8_t Before;
        const char* Status;
        uint8_t After;
    };
    constexpr row rows[] = {
        {0, "A,A", 1}, {0, "A,D", 2},  {0, "A,E", 6}, {0, "A,R", 0}, {0, "A,F", 0},
        {0, "A,", 0},  {0, "A,,", 0},  {4, "A,A", 4}, {4, "A,E", 4}, {4, "V,N", 0},
        {4, ",N", 0},  {4, "AA,A", 0}, {4, "V", 4},   {4, "a,A", 0}, {0, "A,Axx", 1},
    };
    for (const row& each : rows) {
        Receiver.FixQuality = each.Before;
        Feed("$GPGLL,300,N,400,E,1," + std::string(each.Status) + "\r\n");
        EXPECT_EQ(Receiver.FixQuality, each.After) << int{each.Before} << each.Status;
    }
    EXPECT_EQ(Receiver.Valid, 0) << "this sentence makes nothing valid";
}

TEST_F(gnssNMEATest, ReadsAFullRMC)
{
    Feed(sentence("GPRMC,123519,A,4807.038,N,01131.000,W,022.4,084.4,230394,003.1,W,D"));
    EXPECT_EQ(Receiver.TimeOfDay, 12 * 3600 + 35 * 60 + 19);
    EXPECT_NEAR(Receiver.Latitude, 48 + 7.038 / 60, Near);
    EXPECT_NEAR(Receiver.Longitude, -(11 + 31.0 / 60), Near);
    EXPECT_NEAR(Receiver.Speed, 22.4 * 1.852, 1e-5);
    EXPECT_EQ(Receiver.Track, 84.4F);
    EXPECT_EQ(Receiver.Day, 23);
    EXPECT_EQ(Receiver.Month, 3);
    EXPECT_EQ(Receiver.Year, 1994);
    EXPECT_EQ(Receiver.MagVar, -3.1F);
    EXPECT_EQ(Receiver.FixQuality, 2);
    EXPECT_EQ(Receiver.Valid, Both);
}

TEST_F(gnssNMEATest, ReadsTheUnitsOfAnRMCWhereTheyStand)
{
    struct row {
        const char* Rest;
        float Speed;
        float Track;
        uint8_t Day;
        float MagVar;
        uint8_t Quality;
    };
    constexpr float knots = 1.852F;
    constexpr row rows[] = {
        {"10,20,010203,4,W,D", 10 * knots, 20, 1, -4, 2},
        {"10,N,20,010203,4,E,D", 10 * knots, 20, 1, 4, 2},
        {"10,K,20,T,010203,4,E,D", 10, 20, 1, 4, 2},
        {"10,Nx,20,Tx,010203,4,Wx,Dx", 10 * knots, 20, 1, -4, 2},
        {"10", 10, 9, 9, 9, 1},
        {"10,", 10, 9, 9, 9, 1},
        {"10,20", 10 * knots, 20, 9, 9, 1},
        {"10,K", 10, 9, 9, 9, 1},
        {"10,,010203", 10 * knots, 0, 1, 9, 1},
        {"10,20,T", 10 * knots, 20, 9, 9, 1},
        {"10,20,010203", 10 * knots, 20, 1, 9, 1},
        {"10,20,010203,4", 10 * knots, 20, 1, 4, 1},
        {"10,20,010203,4,D", 10 * knots, 20, 1, 4, 2},
        {"10,20,010203,4,X,D", 10 * knots, 20, 1, 4, 0},
        {"10,20,010203,,,D", 10 * knots, 20, 1, 0, 2},
        {"10,20,010203,-4,W", 10 * knots, 20, 1, 4, 1},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Rest);
        Receiver.Speed = Receiver.Track = Receiver.MagVar = 9;
        Receiver.Day = 9;
        Receiver.FixQuality = 0;
        Feed("$GPRMC,1,A,300,N,400,E," + std::string(each.Rest) + "\r\n");
        EXPECT_FLOAT_EQ(Receiver.Speed, each.Speed);
        EXPECT_EQ(Receiver.Track, each.Track);
        EXPECT_EQ(Receiver.Day, each.Day);
        EXPECT_EQ(Receiver.MagVar, each.MagVar);
        EXPECT_EQ(Receiver.FixQuality, each.Quality);
    }
}

TEST_F(gnssNMEATest, MakesValidWhatAnRMCReaches)
{
    struct row {
        const char* Text;
        uint8_t Valid;
    };
    constexpr row rows[] = {{"1", 0},
                            {"1,A", 0},
                            {"1,A,300", 2},
                            {"1,A,300,N", 2},
                            {"1,A,300,N,400,E,1,2", 2},
                            {"1,A,300,N,400,E,1,2,010203", 3}};
    for (const row& each : rows) {
        Receiver.Valid = 0;
        Feed(sentence(std::string("GPRMC,") + each.Text));
        EXPECT_EQ(Receiver.Valid, each.Valid) << each.Text;
    }
}

TEST_F(gnssNMEATest, ReadsALoneLatitudeOfAnRMCAsItsSpeed)
{
    Feed(sentence("GPRMC,1,A,300"));
    EXPECT_EQ(Receiver.Speed, 300);
    EXPECT_EQ(Receiver.Latitude, 0);
}

TEST_F(gnssNMEATest, TakesTheFixQualityFromStatusAndModeOfAnRMC)
{
    struct row {
        uint8_t Before;
        const char* Status;
        const char* Mode;
        uint8_t After;
    };
    constexpr row rows[] = {
        {0, "A", "A", 1}, {0, "A", "D", 2}, {0, "A", "E", 6}, {0, "A", "F", 5},
        {0, "A", "R", 4}, {0, "A", "N", 0}, {0, "A", "", 1},  {4, "A", "", 4},
        {4, "A", "A", 1}, {4, "V", "A", 0}, {4, "X", "", 4},  {4, "", "D", 2},
        {0, "X", "A", 0}, {0, "V", "D", 0}, {3, "Vx", "", 0}, {0, "Ax", "", 1},
    };
    for (const row& each : rows) {
        Receiver.FixQuality = each.Before;
        Feed(sentence("GPRMC,1," + std::string(each.Status) + ",300,N,400,E,1,2,010203,4,E," + each.Mode));
        EXPECT_EQ(Receiver.FixQuality, each.After) << int{each.Before} << each.Status << each.Mode;
    }
}

TEST_F(gnssNMEATest, ReadsDatesFrom1970To2069)
{
    struct row {
        const char* Text;
        unsigned Day;
        unsigned Month;
        unsigned Year;
    };
    constexpr row rows[] = {{"010269", 1, 2, 2069},
                            {"010270", 1, 2, 1970},
                            {"311299", 31, 12, 1999},
                            {"010100", 1, 1, 2000},
                            {"", 0, 0, 2000},
                            {"999999", 99, 99, 1999},
                            {"99999999999", 429496 % 256, 72, 1995}};
    for (const row& each : rows) {
        Feed(sentence("GPRMC,1,A,300,N,400,E,1,2," + std::string(each.Text) + ","));
        Feed("$GPRMC,1,A,300,N,400,E,1,2," + std::string(each.Text) + ",4\n");
        EXPECT_EQ(Receiver.Day, each.Day) << each.Text;
        EXPECT_EQ(Receiver.Month, each.Month) << each.Text;
        EXPECT_EQ(Receiver.Year, each.Year) << each.Text;
    }
}

TEST_F(gnssNMEATest, KeepsEveryFieldThatASentenceDoesNotCarry)
{
    Feed(rmc());
    const float speed = Receiver.Speed;
    Feed(sentence("GPGGA,123520,0000.000,N,00000.000,E,0,00,99.9,0.0,M,0.0,M,,"));
    EXPECT_EQ(Receiver.Speed, speed);
    EXPECT_EQ(Receiver.Year, 1994);
    EXPECT_EQ(Receiver.Valid, Both) << "a lost fix makes nothing invalid";
}

}  // namespace
