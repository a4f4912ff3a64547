// The plain text takes its digits from the shortest correctly rounded conversion: the same
// digits as the C library's "%.*e".
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "common/numeric.h"
#include "common/numtext.h"

using namespace tvx;

namespace {

// The significant digits and exponent of "%.*e".
std::string PrintfDigits(double value, int digits) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, value);
    return buffer;
}

// The same digits read back out of a plain text, as a check of equal value and rounding:
// the plain text of a value must read as the value that "%.*e" rounds it to.
void ExpectSameRounding(double value, int digits, const std::string& plain) {
    const double printed = std::strtod(PrintfDigits(value, digits).c_str(), nullptr);
    const double read = std::strtod(plain.c_str(), nullptr);
    EXPECT_EQ(read, printed) << plain << " vs " << PrintfDigits(value, digits);
}

// The reference of a leading number: the text less its blanks, read by the C library as far as
// it forms a number in the system's forms, with the sign of a zero.
void ExpectReadAsTheCLibraryReadsIt(const std::string& text) {
    std::string clean;
    for (char c : text)
        if (c != ' ' && c != '\t') clean += c;
    for (char& c : clean)
        if (c == 'd' || c == 'D') c = 'e';
    char* end = nullptr;
    double expected = std::strtod(clean.c_str(), &end);
    if (end == clean.c_str()) expected = 0;
    const double actual = LeadingNumber(text);
    RC_ASSERT(actual == expected);
    RC_ASSERT(std::signbit(actual) == std::signbit(expected));
}

}  // namespace

RC_GTEST_PROP(PlainTextDigits, DoubleTextReadsAsTheFifteenDigitRounding, (double value)) {
    RC_PRE(std::isfinite(value));
    const std::string plain = PlainText(value);
    const double printed = std::strtod(PrintfDigits(value, 15).c_str(), nullptr);
    RC_ASSERT(std::strtod(plain.c_str(), nullptr) == printed);
}

RC_GTEST_PROP(PlainTextDigits, SingleTextReadsAsTheSevenDigitRounding, (float value)) {
    RC_PRE(std::isfinite(value));
    const std::string plain = PlainText(value);
    const double printed = std::strtod(PrintfDigits(static_cast<double>(value), 7).c_str(), nullptr);
    RC_ASSERT(std::strtod(plain.c_str(), nullptr) == printed);
}

TEST(PlainTextDigits, TiesAndRoundingAsPrintf) {
    for (double v : {0.5, 1.5, 2.5, 0.125, 1e15, 123456789012345.5, 9.999999999999999e22, 1e-5, 0.1, 2.675, 1e30}) {
        ExpectSameRounding(v, 15, PlainText(v));
        ExpectSameRounding(v, 7, PlainText(static_cast<float>(v)));
    }
    EXPECT_EQ(PlainText(-9999.0), "-9999");
    EXPECT_EQ(PlainText(0.5), " .5");
    EXPECT_EQ(PlainText(1e15), " 1E+15");
    EXPECT_EQ(PlainText(1.5e-5), " 1.5E-05");
    EXPECT_EQ(PlainText(10.5f), " 10.5");
}

RC_GTEST_PROP(LeadingNumberWhole, WholeNumbersReadAsTheirValue, ()) {
    const int digitCount = *rc::gen::inRange(0, 19);
    std::string digits;
    for (int i = 0; i < digitCount; ++i) digits += static_cast<char>('0' + *rc::gen::inRange(0, 10));
    const std::string sign = *rc::gen::element<std::string>("", "+", "-");
    const std::string blanks = *rc::gen::element<std::string>("", " ", "  \t");
    const std::string tail = *rc::gen::element<std::string>("", "X", " mm", ",5", "-3", "+1", ".", ".5", "E2", "d1", "e");
    std::string text = blanks + sign;
    for (char c : digits) text += std::string(1, c) + (*rc::gen::inRange(0, 4) == 0 ? " " : "");
    text += tail;
    ExpectReadAsTheCLibraryReadsIt(text);
}

RC_GTEST_PROP(LeadingNumberDecimal, PlainDecimalsReadAsTheCLibraryReadsThem, ()) {
    auto digitsOf = [](int count) {
        std::string digits;
        for (int i = 0; i < count; ++i) digits += static_cast<char>('0' + *rc::gen::inRange(0, 10));
        return digits;
    };
    const std::string whole = digitsOf(*rc::gen::inRange(0, 12));
    const std::string fraction = digitsOf(*rc::gen::inRange(0, 12));
    const std::string sign = *rc::gen::element<std::string>("", "+", "-");
    const std::string tail = *rc::gen::element<std::string>("", "X", " mm", ".5", "-3", "E2", "d-1", "e", ".");
    std::string text = *rc::gen::element<std::string>("", " ", "\t ") + sign;
    for (char c : whole + "." + fraction) text += std::string(1, c) + (*rc::gen::inRange(0, 5) == 0 ? " " : "");
    text += tail;
    ExpectReadAsTheCLibraryReadsIt(text);
}

