// A page reads the satellites on its own thread while a decoder is fed.
#include "tests/gnss/nmeaSentence.h"
#include "tests/gnss/tsipPacket.h"

#include <atomic>
#include <thread>

namespace {

// Reads as a page draws: the lock once per cell, and the number of rows anew each time.
template <class Decoder>
void feedWhileReading(decoderListener<Decoder>& listener, const std::string& stream, unsigned rounds)
{
    std::atomic<bool> done{false};
    std::atomic<unsigned> sweeps{0};
    std::atomic<unsigned> disorder{0};
    std::jthread page([&] {
        gnss& receiver = listener.Receiver;
        do {
            for (size_t row = 0;; ++row) {
                const thrSpinHold hold(receiver.SatsLock);
                if (row >= receiver.Sats.size())
                    break;
                const SatInfo& each = receiver.Sats[row];
                const bool used = each.IsUsed();
                if (each.Elevation < 0 || each.SNR < -1 || (used && each.SvId == 0) ||
                    (row > 0 && receiver.Sats[row - 1].Source > each.Source))
                    ++disorder;
            }
            ++sweeps;
        } while (!done);
    });
    while (sweeps == 0)
        std::this_thread::yield();
    for (unsigned i = 0; i < rounds; ++i)
        listener.Feed(stream);
    done = true;
    page.join();
    EXPECT_EQ(disorder, 0U);
    EXPECT_FALSE(listener.Receiver.Sats.empty());
}

TEST(satsLock, LetsAPageReadWhileNMEAIsFed)
{
    fakeReset();
    decoderListener<gnssNMEA> listener;
    const std::string more =
        std::string(gsv("GP").sat(5U).sat(6U).sat(40U)) + std::string(gsv("GA").sat(3U).signal('7'));
    const std::string fewer = std::string(gsv("GL").sat(65U));
    feedWhileReading(
        listener, more + rmc() + gsa("5,6") + fewer + gsa("6") + rmc() + gsa("65", '2') + more + rmc(), 1000);
}

TEST(satsLock, LetsAPageReadWhileTSIPIsFed)
{
    fakeReset();
    decoderListener<gnssTSIP> listener;
    listener.Receiver.Ident = gnssTSIP::Identification::Known;
    const std::string tracking = tsip(0x5C).u1(6).zeros(11).r4(0.5F).r4(1.5F);
    feedWhileReading(listener,
                     levels({{5, 40}, {6, 41}}) + allInView({5}) + tracking + allInView({6}) +
                         levels({{6, 41}}) + tracking + allInView({5}),
                     1000);
}

TEST(satsLock, LetsAPageReadWhileADecoderRestarts)
{
    fakeReset();
    decoderListener<gnssTSIP> listener;
    feedWhileReading(listener, anyPacket() + anyPacket() + levels({{5, 40}}), 999);
}

}  // namespace
