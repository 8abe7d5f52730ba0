// What must hold whatever the input is: a fuzzer counts an abort as a finding.
#pragma once

#include <cstdlib>

inline void require(bool promise)
{
    if (!promise)
        std::abort();
}
