#include "common/numtext.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "common/fault.h"
#include "common/numeric.h"

namespace tvx {
namespace {

// The longest plain text: a sign or blank, fifteen digits, a point, up to four zeros behind
// it, and an exponent of up to three digits, with room to spare.
constexpr size_t PlainTextRoom = 48;

// Writes the plain text from the value's significant digits, rounded to `digits`, into `out`
// (PlainTextRoom bytes); gives its length.
// The seven significant digits of a single as "%.6e" rounds them (halves to even on the
// exact binary value): `digits` from 1000000 to 9999999 and the decimal exponent of the
// first digit. Worked in whole numbers, exactly, for singles from 1E-10 to 1E+20; false for
// others, which go the general way.
bool SevenDigits(float value, uint32_t& digits, int& exponent) {
#if defined(__SIZEOF_INT128__)
    __extension__ typedef unsigned __int128 Wide;
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const uint32_t biased = (bits >> 23) & 0xFF;
    if (biased == 0xFF) return false;
    const uint64_t mantissa = biased == 0 ? (bits & 0x7FFFFF) : ((bits & 0x7FFFFF) | 0x800000);
    const int power2 = biased == 0 ? -149 : static_cast<int>(biased) - 150;
    if (mantissa == 0) return false;
    const double magnitude = std::fabs(static_cast<double>(value));
    if (magnitude < 1e-10 || magnitude >= 1e20) return false;
    static constexpr uint64_t Tens[] = {1ull,
                                        10ull,
                                        100ull,
                                        1000ull,
                                        10000ull,
                                        100000ull,
                                        1000000ull,
                                        10000000ull,
                                        100000000ull,
                                        1000000000ull,
                                        10000000000ull,
                                        100000000000ull,
                                        1000000000000ull,
                                        10000000000000ull,
                                        100000000000000ull,
                                        1000000000000000ull,
                                        10000000000000000ull,
                                        100000000000000000ull};
    // The decimal exponent estimated from the binary one (log10 2 is about 1233/4096), at most
    // one too small; the rounds below put it right.
    int bitLength = power2;
    for (uint64_t m = mantissa; m > 1; m >>= 1) ++bitLength;
    int e10 = (bitLength * 1233) >> 12;
    if (bitLength < 0) e10 = -((-bitLength * 1233 + 4095) >> 12);
    for (int attempt = 0; attempt < 4; ++attempt) {
        // The value times 10^(6 - e10) as numerator over denominator.
        const int k = 6 - e10;
        if (k > 17 || k < -17) return false;
        Wide numerator = mantissa;
        Wide denominator = 1;
        if (k >= 0) numerator *= Tens[k];
        else denominator *= Tens[-k];
        if (power2 >= 0) numerator <<= power2;
        Wide whole = 0;
        Wide rest = 0;
        if (power2 < 0 && k >= 0) {
            // A denominator of a power of two: the quotient and the rest by shifts.
            const int shift = -power2;
            whole = numerator >> shift;
            rest = numerator & ((Wide{1} << shift) - 1);
            denominator = Wide{1} << shift;
        } else {
            if (power2 < 0) denominator <<= -power2;
            whole = numerator / denominator;
            rest = numerator % denominator;
        }
        if (whole >= 10000000) {
            ++e10;
            continue;
        }
        if (whole < 1000000) {
            --e10;
            continue;
        }
        uint64_t n = static_cast<uint64_t>(whole);
        const Wide twice = rest * 2;
        if (twice > denominator || (twice == denominator && (n & 1) != 0)) ++n;
        if (n == 10000000) {
            n = 1000000;
            ++e10;
        }
        digits = static_cast<uint32_t>(n);
        exponent = e10;
        return true;
    }
    return false;
#else
    (void)value;
    (void)digits;
    (void)exponent;
    return false;
#endif
}

size_t WritePlainTextDigits(char* out, double value, int digits, int exponentLimit) {
    auto put = [&](const char* text) {
        const size_t n = std::strlen(text);
        std::memcpy(out, text, n);
        return n;
    };
    if (std::isnan(value)) return put(" NaN");
    if (std::isinf(value)) return put(value < 0 ? "-Inf" : " Inf");
    if (value == 0) return put(" 0");
    // A whole number of no more digits than the form keeps is its own digits: written
    // directly, as the conversion below would give it.
    const double limit = PowersOfTen[digits];
    if (std::fabs(value) < limit && value == std::trunc(value)) {
        out[0] = value < 0 ? '-' : ' ';
        const auto end = std::to_chars(out + 1, out + PlainTextRoom, static_cast<long long>(std::fabs(value))).ptr;
        return static_cast<size_t>(end - out);
    }
    const bool negative = value < 0;
    char significant[32];
    size_t count = 0;
    int exponent = 0;
    uint32_t seven = 0;
    if (digits == 7 && static_cast<double>(static_cast<float>(value)) == value &&
        SevenDigits(static_cast<float>(value), seven, exponent)) {
        const auto end = std::to_chars(significant, significant + sizeof significant, seven).ptr;
        count = static_cast<size_t>(end - significant);
    } else {
        // The digits as "%.*e" gives them, correctly rounded; to_chars is the same conversion
        // without the cost of the formatted-output machinery.
        char buffer[64];
        const char* const written =
            std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, digits - 1).ptr;
        // buffer: [-]d.ddddde[+-]xx
        const char* p = buffer;
        if (negative) ++p;
        for (; p < written && *p != 'e'; ++p)
            if (*p != '.') significant[count++] = *p;
        std::from_chars(p + 1 + (p[1] == '+' ? 1 : 0), written, exponent);
    }
    while (count > 1 && significant[count - 1] == '0') --count;

