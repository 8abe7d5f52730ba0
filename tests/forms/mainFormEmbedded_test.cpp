// The main form in a program that hands it the receiver's bytes.
#include "tests/forms/mainFormTest.h"

#include <algorithm>

namespace {

using testing::ElementsAre;

class mainFormEmbeddedTest : public mainFormTest
{
protected:
    // What the host was told of the role, in order.
    std::vector<unsigned> Told() const
    {
        std::vector<unsigned> told;
        std::copy_if(Codes.begin(), Codes.end(), std::back_inserter(told),
                     [](unsigned code) { return code == notifyEmbedded || code == notifyUnembedded; });
        return told;
    }
    bool HasRowOfPort() const { return Form->PortBox->HasState(stateVisible); }
    bool HasRowOfAddress() const { return Form->AddressEdit->HasState(stateVisible); }
};

TEST_F(mainFormEmbeddedTest, ItsHostIsToldOnceThatTheRoleIsEnteredAndOnceThatItIsLeft)
{
    Store("Serial port", "COM5");
    ASSERT_TRUE(Open(formEmbedded));
    EXPECT_TRUE(HasRowOfPort());
    Choose("Embedded");
    EXPECT_THAT(Told(), ElementsAre(notifyEmbedded));
    EXPECT_FALSE(HasRowOfPort() || HasRowOfAddress());
    Form->Start();
    EXPECT_THAT(Told(), ElementsAre(notifyEmbedded));
    Choose("Network");
    EXPECT_THAT(Told(), ElementsAre(notifyEmbedded, notifyUnembedded));
    EXPECT_TRUE(HasRowOfAddress());
}

TEST_F(mainFormEmbeddedTest, TheRoleIsOfferedToHostsAlone)
{
    Store("Connection", "Embedded");
    Open();
    EXPECT_EQ(Name(Form->RoleBox), "Serial port");
    EXPECT_TRUE(Told().empty());
    EXPECT_TRUE(HasRowOfPort());
}

}  // namespace
