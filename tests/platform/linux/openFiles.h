// The descriptors that the test program has at this moment.
#pragma once

#include <vector>

std::vector<int> openFiles();

// Those of them, but for `known` ones, that a program which is started would have too.
std::vector<int> openFilesToInherit(const std::vector<int>& known);

// While it lives, the standard input is closed, as in a program that was started without its streams.
class closedInput
{
public:
    closedInput();
    ~closedInput();
    closedInput(const closedInput&) = delete;
    closedInput& operator=(const closedInput&) = delete;

    // Whether something has taken its place.
    bool IsTaken() const;

private:
    const int Kept;
};
