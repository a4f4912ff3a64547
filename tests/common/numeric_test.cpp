#include "common/numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "common/fault.h"
#include "common/numtext.h"

using namespace tvx;

TEST(Norm, Norm360OfFullTurnIsZero) { EXPECT_EQ(Norm360(360), 0.0); }
TEST(Norm, Norm360OfSmallNegativeWrapsBelow360) {
    EXPECT_EQ(NumberText(Norm360(-0.0001), 4), "359.9999");
    EXPECT_EQ(Norm360(-0.0001), -0.0001 + 360.0);
}
TEST(Norm, Norm90OfRightAngleIsZero) { EXPECT_EQ(Norm90(90), 0.0); }
TEST(Norm, Norm180OfMinusHalfTurnIsZero) { EXPECT_EQ(Norm180(-180), 0.0); }
TEST(Norm, Norm360LoopsRatherThanTakingRemainder) {
    // Two subtractions in double, not one remainder.
    EXPECT_EQ(Norm360(1000.1), 1000.1 - 360.0 - 360.0);
    EXPECT_EQ(Norm360(-725.5), -725.5 + 360.0 + 360.0 + 360.0);
}
TEST(Norm, Norm360OfHugeAndInfiniteValuesEnds) {
    EXPECT_GE(Norm360(1e300), 0.0);
    EXPECT_LT(Norm360(1e300), 360.0);
    EXPECT_EQ(Norm360(INFINITY), 0.0);
    EXPECT_TRUE(std::isnan(Norm360(NAN)));
}

TEST(Polar, OriginGivesZeroDistanceAndAngle) {
    double d = -1, a = -1;
    XYToPolar(0, 0, d, a);
    EXPECT_EQ(d, 0.0);
    EXPECT_EQ(a, 0.0);
}
TEST(Polar, MinusOneOneGives135UpToThePiConstant) {
    double d = 0, a = 0;
    XYToPolar(-1, 1, d, a);
    EXPECT_NEAR(a, 135.0, 1e-6);
    EXPECT_EQ(a, 180.0 - std::atan(1.0) * 180.0 / 3.14159265);
    EXPECT_NE(a, 135.0);  // the constant for pi shows
    EXPECT_DOUBLE_EQ(d, std::sqrt(2.0));
}
TEST(Polar, ExactAxesGiveExactAngles) {
    double d = 0, a = 0;
    XYToPolar(0, 5, d, a);
    EXPECT_EQ(a, 90.0);
    XYToPolar(-3, 0, d, a);
    EXPECT_EQ(a, 180.0);
    EXPECT_EQ(d, 3.0);
    XYToPolar(0, -2, d, a);
    EXPECT_EQ(a, 270.0);
    XYToPolar(7, 0, d, a);
    EXPECT_EQ(a, 0.0);
}
TEST(Polar, QuadrantClasses) {
    double d = 0, a = 0;
    const double t = std::atan(1.0) * 180.0 / 3.14159265;
    XYToPolar(-1, -1, d, a);
    EXPECT_EQ(a, 180.0 + t);
    XYToPolar(1, -1, d, a);
    EXPECT_EQ(a, 360.0 - t);
    XYToPolar(1, 1, d, a);
    EXPECT_EQ(a, t);
}
TEST(Polar, RightAngleInRadiansIsNotExact) {
    double x = 0, y = 0;
    PolarToXY(1, 90, x, y);
    EXPECT_NE(x, 0.0);  // cos of the inexact right angle
    EXPECT_EQ(x, std::cos(3.14159265 * (90.0 / 180.0)));
    EXPECT_EQ(y, std::sin(3.14159265 * (90.0 / 180.0)));
}
TEST(Polar, PolarToXYNormalisesTheAngle) {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    PolarToXY(2, -90, x1, y1);
    PolarToXY(2, 270, x2, y2);
    EXPECT_EQ(x1, x2);
    EXPECT_EQ(y1, y2);
}
TEST(Polar, RadToDegUsesTheConstant) {
    EXPECT_DOUBLE_EQ(RadToDeg(3.14159265), 180.0);
    EXPECT_EQ(RadToDeg(1.0), 180.0 / 3.14159265);
}

