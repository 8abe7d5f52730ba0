#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "tests/fakes/fakes.h"
#include "tests/foundations/text/allocations.h"

#include <gtest/gtest.h>

#include <cfloat>

TEST(utfNumber, AllocatesNothingBeyondTheGrowthOfTheString)
{
    fakeReset();
    utfLocaleFill();
    std::string text;
    text.reserve(4096);
    const char* const place = text.data();
    const size_t before = allocations();
    text << utfInt('d', int64_t{-5}) << utfInt(utfFmt::AltForm, utfFmt::ZeroFill, 'b', uint64_t{5}, 90u, 70)
         << utfFlt('f', 47.285233, 12u, 4) << utfFlt('g', -1e-300, 0u, 8) << utfFlt('e', DBL_MAX, 0u, 17)
         << utfFlt('f', DBL_MAX, 400u, 17) << utfFlt('g', DBL_TRUE_MIN, 0u, 400) << "text" << 'c';
    EXPECT_EQ(allocations(), before);
    EXPECT_EQ(text.data(), place);
}
