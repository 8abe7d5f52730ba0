// JSON, written from front to back. Outer levels may have a line for each member, while the inner ones are
// kept on the line where they begin, so that a person can read the text as well.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class jsonWriter
{
public:
    // The deepest level whose members have lines of their own; 0 writes all on one line.
    explicit jsonWriter(size_t levelsInLines) : LevelsInLines(levelsInLines) {}

    // Every value in an object stands behind its key; those in an array have none.
    jsonWriter& Key(std::string_view name);

    void BeginObject() { Begin('{', '}'); }
    void BeginArray() { Begin('[', ']'); }

    // Ends the object or the array that was begun last.
    void End();

    void Text(std::string_view utf8);
    void Truth(bool value);
    void Count(uint64_t value);

    // As many digits as it takes to read the same number back; null for what is not finite.
    void Number(double value);

    const std::string& Result() const { return Json; }

private:
    void Begin(char opening, char closing);
    void Separate();
    void NextLine();

    size_t LevelsInLines;
    std::string Json;
    std::string Closings;   // of what is open, the innermost last
    bool IsFirst = true;    // nothing stands yet in what was opened last
    bool AfterKey = false;  // the value of a key follows
};

// The text as JSON has it, with its quotes.
std::string jsonQuoted(std::string_view utf8);
