#include "common/numtext.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "common/fault.h"
#include "common/numeric.h"

namespace tvx {
namespace {

// Builds the plain text from the value's significant digits, rounded to `digits`.
std::string PlainTextDigits(double value, int digits, int exponentLimit) {
    if (std::isnan(value)) return " NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : " Inf";
    if (value == 0) return " 0";
    // A whole number of no more digits than the form keeps is its own digits: written
    // directly, as the conversion below would give it.
    double limit = 1;
    for (int i = 0; i < digits; ++i) limit *= 10;
    if (std::fabs(value) < limit && value == std::trunc(value)) {
        char whole[32];
        const auto end = std::to_chars(whole, whole + sizeof whole, static_cast<long long>(std::fabs(value))).ptr;
        std::string text(value < 0 ? "-" : " ");
        text.append(whole, end);
        return text;
    }
    // The digits as "%.*e" gives them, correctly rounded; to_chars is the same conversion
    // without the cost of the formatted-output machinery.
    char buffer[64];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, digits - 1);
    // buffer: [-]d.ddddde[+-]xx
    std::string text(buffer, written.ptr);
    const bool negative = text[0] == '-';
    if (negative) text.erase(0, 1);
    const auto e = text.find('e');
    std::string mantissa = text.substr(0, e);
    const int exponent = std::atoi(text.c_str() + e + 1);
    std::string significant;
    for (char c : mantissa)
        if (c != '.') significant += c;
    while (significant.size() > 1 && significant.back() == '0') significant.pop_back();

    std::string body;
    if (exponent >= exponentLimit || exponent < -4) {
        body = significant.substr(0, 1);
        if (significant.size() > 1) body += "." + significant.substr(1);
        const int magnitude = exponent < 0 ? -exponent : exponent;
        char exp[16];
        std::snprintf(exp, sizeof exp, "E%c%02d", exponent < 0 ? '-' : '+', magnitude);
        body += exp;
    } else if (exponent >= 0) {
        const size_t whole = static_cast<size_t>(exponent) + 1;
        if (significant.size() <= whole) {
            body = significant + std::string(whole - significant.size(), '0');
        } else {
            body = significant.substr(0, whole) + "." + significant.substr(whole);
        }
    } else {
        body = "." + std::string(static_cast<size_t>(-exponent - 1), '0') + significant;
    }
    return (negative ? "-" : " ") + body;
}

bool IsBlankForNumber(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

unsigned char UpperByte(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 32);
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<unsigned char>(c - 32);
    switch (c) {
        case 0x9A: return 0x8A;
        case 0x9C: return 0x8C;
        case 0x9E: return 0x8E;
        case 0xFF: return 0x9F;
        default: return c;
    }
}

// Finishes a text of NumberText: a leading "." gets a zero, "-." becomes "-0.".
std::string LeadZero(std::string text) {
    if (!text.empty() && text[0] == '.') return "0" + text;
    if (text.size() >= 2 && text[0] == '-' && text[1] == '.') return "-0." + text.substr(2);
    return text;
}

bool HoldsSmallExponent(const std::string& text) { return Holds(text, "E-") || Holds(text, "D-"); }

std::string NumberTextWithPlaces(double value, int places) {
    if (places > 6) places = 6;
    // The value rounded to a whole number of units of the last place, as RoundTo rounds it:
    // its text is those digits with the point put in, which is what the plain text of the
    // rounded value gives. A value whose plain text takes an exponent (below 1E-04) goes the
    // general way below, where it becomes 0.
    {
        double scale = 1.0;
        for (int i = 0; i < places; ++i) scale *= 10.0;
        int32_t whole = 0;
        const bool rounded = places >= 1 ? RoundsIntoInt32(value * scale, whole) : RoundsIntoInt32(value, whole);
        const long long magnitude = whole < 0 ? -static_cast<long long>(whole) : whole;
        if (rounded && (whole == 0 || static_cast<double>(magnitude) * 10000.0 >= scale)) {
            char buffer[32];
            const auto end = std::to_chars(buffer, buffer + sizeof buffer, magnitude).ptr;
            std::string digits(buffer, end);
            if (digits.size() < static_cast<size_t>(places) + 1)
                digits.insert(0, static_cast<size_t>(places) + 1 - digits.size(), '0');
            std::string text = whole < 0 ? "-" : "";
            const size_t integerDigits = digits.size() - static_cast<size_t>(places);
            text.append(digits, 0, integerDigits);
            if (places > 0) {
                text += '.';
                text.append(digits, integerDigits, std::string::npos);
            }
            return text;
        }
    }
    std::string text = Trim(PlainText(RoundTo(value, places)));
    if (HoldsSmallExponent(text)) text = "0";
    const auto point = text.find('.');
    if (point == std::string::npos) {
        text += ".000000";
    } else if (point == 0) {
        text = "0" + text + "000000";
    } else {
        text += "000000";
    }
    const auto cut = text.find('.');
    text.resize(places == 0 ? cut : cut + 1 + static_cast<size_t>(places));
    return LeadZero(text);
}

std::string FreeForm(std::string text) {
    text = Trim(text);
    if (HoldsSmallExponent(text)) text = "0";
    return LeadZero(text);
}

}  // namespace

std::string PlainText(double value) { return PlainTextDigits(value, 15, 15); }
std::string PlainText(float value) { return PlainTextDigits(static_cast<double>(value), 7, 7); }
std::string PlainText(int32_t value) {
    return (value < 0 ? "" : " ") + std::to_string(value);
}

