#include "foundations/text/utfPower.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

// The tables reach from the power -22 to 22, which is as far as powers of ten are exact.
constexpr int TableReach = 22;

// clang-format off
constexpr double TenthTo[] = {
    0x1.0f0cf064dd58cp+73, 0x1.b1ae4d6e2ef47p+69, 0x1.5af1d78b58c39p+66, 0x1.158e460913cfbp+63,
    0x1.bc16d674ec7f8p+59, 0x1.6345785d89ffap+56, 0x1.1c37937e07ffcp+53, 0x1.c6bf52633fff9p+49,
    0x1.6bcc41e8ffffbp+46, 0x1.2309ce53ffffcp+43, 0x1.d1a94a1fffffbp+39, 0x1.74876e7fffffcp+36,
    0x1.2a05f1ffffffdp+33, 0x1.dcd64fffffffcp+29, 0x1.7d783fffffffdp+26, 0x1.312cffffffffep+23,
    0x1.e847ffffffffdp+19, 0x1.869fffffffffep+16, 0x1.387ffffffffffp+13, 0x1.f3fffffffffffp+9,
    0x1.8ffffffffffffp+6,  0x1.4p+3,              0x1p+0,                0x1.999999999999ap-4,
    0x1.47ae147ae147cp-7,  0x1.0624dd2f1a9fdp-10, 0x1.a36e2eb1c432ep-14, 0x1.4f8b588e368f2p-17,
    0x1.0c6f7a0b5ed8fp-20, 0x1.ad7f29abcaf4bp-24, 0x1.5798ee2308c3dp-27, 0x1.12e0be826d697p-30,
    0x1.b7cdfd9d7bdbfp-34, 0x1.5fd7fe1796499p-37, 0x1.19799812dea14p-40, 0x1.c25c268497687p-44,
    0x1.6849b86a12bap-47,  0x1.203af9ee7561ap-50, 0x1.cd2b297d889c3p-54, 0x1.70ef54646d49dp-57,
    0x1.2725dd1d243b1p-60, 0x1.d83c94fb6d2b5p-64, 0x1.79ca10c92422bp-67, 0x1.2e3b40a0e9b56p-70,
    0x1.e392010175efp-74,
};
// clang-format on

constexpr double TenTo[] = {
    1e-22, 1e-21, 1e-20, 1e-19, 1e-18, 1e-17, 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8,
    1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,   1e1,   1e2,   1e3,   1e4,   1e5,   1e6,  1e7,
    1e8,   1e9,   1e10,  1e11,  1e12,  1e13,  1e14,  1e15,  1e16,  1e17,  1e18,  1e19,  1e20,  1e21, 1e22};

// clang-format off
// The smallest number whose logarithm, rounded to a double, reaches the power of this place. It lies a little
// below the power itself, since the logarithm of what is close to a power rounds up to it.
constexpr double PowerBegins[] = {
    0x1.e392010175ec3p-74, 0x1.2e3b40a0e9b3ap-70, 0x1.79ca10c924209p-67, 0x1.d83c94fb6d28bp-64,
    0x1.2725dd1d24397p-60, 0x1.70ef54646d47cp-57, 0x1.cd2b297d8899bp-54, 0x1.203af9ee7560cp-50,
    0x1.6849b86a12b8fp-47, 0x1.c25c268497672p-44, 0x1.19799812dea07p-40, 0x1.5fd7fe1796489p-37,
    0x1.b7cdfd9d7bdabp-34, 0x1.12e0be826d68bp-30, 0x1.5798ee2308c2ep-27, 0x1.ad7f29abcaf41p-24,
    0x1.0c6f7a0b5ed89p-20, 0x1.4f8b588e368ebp-17, 0x1.a36e2eb1c4326p-14, 0x1.0624dd2f1a9fap-10,
    0x1.47ae147ae1478p-7,  0x1.9999999999998p-4,  0x1p+0,                0x1.4p+3,
    0x1.8ffffffffffffp+6,  0x1.f3ffffffffffcp+9,  0x1.387fffffffffep+13, 0x1.869fffffffff9p+16,
    0x1.e847ffffffff8p+19, 0x1.312cffffffffbp+23, 0x1.7d783fffffffap+26, 0x1.dcd64ffffffefp+29,
    0x1.2a05f1ffffff6p+33, 0x1.74876e7fffff3p+36, 0x1.d1a94a1fffffp+39,  0x1.2309ce53ffff6p+43,
    0x1.6bcc41e8ffff3p+46, 0x1.c6bf52633fffp+49,  0x1.1c37937e07ff6p+53, 0x1.6345785d89fe7p+56,
    0x1.bc16d674ec7e1p+59, 0x1.158e460913cedp+63, 0x1.5af1d78b58c28p+66, 0x1.b1ae4d6e2ef31p+69,
    0x1.0f0cf064dd57fp+73,
};
// clang-format on

// The extra bits of the wider type keep the last one of these results right nearly everywhere.
double PowerOfTenth(int exponent)
{
    return static_cast<double>(std::pow(static_cast<long double>(0.1), exponent));
}

double Logarithm(double value)
{
    return static_cast<double>(std::log10(static_cast<long double>(value)));
}

constexpr bool InTable(int exponent)
{
    return exponent >= -TableReach && exponent <= TableReach;
}

}  // namespace

double utfTenthTo(int exponent)
{
    return InTable(exponent) ? TenthTo[exponent + TableReach] : PowerOfTenth(exponent);
}

double utfTenTo(int exponent)
{
    if (InTable(exponent))
        return TenTo[exponent + TableReach];
    if (exponent > std::numeric_limits<double>::max_exponent10)
        return std::numeric_limits<double>::infinity();
    // Reading a number gives the nearest double everywhere, which computing a power does not.
    char digits[16] = {'1', 'e'};
    const char* const end = std::to_chars(digits + 2, std::end(digits), exponent).ptr;
    double power = 0;
    std::from_chars(digits, end, power);
    return power;
}

int utfPowerOfTen(double value)
{
    if (value < PowerBegins[0] || value >= utfTenTo(TableReach))
        return static_cast<int>(std::floor(Logarithm(value)));
    int exponent = 0;
    while (value < PowerBegins[exponent + TableReach])
        --exponent;
    while (exponent < TableReach && value >= PowerBegins[exponent + 1 + TableReach])
        ++exponent;
    return exponent;
}
