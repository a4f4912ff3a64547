#include "common/numtext.h"

#include <gtest/gtest.h>

#include <cstring>

#include "common/fault.h"

using namespace tvx;

TEST(PlainText, SingleHasSevenSignificantDigitsAndNoLeadingZero) {
    EXPECT_EQ(PlainText(0.5f), " .5");
    EXPECT_EQ(PlainText(-0.5f), "-.5");
    EXPECT_EQ(PlainText(0.1f), " .1");
    EXPECT_EQ(PlainText(10.0006f), " 10.0006");
    EXPECT_EQ(PlainText(1234567.0f), " 1234567");
    EXPECT_EQ(PlainText(3.14159265f), " 3.141593");
    EXPECT_EQ(PlainText(0.0f), " 0");
    EXPECT_EQ(PlainText(100.0f), " 100");
}
TEST(PlainText, SingleExponentForms) {
    EXPECT_EQ(PlainText(10000000.0f), " 1E+07");
    EXPECT_EQ(PlainText(12345678.0f), " 1.234568E+07");
    EXPECT_EQ(PlainText(0.000015f), " 1.5E-05");
    EXPECT_EQ(PlainText(0.0001f), " .0001");
    EXPECT_EQ(PlainText(-0.00001f), "-1E-05");
    EXPECT_EQ(PlainText(9999999.0f), " 9999999");
}
TEST(PlainText, DoubleHasFifteenSignificantDigits) {
    EXPECT_EQ(PlainText(0.1), " .1");
    EXPECT_EQ(PlainText(static_cast<double>(0.1f)), " .100000001490116");
    EXPECT_EQ(PlainText(123456789012345.0), " 123456789012345");
    EXPECT_EQ(PlainText(1e15), " 1E+15");
    EXPECT_EQ(PlainText(1.5e-5), " 1.5E-05");
    EXPECT_EQ(PlainText(-2.0 / 3.0), "-.666666666666667");
    EXPECT_EQ(PlainText(1e100), " 1E+100");
    EXPECT_EQ(PlainText(3000000.0), " 3000000");
}
TEST(PlainText, Integers) {
    EXPECT_EQ(PlainText(int32_t{5}), " 5");
    EXPECT_EQ(PlainText(int32_t{-5}), "-5");
}

TEST(LeadingNumber, TakesTheLeadingNumberAndZeroForNone) {
    EXPECT_EQ(LeadingNumber("12.5abc"), 12.5);
    EXPECT_EQ(LeadingNumber("abc"), 0.0);
    EXPECT_EQ(LeadingNumber(""), 0.0);
    EXPECT_EQ(LeadingNumber("-"), 0.0);
    EXPECT_EQ(LeadingNumber(" .5"), 0.5);
    EXPECT_EQ(LeadingNumber("-.5"), -0.5);
    EXPECT_EQ(LeadingNumber("+7"), 7.0);
    EXPECT_EQ(LeadingNumber("1,000"), 1.0);
    EXPECT_EQ(LeadingNumber("--5"), 0.0);
    EXPECT_EQ(LeadingNumber("3."), 3.0);
}
TEST(LeadingNumber, PassesOverBlanksAnywhere) {
    EXPECT_EQ(LeadingNumber("  1 2 3"), 123.0);
    EXPECT_EQ(LeadingNumber("\t- 4"), -4.0);
}
TEST(LeadingNumber, ExponentsWithEOrD) {
    EXPECT_EQ(LeadingNumber("1E+07"), 1e7);
    EXPECT_EQ(LeadingNumber("1.5E-05"), 1.5e-5);
    EXPECT_EQ(LeadingNumber("2d3"), 2000.0);
    EXPECT_EQ(LeadingNumber("1E"), 1.0);
    EXPECT_EQ(LeadingNumber("1E+"), 1.0);
    EXPECT_EQ(LeadingNumber("4E2X"), 400.0);
}
TEST(LeadingNumber, HexAndOctalPrefixes) {
    EXPECT_EQ(LeadingNumber("&HFF"), 255.0);
    EXPECT_EQ(LeadingNumber("&hFFFF"), -1.0);
    EXPECT_EQ(LeadingNumber("&O17"), 15.0);
    EXPECT_EQ(LeadingNumber("&X1"), 0.0);
}
TEST(LeadingNumber, HugeExponentIsAnOverflowFault) { EXPECT_THROW(LeadingNumber("1E999"), RunEnd); }

