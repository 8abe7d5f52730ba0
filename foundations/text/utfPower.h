// Powers of ten for the number formatter and parser. Private to this folder. Any thread.
//
// Powers up to 22 either way are the nearest doubles, so that everyday numbers look the same on every system;
// std::pow and std::log10 do not promise that.
#pragma once

// The double 0.1, which is a little more than a tenth, raised to a power; infinite or 0 beyond the range.
double utfTenthTo(int exponent);

// Ten raised to a power; infinite or 0 beyond the range.
double utfTenTo(int exponent);

// The whole part, rounded down, of the logarithm of a number that is above 0 and finite.
int utfPowerOfTen(double value);
