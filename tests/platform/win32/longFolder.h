// A folder whose path alone is longer than the system's old limit of 260 units.
#pragma once

#include <string>

// It stands in the scratch folder. Its end gives its parent a short name, because the library that empties
// the scratch folder does not reach down such paths.
class longFolder
{
public:
    longFolder();
    ~longFolder();
    longFolder(const longFolder&) = delete;
    longFolder& operator=(const longFolder&) = delete;

    const std::u16string Parent;
    const std::u16string Path;
};
