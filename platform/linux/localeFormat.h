// What the texts of a locale are made into.
#pragma once

#include <string>
#include <string_view>

// A text in the system's codeset of that name as UTF-8; empty when it cannot be converted.
std::string localeToUTF8(const char* text, const char* codeset);

// What stands between the first two fields of the format of a date or time: "." for "%d.%m.%Y". Empty for
// words, such as the Japanese "year", for these belong to one field and separate nothing.
std::string localeSeparatorIn(std::string_view format);
