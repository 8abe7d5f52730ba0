#include "platform/shell.h"

#include "foundations/text/utfConvert.h"
#include "tests/platform/contract.h"

namespace {

using shellNative = contractTest;

TEST_F(shellNative, HasNoManualThatIsMissing)
{
    std::string folder;
    utfAppend8From16(folder, contractFolder().c_str());
    for (const char* name : {"/Skyreckoning.chm", "/help/index.html", "/none/Skyreckoning.chm", "/"}) {
        EXPECT_FALSE(shellHelp(folder + name)) << name;
        EXPECT_FALSE(shellHelp(folder + name)) << "again " << name;
    }
}

}  // namespace
