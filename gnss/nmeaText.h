// Fast questions about the text of a sentence, eight bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// How many bytes stand before the first CR or LF; all, if there is none.
size_t nmeaLineLength(std::span<const uint8_t> bytes);

// All bytes combined by XOR.
uint8_t nmeaChecksum(std::string_view text);

// Appends the fields between commas, empty ones too; but a comma at the very end begins no field.
void nmeaSplit(std::string_view text, std::vector<std::string_view>& fields);
