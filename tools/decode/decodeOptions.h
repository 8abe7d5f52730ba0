// What skydecode is asked to do.
#pragma once

#include "platform/clock.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct decodeOptions {
    // Bits of Protocols.
    static constexpr uint8_t NMEA = 1;
    static constexpr uint8_t TSIP = 2;
    static constexpr uint8_t UBX = 4;

    uint8_t Protocols = NMEA | TSIP | UBX;
    size_t Chunk = 4096;             // bytes that are fed at a time
    std::optional<clockDate> Today;  // without it, what the system says
    const char* File = nullptr;      // null for standard input
    bool Help = false;               // show how to call the program, do nothing else
};

// A page that says how to call the program.
extern const char decodeUsage[];

// Takes the arguments, without the program's name. Nothing when they make no sense; `fault` then is a line
// that says why, without its end.
std::optional<decodeOptions> decodeParse(std::span<const char* const> arguments, std::string& fault);
