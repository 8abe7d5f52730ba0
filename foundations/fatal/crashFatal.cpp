#include "foundations/fatal/crashFatal.h"

#include "platform/debug.h"

namespace {

bool IsLineEnd(char letter)
{
    return letter == '\r' || letter == '\n';
}

}  // namespace

void crashFatal(std::string_view text)
{
    if (!text.empty() && !IsLineEnd(text.front())) {
        debugWrite(text);
        if (!IsLineEnd(text.back()))
            debugWrite("\r\n");
    }
    debugBreak();
}
