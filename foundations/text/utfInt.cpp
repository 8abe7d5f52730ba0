#include "foundations/text/utfEdit.h"
#include "foundations/text/utfField.h"
#include "foundations/text/utfNumber.h"

namespace {

// A binary number needs a digit for each of the 64 bits.
constexpr size_t MostDigits = 64;

unsigned BaseOf(char conversion)
{
    switch (conversion) {
    case 'x':
    case 'X':
        return 16;
    case 'b':
        return 2;
    case 'o':
        return 8;
    default:
        return 10;
    }
}

// Writes the digits so that they end at `end`, and returns where they begin. A base known to the compiler
// spares the division.
template <unsigned Base>
char* WriteDigits(char* end, uint64_t value, const char* table)
{
    do {
        *--end = table[value % Base];
        value /= Base;
    } while (value != 0);
    return end;
}

char* WriteDigits(char* end, uint64_t value, char conversion)
{
    constexpr char UpperDigits[] = "0123456789ABCDEF";
    constexpr char LowerDigits[] = "0123456789abcdef";
    switch (BaseOf(conversion)) {
    case 16:
        return WriteDigits<16>(end, value, conversion == 'x' ? LowerDigits : UpperDigits);
    case 8:
        return WriteDigits<8>(end, value, UpperDigits);
    case 2:
        return WriteDigits<2>(end, value, UpperDigits);
    default:
        return WriteDigits<10>(end, value, UpperDigits);
    }
}

}  // namespace

std::string& operator<<(std::string& target, const utfInt& number)
{
    if (number.Value == 0 && number.Digits == 0)
        return target.append(number.Width > 0 ? static_cast<size_t>(number.Width) : 0, ' ');

    const bool isSigned = number.Conv == 'd' || number.Conv == 'i';
    const bool negative = isSigned && static_cast<int64_t>(number.Value) < 0;
    const bool prefixed = number.Flags.Has(utfFmt::AltForm) && BaseOf(number.Conv) == 16;

    char digits[MostDigits];
    char* const end = digits + MostDigits;
    // Negated as an unsigned quantity, since the most negative value has no positive twin.
    const char* const begin = WriteDigits(end, negative ? 0 - number.Value : number.Value, number.Conv);
    const auto count = static_cast<size_t>(end - begin);

    const size_t start = target.size();
    if (prefixed)
        target << '0' << number.Conv;
    if (number.Digits > 0 && static_cast<size_t>(number.Digits) > count)
        target.append(static_cast<size_t>(number.Digits) - count, '0');
    target.append(begin, count);
    utfFinishField(target, start, number.Width, number.Flags, negative);
    return target;
}
