// For backends: which texts are the number of a service. The name services of systems cut a number down to
// what fits, and give a port that nobody named.
#pragma once

#include <string_view>

// Whether the text is a number, but of no port.
constexpr bool socketIsNoPort(std::string_view service)
{
    constexpr unsigned Last = 65535;
    unsigned number = 0;
    for (const char digit : service) {
        if (digit < '0' || digit > '9')
            return false;
        if (number <= Last)
            number = number * 10 + static_cast<unsigned>(digit - '0');
    }
    return number > Last;
}
