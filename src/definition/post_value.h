#pragma once
// The value register's conversions: what a number or a text becomes when the engine needs
// the other form.
#include <cstdint>
#include <string>
#include <string_view>

#include "definition/engine_state.h"

namespace tvx {

inline constexpr const char* NoValueText = "-9999";

// True for the text "-9999" and for the number -9999: the word line has no value to print.
inline bool IsNoValue(const PostValueType& value) {
    if (value.Type == PostValueType::Kind::Text) return value.Text == NoValueText;
    return value.Number == -9999.0;
}

PostValueType TextValue(std::string text);
PostValueType SingleValue(float number);
PostValueType DoubleValue(double number);
// The number -9999.
PostValueType NoValue();

// The same forms set into a register in place, keeping its text's storage.
void SetText(PostValueType& value, std::string_view text);
void SetSingle(PostValueType& value, float number);
void SetDouble(PostValueType& value, double number);
void SetNoValue(PostValueType& value);

// True when a text, less the blanks around it, is a whole number in the forms that a number
// may be written in: sign, digits, point, exponent with E or D; or &H and &O numbers.
bool IsNumericText(std::string_view text);

// The value as a text: a text stays as it is; a number gives its plain text without the
// leading blank (seven digits for a single, fifteen for a double).
std::string ValueAsText(const PostValueType& value);
// The value as a number: a number stays; an empty text is 0; a text that is a whole number is
// read by its leading number; any other text is the fault "Type mismatch", naming `what`.
double ValueAsNumber(const PostValueType& value, std::string_view what);
// The same for a number that keeps its precision: a single stays a single, a text becomes a
// double.
PostValueType ValueAsNumberValue(const PostValueType& value, std::string_view what);
// The register made its plain number text without the leading blank, in place: a text is
// read as its number first; no value, in either number form, becomes the text "-9999".
void SetPlainNumberText(PostValueType& value, std::string_view what);
// The register made the text of its number with the given places (NumberText), in place:
// a single keeps the single form.
void SetNumberText(PostValueType& value, int places);

// A cell number: the value rounded to an integer, halves to the even neighbour. A text that
// is not a number is the fault "Type mismatch".
int32_t CellNumber(const PostValueType& index, const char* what);

}  // namespace tvx
