#include "tests/platform/screen/drawContract.h"

bool drawContractHasPixels()
{
    return false;
}

const char* drawContractLacks(drawAbility)
{
    return nullptr;
}

std::optional<uint32_t> drawContractScreen(int32_t, int32_t)
{
    return std::nullopt;
}
