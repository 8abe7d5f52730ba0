// One element has a type of its own in the registry; several, or none, are stored as bytes.
#include "foundations/fatal/crashFatal.h"
#include "foundations/settings/settingsReg.h"
#include "foundations/text/utfConvert.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"

#include <concepts>
#include <vector>

namespace {

// "1.500000 -2.000000"
template <std::floating_point T>
std::string joinFloats(const T* value, uint64_t count)
{
    constexpr int Decimals = 6;
    std::string text;
    for (uint64_t i = 0; i < count; ++i) {
        if (i != 0)
            text << ' ';
        text << utfFlt(utfFmt::DotPoint, 'f', static_cast<double>(value[i]), Decimals);
    }
    return text;
}

}  // namespace

void settingsReg::SetText(const char* key, const std::string* value, uint64_t count)
{
    if (count != 1) {
        crashFatal("settingsReg::SetText stores exactly one text.");
        return;
    }
    std::u16string units;
    utfAppend16From8(units, value->data(), value->size());
    units += u'\0';
    std::vector<uint8_t> bytes;
    bytes.reserve(units.size() * 2);
    for (const char16_t unit : units) {
        bytes.push_back(static_cast<uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<uint8_t>(unit >> 8));
    }
    Write(key, registryType::Text, bytes.data(), bytes.size(), 1);
}

void settingsReg::SetDouble(const char* key, const double* value, uint64_t count)
{
    const std::string text = joinFloats(value, count);
    SetText(key, &text, 1);
}

void settingsReg::SetFloat(const char* key, const float* value, uint64_t count)
{
    const std::string text = joinFloats(value, count);
    SetText(key, &text, 1);
}

void settingsReg::SetInt64(const char* key, const int64_t* value, uint64_t count)
{
    Write(key, count == 1 ? registryType::Qword : registryType::Binary, value, count, sizeof(int64_t));
}

void settingsReg::SetInt32(const char* key, const int32_t* value, uint64_t count)
{
    Write(key, count == 1 ? registryType::Dword : registryType::Binary, value, count, sizeof(int32_t));
}

void settingsReg::SetBool(const char* key, const bool* value, uint64_t count)
{
    if (count == 1) {
        const uint32_t number = *value ? 1 : 0;
        Write(key, registryType::Dword, &number, 1, sizeof number);
        return;
    }
    Write(key, registryType::Binary, value, count, sizeof(bool));
}