TEST(NumberText, FreeFormPutsZeroBeforeThePoint) {
    EXPECT_EQ(NumberText(0.5, -1), "0.5");
    EXPECT_EQ(NumberText(-0.5, -1), "-0.5");
    EXPECT_EQ(NumberText(0.5f, -1), "0.5");
    EXPECT_EQ(NumberText(12.0, -1), "12");
}
TEST(NumberText, PlacesRoundAndPad) {
    EXPECT_EQ(NumberText(1.5, 3), "1.500");
    EXPECT_EQ(NumberText(1.9996, 3), "2.000");
    EXPECT_EQ(NumberText(2.0, 0), "2");
    EXPECT_EQ(NumberText(0.25, 1), "0.2");
    EXPECT_EQ(NumberText(-0.25, 3), "-0.250");
    EXPECT_EQ(NumberText(-0.0004, 3), "0.000");
    EXPECT_EQ(NumberText(2.5, 0), "2");
    EXPECT_EQ(NumberText(3.5, 0), "4");
}
TEST(NumberText, TinyFreeFormIsZeroBecauseOfItsExponent) {
    EXPECT_EQ(NumberText(0.00001, -1), "0");
    EXPECT_EQ(NumberText(-0.00001f, -1), "0");
}
TEST(NumberText, PlacesAboveSixGiveSixDecimals) { EXPECT_EQ(NumberText(1.0, 9), "1.000000"); }
TEST(NumberText, SingleAndDoubleDifferOnlyInFreeForm) {
    EXPECT_EQ(NumberText(0.1f, -1), "0.1");
    EXPECT_EQ(NumberText(static_cast<double>(0.1f), -1), "0.100000001490116");
    EXPECT_EQ(NumberText(0.1f, 3), "0.100");
}
TEST(NumberText, LargeFreeFormKeepsItsExponent) { EXPECT_EQ(NumberText(1e7f, -1), "1E+07"); }
TEST(NumberText, LargeValueWithPlacesTakesTheTextPath) { EXPECT_EQ(NumberText(3000000.0, 3), "3000000.000"); }

TEST(IntegerForms, PlainTrimmedTexts) {
    EXPECT_EQ(IntegerText(-12), "-12");
    EXPECT_EQ(IntegerText(7), "7");
    EXPECT_EQ(LongText(123456), "123456");
}
TEST(IntegerForms, PadLongKeepsLongerTexts) { EXPECT_EQ(PadLong(12345, 3), "12345"); }
TEST(IntegerForms, PadWithZerosOnTheLeft) {
    EXPECT_EQ(PadInteger(5, 3), "005");
    EXPECT_EQ(PadLong(42, 6), "000042");
}
TEST(IntegerForms, SignIsNotMovedByPadding) { EXPECT_EQ(PadInteger(-5, 3), "0-5"); }

TEST(TextForms, AfterColon) {
    EXPECT_EQ(AfterColon("Thickness : 1.5 "), "1.5");
    EXPECT_EQ(AfterColon(" no colon "), "no colon");
    EXPECT_EQ(AfterColon("a:b:c"), "b:c");
}
TEST(TextForms, StripExtensionCutsAtTheLastPoint) {
    EXPECT_EQ(StripExtension("a.b.c"), "a.b");
    EXPECT_EQ(StripExtension("abc"), "abc");
    EXPECT_EQ(StripExtension(" job.drw "), "job");
}
TEST(TextForms, GetExtensionLooksAtTheLastFourPositions) {
    EXPECT_EQ(GetExtension("name.long"), "");
    EXPECT_EQ(GetExtension("a.txt"), "txt");
    EXPECT_EQ(GetExtension("file.c"), "c");
    EXPECT_EQ(GetExtension(".ab"), "");
    EXPECT_EQ(GetExtension("x.ab"), "ab");
}
TEST(TextForms, TrimTakesOnlyBlanks) {
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
}
TEST(TextForms, UpperIsThatOfTheWesternCodePage) {
    EXPECT_EQ(Upper("abc=true"), "ABC=TRUE");
    EXPECT_EQ(Upper("\xe9\xac"), "\xc9\xac");  // e acute becomes E acute; the not sign stays
}
TEST(PlainText, SubnormalSingleReadsBackToItsOwnText) {
    float value;
    const uint32_t bits = 7809432;  // a subnormal single near 1.09E-38
    std::memcpy(&value, &bits, sizeof value);
    const std::string text = PlainText(value);
    EXPECT_EQ(PlainText(static_cast<float>(LeadingNumber(text))), text);
}
