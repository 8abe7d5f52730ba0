#include "tests/platform/win32/longFolder.h"

#include "platform/file.h"
#include "tests/platform/contract.h"

namespace {

constexpr size_t NameLength = 150;

std::u16string LongName(const std::u16string& folder)
{
    return folder + u"/with blanks " + std::u16string(NameLength, u'x');
}

}  // namespace

longFolder::longFolder() : Parent(LongName(contractFolder())), Path(LongName(Parent))
{
    EXPECT_TRUE(fileMakeFolder(Parent));
    EXPECT_TRUE(fileMakeFolder(Path));
}

longFolder::~longFolder()
{
    EXPECT_TRUE(fileRename(Parent, contractFolder() + u"/short"));
}
