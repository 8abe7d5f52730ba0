// The receivers by the names that people type.
#pragma once

#include "tools/simulator/simReceiver.h"

#include <optional>
#include <span>
#include <string_view>

struct simModelRow {
    std::string_view Name;
    simModel Model;
    simLine Line;  // as it comes from the factory
    std::string_view Description;
};

std::span<const simModelRow> simModels();
const simModelRow* simModelNamed(std::string_view name);  // null when there is none

// "9600N1", "9600O1", "115200N2": rate, parity, stop bits; the bits of a byte are always eight.
std::optional<simLine> simLineOfText(std::string_view text);
