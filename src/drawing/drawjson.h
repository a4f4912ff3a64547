#pragma once
// The JSON form of a drawing, for people: an array of records, each an object of every field by
// its name in file order. The form is exact: a drawing written as JSON and built back gives the
// same bytes.
//
// Texts are given at their full width, padding included; each byte is one character: bytes
// 128 to 255 are the characters U+0080 to U+00FF, and control bytes are escaped. Singles are
// the shortest decimal text that reads back to the same single ("-0.0" for a negative zero);
// a single that is not a finite number (an infinity, a NaN with any payload) is a string of its
// bits, "0x7fc00000". Spare cells are arrays of their four bytes.
//
// When building, a field that is left out takes its cleared value (blanks for texts, zeros for
// the rest); a shorter text is blank padded; an array may be shorter than its field (the rest
// cleared) or an object of 1-based indexes ({"4": [10, 20]}); record 1's RecordCount, when left
// out, is the number of records. Any bad input is a fault of the run naming the record (from 1)
// and the field.
#include <string>
#include <string_view>

namespace tvx {

// The shortest decimal text of a finite single that reads back to the same single: tried
// with 6 to 9 significant digits, in the C form (a point, "e" exponents). A negative zero is
// "-0.0". A single that is not finite gives the text of its bits, "0x7fc00000".
std::string ShortestSingleText(float value);

// The JSON form of a drawing file's bytes. A size that is not a multiple of 518 is a fault
// naming the file.
std::string DrawingToJson(std::string_view drawingBytes, const std::string& drawingName);

// The bytes of a drawing from its JSON form; `jsonName` names the input in faults.
std::string DrawingFromJson(std::string_view jsonText, const std::string& jsonName);

}  // namespace tvx