    size_t n = 0;
    out[n++] = negative ? '-' : ' ';
    if (exponent >= exponentLimit || exponent < -4) {
        out[n++] = significant[0];
        if (count > 1) {
            out[n++] = '.';
            std::memcpy(out + n, significant + 1, count - 1);
            n += count - 1;
        }
        const int magnitude = exponent < 0 ? -exponent : exponent;
        out[n++] = 'E';
        out[n++] = exponent < 0 ? '-' : '+';
        if (magnitude < 10) out[n++] = '0';
        n = static_cast<size_t>(std::to_chars(out + n, out + PlainTextRoom, magnitude).ptr - out);
    } else if (exponent >= 0) {
        const size_t whole = static_cast<size_t>(exponent) + 1;
        if (count <= whole) {
            std::memcpy(out + n, significant, count);
            n += count;
            std::memset(out + n, '0', whole - count);
            n += whole - count;
        } else {
            std::memcpy(out + n, significant, whole);
            n += whole;
            out[n++] = '.';
            std::memcpy(out + n, significant + whole, count - whole);
            n += count - whole;
        }
    } else {
        out[n++] = '.';
        const size_t zeros = static_cast<size_t>(-exponent - 1);
        std::memset(out + n, '0', zeros);
        n += zeros;
        std::memcpy(out + n, significant, count);
        n += count;
    }
    return n;
}

std::string PlainTextDigits(double value, int digits, int exponentLimit) {
    char text[PlainTextRoom];
    return std::string(text, WritePlainTextDigits(text, value, digits, exponentLimit));
}

// The plain text without its leading blank, made in place.
void AssignBarePlainTextDigits(std::string& out, double value, int digits, int exponentLimit) {
    char text[PlainTextRoom];
    const size_t n = WritePlainTextDigits(text, value, digits, exponentLimit);
    if (text[0] == ' ') out.assign(text + 1, n - 1);
    else out.assign(text, n);
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

void AssignNumberTextWithPlaces(std::string& out, double value, int places) {
    if (places > 6) places = 6;
    // The value rounded to a whole number of units of the last place, as RoundTo rounds it:
    // its text is those digits with the point put in, which is what the plain text of the
    // rounded value gives. A value whose plain text takes an exponent (below 1E-04) goes the
    // general way below, where it becomes 0.
    {
        const double scale = places > 0 ? PowersOfTen[places] : 1.0;
        int32_t whole = 0;
        const bool rounded = places >= 1 ? RoundsIntoInt32(value * scale, whole) : RoundsIntoInt32(value, whole);
        const long long magnitude = whole < 0 ? -static_cast<long long>(whole) : whole;
        if (rounded && (whole == 0 || static_cast<double>(magnitude) * 10000.0 >= scale)) {
            // The digits from the last, with zeros in front up to one whole digit and the
            // point put in behind the whole digits.
            char text[48];
            char* const end = text + sizeof text;
            char* p = end;
            unsigned long long rest = static_cast<unsigned long long>(magnitude);
            int written = 0;
            do {
                if (written == places && places > 0) *--p = '.';
                *--p = static_cast<char>('0' + rest % 10);
                rest /= 10;
                ++written;
            } while (rest != 0 || written <= places);
            if (whole < 0) *--p = '-';
            out.assign(p, static_cast<size_t>(end - p));
            return;
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
    out = LeadZero(text);
}

std::string FreeForm(std::string text) {
    text = Trim(text);
    if (HoldsSmallExponent(text)) text = "0";
    return LeadZero(text);
}

}  // namespace

std::string PlainText(double value) { return PlainTextDigits(value, 15, 15); }
std::string PlainText(float value) { return PlainTextDigits(static_cast<double>(value), 7, 7); }
void AssignBarePlainText(std::string& text, double value) { AssignBarePlainTextDigits(text, value, 15, 15); }
void AssignBarePlainText(std::string& text, float value) {
    AssignBarePlainTextDigits(text, static_cast<double>(value), 7, 7);
}
std::string BarePlainText(double value) {
    std::string text;
    AssignBarePlainText(text, value);
    return text;
}
std::string BarePlainText(float value) {
    std::string text;
    AssignBarePlainText(text, value);
    return text;
}
void AppendPlainText(std::string& text, float value) {
    char digits[PlainTextRoom];
    text.append(digits, WritePlainTextDigits(digits, static_cast<double>(value), 7, 7));
}
std::string PlainText(int32_t value) {
    return (value < 0 ? "" : " ") + std::to_string(value);
}

namespace {

// The commonest leading numbers, a whole number or a plain decimal of up to fifteen digits
// with or without a sign, read directly: the digits as one whole number over a power of ten,
// both exact, divide to the correctly rounded value that strtod gives. False when the text
// needs the full reading (an exponent, an &H or &O prefix, more digits).
bool LeadingShortNumber(std::string_view text, double& value) {
    bool negative = false;
    bool started = false;
    bool point = false;
    long long whole = 0;
    int digits = 0;
    int places = 0;
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
            if (point) ++places;
            continue;
        }
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c == 'E' || c == 'e' || c == 'D' || c == 'd') return false;
        break;
    }
    if (digits == 0) {
        value = 0;
        return true;
    }
    const double magnitude = static_cast<double>(whole) / PowersOfTen[places];
    value = negative ? -magnitude : magnitude;
    return true;
}

}  // namespace

