#include "foundations/settings/settingsRaw.h"

#include "foundations/text/utfConvert.h"

std::string settingsRaw::Text() const
{
    std::u16string units;
    units.reserve(Size / 2);
    for (uint32_t i = 0; i + 1 < Size; i += 2)
        units += static_cast<char16_t>(Bytes[i] | Bytes[i + 1] << 8);
    std::string text;
    utfAppend8From16(text, units.data(), units.size());
    return text;
}
