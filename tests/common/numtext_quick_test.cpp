// The quick forms of the number texts agree with the long way round: the plain text written
// without temporaries against the same text built step by step, the bare and appended forms
// against the trimmed text, the reading of a single's text against reading the text, and the
// quick reading of a decimal against strtod.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/numtext.h"

using namespace tvx;

namespace {

// The plain text built from the "%.*e" digits, one step at a time.
std::string PlainTextByHand(double value, int digits, int exponentLimit) {
    if (std::isnan(value)) return " NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : " Inf";
    if (value == 0) return " 0";
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*e", digits - 1, value);
    std::string text(buffer);
    const bool negative = text[0] == '-';
    if (negative) text.erase(0, 1);
    const auto e = text.find('e');
    const int exponent = std::atoi(text.c_str() + e + 1);
    std::string significant;
    for (char c : text.substr(0, e))
        if (c != '.') significant += c;
    while (significant.size() > 1 && significant.back() == '0') significant.pop_back();
    std::string body;
    if (exponent >= exponentLimit || exponent < -4) {
        body = significant.substr(0, 1);
        if (significant.size() > 1) body += "." + significant.substr(1);
        char exp[16];
        std::snprintf(exp, sizeof exp, "E%c%02d", exponent < 0 ? '-' : '+', exponent < 0 ? -exponent : exponent);
        body += exp;
    } else if (exponent >= 0) {
        const size_t whole = static_cast<size_t>(exponent) + 1;
        if (significant.size() <= whole) body = significant + std::string(whole - significant.size(), '0');
        else body = significant.substr(0, whole) + "." + significant.substr(whole);
    } else {
        body = "." + std::string(static_cast<size_t>(-exponent - 1), '0') + significant;
    }
    return (negative ? "-" : " ") + body;
}

float FloatOfBits(uint32_t bits) {
    float f = 0;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

double DoubleOfBits(uint64_t bits) {
    double d = 0;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

}  // namespace

RC_GTEST_PROP(QuickNumberText, PlainTextOfADoubleIsTheTextBuiltByHand, (uint64_t bits)) {
    const double value = DoubleOfBits(bits);
    RC_ASSERT(PlainText(value) == PlainTextByHand(value, 15, 15));
    RC_ASSERT(BarePlainText(value) == Trim(PlainText(value)));
}

RC_GTEST_PROP(QuickNumberText, PlainTextOfASingleIsTheTextBuiltByHand, (uint32_t bits)) {
    const float value = FloatOfBits(bits);
    RC_ASSERT(PlainText(value) == PlainTextByHand(static_cast<double>(value), 7, 7));
    RC_ASSERT(BarePlainText(value) == Trim(PlainText(value)));
    std::string text = "P";
    AppendPlainText(text, value);
    RC_ASSERT(text == "P" + PlainText(value));
}

RC_GTEST_PROP(QuickNumberText, SingleReadThroughItsTextIsTheTextRead, (uint32_t bits)) {
    const float value = FloatOfBits(bits);
    const double quick = NumberThroughPlainText(value);
    const double slow = LeadingNumber(PlainText(value));
    RC_ASSERT((quick == slow && std::signbit(quick) == std::signbit(slow)) || (std::isnan(quick) && std::isnan(slow)));
}

RC_GTEST_PROP(QuickNumberText, SinglesOfEveryDayReadThroughTheirTextAlike, ()) {
    const float value = static_cast<float>(*rc::gen::inRange(-2000000, 2000000)) / 1000.0f;
    RC_ASSERT(NumberThroughPlainText(value) == LeadingNumber(PlainText(value)));
}

TEST(QuickNumberText, WholeAndEdgeSinglesReadThroughTheirText) {
    for (float v : {0.0f, -0.0f, 1.0f, -1.0f, 9999999.0f, 10000000.0f, 16777216.0f, 0.1f, 1e-5f, 3.4028235e38f,
                    1.4e-45f, -123.456f}) {
        EXPECT_EQ(NumberThroughPlainText(v), LeadingNumber(PlainText(v))) << v;
    }
    EXPECT_FALSE(std::signbit(NumberThroughPlainText(-0.0f)));
}

RC_GTEST_PROP(QuickNumberText, DecimalReadsAsStrtodReadsIt, ()) {
    std::string text;
    std::string plain;
    const auto add = [&](const std::string& part) {
        text += part;
        plain += part;
    };
    add(*rc::gen::element<std::string>("", "+", "-"));
    for (int i = *rc::gen::inRange(0, 22); i > 0; --i) add(std::string(1, static_cast<char>('0' + *rc::gen::inRange(0, 10))));
    if (*rc::gen::arbitrary<bool>()) {
        add(".");
        for (int i = *rc::gen::inRange(0, 22); i > 0; --i)
            add(std::string(1, static_cast<char>('0' + *rc::gen::inRange(0, 10))));
    }
    if (*rc::gen::arbitrary<bool>()) {
        const std::string letter = *rc::gen::element<std::string>("e", "E", "d", "D");
        text += letter;
        plain += "e";
        add(*rc::gen::element<std::string>("", "+", "-"));
        for (int i = *rc::gen::inRange(0, 3); i > 0; --i)
            add(std::string(1, static_cast<char>('0' + *rc::gen::inRange(0, 10))));
    }
    if (*rc::gen::arbitrary<bool>()) text.insert(text.size() / 2, " ");
    if (*rc::gen::arbitrary<bool>()) text += "X9";
    const double read = LeadingNumber(text);
    const double expected = std::strtod(plain.c_str(), nullptr);
    RC_ASSERT(read == expected);
}

RC_GTEST_PROP(QuickNumberText, SinglesOfTheWorkedRangeReadAndPrintAsTheirText, ()) {
    // Singles between 1E-10 and 1E+20, their seven digits worked in whole numbers.
    const float value = static_cast<float>(*rc::gen::inRange(-1000000000, 1000000000)) *
                        std::pow(10.0f, static_cast<float>(*rc::gen::inRange(-18, 12)));
    RC_ASSERT(PlainText(value) == PlainTextByHand(static_cast<double>(value), 7, 7));
    RC_ASSERT(NumberThroughPlainText(value) == LeadingNumber(PlainText(value)));
}

TEST(QuickNumberText, SeventhDigitTiesGoToTheEvenDigitAsPrintfRoundsThem) {
    // 1048576.5 and 1048577.5 are singles exactly: their eighth digit is a tie.
    EXPECT_EQ(PlainText(1048576.5f), " 1048576");
    EXPECT_EQ(PlainText(1048577.5f), " 1048578");
    EXPECT_EQ(PlainText(1048576.5f), PlainTextByHand(1048576.5, 7, 7));
    EXPECT_EQ(NumberThroughPlainText(1048577.5f), 1048578.0);
    // Rounding up into the next power of ten.
    EXPECT_EQ(PlainText(9999999.5f), PlainTextByHand(9999999.5, 7, 7));
    EXPECT_EQ(PlainText(0.099999999f), PlainTextByHand(static_cast<double>(0.099999999f), 7, 7));
    for (float v : {1e-10f, 9.99999e19f, 1e20f, 0.1f, 0.3f, 123.456f, -0.001f, 3.4028235e38f, 1.17549435e-38f})
        EXPECT_EQ(PlainText(v), PlainTextByHand(static_cast<double>(v), 7, 7)) << v;
}

RC_GTEST_PROP(QuickNumberText, TrimInPlaceIsTheTrim, ()) {
    const std::string text = *rc::gen::container<std::string>(rc::gen::element<char>(' ', 'a', '\t', '\xAC'));
    std::string both = text;
    std::string left = text;
    TrimInPlace(both);
    TrimLeftInPlace(left);
    RC_ASSERT(both == Trim(text));
    RC_ASSERT(left == TrimLeft(text));
}
