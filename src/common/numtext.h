#pragma once
// Number-to-text and text-to-number forms. Every number that becomes text goes through
// PlainText or NumberText; every text that becomes a number goes through LeadingNumber.
#include <cstdint>
#include <string>
#include <string_view>

namespace tvx {

// The plain text of a number: the shortest decimal text of seven significant digits for a
// single and fifteen for a double, no zero in front of the point (".5", "-.5"), a blank in
// front of a number that is not negative, and the exponent forms "1E+07", "1.5E-05" where
// the number needs them. Not trimmed.
std::string PlainText(double value);
std::string PlainText(float value);
std::string PlainText(int32_t value);
// The plain text without its leading blank, as Trim(PlainText(value)) gives it.
std::string BarePlainText(double value);
std::string BarePlainText(float value);
// Appends the plain text of a single, with its leading blank, to a text.
void AppendPlainText(std::string& text, float value);
// Makes a text the bare plain text of a number, in place.
void AssignBarePlainText(std::string& text, double value);
void AssignBarePlainText(std::string& text, float value);

// The number that the plain text of a single reads back as, LeadingNumber(PlainText(value)),
// without making the text.
double NumberThroughPlainText(float value);

// The leading number of a text, 0 when there is none. Blanks, tabs and line ends anywhere
// in the text are passed over; a sign, digits, a point, an exponent with E or D, and the
// prefixes &H and &O are understood; reading stops at the first character that cannot
// continue the number.
double LeadingNumber(std::string_view text);

// The text of a number with the given places: -1 the free form, 0 to 6 (more counts as 6)
// rounded by RoundTo and cut to exactly that many decimals. The single form differs only in
// the free form, where its plain text has seven significant digits.
std::string NumberText(double value, int places);
std::string NumberText(float value, int places);
// The same, made in place in a text.
void AssignNumberText(std::string& text, double value, int places);
void AssignNumberText(std::string& text, float value, int places);

std::string IntegerText(int16_t value);
std::string LongText(int32_t value);
// A whole number of any size in its plain decimal form, for the messages of faults.
std::string WholeNumberText(long long value);
std::string PadInteger(int16_t value, int width);
std::string PadLong(int32_t value, int width);

std::string AfterColon(std::string_view text);
std::string StripExtension(std::string_view text);
std::string GetExtension(std::string_view text);

// Text helpers with the system's own rules: only the blank (32) is trimmed, upper case is
// that of the 8-bit Western code page, texts are bytes.
std::string Trim(std::string_view text);
std::string TrimLeft(std::string_view text);
std::string TrimRight(std::string_view text);
// The same, in place.
void TrimInPlace(std::string& text);
void TrimLeftInPlace(std::string& text);
std::string Upper(std::string_view text);
bool Holds(std::string_view text, std::string_view part);

}  // namespace tvx
