#include "tests/platform/screen/drawContract.h"

bool drawContractHasPixels()
{
    return true;
}