double LeadingNumber(std::string_view text) {
    if (double number = 0; LeadingShortNumber(text, number)) return number;
    // The text without its blanks; a short one stays on the stack.
    char shortClean[128];
    std::string longClean;
    char* cleanData = shortClean;
    if (text.size() > sizeof shortClean) {
        longClean.resize(text.size());
        cleanData = longClean.data();
    }
    size_t cleanSize = 0;
    for (char c : text)
        if (!IsBlankForNumber(c)) cleanData[cleanSize++] = c;
    const std::string_view clean(cleanData, cleanSize);

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

    // The number as strtod reads it: sign, digits, point, digits, and "e" with the exponent.
    std::string number;
    number.reserve(clean.size() + 16);
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
            const size_t mark = number.size();
            number += 'e';
            if (j < clean.size() && (clean[j] == '+' || clean[j] == '-')) number += clean[j++];
            size_t expDigits = 0;
            while (j < clean.size() && clean[j] >= '0' && clean[j] <= '9' && expDigits < 12) {
                number += clean[j++];
                ++expDigits;
            }
            if (expDigits == 0) number.resize(mark);
        }
    }
    // The correctly rounded reading of the number; strtod tells an overflow, and reads what
    // the quick reading leaves.
    {
        const char* first = number.data() + (number[0] == '+' ? 1 : 0);
        const char* const last = number.data() + number.size();
        double quick = 0;
        const auto read = std::from_chars(first, last, quick);
        if (read.ec == std::errc() && read.ptr == last) return quick;
    }
    errno = 0;
    const double v = std::strtod(number.c_str(), nullptr);
    if (std::isinf(v)) RunFault("Overflow: the number " + number + " is too large");
    return v;
}

void AssignNumberText(std::string& text, double value, int places) {
    if (places < 0) text = FreeForm(PlainText(value));
    else AssignNumberTextWithPlaces(text, value, places);
}

void AssignNumberText(std::string& text, float value, int places) {
    if (places < 0) text = FreeForm(PlainText(value));
    else AssignNumberTextWithPlaces(text, static_cast<double>(value), places);
}

std::string NumberText(double value, int places) {
    std::string text;
    AssignNumberText(text, value, places);
    return text;
}

std::string NumberText(float value, int places) {
    std::string text;
    AssignNumberText(text, value, places);
    return text;
}

double NumberThroughPlainText(float value) {
    const double v = static_cast<double>(value);
    if (!std::isfinite(v)) return LeadingNumber(PlainText(value));
    // Seven digits hold every whole number below ten million: its text is its own digits.
    if (v == std::trunc(v) && std::fabs(v) < 1e7) return v == 0 ? 0.0 : v;
    // The plain text holds the seven significant digits of "%.6e"; read back, they are the
    // double nearest to that decimal, as the correctly rounded reading of the text gives it.
    // With digits and a power of ten both exact in a double, one multiplication or division
    // is that nearest double.
    uint32_t seven = 0;
    int exponent = 0;
    if (SevenDigits(value, seven, exponent)) {
        const int power = exponent - 6;
        const double magnitude = power >= 0 ? static_cast<double>(seven) * PowersOfTen[power]
                                            : static_cast<double>(seven) / PowersOfTen[-power];
        return value < 0 ? -magnitude : magnitude;
    }
    char buffer[64];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::scientific, 6);
    double back = 0;
    std::from_chars(buffer, written.ptr, back, std::chars_format::scientific);
    return back;
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

std::string Trim(std::string_view text) {
    size_t b = 0;
    size_t e = text.size();
    while (b < e && text[b] == ' ') ++b;
    while (e > b && text[e - 1] == ' ') --e;
    return std::string(text.substr(b, e - b));
}

void TrimLeftInPlace(std::string& text) {
    size_t b = 0;
    while (b < text.size() && text[b] == ' ') ++b;
    text.erase(0, b);
}

void TrimInPlace(std::string& text) {
    size_t e = text.size();
    while (e > 0 && text[e - 1] == ' ') --e;
    text.resize(e);
    TrimLeftInPlace(text);
}

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
