#include "foundations/text/utfError.h"

#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"
#include "platform/locale.h"

std::string utfErrorText(uint32_t code)
{
    const std::string words = localeErrorText(code);
    std::string text;
    text << "Error " << utfInt('u', uint64_t{code}) << " - ";
    text << (words.empty() ? "Unknown error !!!" : words.c_str());
    text.erase(text.find_last_not_of("\r\n") + 1);
    return text;
}
