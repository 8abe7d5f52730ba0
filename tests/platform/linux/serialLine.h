// A virtual serial port of the test's own, found by the program under its name, with the test at the far end.
#pragma once

#include "tests/platform/linux/configuration.h"

#include <string>
#include <string_view>

class serialLine
{
public:
    explicit serialLine(const std::string& name = "ttySKY0");
    ~serialLine();
    serialLine(const serialLine&) = delete;
    serialLine& operator=(const serialLine&) = delete;

    // The far end goes, and with it the port.
    void Unplug();

    // The descriptor of the far end.
    int FarEnd() const { return Far; }

    size_t Send(std::string_view bytes);
    std::string Received();  // since the beginning

    // From now on nothing is taken off the line.
    void Die() { Dead = true; }

    const std::string Name;
    const std::filesystem::path Runtime;  // the folder in which the port is looked for lies here
    std::string Device;                   // the terminal itself

private:
    const variableSet Bound;
    int Far = -1;
    int Held = -1;  // the port stays as it is between two that open it
    bool Dead = false;
    std::string All;
};
