// Numbers as text: descriptors that are built at the call and appended to a string.
//
//     text << "PRN " << utfInt(utfFmt::ZeroFill, 'u', uint64_t{7}, 2u);    // PRN 07
//     text << utfFlt(utfFmt::DotPoint, 'f', 47.5, 0u, 3);                  // 47.500
//
// The arguments are told apart by type, so they may stand in any order; the house order is flags, conversion,
// value, width, digits. Nothing here allocates beyond the growth of the string. Any thread.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

enum class utfFmt : uint8_t {
    AltForm,    // integer: "0x" before hexadecimal; float: keep the zeros of the general form, force a point
    DotPoint,   // the decimal point is "." whatever the locale says
    PlusSign,   // "+" before what is not negative
    LeftAlign,  // padding behind the number
    Flag4,      // kept, without effect
    Flag5,      // kept, without effect
    SpaceSign,  // a blank before what is not negative, unless PlusSign is set
    Flag7,      // kept, without effect
    Flag8,      // kept, without effect
    Flag9,      // kept, without effect
    Flag10,     // kept, without effect
    ZeroFill,   // padding is "0" behind the sign, unless LeftAlign is set
};

// A set of utfFmt in 12 bits, in the order in which stored sets have them.
class utfFlags
{
public:
    constexpr void Add(utfFmt flag) { Bits = static_cast<uint16_t>(Bits | Bit(flag)); }
    constexpr bool Has(utfFmt flag) const { return (Bits & Bit(flag)) != 0; }
    constexpr uint16_t Stored() const { return Bits; }

private:
    static constexpr uint16_t Bit(utfFmt flag)
    {
        // The position in the stored set by the member's value: the order of the two differs.
        constexpr uint8_t Positions[] = {0, 1, 2, 4, 5, 6, 3, 7, 8, 9, 10, 11};
        return static_cast<uint16_t>(1u << Positions[static_cast<uint8_t>(flag)]);
    }

    uint16_t Bits = 0;
};

template <class T>
concept utfInteger64 = std::integral<T> && sizeof(T) == 8;

// An integer. Conversions: 'd' and 'i' signed; 'u' unsigned; 'x' and 'X' hexadecimal; 'o' octal; 'b' binary;
// any other character is unsigned decimal. All read the full 64 bits, so a narrower value is widened by the
// caller.
struct utfInt {
    template <class... Arguments>
    explicit constexpr utfInt(Arguments... arguments)
    {
        static_assert((std::same_as<Arguments, char> || ...), "a conversion is needed");
        static_assert((utfInteger64<Arguments> || ...), "a 64-bit value is needed");
        (Take(arguments), ...);
    }

    int32_t Digits = 1;  // the fewest digits to write
    int32_t Width = 0;   // the narrowest field in bytes; negative means none
    utfFlags Flags;
    char Conv = 'd';
    uint64_t Value = 0;

private:
    constexpr void Take(utfFmt flag) { Flags.Add(flag); }
    constexpr void Take(char conversion) { Conv = conversion; }
    constexpr void Take(utfInteger64 auto value) { Value = static_cast<uint64_t>(value); }
    constexpr void Take(std::same_as<unsigned> auto width) { Width = static_cast<int32_t>(width); }
    constexpr void Take(std::same_as<int> auto digits) { Digits = digits; }
};

// A floating point number. Conversions: 'f' and 'F' fixed; 'e' and 'E' with an exponent; 'g' and 'G' general.
// In every one the value is first rounded to `Digits` decimals, and digits beyond are cut, never rounded.
struct utfFlt {
    template <class... Arguments>
    explicit constexpr utfFlt(Arguments... arguments)
    {
        static_assert((std::same_as<Arguments, char> || ...), "a conversion is needed");
        static_assert((std::same_as<Arguments, double> || ...), "a double is needed");
        (Take(arguments), ...);
    }

    int32_t Digits = 6;  // decimals, or significant digits in the general form; negative counts as 0
    int32_t Width = 0;   // the narrowest field in bytes; negative means none
    utfFlags Flags;
    char Conv = 'g';
    double Value = 0;

private:
    constexpr void Take(utfFmt flag) { Flags.Add(flag); }
    constexpr void Take(char conversion) { Conv = conversion; }
    constexpr void Take(double value) { Value = value; }
    constexpr void Take(std::same_as<unsigned> auto width) { Width = static_cast<int32_t>(width); }
    constexpr void Take(std::same_as<int> auto digits) { Digits = digits; }
};

std::string& operator<<(std::string& target, const utfInt& number);
std::string& operator<<(std::string& target, const utfFlt& number);