namespace {

// The commonest leading number, a whole number of up to fifteen digits with or without a
// sign, read directly; false when the text needs the full reading (a point, an exponent, an
// &H or &O prefix, more digits).
bool LeadingWholeNumber(std::string_view text, double& value) {
    bool negative = false;
    bool started = false;
    long long whole = 0;
    int digits = 0;
    for (char c : text) {
        if (IsBlankForNumber(c)) continue;
        if (!started) {
            started = true;
            if (c == '&') return false;
            if (c == '+' || c == '-') {
                negative = c == '-';
                continue;
            }
        }
        if (c >= '0' && c <= '9') {
            if (++digits > 15) return false;
            whole = whole * 10 + (c - '0');
            continue;
        }
        if (c == '.' || c == 'E' || c == 'e' || c == 'D' || c == 'd') return false;
        break;
    }
    if (digits == 0) {
        value = 0;
        return true;
    }
    value = negative ? -static_cast<double>(whole) : static_cast<double>(whole);
    return true;
}

}  // namespace

double LeadingNumber(std::string_view text) {
    if (double whole = 0; LeadingWholeNumber(text, whole)) return whole;
    std::string clean;
    clean.reserve(text.size());
    for (char c : text)
        if (!IsBlankForNumber(c)) clean += c;

    size_t i = 0;
    if (clean.size() >= 2 && clean[0] == '&') {
        const char kind = static_cast<char>(UpperByte(static_cast<unsigned char>(clean[1])));
        if (kind == 'H' || kind == 'O') {
            const int base = kind == 'H' ? 16 : 8;
            unsigned long long v = 0;
            size_t n = 0;
            for (i = 2; i < clean.size() && n < 16; ++i, ++n) {
                const char c = static_cast<char>(UpperByte(static_cast<unsigned char>(clean[i])));
                int d = -1;
                if (c >= '0' && c <= '9') d = c - '0';
                else if (base == 16 && c >= 'A' && c <= 'F') d = c - 'A' + 10;
                if (d < 0 || d >= base) break;
                v = v * static_cast<unsigned>(base) + static_cast<unsigned>(d);
            }
            if (v > 0xFFFFFFFFull) return static_cast<double>(v);
            if (v > 0xFFFF) return v > 0x7FFFFFFF ? static_cast<double>(v) - 4294967296.0 : static_cast<double>(v);
            return v > 0x7FFF ? static_cast<double>(v) - 65536.0 : static_cast<double>(v);
        }
        return 0;
    }

    std::string number;
    if (i < clean.size() && (clean[i] == '+' || clean[i] == '-')) number += clean[i++];
    size_t digits = 0;
    while (i < clean.size() && clean[i] >= '0' && clean[i] <= '9') { number += clean[i++]; ++digits; }
    if (i < clean.size() && clean[i] == '.') {
        number += clean[i++];
        while (i < clean.size() && clean[i] >= '0' && clean[i] <= '9') { number += clean[i++]; ++digits; }
    }
    if (digits == 0) return 0;
    if (i < clean.size()) {
        const char e = static_cast<char>(UpperByte(static_cast<unsigned char>(clean[i])));
        if (e == 'E' || e == 'D') {
            size_t j = i + 1;
            std::string exp = "e";
            if (j < clean.size() && (clean[j] == '+' || clean[j] == '-')) exp += clean[j++];
            size_t expDigits = 0;
            while (j < clean.size() && clean[j] >= '0' && clean[j] <= '9' && expDigits < 12) {
                exp += clean[j++];
                ++expDigits;
            }
            if (expDigits > 0) number += exp;
        }
    }
    errno = 0;
    const double v = std::strtod(number.c_str(), nullptr);
    if (std::isinf(v)) RunFault("Overflow: the number " + number + " is too large");
    return v;
}

std::string NumberText(double value, int places) {
    if (places < 0) return FreeForm(PlainText(value));
    return NumberTextWithPlaces(value, places);
}

std::string NumberText(float value, int places) {
    if (places < 0) return FreeForm(PlainText(value));
    return NumberTextWithPlaces(static_cast<double>(value), places);
}

std::string IntegerText(int16_t value) { return std::to_string(value); }
std::string LongText(int32_t value) { return std::to_string(value); }
std::string WholeNumberText(long long value) { return std::to_string(value); }

std::string PadLong(int32_t value, int width) {
    const std::string text = std::to_string(value);
    const size_t w = std::max(static_cast<size_t>(width < 0 ? 0 : width), text.size());
    return std::string(w - text.size(), '0') + text;
}

std::string PadInteger(int16_t value, int width) { return PadLong(value, width); }

std::string AfterColon(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos) return Trim(text);
    return Trim(text.substr(colon + 1));
}

std::string StripExtension(std::string_view text) {
    std::string t = Trim(text);
    const auto point = t.rfind('.');
    if (point != std::string::npos) t.resize(point);
    return t;
}

std::string GetExtension(std::string_view text) {
    // The last point among the last four positions, never position 1.
    const size_t n = text.size();
    for (size_t pos = n; pos >= 2 && pos + 4 > n; --pos) {
        if (text[pos - 1] == '.') return std::string(text.substr(pos));
    }
    return {};
}

std::string Trim(std::string_view text) { return TrimLeft(TrimRight(text)); }

std::string TrimLeft(std::string_view text) {
    size_t b = 0;
    while (b < text.size() && text[b] == ' ') ++b;
    return std::string(text.substr(b));
}

std::string TrimRight(std::string_view text) {
    size_t e = text.size();
    while (e > 0 && text[e - 1] == ' ') --e;
    return std::string(text.substr(0, e));
}

std::string Upper(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(UpperByte(static_cast<unsigned char>(c)));
    return out;
}

bool Holds(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

}  // namespace tvx
