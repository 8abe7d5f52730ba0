// What lies between a receiver and the world: the line, the server's messages, the tape, the command line.
#include "tests/simulator/host.h"
#include "tools/simulator/simArguments.h"
#include "tools/simulator/simModels.h"
#include "tools/simulator/simPeer.h"
#include "tools/simulator/simReplay.h"
#include "tools/simulator/simUart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

hostBytes AllBytes()
{
    hostBytes all;
    for (unsigned byte = 0; byte < 256; ++byte)
        all.push_back(static_cast<uint8_t>(byte));
    return all;
}

TEST(simUart, CarriesBytesUnharmedBetweenEqualSettings)
{
    constexpr simLine Lines[] = {{9600, 'N', 1}, {9600, 'O', 1}, {115200, 'E', 1}, {4800, 'N', 2}};
    for (const simLine& line : Lines) {
        EXPECT_TRUE(simUartAgrees(line, line));
        EXPECT_EQ(simUartMisread(AllBytes(), line, line), AllBytes());
    }
}

TEST(simUart, BearsASmallErrorOfTheRate)
{
    EXPECT_EQ(simUartMisread(AllBytes(), {9600, 'N', 1}, {9700, 'N', 1}), AllBytes());
    EXPECT_TRUE(simUartAgrees({9600, 'N', 1}, {9700, 'N', 1}));
    EXPECT_FALSE(simUartAgrees({9600, 'N', 1}, {10000, 'N', 1}));
}

TEST(simUart, MakesGarbageBetweenRates)
{
    const hostBytes said = nmeaSay("GNRMC,120000.00,A,4722.61400,N,00832.50200,E,0.004,77.52,211126,,,A,V");
    constexpr uint32_t Rates[] = {4800, 9600, 19200, 38400, 57600, 115200};
    for (const uint32_t sender : Rates) {
        for (const uint32_t listener : Rates) {
            if (sender == listener)
                continue;
            const simLine from{sender, 'N', 1};
            const simLine to{listener, 'N', 1};
            EXPECT_FALSE(simUartAgrees(from, to));
            const hostBytes heard = simUartMisread(said, from, to);
            EXPECT_NE(heard, said);
            // A faster listener hears more bytes, a slower one fewer.
            EXPECT_GT(heard.size(), 2u);
            EXPECT_EQ(heard.size() < said.size(), listener < sender) << sender << " to " << listener;
            EXPECT_EQ(std::string(heard.begin(), heard.end()).find("RMC"), std::string::npos);
        }
    }
}

TEST(simUart, ReadsOneWellKnownByteWrongAsAUartDoes)
{
    // At twice the rate a low start bit is the start and the first data bit.
    EXPECT_THAT(simUartMisread(hostBytes{0x00}, {9600, 'N', 1}, {19200, 'N', 1}), ElementsAre(0x00));
    EXPECT_THAT(simUartMisread(hostBytes{0xFF}, {9600, 'N', 1}, {19200, 'N', 1}), ElementsAre(0xFE));
}

TEST(simUart, SeesAWrongParity)
{
    // The parity bit of 1 is low, where a listener without parity wants its stop bit; that of 3 is high.
    EXPECT_THAT(simUartMisread(hostBytes{1}, {9600, 'O', 1}, {9600, 'N', 1}), ElementsAre(0));
    EXPECT_THAT(simUartMisread(hostBytes{3}, {9600, 'O', 1}, {9600, 'N', 1}), ElementsAre(3));
    const hostBytes all = AllBytes();
    const hostBytes heard = simUartMisread(all, {9600, 'O', 1}, {9600, 'N', 1});
    EXPECT_FALSE(simUartAgrees({9600, 'O', 1}, {9600, 'N', 1}));
    EXPECT_NE(heard, all);
    // Where the parity bit is low it is no stop bit: about every second byte is lost.
    EXPECT_GT(std::ranges::count(heard, 0), 50);
    EXPECT_LT(std::ranges::count(heard, 0), 200);
    EXPECT_TRUE(simUartAgrees({9600, 'E', 1}, {9600, 'N', 1})) << "a virtual port cannot tell these apart";
}

