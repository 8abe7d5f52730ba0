// Texts on their way between the seam's UTF-8 and the system's UTF-16. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// A name or argument for the system. Nothing when the text is not whole UTF-8 or holds a NUL: the system
// would take what comes before it for the name of something else.
std::optional<std::u16string> textTo16(std::string_view text);

// A text of the system, up to its first NUL. Empty when it is not whole UTF-16.
std::string textTo8(std::u16string_view text);

// The same units under the system's type.
inline const wchar_t* textUnits(const std::u16string& text)
{
    return reinterpret_cast<const wchar_t*>(text.c_str());
}

inline wchar_t* textUnits(char16_t* buffer)
{
    return reinterpret_cast<wchar_t*>(buffer);
}
