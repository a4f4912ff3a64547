#pragma once
// Reading helpers shared by the configuration files: label lines, list files, lengths.
#include <cstdint>
#include <string>
#include <string_view>

#include "common/textfile.h"

namespace tvx {

// The value of the next line of a label file: the trimmed text behind the first colon, or the
// whole trimmed line. Reading past the end of the file is the file fault.
std::string ReadLabelValue(TextInput& in);

// True when nothing but blanks is left of a list file: the list ends there.
bool ListAtEnd(const TextInput& in);

// A 16-bit integer from a text of a file: its leading number rounded with halves to even, or
// truncated towards zero. A number out of range is the overflow fault naming the field and the
// file.
int16_t TextToInteger16(std::string_view text, const char* field, const TextInput& in);
int16_t TextTruncToInteger16(std::string_view text, const char* field, const TextInput& in);
// "<field> of <file>", to name a value of a file in a fault.
std::string FieldOf(const char* field, const TextInput& in);

// A length of a machine file in millimetres: under imperial units the inch value times 25.4,
// rounded to 3 decimals; otherwise the value as it stands, as a single.
float MachineLength(double value, bool imperial);

// The path of a file under the configuration's start directory.
std::string StartFile(const std::string& startDir, const std::string& name);

}  // namespace tvx