TEST(simUart, MakesNothingOfALineThatIsOff)
{
    EXPECT_THAT(simUartMisread(AllBytes(), {9600, 'N', 1}, {0, 'N', 1}), IsEmpty());
    EXPECT_THAT(simUartMisread(AllBytes(), {0, 'N', 1}, {9600, 'N', 1}), IsEmpty());
    EXPECT_FALSE(simUartAgrees({9600, 'N', 1}, {0, 'N', 1}));
}

TEST(simPace, GivesBytesAtTheSpeedOfTheLine)
{
    simPace pace;
    pace.Add(hostBytes(2000, 'x'));
    EXPECT_THAT(pace.Due(5'000'000'000, 960), IsEmpty());
    size_t count = 0;
    for (int64_t step = 1; step <= 200; ++step)
        count += pace.Due(5'000'000'000 + step * 5'000'000, 960).size();
    EXPECT_NEAR(static_cast<double>(count), 960, 1);
    EXPECT_EQ(pace.Size(), 2000 - count);
}

TEST(simPace, SavesNothingUpWhileItRests)
{
    simPace pace;
    EXPECT_THAT(pace.Due(0, 960), IsEmpty());
    EXPECT_THAT(pace.Due(10'000'000'000, 960), IsEmpty());
    pace.Add(hostBytes(100));
    EXPECT_THAT(pace.Due(10'000'000'000, 960), IsEmpty());
    EXPECT_EQ(pace.Due(10'050'000'000, 960).size(), 48u);
}

hostBytes Words(const std::string& text)
{
    return {text.begin(), text.end()};
}

TEST(simPeer, GreetsWithItsVersion)
{
    EXPECT_EQ(simPeer::Greeting(),
              little(0xFFFF0001, 4) + little(29, 4) + Words("Skyreckoning Server v20240612"));
}

TEST(simPeer, WrapsTheStream)
{
    EXPECT_EQ(simPeer::Stream(Words("abc")), Words("GNSS") + little(7, 4) + Words("STRMabc"));
}

TEST(simPeer, TakesWhatClientsSayInAnyCuts)
{
    const hostBytes said = Words("GNSS") + little(6, 4) + Words("STRM") + Words("ab") +  // for the receiver
                           Words("NOOP") + little(3, 4) + Words("xyz") +                 // echoed
                           Words("GNSS") + little(6, 4) + Words("QQQQ") + Words("no") +  // another subkey
                           Words("GNSS") + little(2, 4) + Words("ST") +                  // too short for one
                           Words("????") + little(5, 4) + Words("other") +               // another key
                           Words("NOOP") + little(0, 4) +                                // echoed
                           Words("GNSS") + little(5, 4) + Words("STRM") + Words("c");    // for the receiver
    for (size_t step = 1; step <= said.size(); ++step) {
        simPeer peer;
        hostBytes toReceiver;
        hostBytes reply;
        for (size_t at = 0; at < said.size(); at += step) {
            const std::span<const uint8_t> rest = std::span(said).subspan(at);
            EXPECT_TRUE(peer.Take(rest.first(std::min(step, rest.size())), toReceiver, reply));
        }
        EXPECT_EQ(toReceiver, Words("abc")) << step;
        EXPECT_EQ(reply, Words("NOOP") + little(3, 4) + Words("xyz") + Words("NOOP") + little(0, 4)) << step;
    }
}

TEST(simPeer, EndsWithALengthThatIsTooGreat)
{
    for (const uint32_t length : {(16u << 20) + 1, 0xFFFFFFFFu}) {
        simPeer peer;
        hostBytes toReceiver;
        hostBytes reply;
        EXPECT_FALSE(peer.Take(Words("GNSS") + little(length, 4), toReceiver, reply));
    }
    simPeer peer;
    hostBytes toReceiver;
    hostBytes reply;
    EXPECT_TRUE(peer.Take(Words("NOOP") + little(16u << 20, 4), toReceiver, reply));
    EXPECT_TRUE(peer.Take(hostBytes(16u << 20), toReceiver, reply));
    EXPECT_EQ(reply.size(), 8 + (16u << 20));
}

TEST(simReplay, SendsTheRecordingAtItsRate)
{
    simReplay replay(AllBytes(), {.BytesPerSecond = 100});
    EXPECT_THAT(replay.Advance(7'000'000'000), IsEmpty());
    hostBytes sent = replay.Advance(8'000'000'000);
    EXPECT_EQ(sent.size(), 100u);
    EXPECT_FALSE(replay.Ended());
    for (int64_t step = 0; step < 100; ++step)
        sent = sent + replay.Advance(8'000'000'000 + step * 20'000'000);
    EXPECT_EQ(sent, AllBytes());
    EXPECT_TRUE(replay.Ended());
    EXPECT_THAT(replay.Advance(100'000'000'000), IsEmpty());
}

TEST(simReplay, BeginsAgainWhenItIsTold)
{
    simReplay replay(Words("abc"), {.BytesPerSecond = 10, .Loop = true});
    replay.Advance(0);
    EXPECT_EQ(replay.Advance(800'000'000), Words("abcabcab"));
    EXPECT_FALSE(replay.Ended());
}

TEST(simReplay, StopsWhileItIsUnplugged)
{
    simReplay replay(Words("abcdef"), {.BytesPerSecond = 10});
    replay.Advance(0);
    EXPECT_EQ(replay.Advance(200'000'000), Words("ab"));
    replay.Faults.Unplugged = true;
    EXPECT_THAT(replay.Advance(5'000'000'000), IsEmpty());
    replay.Faults.Unplugged = false;
    EXPECT_EQ(replay.Advance(5'200'000'000), Words("cd"));
}

TEST(simReplay, HasNothingToSayOfAnEmptyFile)
{
    simReplay replay({}, {.Loop = true});
    replay.Advance(0);
    EXPECT_THAT(replay.Advance(1'000'000'000), IsEmpty());
    EXPECT_TRUE(replay.Ended());
}

simArguments Read(std::initializer_list<std::string_view> words)
{
    return simReadArguments(std::vector<std::string_view>(words));
}

TEST(simArguments, KnowsEveryModelByItsName)
{
    constexpr std::string_view Names[] = {"ublox7",     "m8",       "m9",       "neo-m9n", "zed-f9r",
                                          "m10",        "max-m10s", "neo-f10n", "acutime", "lassen",
                                          "resolution", "nmea",     "nvs"};
    EXPECT_EQ(simModels().size(), std::size(Names));
    for (const std::string_view name : Names) {
        const simArguments arguments = Read({"--model", name, "--pty", "ttySKY0"});
        EXPECT_EQ(arguments.Wrong, "") << name;
        EXPECT_EQ(arguments.Receiver.Model, simModelNamed(name)->Model);
        EXPECT_EQ(arguments.Receiver.Line, simModelNamed(name)->Line) << "as from its factory";
    }
}

TEST(simArguments, ReadsAllThatCanBeSaid)
{
    const simArguments arguments = Read({"--model",
                                         "m8",
                                         "--line",
                                         "19200O2",
                                         "--port",
                                         "usb",
                                         "--nmea",
                                         "--rate",
                                         "5",
                                         "--position",
                                         "-33.5,-70.25,520",
                                         "--time",
                                         "2020-01-01T00:00:00",
                                         "--seed",
                                         "9",
                                         "--silence",
                                         "--nak",
                                         "--lose",
                                         "3",
                                         "--speed",
                                         "24",
                                         "--errors",
                                         "0.25",
                                         "--cut",
                                         "0.5",
                                         "--unplugged",
                                         "--serve",
                                         "0"});
    EXPECT_EQ(arguments.Wrong, "");
    EXPECT_EQ(arguments.Receiver.Line, (simLine{19200, 'O', 2}));
    EXPECT_EQ(arguments.Receiver.Port, simPort::USB);
    EXPECT_TRUE(arguments.Receiver.NMEA);
    EXPECT_EQ(arguments.Receiver.Rate, 5u);
    EXPECT_EQ(arguments.Receiver.Place.Latitude, -33.5);
    EXPECT_EQ(arguments.Receiver.Place.Longitude, -70.25);
    EXPECT_EQ(arguments.Receiver.Place.Altitude, 520);
    EXPECT_EQ(arguments.Receiver.StartUtcNs, 1'577'836'800'000'000'000);
    EXPECT_TRUE(arguments.FixedStart);
    EXPECT_EQ(arguments.Speed, 24);
    EXPECT_EQ(arguments.Receiver.Seed, 9u);
    EXPECT_TRUE(arguments.Faults.Silent && arguments.Faults.Nak && arguments.Faults.Unplugged);
    EXPECT_EQ(arguments.Faults.LoseAnswers, 3u);
    EXPECT_EQ(arguments.Faults.ByteErrors, 0.25);
    EXPECT_EQ(arguments.Faults.Cut, 0.5);
    EXPECT_EQ(arguments.Serve, 0);
    EXPECT_THAT(arguments.Pty, IsEmpty());
}

TEST(simArguments, ReplaysAtTheSpeedOfTheLine)
{
    EXPECT_EQ(Read({"replay", "x.ubx", "--serve", "0"}).Recording.BytesPerSecond, 11'520);
    EXPECT_EQ(Read({"replay", "x.ubx", "--serve", "0", "--line", "9600N1"}).Recording.BytesPerSecond, 960);
    const simArguments fast =
        Read({"replay", "x.ubx", "--line", "9600N1", "--rate", "50000", "--loop", "--pty", "ttyA"});
    EXPECT_EQ(fast.Wrong, "");
    EXPECT_EQ(fast.Replay, "x.ubx");
    EXPECT_EQ(fast.Recording.BytesPerSecond, 50'000);
    EXPECT_TRUE(fast.Recording.Loop);
    EXPECT_EQ(fast.Recording.Line, (simLine{9600, 'N', 1}));
}

TEST(simArguments, TellsWhatIsWrongInOneLine)
{
    const std::vector<std::vector<std::string_view>> Rows = {
        {},
        {"--model", "m8"},
        {"--model"},
        {"--model", "m77", "--serve", "0"},
        {"--colour", "--serve", "0"},
        {"--pty", "SKY0"},
        {"--pty", "tty"},
        {"--pty", "tty/../x"},
        {"--serve", "70000"},
        {"--serve", "-1"},
        {"--serve", "x"},
        {"--serve", "0", "--line", "9600"},
        {"--serve", "0", "--line", "9600X1"},
        {"--serve", "0", "--line", "9600N3"},
        {"--serve", "0", "--line", "N1"},
        {"--serve", "0", "--rate", "0"},
        {"--serve", "0", "--rate", "26"},
        {"--serve", "0", "--speed", "0.5"},
        {"--serve", "0", "--speed", "101"},
        {"--serve", "0", "--speed", "soon"},
        {"--serve", "0", "--position", "47"},
        {"--serve", "0", "--position", "91,0"},
        {"--serve", "0", "--position", "1,2,3,4"},
        {"--serve", "0", "--time", "yesterday"},
        {"--serve", "0", "--errors", "2"},
        {"--serve", "0", "--port", "lpt1"},
        {"replay"},
        {"replay", "x"},
    };
    for (const std::vector<std::string_view>& words : Rows) {
        const simArguments arguments = simReadArguments(words);
        EXPECT_THAT(arguments.Wrong, Not(IsEmpty())) << (words.empty() ? "" : words.back());
        EXPECT_EQ(arguments.Wrong.find('\n'), std::string::npos);
    }
}

TEST(simArguments, ExplainsEverything)
{
    EXPECT_TRUE(Read({"--help"}).Help);
    EXPECT_EQ(Read({"--help"}).Wrong, "");
    for (const char* const word : {"--model", "--pty", "--serve", "--line", "--nmea", "--speed", "neo-f10n",
                                   "resolution", "silence on|off", "replay FILE", "--loop"})
        EXPECT_THAT(simUsage(), HasSubstr(word));
}

}  // namespace
