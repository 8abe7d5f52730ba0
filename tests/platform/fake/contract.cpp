#include "tests/platform/contract.h"

#include "tests/fakes/fakes.h"

namespace {

constexpr char16_t Folder[] = u"/contract";

}  // namespace

const char* const ContractKey = "Software\\Vintermark\\Skyreckoning contract";

bool contractIsFake()
{
    return true;
}

void contractReset()
{
    fakeReset();
    fileMakeFolder(Folder);
}

std::u16string contractFolder()
{
    return Folder;
}

void contractPassTime(int64_t nanoseconds)
{
    fakeClockMove(nanoseconds);
}
