#include "foundations/text/utfError.h"

#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

namespace {

class utfErrorTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

}  // namespace

TEST_F(utfErrorTest, NamesTheCodeAndTheWordsOfTheSystem)
{
    fakeErrorText(5, "Access is denied.");
    EXPECT_EQ(utfErrorText(5), "Error 5 - Access is denied.");
}

TEST_F(utfErrorTest, SaysSoWhenTheSystemHasNoWords)
{
    EXPECT_EQ(utfErrorText(0), "Error 0 - Unknown error !!!");
    EXPECT_EQ(utfErrorText(123456), "Error 123456 - Unknown error !!!");
}

TEST_F(utfErrorTest, PrintsTheCodeWithoutASign)
{
    EXPECT_EQ(utfErrorText(0xFFFFFFFF), "Error 4294967295 - Unknown error !!!");
}

TEST_F(utfErrorTest, RemovesAllLineEndsBehindTheText)
{
    struct {
        const char* Words;
        const char* Text;
    } const rows[] = {
        {"Done.\r\n", "Error 7 - Done."},
        {"Done.\r\n\n\r\r\n", "Error 7 - Done."},
        {"First\r\nsecond\n", "Error 7 - First\r\nsecond"},
        {"Done. \r\n", "Error 7 - Done. "},
        {"\r\n", "Error 7 - "},
    };
    for (const auto& row : rows) {
        fakeErrorText(7, row.Words);
        EXPECT_EQ(utfErrorText(7), row.Text);
    }
}

TEST_F(utfErrorTest, KeepsWordsInOtherScripts)
{
    fakeErrorText(10061, "\u041E\u0442\u043A\u0430\u0437\u0430\u043D\u043E");
    EXPECT_EQ(utfErrorText(10061), "Error 10061 - \u041E\u0442\u043A\u0430\u0437\u0430\u043D\u043E");
}
