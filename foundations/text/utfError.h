// The text of a system error, for people.
#pragma once

#include <cstdint>
#include <string>

// "Error 5 - Access is denied.": the code and the system's words, or "Unknown error !!!" when it has none;
// without line ends behind it. Any thread.
std::string utfErrorText(uint32_t code);