TEST(LeadingNumberDecimal, FifteenDigitsReadDirectlyAndMoreAsTheLibraryReadsThem) {
    const std::vector<std::pair<std::string, double>> readings = {
        {"12.34", 12.34}, {"-0.1", -0.1}, {".5", 0.5}, {"5.", 5.0}, {"1.2.3", 1.2},
        {"99999999999999.9", 99999999999999.9}, {"0.1234567890123456789", 0.1234567890123456789},
        {"2.675", 2.675}, {"1.5E3", 1500.0}, {".", 0.0}};
    for (const auto& [text, value] : readings) EXPECT_EQ(LeadingNumber(text), value) << text;
    EXPECT_TRUE(std::signbit(LeadingNumber("-0.00")));
}

TEST(LeadingNumberWhole, SignOfZeroAndPrefixes) {
    EXPECT_TRUE(std::signbit(LeadingNumber("-0")));
    EXPECT_FALSE(std::signbit(LeadingNumber("-")));
    EXPECT_EQ(LeadingNumber("&H10"), 16.0);
    EXPECT_EQ(LeadingNumber(" 1 2 3x"), 123.0);
    EXPECT_EQ(LeadingNumber("1234567890123456"), 1234567890123456.0);
    EXPECT_EQ(LeadingNumber("--5"), 0.0);
    EXPECT_EQ(LeadingNumber("5-3"), 5.0);
    EXPECT_EQ(LeadingNumber("12e"), 12.0);
}

TEST(PlainTextDigits, WholeNumbers) {
    EXPECT_EQ(PlainText(1234567.0f), " 1234567");
    EXPECT_EQ(PlainText(12345678.0f), " 1.234568E+07");
    EXPECT_EQ(PlainText(-100.0f), "-100");
    EXPECT_EQ(PlainText(999999999999999.0), " 999999999999999");
    EXPECT_EQ(PlainText(1e15), " 1E+15");
    EXPECT_EQ(PlainText(-0.0), " 0");
}

namespace {

// NumberText with places as its steps say: round, plain text, small exponents to 0, pad the
// decimals, cut behind the places, a zero in front of a leading point.
std::string ReferenceNumberText(double value, int places) {
    if (places > 6) places = 6;
    std::string text = Trim(PlainText(RoundTo(value, places)));
    if (Holds(text, "E-") || Holds(text, "D-")) text = "0";
    const auto point = text.find('.');
    if (point == std::string::npos) text += ".000000";
    else if (point == 0) text = "0" + text + "000000";
    else text += "000000";
    const auto cut = text.find('.');
    text.resize(places == 0 ? cut : cut + 1 + static_cast<size_t>(places));
    if (!text.empty() && text[0] == '.') text = "0" + text;
    if (text.size() >= 2 && text[0] == '-' && text[1] == '.') text = "-0." + text.substr(2);
    return text;
}

}  // namespace

RC_GTEST_PROP(NumberTextPlaces, AsItsStepsSay, (double value)) {
    const int places = *rc::gen::inRange(0, 8);
    const double scaled = value / std::pow(10.0, *rc::gen::inRange(0, 12));
    RC_ASSERT(NumberText(scaled, places) == ReferenceNumberText(scaled, places));
    RC_ASSERT(NumberText(static_cast<float>(scaled), places) == ReferenceNumberText(static_cast<float>(scaled), places));
}

TEST(NumberTextPlaces, EdgesOfTheDirectForm) {
    for (double v : {0.0, -0.0004, -0.005, 0.00001, 0.0001, 0.00005, 1.9996, 2.5, 3.5, -2.5, 1e9, 2147483647.0, 2147483648.0,
                     -2147483648.5, 21474836.48, 0.1, 10.0006, -1.5, 1e-7, -0.00001})
        for (int places = 0; places <= 7; ++places)
            EXPECT_EQ(NumberText(v, places), ReferenceNumberText(v, places)) << v << " " << places;
    EXPECT_EQ(NumberText(0.00001, 5), "0.00000");
    EXPECT_EQ(NumberText(0.0001, 5), "0.00010");
    EXPECT_EQ(NumberText(-0.005, 3), "-0.005");
}
