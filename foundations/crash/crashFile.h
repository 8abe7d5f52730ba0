// The report as it is written: a file of its own in the user's documents folder, without buffer and
// allocation.
#pragma once

#include "foundations/heap/memReportSink.h"
#include "platform/crash.h"

#include <span>
#include <string_view>

class crashFile final : public memReportSink
{
public:
    // Names the file and creates it. Each has a number of its own in its name, which starts again after 999.
    crashFile();
    ~crashFile();
    crashFile(const crashFile&) = delete;
    crashFile& operator=(const crashFile&) = delete;

    // Whether there is a file to write to.
    bool IsOpen() const { return File != crashNoFile; }

    // Where the file is, or where it could not be created.
    const char* Path() const { return Name; }

    // Ends the file. What is written afterwards is lost.
    void Close();

private:
    bool Write(const char* bytes, size_t count) override;

    char Name[crashPathRoom];
    intptr_t File;
};

// Memory at an address: the title, the address rounded down to 8, and `words` eight-byte values, four to a
// row, one more if the address was not aligned.
void crashDump(crashFile& file, std::string_view title, uint64_t address, unsigned words);

// Puts a report's path together, closed by NUL: folder and separator (or the separator alone), then the
// program's name, the time and the number, each as long as it fits, and in any case as much of the ending as
// fits.
void crashPath(std::span<char> target, std::string_view folder, char separator, std::string_view program,
               const crashTime& time, unsigned number);
