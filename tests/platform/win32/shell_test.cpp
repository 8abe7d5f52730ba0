#include "platform/shell.h"

#include "foundations/text/utfConvert.h"
#include "tests/platform/contract.h"

namespace {

using shellWin32 = contractTest;

TEST_F(shellWin32, OpensNoFileThatIsMissing)
{
    std::string folder;
    utfAppend8From16(folder, contractFolder().c_str());
    EXPECT_FALSE(shellOpen(folder + "\\none.txt"));
    EXPECT_FALSE(shellOpen(folder + "\\none\\none.html"));
}

TEST_F(shellWin32, OpensNothingThatIsNoText)
{
    EXPECT_FALSE(shellOpen("https://\xFF\xFE"));
    EXPECT_FALSE(shellHelp("C:\\\xC3.chm"));
}

}  // namespace
