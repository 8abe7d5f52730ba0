#include "foundations/text/utfField.h"

namespace {

constexpr char NoSign = 0;

char SignOf(utfFlags flags, bool negative)
{
    if (negative)
        return '-';
    if (flags.Has(utfFmt::PlusSign))
        return '+';
    return flags.Has(utfFmt::SpaceSign) ? ' ' : NoSign;
}

}  // namespace

void utfFinishField(std::string& target, size_t start, int32_t width, utfFlags flags, bool negative)
{
    const char sign = SignOf(flags, negative);
    const size_t length = target.size() - start;
    size_t padding =
        width > 0 && static_cast<size_t>(width) > length ? static_cast<size_t>(width) - length : 0;
    if (padding > 0 && flags.Has(utfFmt::ZeroFill) && !flags.Has(utfFmt::LeftAlign)) {
        target.insert(start, padding, '0');
        if (sign != NoSign)
            target[start] = sign;
        return;
    }
    if (sign != NoSign) {
        target.insert(start, 1, sign);
        padding -= padding > 0 ? 1 : 0;
    }
    target.insert(flags.Has(utfFmt::LeftAlign) ? target.size() : start, padding, ' ');
}
