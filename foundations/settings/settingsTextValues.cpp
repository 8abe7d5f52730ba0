// The values of an open or a closed store: a list of elements separated by ";" in one row.
#include "foundations/fatal/crashFatal.h"
#include "foundations/settings/settingsNumber.h"
#include "foundations/settings/settingsText.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfNumber.h"
#include "foundations/text/utfParse.h"

#include <algorithm>
#include <concepts>
#include <limits>

namespace {

constexpr char Separator = ';';

// A key may bear nothing that ends a line or a key.
std::string sanitised(const char* key)
{
    std::string text = key;
    for (const char32_t character : {U'\r', U'\n', U'\t', U'='})
        utfReplace(text, character, U'_');
    return text;
}

const char* skipBlanks(const char* at)
{
    while (*at == ' ' || *at == '\t')
        ++at;
    return at;
}

// "1; 2 ;3". `parse` takes the text and where to store its end, and gives the element.
template <class T, class Parse>
void getElements(settings& store, const char* key, T* value, uint64_t count, Parse parse)
{
    if (!store.Open(false))
        return;
    std::string text;
    store.GetText(key, &text, 1);
    store.Close(false);
    const char* at = text.c_str();
    for (uint64_t i = 0; i < count; ++i) {
        at = skipBlanks(at);
        if (i != 0) {
            if (*at != Separator)
                return;
            at = skipBlanks(at + 1);
        }
        if (*at == '\0')
            return;
        value[i] = parse(at, &at);
    }
}

// `append` adds an element to a text.
template <class T, class Append>
void setElements(settings& store, const char* key, const T* value, uint64_t count, Append append)
{
    if (!store.Open(true))
        return;
    std::string text;
    for (uint64_t i = 0; i < count; ++i) {
        if (i != 0)
            text << Separator;
        append(text, value[i]);
    }
    store.SetText(key, &text, 1);
    store.Close(true);
}

template <std::floating_point T>
T parseFloat(const char* text, const char** end)
{
    return static_cast<T>(utfParseFlt(text, end, true));
}

template <std::unsigned_integral T>
T parseUnsigned(const char* text, const char** end)
{
    const uint32_t number = settingsParseUInt32(text, end, 10);
    return static_cast<T>(std::min<uint32_t>(number, std::numeric_limits<T>::max()));
}

int16_t parseInt16(const char* text, const char** end)
{
    return static_cast<int16_t>(std::clamp<int32_t>(settingsParseInt32(text, end),
                                                    std::numeric_limits<int16_t>::min(),
                                                    std::numeric_limits<int16_t>::max()));
}

// "true", "false" or a number. A word that goes on behind these letters counts all the same.
bool parseBool(const char* text, const char** end)
{
    constexpr std::string_view True = "true";
    constexpr std::string_view False = "false";
    const std::string_view rest = text;
    if (rest.starts_with(True)) {
        *end = text + True.size();
        return true;
    }
    if (rest.starts_with(False)) {
        *end = text + False.size();
        return false;
    }
    return settingsParseUInt32(text, end, 10) != 0;
}

void appendInteger(std::string& text, int64_t value)
{
    text << utfInt('d', value);
}

}  // namespace

void settingsText::GetText(const char* key, std::string* value, uint64_t count)
{
    if (count != 1) {
        crashFatal("settingsText::GetText reads exactly one text.");
        return;
    }
    if (!Open(false))
        return;
    if (const KeyValueRow* const row = FindRow(sanitised(key)))
        *value = row->Value();
    Close(false);
}

void settingsText::GetDouble(const char* key, double* value, uint64_t count)
{
    getElements(*this, key, value, count, parseFloat<double>);
}

void settingsText::GetFloat(const char* key, float* value, uint64_t count)
{
    getElements(*this, key, value, count, parseFloat<float>);
}

void settingsText::GetUInt64(const char* key, uint64_t* value, uint64_t count)
{
    getElements(*this, key, value, count, settingsParseUInt64);
}

void settingsText::GetInt64(const char* key, int64_t* value, uint64_t count)
{
    getElements(*this, key, value, count, settingsParseInt64);
}

void settingsText::GetInt32(const char* key, int32_t* value, uint64_t count)
{
    getElements(*this, key, value, count, settingsParseInt32);
}

void settingsText::GetUInt16(const char* key, uint16_t* value, uint64_t count)
{
    getElements(*this, key, value, count, parseUnsigned<uint16_t>);
}

void settingsText::GetInt16(const char* key, int16_t* value, uint64_t count)
{
    getElements(*this, key, value, count, parseInt16);
}

void settingsText::GetUInt8(const char* key, uint8_t* value, uint64_t count)
{
    getElements(*this, key, value, count, parseUnsigned<uint8_t>);
}

void settingsText::GetBool(const char* key, bool* value, uint64_t count)
{
    getElements(*this, key, value, count, parseBool);
}

void settingsText::SetText(const char* key, const std::string* value, uint64_t count)
{
    if (count != 1) {
        crashFatal("settingsText::SetText stores exactly one text.");
        return;
    }
    if (!Open(true))
        return;
    FindOrAddRow(sanitised(key)).Value(*value);
    Close(true);
}

void settingsText::SetDouble(const char* key, const double* value, uint64_t count)
{
    setElements(*this, key, value, count, [](std::string& text, double element) {
        constexpr int Digits = 17;
        text << utfFlt(utfFmt::DotPoint, 'g', element, Digits);
    });
}

void settingsText::SetFloat(const char* key, const float* value, uint64_t count)
{
    setElements(*this, key, value, count, [](std::string& text, float element) {
        constexpr int Digits = 8;
        text << utfFlt(utfFmt::DotPoint, 'g', static_cast<double>(element), Digits);
    });
}

void settingsText::SetInt64(const char* key, const int64_t* value, uint64_t count)
{
    setElements(*this, key, value, count, appendInteger);
}

void settingsText::SetInt32(const char* key, const int32_t* value, uint64_t count)
{
    setElements(*this, key, value, count, appendInteger);
}

void settingsText::SetBool(const char* key, const bool* value, uint64_t count)
{
    setElements(*this, key, value, count,
                [](std::string& text, bool element) { text << (element ? "true" : "false"); });
}
