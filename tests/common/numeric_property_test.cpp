// Properties of the numeric helpers and the number texts, for random values.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "common/numeric.h"
#include "common/numtext.h"

using namespace tvx;

namespace {

// Halves to even, worked out from floor and the fraction, without the rounding mode.
double RoundHalfEvenByHand(double x) {
    const double f = std::floor(x);
    const double diff = x - f;
    if (diff > 0.5) return f + 1;
    if (diff < 0.5) return f;
    return std::fmod(f, 2.0) == 0 ? f : f + 1;
}

double PowerOfTen(int places) {
    double p = 1;
    for (int i = 0; i < places; ++i) p *= 10;
    return p;
}

uint32_t Bits(float f) {
    uint32_t u;
    std::memcpy(&u, &f, sizeof u);
    return u;
}

uint64_t Bits(double d) {
    uint64_t u;
    std::memcpy(&u, &d, sizeof u);
    return u;
}

}  // namespace

RC_GTEST_PROP(RoundToProperty, AgreesWithHalfEvenRoundingByHand, ()) {
    const int places = *rc::gen::inRange(0, 10);
    const double value = *rc::gen::inRange(-2000000, 2000000) / 997.0;
    const int effective = places > 6 ? 6 : places;
    const double scale = PowerOfTen(effective);
    const double scaled = value * scale;
    RC_PRE(std::fabs(scaled) < 2147483647.0);
    RC_ASSERT(RoundTo(value, places) == RoundHalfEvenByHand(scaled) / scale);
}

RC_GTEST_PROP(RoundToProperty, OverflowPathTruncatesBehindThePlaces, ()) {
    const int places = *rc::gen::inRange(2, 4);
    const long long whole = *rc::gen::inRange(25000000, 90000000);
    const int fraction = *rc::gen::inRange(0, 10000);  // four decimals
    const double value = static_cast<double>(whole) + fraction / 10000.0;
    // The scaled value is beyond 32 bits, so the decimals behind the places are cut.
    RC_PRE(value * PowerOfTen(places) > 2147483647.0);
    const int kept = fraction / static_cast<int>(PowerOfTen(4 - places));
    const double expected = LeadingNumber(std::to_string(whole) + "." +
                                          std::string(static_cast<size_t>(places) - std::to_string(kept).size(), '0') +
                                          std::to_string(kept));
    RC_ASSERT(RoundTo(value, places) == expected);
}

// The rounding made inline for the common case gives the bits of the whole rounding.
RC_GTEST_PROP(RoundToProperty, InlineCaseGivesTheBitsOfTheWholeRounding, ()) {
    const int places = *rc::gen::inRange(-2, 10);
    const double value = *rc::gen::oneOf(rc::gen::map(rc::gen::inRange(-2000000000, 2000000000),
                                                      [](int v) { return v / 977.0; }),
                                         rc::gen::arbitrary<double>(),
                                         rc::gen::element(0.0, -0.0, -0.0004, 0.0005, -2147483.6475, 2147483.6475,
                                                          2147483.6485, 1e300, -1e300));
    RC_ASSERT(Bits(RoundTo(value, places)) == Bits(RoundToBeyondRange(value, places)));
}

TEST(RoundTo, ZeroIsPositiveWhateverTheSignOfWhatRoundedToIt) {
    EXPECT_FALSE(std::signbit(RoundTo(-0.0001, 3)));
    EXPECT_FALSE(std::signbit(RoundTo(-0.0, 2)));
    EXPECT_EQ(RoundTo(2.5, 0), 2.0);
    EXPECT_EQ(RoundTo(0.125, 2), 0.12);
    EXPECT_TRUE(std::isnan(RoundTo(std::nan(""), 3)));
}

RC_GTEST_PROP(ToSingleProperty, InlineCaseGivesTheBitsOfTheWholeConversion, ()) {
    const double value = *rc::gen::oneOf(rc::gen::arbitrary<double>(),
                                         rc::gen::map(rc::gen::arbitrary<float>(), [](float f) { return static_cast<double>(f); }),
                                         rc::gen::element(3.4028234663852886e38, -3.4028234663852886e38, 3.40282357e38, 0.0, -0.0));
    RC_PRE(std::isnan(value) || std::fabs(value) < 3.4028235677973366e38);
    RC_ASSERT(Bits(ToSingle(value)) == Bits(ToSingleBeyondRange(value)));
}

RC_GTEST_PROP(Norm360Property, AlwaysInRange, ()) {
    const double angle = *rc::gen::inRange(-100000000, 100000000) / 1000.0;
    const double n = Norm360(angle);
    RC_ASSERT(n >= 0.0);
    RC_ASSERT(n < 360.0);
}

RC_GTEST_PROP(Norm360Property, InRangeValueKeepsItsBits, ()) {
    const double angle = *rc::gen::inRange(0, 359999999) / 1000000.0;
    RC_ASSERT(Bits(Norm360(angle)) == Bits(angle));
    const float single = static_cast<float>(angle);
    RC_PRE(single < 360.0f);
    RC_ASSERT(Bits(static_cast<float>(Norm360(single))) == Bits(single));
}

