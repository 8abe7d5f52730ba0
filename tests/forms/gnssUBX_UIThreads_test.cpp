#include "tests/await.h"
#include "tests/forms/ubxPageTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

// A receiver that hardly pauses, on a thread of its own and under the lock of its link.
class gnssUBX_UIThreadsTest : public ubxPageTest
{
protected:
    void SetUp() override
    {
        ubxPageTest::SetUp();
        Identify(11);
        Receiver.OnSend = nullptr;
        Host = new pageHost(nullptr, HostX, HostY, HostWidth, HostHeight, 0);
        Host->Show();
        Toolkit().PumpPending();
        Data = std::thread([this] { Deliver(); });
    }
    void TearDown() override
    {
        Stop = true;
        Data.join();
        ubxPageTest::TearDown();
    }

    void Deliver()
    {
        const ubxBytes bytes = ubxBytes(Pulse(1500)) + ubxBytes(SpectrumOf(2)) + ubxBytes(Pulse(-1500));
        while (!Stop) {
            {
                const thrSpinHold hold(Link);
                Feed(bytes);
            }
            ++Delivered;
            // Often, but not so that a slow machine never comes to the end of its paints.
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    // Waits until so many more blocks have come.
    bool Deliveries(unsigned count)
    {
        const unsigned enough = Delivered + count;
        return await([this, enough] { return static_cast<int>(Delivered - enough) >= 0; });
    }

    openUBXPage* MakePage()
    {
        auto* page = new openUBXPage(Host, 0);
        Host->Page = page;
        const thrSpinHold hold(Link);
        page->Source(&Receiver);
        return page;
    }

    void DestroyPage(openUBXPage* page)
    {
        Host->Page = nullptr;
        page->Destroy();
    }

    thrSpin Link;
    std::atomic<bool> Stop{false};
    std::atomic<unsigned> Delivered{0};
    std::thread Data;
};

TEST_F(gnssUBX_UIThreadsTest, ReachesNoPageThatHasGone)
{
    size_t heard = 0;
    for (unsigned round = 0; round < 60; ++round) {
        openUBXPage* page = MakePage();
        page->Show();
        if (round % 3 == 0)
            Toolkit().PumpPending();
        ASSERT_TRUE(Deliveries(round % 4));
        if (round % 2 == 0) {
            page->Source(nullptr);
            heard += page->PPSHistory.size();
            ASSERT_TRUE(Deliveries(1));
            EXPECT_FALSE(Receiver.OnPPS);
        }
        DestroyPage(page);
        EXPECT_FALSE(Receiver.OnPPS);
        EXPECT_FALSE(Receiver.OnRFSpectrum);
    }
    EXPECT_GT(heard, 0U);
}

TEST_F(gnssUBX_UIThreadsTest, HearsNothingMoreOnceItsSourceIsTaken)
{
    for (unsigned round = 0; round < 30; ++round) {
        openUBXPage* page = MakePage();
        ASSERT_TRUE(Deliveries(1));
        page->Source(nullptr);
        const std::vector<float> heard = page->PPSHistory;
        ASSERT_TRUE(Deliveries(2));
        EXPECT_EQ(page->PPSHistory, heard);
        DestroyPage(page);
    }
}

TEST_F(gnssUBX_UIThreadsTest, PaintsAndRefreshesWhileDataCome)
{
    openUBXPage* page = MakePage();
    page->StyleSet(stylePulseEdit);
    page->Show();
    Toolkit().PumpPending();
    constexpr unsigned rounds = 50;
    for (unsigned round = 0; round < rounds; ++round) {
        ASSERT_TRUE(Deliveries(1));
        {
            const thrSpinHold hold(Link);
            page->Refresh();
        }
        page->Tabs->SetCurrent(round % 2);
        page->InvalidateTree(true);
        Toolkit().PumpPending();
    }
    EXPECT_NE(page->PPSWeekBox->ValueGetI(), 0);
    page->Source(nullptr);
    EXPECT_GE(page->PPSHistory.size(), 2U * rounds) << "two pulses in each block";
    DestroyPage(page);
}

}  // namespace
