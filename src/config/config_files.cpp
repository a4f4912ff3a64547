#include "config/config_files.h"

#include <cmath>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"

namespace tvx {

std::string ReadLabelValue(TextInput& in) { return AfterColon(ReadLine(in)); }

bool ListAtEnd(const TextInput& in) {
    if (AtEnd(in)) return true;
    const std::string& d = *in.Data;
    for (size_t p = in.Pos; p < d.size(); ++p)
        if (d[p] != ' ' && d[p] != '\t') return false;
    return true;
}

std::string FieldOf(const char* field, const TextInput& in) { return std::string(field) + " of " + in.Path; }

int16_t TextToInteger16(std::string_view text, const char* field, const TextInput& in) {
    return ToInteger16(LeadingNumber(text), FieldOf(field, in).c_str());
}

int16_t TextTruncToInteger16(std::string_view text, const char* field, const TextInput& in) {
    const double value = LeadingNumber(text);
    return ToInteger16(std::isfinite(value) ? std::trunc(value) : value, FieldOf(field, in).c_str());
}

float MachineLength(double value, bool imperial) {
    if (imperial) return ToSingle(RoundTo(value * 25.4, 3));
    return ToSingle(value);
}

std::string StartFile(const std::string& startDir, const std::string& name) {
    if (startDir.empty()) return name;
    return WithSeparator(startDir) + name;
}

}  // namespace tvx
