#include "platform/locale.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <utility>

namespace {

struct localeState {
    std::map<std::pair<localeItem, unsigned>, std::string> Texts;
    std::map<uint32_t, std::string> Errors;
};

localeState& state()
{
    static localeState& only = *new localeState;
    return only;
}

}  // namespace

void fakes::resetLocale()
{
    state() = {};
}

std::string localeText(localeItem item, unsigned index)
{
    if (fakes::ask("localeText").Scripted)
        return {};
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Texts.find({item, index});
    return found == state().Texts.end() ? std::string() : found->second;
}

std::string localeErrorText(uint32_t code)
{
    if (fakes::ask("localeErrorText").Scripted)
        return {};
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = state().Errors.find(code);
    return found == state().Errors.end() ? std::string() : found->second;
}

void fakeLocale(localeItem item, unsigned index, const std::string& text)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Texts[{item, index}] = text;
}

void fakeErrorText(uint32_t code, const std::string& text)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Errors[code] = text;
}
