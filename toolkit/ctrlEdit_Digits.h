// The base of edits with a text of fixed form, in which digits overwrite and the caret jumps over what is
// none: dates, angles and times.
#pragma once

#include "toolkit/ctrlEdit_Spin.h"

#include <string>

class ctrlEdit_Digits : public ctrlEdit_Spin
{
public:
    ctrlEdit_Digits(ctrlWindow* parent, uint32_t width, uint32_t height, uint32_t flags);

    void Paint() override;
    void Focused(bool on) override;
    bool KeyEvent(KeyEv event, uint32_t key) override;

    // Puts "0" in place of each digit that is selected.
    void SelectionDelete() override;

    // On the next digit in the direction from where the caret was; the last one is the end.
    void CaretSet(uint64_t position) override;

protected:
    // Draws the text into the paint rectangle. Behind it this edit may be gone.
    virtual void PaintText();

    // Where a digit stands: between marks, in a group of some digits.
    struct digitPlace {
        uint64_t Group = 0;
        uint64_t Index = 0;   // in its group
        uint64_t Behind = 0;  // how many follow in its group
        uint64_t Width() const { return Index + 1 + Behind; }
    };
    static digitPlace PlaceOf(const std::string& text, uint64_t position);

    // Whether a digit may stand at a position of the text, in which it may change its neighbour.
    virtual bool Fits(std::string& text, uint64_t position, char digit) const = 0;

    // The numbers between the marks; a group that is missing is 0.
    static double NumberIn(const std::string& text, uint64_t group);

    // The character at a position, when it is a simple one; something that is no digit otherwise.
    static char At(const std::string& text, uint64_t position);
    static void Put(std::string& text, uint64_t position, char digit);
    static bool IsDigit(char character) { return character >= '0' && character <= '9'; }

    // The first character of a mark, that is the locale's; or of what takes its place.
    static std::string Mark(const std::string& local, const char* otherwise);

private:
    void Overwrite(char digit);
    std::string WithoutSelected() const;
};