TEST(RoundTo, HalvesGoToEvenAtZeroPlaces) {
    EXPECT_EQ(RoundTo(2.5, 0), 2.0);
    EXPECT_EQ(RoundTo(3.5, 0), 4.0);
    EXPECT_EQ(RoundTo(-2.5, 0), -2.0);
}
TEST(RoundTo, HalvesGoToEvenAtTwoPlaces) { EXPECT_EQ(RoundTo(0.125, 2), 0.12); }
TEST(RoundTo, DividesInDoublePrecision) {
    EXPECT_EQ(RoundTo(1.23456, 3), 1235.0 / 1000.0);
    EXPECT_EQ(RoundTo(-7.77777, 4), -77778.0 / 10000.0);
}
TEST(RoundTo, OverflowTakesTheTextPathAndKeepsTheNumber) { EXPECT_EQ(RoundTo(3000000, 3), 3000000.0); }
TEST(RoundTo, OverflowTextPathTruncates) {
    EXPECT_EQ(RoundTo(3000000.12345678, 3), 3000000.123);
    EXPECT_EQ(RoundTo(-40000000.9999, 2), -40000000.99);
    EXPECT_EQ(RoundTo(5e9 + 0.7, 0), 5e9);
}
TEST(RoundTo, PlacesAboveSixCountAsSix) {
    EXPECT_EQ(RoundTo(1.123456789, 9), RoundTo(1.123456789, 6));
    EXPECT_EQ(RoundTo(1.123456789, 9), 1123457.0 / 1000000.0);
}
TEST(RoundTo, NegativePlacesRoundToInteger) { EXPECT_EQ(RoundTo(12.5, -3), 12.0); }

TEST(Angles, AddAnglesNormalisesToSingle) {
    EXPECT_EQ(AddAngles(350, 20), 10.0f);
    EXPECT_EQ(AddAngles(0.1, 0.2), static_cast<float>(0.1 + 0.2));
}
TEST(Angles, RotatePointQuarterTurn) {
    double x = 2, y = 1;
    RotatePoint(1, 1, x, y, 90);
    EXPECT_NEAR(x, 1.0, 1e-8);
    EXPECT_NEAR(y, 2.0, 1e-12);
}
TEST(Box, PointInBoxIncludesBordersAndSwapsCorners) {
    EXPECT_TRUE(PointInBox(0, 0, 10, 10, 10, 0));
    EXPECT_TRUE(PointInBox(10, 10, 0, 0, 5, 5));
    EXPECT_FALSE(PointInBox(0, 0, 10, 10, 10.0001, 5));
}
TEST(Box, PointInBoxComparesTheSingleWithTheGivenValue) {
    // 0.1 as a single is above 0.1 as a double: the double point lies outside.
    EXPECT_FALSE(PointInBox(0.1f, 0, 1, 1, 0.1, 0.5));
    EXPECT_TRUE(PointInBox(0.1f, 0, 1, 1, static_cast<double>(0.1f), 0.5));
}
TEST(Swaps, ExchangeAndCopy) {
    float a = 1, b = 2;
    SwapValues(a, b);
    EXPECT_EQ(a, 2);
    int16_t i = 1, j = 2;
    SwapIntegers(i, j);
    EXPECT_EQ(i, 2);
    std::string s = "a", t = "b";
    SwapTexts(s, t);
    EXPECT_EQ(s, "b");
    SinglePoint p{1.5f, 2.5f}, q;
    CopyPoint(p, q);
    EXPECT_EQ(q.X, 1.5f);
    EXPECT_EQ(q.Y, 2.5f);
}
TEST(Integers, ConversionRoundsHalvesToEvenAndFaultsOnOverflow) {
    EXPECT_EQ(ToInteger16(2.5), 2);
    EXPECT_EQ(ToInteger16(-3.5), -4);
    EXPECT_EQ(ToInteger32(2147483647.0), 2147483647);
    EXPECT_THROW(ToInteger16(32768), RunEnd);
    EXPECT_THROW(ToInteger32(1e10), RunEnd);
    EXPECT_THROW(ToInteger32(NAN), RunEnd);
    try {
        ToInteger16(40000, "cell index");
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Overflow: cell index 40000");
    }
}

TEST(Singles, StoreRoundsToNearestSingle) {
    EXPECT_EQ(ToSingle(0.1), 0.1f);
    EXPECT_EQ(ToSingle(1.0 + 1e-9), 1.0f);
    EXPECT_TRUE(std::isnan(ToSingle(NAN)));
    EXPECT_EQ(ToSingle(INFINITY), INFINITY);
}
TEST(Singles, ValueBeyondTheSingleRangeIsAnOverflowFault) {
    EXPECT_EQ(ToSingle(3.4028234e38), 3.4028234e38f);
    EXPECT_THROW(ToSingle(1e39), RunEnd);
    EXPECT_THROW(ToSingle(-1e300), RunEnd);
}