RC_GTEST_PROP(PlainTextProperty, SingleOfSevenDigitsReadsBackToTheSameSingle, ()) {
    const int mantissa = *rc::gen::inRange(-9999999, 10000000);
    const int exponent = *rc::gen::inRange(-12, 12);
    const float value = static_cast<float>(mantissa * std::pow(10.0, exponent));
    const std::string text = PlainText(value);
    RC_ASSERT(static_cast<float>(LeadingNumber(text)) == value);
}

RC_GTEST_PROP(PlainTextProperty, AnySingleTextIsStableAndWithinSevenDigits, ()) {
    const uint32_t bits = *rc::gen::arbitrary<uint32_t>();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    RC_PRE(std::isfinite(value));
    const std::string text = PlainText(value);
    const float back = static_cast<float>(LeadingNumber(text));
    RC_ASSERT(PlainText(back) == text);
    // Seven significant digits keep the relative error within half a unit of the seventh digit,
    // and the single read back adds at most half a unit of its last bit (2^-24); a subnormal
    // single has fewer bits than that, so only its text's stability is checked.
    if (std::isnormal(value))
        RC_ASSERT(std::fabs((static_cast<double>(back) - value) / value) <= 5e-7 + 0x1p-24 + 1e-15);
}

RC_GTEST_PROP(PlainTextProperty, DoubleOfFifteenDigitsReadsBackToTheSameDouble, ()) {
    const long long mantissa = *rc::gen::inRange<long long>(-999999999999999LL, 1000000000000000LL);
    const int exponent = *rc::gen::inRange(-30, 30);
    char text[64];
    std::snprintf(text, sizeof text, "%lldE%d", mantissa, exponent);
    const double value = LeadingNumber(text);
    RC_ASSERT(Bits(LeadingNumber(PlainText(value))) == Bits(value == 0 ? 0.0 : value));
}

RC_GTEST_PROP(PlainTextProperty, FormHasNoZeroBeforePointAndABlankForPositive, ()) {
    const double value = *rc::gen::inRange(-1000000, 1000000) / 1024.0;
    const std::string text = PlainText(value);
    RC_ASSERT(text[0] == (value < 0 ? '-' : ' '));
    RC_ASSERT(text.find("0.") != 1);
    RC_ASSERT(NumberText(value, -1) == (std::fabs(value) < 1 && value != 0
                                             ? (value < 0 ? "-0" + text.substr(1) : "0" + text.substr(1))
                                             : text.substr(value < 0 ? 0 : 1)));
}

RC_GTEST_PROP(NumberTextProperty, PlacesGiveExactlyThatManyDecimals, ()) {
    const int places = *rc::gen::inRange(0, 7);
    const double value = *rc::gen::inRange(-10000000, 10000000) / 1000.0;
    const std::string text = NumberText(value, places);
    const auto point = text.find('.');
    if (places == 0) {
        RC_ASSERT(point == std::string::npos);
    } else {
        RC_ASSERT(point != std::string::npos);
        RC_ASSERT(text.size() - point - 1 == static_cast<size_t>(places));
        RC_ASSERT(point > 0 && text[point - 1] >= '0' && text[point - 1] <= '9');
    }
    RC_ASSERT(std::fabs(LeadingNumber(text) - value) <= 0.5 / PowerOfTen(places) + 1e-9);
}

namespace {

// The period loops as they stand, one turn at a time.
double NormByTurns(double angle, double period) {
    while (angle < 0) angle += period;
    while (angle >= period) angle -= period;
    return angle;
}

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

// The remainder taken at once gives the bits of the loops, sign of zero included.
RC_GTEST_PROP(NormPeriodProperty, RemainderAtOnceIsTheLoopsTurnByTurn, ()) {
    const double scale = *rc::gen::element(1e-20, 1e-3, 1.0, 360.0, 1e4, 1e6);
    const double angle = static_cast<double>(*rc::gen::inRange(-10000000, 10000000)) * scale / 7.0 +
                         *rc::gen::element(0.0, -0.0, 1e-17, -1e-17, 0.3);
    RC_PRE(std::fabs(angle) < 2e7);
    RC_ASSERT(SameBits(Norm360(angle), NormByTurns(angle, 360.0)));
    RC_ASSERT(SameBits(Norm180(angle), NormByTurns(angle, 180.0)));
    RC_ASSERT(SameBits(Norm90(angle), NormByTurns(angle, 90.0)));
}

TEST(NormPeriod, EdgesKeepTheLoopsBits) {
    for (double a : {-0.0, 0.0, -360.0, 360.0, 720.0, -720.0, -1e-20, 359.99999999999994, -359.99999999999994, 1e-300,
                     -1e-300, 1e9 + 0.5, -1e9 - 0.25})
        EXPECT_TRUE(SameBits(Norm360(a), NormByTurns(a, 360.0))) << a;
    // Far beyond the loops' reach an angle still comes back in range, and at once.
    EXPECT_GE(Norm360(1e300), 0.0);
    EXPECT_LT(Norm360(1e300), 360.0);
}
