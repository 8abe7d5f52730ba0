#include "platform/process.h"

#include "tests/platform/contract.h"
#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

using processNative = contractTest;

const std::vector<std::string> Awkward = {"",
                                          "plain",
                                          "with blanks",
                                          " both ends ",
                                          "tab\there",
                                          "\"",
                                          "\"quoted\"",
                                          "half \"quote",
                                          "back\\slash",
                                          "ends with \\",
                                          "ends with two \\\\",
                                          "\\\"",
                                          "\\\\\"",
                                          "a\\\\b\\\" c",
                                          "*",
                                          "?",
                                          "$HOME",
                                          "%PATH%",
                                          "'single'",
                                          "a;b|c&d<e>f^g",
                                          "--",
                                          "last"};

CHILD_TEST(ComparesItsArguments)
{
    childEnd(childArguments() == Awkward);
}

TEST_F(processNative, PassesArgumentsAsTheyAre)
{
    EXPECT_EQ(childRun("ComparesItsArguments", Awkward), ChildGood);
}

CHILD_TEST(EndsWithTheCodeGiven)
{
    std::_Exit(std::stoi(childArguments().at(0)));
}

TEST_F(processNative, GivesTheExitCode)
{
    for (const int code : {0, 1, 2, 127, 128, 255}) {
        SCOPED_TRACE(code);
        EXPECT_EQ(childRun("EndsWithTheCodeGiven", {std::to_string(code)}), code);
    }
}

CHILD_TEST(Stays)
{
    childStay();
}

TEST_F(processNative, EndsAProcessAtOnce)
{
    processHandle* const process = childStart("Stays");
    ASSERT_NE(process, nullptr);
    processKill(process);
    EXPECT_EQ(processWait(process), -1);
}

TEST_F(processNative, StartsNoProgramThatIsMissing)
{
    EXPECT_EQ(processStart({processPath() + " that is missing"}), nullptr);
}

CHILD_TEST(HasAnEnvironment)
{
    const char* const path = std::getenv("PATH");
    childEnd(path != nullptr && path[0] != 0);
}

TEST_F(processNative, PassesTheEnvironment)
{
    EXPECT_EQ(childRun("HasAnEnvironment"), ChildGood);
}

CHILD_TEST(WritesToItsStreams)
{
    std::fputs("to the output", stdout);
    std::fputs("to the errors", stderr);
    std::fflush(nullptr);
    childEnd(true);
}

TEST_F(processNative, PassesTheStandardStreams)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(childRun("WritesToItsStreams"), ChildGood);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("to the output"), std::string::npos);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("to the errors"), std::string::npos);
}

}  // namespace
