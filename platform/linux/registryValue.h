// A value of the settings' store in words, as a person reads and edits it:
//
//     dword 4003                 32 bits
//     qword 123                  64 bits
//     text "COM3"                UTF-16 with one terminating zero
//     binary 01 02 ff            any bytes
//     raw 7 41 00                the type's number and the bytes, for everything that the other forms would
//     change
#pragma once

#include "platform/registry.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct registryValue {
    registryType Type = registryType::Binary;
    std::vector<uint8_t> Data;
};

std::string registryFormat(const registryValue& value);

// Nothing for what is no value.
std::optional<registryValue> registryParse(std::string_view text);
