#include "base/Format.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(Format, WholeDoublesKeepOneDecimal) {
    EXPECT_EQ(formatDouble(25), "25.0");
    EXPECT_EQ(formatDouble(0), "0.0");
    EXPECT_EQ(formatDouble(-3), "-3.0");
}

TEST(Format, DoublesTakeTheirShortestExactForm) {
    EXPECT_EQ(formatDouble(12.5), "12.5");
    EXPECT_EQ(formatDouble(0.1), "0.1");
    EXPECT_EQ(formatDouble(1.0 / 3), "0.3333333333333333");
}

TEST(Format, DoublesBeyondPlainNotationGetNoFalseDecimal) {
    EXPECT_EQ(formatDouble(1e300), "1e+300");
    EXPECT_EQ(formatDouble(INFINITY), "inf");
    EXPECT_EQ(formatDouble(NAN), "nan");
}

TEST(Format, OneDecimalIsRoundedLikePrintf) {
    EXPECT_EQ(formatOneDecimal(2.4), "2.4");
    EXPECT_EQ(formatOneDecimal(2.449), "2.4");
    EXPECT_EQ(formatOneDecimal(2.96), "3.0");
    EXPECT_EQ(formatOneDecimal(0.25), "0.2");
    EXPECT_EQ(formatOneDecimal(0), "0.0");
}

TEST(Format, HexadecimalIsLowercaseWithoutLeadingZeros) {
    EXPECT_EQ(formatHex(0x8104), "8104");
    EXPECT_EQ(formatHex(0x0ABC), "abc");
    EXPECT_EQ(formatHex(0), "0");
}

} // namespace
} // namespace quorvane
