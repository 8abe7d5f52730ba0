// For backends: which texts are no service, though the name services of systems take them for one: they skip
// blanks and a sign, cut a number down to what fits, and give a port that nobody named.
#pragma once

#include <string_view>

// Whether the text is a number of no port, or begins as neither a port's number nor a service's name does.
constexpr bool socketIsNoPort(std::string_view service)
{
    constexpr unsigned Last = 65535;
    constexpr std::string_view BlanksAndSigns = " \t\n\v\f\r+-";
    if (!service.empty() && BlanksAndSigns.find(service.front()) != std::string_view::npos)
        return true;
    unsigned number = 0;
    for (const char digit : service) {
        if (digit < '0' || digit > '9')
            return false;
        if (number <= Last)
            number = number * 10 + static_cast<unsigned>(digit - '0');
    }
    return number > Last;
}
