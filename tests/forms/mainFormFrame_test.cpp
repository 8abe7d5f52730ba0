// How large the main form is and where, what it keeps until the next start, and how it ends.
#include "tests/forms/mainFormTest.h"

namespace {

using mainFormFrameTest = mainFormTest;

TEST_F(mainFormFrameTest, ItIsAsWideAsItsPageAndGrowsInHeightAlone)
{
    OpenAtPort();
    const auto empty = fakeWindowOf(Form->Handle());
    ASSERT_TRUE(Hear(Position, "NMEA"));
    Toolkit().PumpPending();
    const auto filled = fakeWindowOf(Form->Handle());
    EXPECT_EQ(Form->Width(), Form->Page->LeastWidth() + 8);
    EXPECT_GE(Form->Height(), static_cast<uint32_t>(Form->Page->Y()) + Form->Page->LeastHeight() + 4);
    EXPECT_EQ(filled->Least.Width, filled->Most.Width);
    EXPECT_GT(filled->Least.Height, empty->Least.Height);
    EXPECT_EQ(empty->Least.Height, empty->Most.Height);
    EXPECT_EQ(Form->ResetButton->Y() + static_cast<int32_t>(Form->ResetButton->Height()),
              static_cast<int32_t>(Form->Page->Height()));
}

TEST_F(mainFormFrameTest, APageThatComesBackFindsTheHeightThatItHad)
{
    constexpr uint32_t taller = 150;
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    const uint32_t least = Form->Height();
    Form->Move(Form->X(), Form->Y(), Form->Width(), least + taller);
    Toolkit().PumpPending();
    ASSERT_EQ(Form->Height(), least + taller);
    Choose("Network");
    EXPECT_LT(Form->Height(), least);
    Choose("Serial port");
    ASSERT_TRUE(Hear(Position, "NMEA"));
    EXPECT_EQ(Form->Height(), least + taller);
    delete std::exchange(Form, nullptr);
    EXPECT_TRUE(Open());
    ASSERT_TRUE(Hear(Position, "NMEA"));
    EXPECT_EQ(Form->Height(), least + taller) << "and so after a restart";
}

TEST_F(mainFormFrameTest, APageThatComesPushesNothingOverTheEdgeOfTheScreen)
{
    OpenAtPort();
    windowArea work;
    ASSERT_TRUE(Toolkit().Windows().WorkAreaOf(Form->Handle(), work));
    fakeUserMoves(Form->Handle(), work.Right - static_cast<int32_t>(Form->Width()),
                  work.Bottom - static_cast<int32_t>(Form->Height()));
    Toolkit().PumpPending();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    EXPECT_EQ(Form->X() + static_cast<int32_t>(Form->Width()), work.Right);
    EXPECT_EQ(Form->Y() + static_cast<int32_t>(Form->Height()), work.Bottom);
    fakeUserMoves(Form->Handle(), work.Right - 40, 0);
    Toolkit().PumpPending();
    const int32_t x = Form->X();
    ASSERT_GT(x + static_cast<int32_t>(Form->Width()), work.Right);
    Form->InvalidateLayout();
    Toolkit().PumpPending();
    EXPECT_EQ(Form->X(), x) << "where the user puts it is his";
}

TEST_F(mainFormFrameTest, SettingsAndPlaceAreKept)
{
    OpenAtPort();
    Form->ServerPortEdit->Value(4711);
    Form->AddressEdit->EditText("host:99");
    fakeUserMoves(Form->Handle(), 300, 200);
    Toolkit().PumpPending();
    const int32_t x = Form->X();
    delete std::exchange(Form, nullptr);
    EXPECT_TRUE(Open());
    EXPECT_EQ(Form->X(), x);
    EXPECT_EQ(Form->ServerPortEdit->ValueGetI(), 4711);
    EXPECT_EQ(Name(Form->AddressEdit), "host:99");
    EXPECT_EQ(Name(Form->PortBox), "COM5");
}

TEST_F(mainFormFrameTest, ItsButtonsTellTheEntry)
{
    Open();
    Codes.clear();
    Form->AboutButton->Click();
    Form->HelpButton->Click();
    EXPECT_EQ(Codes, (std::vector<unsigned>{notifyAbout, notifyHelp}));
}

TEST_F(mainFormFrameTest, ItMayBeClosedWhileBytesArrive)
{
    OpenAtPort();
    ASSERT_TRUE(Hear(Position, "NMEA"));
    Press(Form->ServerButton);
    std::jthread line([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            fakePortReceive("COM5", Position);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    ASSERT_TRUE(Comes([&] { return Form->Server.ListeningPort() != 0; }));
    fakePeerConnect(Form->Server.ListeningPort());
    const ctrlLife life(Form);
    fakeUserCloses(Form->Handle());
    EXPECT_TRUE(Comes([&] { return !life; }));
    Form = nullptr;
}

}  // namespace
