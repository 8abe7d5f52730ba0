#include "gnss/satIndex.h"

#include <algorithm>
#include <iterator>

void satIndex::Clear()
{
    std::fill(std::begin(Present), std::end(Present), uint64_t{0});
}
