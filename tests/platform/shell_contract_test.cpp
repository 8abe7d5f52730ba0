#include "platform/shell.h"

#include "tests/platform/contract.h"

namespace {

// What is opened is in the tests of each backend: no suite may open a browser.
using shellContract = contractTest;

TEST_F(shellContract, RefusesWhatIsNoTarget)
{
    const std::string refused[] = {
        "",
        "-",
        "-v",
        "--help",
        std::string("https://a\0b", 11),
        std::string(1, '\0'),
        "https://a\nb",
        "a\rb",
        "\t",
        "a\x1B[0m",
        "a\x7F",
        "\x01",
    };
    for (const std::string& target : refused) {
        SCOPED_TRACE(target);
        EXPECT_FALSE(shellOpen(target));
        EXPECT_FALSE(shellHelp(target));
    }
}

TEST(shellTarget, IsValidWithoutControlCharactersAndOptions)
{
    for (const char* target :
         {"a", "https://skyreckoning.example/?a=b&c", "mailto:hello@skyreckoning.example",
          "/a file/with blanks", "C:\\a", "a-b", "\xC3\xA4", "\xFF"})
        EXPECT_TRUE(shellTargetIsValid(target)) << target;
}

}  // namespace
