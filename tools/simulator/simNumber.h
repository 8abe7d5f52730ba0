// Numbers as people type them.
#pragma once

#include <optional>
#include <string_view>

// A number that is the whole text, with a point and a sign if need be; never infinite.
std::optional<double> simNumberOfText(std::string_view text);
