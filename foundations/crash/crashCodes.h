// Exceptions by number.
#pragma once

#include <cstdint>
#include <string_view>

constexpr uint32_t crashNonContinuable = 1;  // a flag of an exception

// A C++ exception of the compiler that Windows programs are commonly made with, and what its first parameter
// is then. Parts of the system throw it.
constexpr uint32_t crashCompilerException = 0xE06D7363;
constexpr uint64_t crashCompilerMagic = 0x19930520;

// The name with a blank in front, " Unknown exception" when there is none.
std::string_view crashCodeName(uint32_t code);
