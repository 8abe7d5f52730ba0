#include "platform/linux/localeFormat.h"

#include <iconv.h>
#include <strings.h>

namespace {

std::string Converted(iconv_t converter, std::string_view text)
{
    std::string result(4 * text.size() + 16, '\0');
    char* from = const_cast<char*>(text.data());
    size_t fromLeft = text.size();
    char* to = result.data();
    size_t toLeft = result.size();
    if (iconv(converter, &from, &fromLeft, &to, &toLeft) == static_cast<size_t>(-1))
        return {};
    result.resize(result.size() - toLeft);
    return result;
}

// The conversion that begins behind a percent sign, without its flags and width.
size_t ConversionAt(std::string_view format, size_t at)
{
    const size_t found = format.find_first_not_of("-_0^#+123456789EO", at);
    return found == std::string_view::npos ? format.size() : found;
}

bool IsMark(std::string_view text)
{
    constexpr std::string_view Marks = " !\"#%&'()*+,-./:;<=>?@_|~";
    return !text.empty() && text.find_first_not_of(Marks) == std::string_view::npos;
}

}  // namespace

std::string localeToUTF8(const char* text, const char* codeset)
{
    if (strcasecmp(codeset, "UTF-8") == 0)
        return text;
    const iconv_t converter = iconv_open("UTF-8", codeset);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): this is how the system spells failure.
    if (converter == reinterpret_cast<iconv_t>(-1))
        return {};
    std::string result = Converted(converter, text);
    iconv_close(converter);
    return result;
}

std::string localeSeparatorIn(std::string_view format)
{
    const size_t percent = format.find('%');
    if (percent == std::string_view::npos)
        return {};
    const size_t first = ConversionAt(format, percent + 1);
    if (first == format.size())
        return {};
    switch (format[first]) {
    case 'D':
        return "/";
    case 'F':
        return "-";
    case 'R':
    case 'T':
        return ":";
    default:
        break;
    }
    const size_t next = format.find('%', first + 1);
    if (next == std::string_view::npos)
        return {};
    const std::string_view between = format.substr(first + 1, next - first - 1);
    return IsMark(between) ? std::string(between) : std::string();
}
