#include "platform/win32/text.h"

#include "foundations/text/utfConvert.h"

// The converters keep what comes before the first fault, so only the way back shows whether there was one.

std::optional<std::u16string> textTo16(std::string_view text)
{
    std::u16string wide;
    utfAppend16From8(wide, text.data(), text.size());
    std::string back;
    utfAppend8From16(back, wide.data(), wide.size());
    if (back != text)
        return std::nullopt;
    return wide;
}

std::string textTo8(std::u16string_view text)
{
    const std::u16string_view upToNul = text.substr(0, text.find(u'\0'));
    std::string narrow;
    utfAppend8From16(narrow, upToNul.data(), upToNul.size());
    std::u16string back;
    utfAppend16From8(back, narrow.data(), narrow.size());
    return back == upToNul ? narrow : std::string();
}
