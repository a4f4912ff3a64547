#include "drawing/drawjson.h"

#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

#include "common/fault.h"
#include "common/numtext.h"
#include "drawing/drawfile.h"
#include "drawing/record.h"

namespace tvx {

namespace {

using Json = nlohmann::json;

constexpr char HexDigits[] = "0123456789abcdef";

// "0x" and the eight hex digits of a single's bits.
std::string BitsText(uint32_t bits) {
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) text += HexDigits[(bits >> shift) & 0xF];
    return text;
}

// A double as the single it rounds to; false when it is not a number or rounds beyond the
// largest single. The bound is the first double that rounds to infinity.
bool SingleOfDouble(double value, float& out) {
    if (std::isnan(value)) return false;
    constexpr double Overflow = 0x1.ffffffp+127;
    const double magnitude = std::fabs(value);
    if (magnitude >= Overflow) return false;
    if (magnitude > static_cast<double>(FLT_MAX)) {
        out = value < 0 ? -FLT_MAX : FLT_MAX;
        return true;
    }
    out = static_cast<float>(value);
    return true;
}

// True when the decimal text reads back, as a JSON number does, to the single of these bits.
bool ReadsBackAs(std::string_view text, uint32_t bits) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
    float single = 0;
    return SingleOfDouble(value, single) && std::bit_cast<uint32_t>(single) == bits;
}

}  // namespace

std::string ShortestSingleText(float value) {
    const uint32_t bits = std::bit_cast<uint32_t>(value);
    if (!std::isfinite(value)) return BitsText(bits);
    if (value == 0) return std::signbit(value) ? "-0.0" : "0";
    char buffer[64];
    for (int digits = 6; digits <= 9; ++digits) {
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(value),
                                          std::chars_format::general, digits);
        if (result.ec != std::errc()) continue;
        const std::string_view text(buffer, static_cast<size_t>(result.ptr - buffer));
        if (ReadsBackAs(text, bits)) return std::string(text);
    }
    // Nine significant digits always read back to the same single; this is not reached.
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, static_cast<size_t>(result.ptr - buffer));
}

namespace {

// ---- Writing -------------------------------------------------------------------------------

// A JSON string of text bytes: each byte one character, U+0000 to U+00FF; quote, backslash and
// control characters (C0, DEL and C1) escaped, the rest of Latin-1 written as UTF-8.
std::string TextJson(std::string_view bytes) {
    std::string out = "\"";
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        switch (b) {
            case '"': out += "\\\""; continue;
            case '\\': out += "\\\\"; continue;
            case '\b': out += "\\b"; continue;
            case '\f': out += "\\f"; continue;
            case '\n': out += "\\n"; continue;
            case '\r': out += "\\r"; continue;
            case '\t': out += "\\t"; continue;
            default: break;
        }
        if (b < 0x20 || (b >= 0x7F && b < 0xA0)) {
            out += "\\u00";
            out += HexDigits[b >> 4];
            out += HexDigits[b & 0xF];
        } else if (b < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | (b >> 6));
            out += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    out += '"';
    return out;
}

template <size_t Width>
std::string TextJson(const FixedText<Width>& text) {
    return TextJson(std::string_view(text.Bytes.data(), Width));
}

std::string SingleJson(float value) {
    if (!std::isfinite(value)) return "\"" + ShortestSingleText(value) + "\"";
    return ShortestSingleText(value);
}

std::string PointJson(const SinglePoint& p) { return "[" + SingleJson(p.X) + ", " + SingleJson(p.Y) + "]"; }

std::string CellJson(const RawCell& cell) {
    std::string out = "[";
    for (size_t k = 0; k < cell.size(); ++k) {
        if (k > 0) out += ", ";
        out += IntegerText(cell[k]);
    }
    return out + "]";
}

// Elements 1 to Bound of an array field, in file order.
template <typename Array, typename Write>
std::string ArrayJson(const Array& array, Write write) {
    std::string out = "[";
    for (int i = 1; i <= Array::Bound; ++i) {
        if (i > 1) out += ", ";
        out += write(array[i]);
    }
    return out + "]";
}

using Fields = std::vector<std::pair<const char*, std::string>>;

// An object of fields, one a line, the closing brace at `indent`.
std::string Block(int indent, const Fields& fields) {
    const std::string inner(static_cast<size_t>(indent + 2), ' ');
    std::string out = "{\n";
    for (size_t i = 0; i < fields.size(); ++i) {
        out += inner + "\"" + fields[i].first + "\": " + fields[i].second;
        out += i + 1 < fields.size() ? ",\n" : "\n";
    }
    return out + std::string(static_cast<size_t>(indent), ' ') + "}";
}

std::string ToolJson(const ToolSpec& tool, int indent) {
    return Block(indent, {
        {"Present", IntegerText(tool.Present)},
        {"Letter", TextJson(tool.Letter)},
        {"ToolName", TextJson(tool.ToolName)},
        {"Size", ArrayJson(tool.Size, SingleJson)},
        {"ToolNumber", IntegerText(tool.ToolNumber)},
        {"WorkType", IntegerText(tool.WorkType)},
        {"ToolStep", SingleJson(tool.ToolStep)},
        {"ToolAngle", SingleJson(tool.ToolAngle)},
        {"StageIndex", LongText(tool.StageIndex)},
    });
}

std::string LeadJson(const LeadSpec& lead, int indent) {
    return Block(indent, {
        {"LeadKind", IntegerText(lead.LeadKind)},
        {"LeadLength", SingleJson(lead.LeadLength)},
        {"LeadAngle", SingleJson(lead.LeadAngle)},
        {"LeadSpare", IntegerText(lead.LeadSpare)},
    });
}

std::string AfterJson(const AfterAction& after, int indent) {
    return Block(indent, {
        {"ActionCode", IntegerText(after.ActionCode)},
        {"ActionValue", SingleJson(after.ActionValue)},
    });
}

std::string RecordJson(const DrawRecord& r) {
    constexpr int Indent = 2;
    constexpr int Inner = Indent + 2;
    auto int16Json = [](int16_t v) { return IntegerText(v); };
    return Block(Indent, {
        {"EntityCode", IntegerText(r.EntityCode)},
        {"EntityName", TextJson(r.EntityName)},
        {"EntityText", TextJson(r.EntityText)},
        {"SpareWord", IntegerText(r.SpareWord)},
        {"RecordCount", LongText(r.RecordCount)},
        {"CarryWord1", IntegerText(r.CarryWord1)},
        {"CarryWord2", IntegerText(r.CarryWord2)},
        {"Point", ArrayJson(r.Point, PointJson)},
        {"Value", ArrayJson(r.Value, SingleJson)},
        {"Count", ArrayJson(r.Count, int16Json)},
        {"Spare", ArrayJson(r.Spare, CellJson)},
        {"Side", IntegerText(r.Side)},
        {"FollowFlag", IntegerText(r.FollowFlag)},
        {"Extent", ArrayJson(r.Extent, PointJson)},
        {"Margin", ArrayJson(r.Margin, PointJson)},
        {"ToolA", ToolJson(r.ToolA, Inner)},
        {"ToolB", ToolJson(r.ToolB, Inner)},
        {"LeadIn", LeadJson(r.LeadIn, Inner)},
        {"LeadOut", LeadJson(r.LeadOut, Inner)},
        {"After", AfterJson(r.After, Inner)},
    });
}

// ---- Reading -------------------------------------------------------------------------------

// Where in the input a value stands: the input's name and the record, from 1.
struct Where {
    const std::string& Name;
    int32_t Record;
};

[[noreturn]] void BadField(const Where& where, const std::string& field, const std::string& what) {
    RunFault(where.Name + ": record " + LongText(where.Record) + ", " + field + ": " + what);
}

int64_t ReadWhole(const Json& j, const Where& where, const std::string& field, int64_t low, int64_t high) {
    if (!j.is_number_integer()) BadField(where, field, "expected a whole number");
    bool inRange = false;
    int64_t value = 0;
    if (j.is_number_unsigned()) {
        const uint64_t u = j.get<uint64_t>();
        inRange = u <= static_cast<uint64_t>(high);
        value = inRange ? static_cast<int64_t>(u) : 0;
    } else {
        value = j.get<int64_t>();
        inRange = value >= low && value <= high;
    }
    if (!inRange)
        BadField(where, field,
                 "out of the range " + LongText(static_cast<int32_t>(low)) + " to " +
                     LongText(static_cast<int32_t>(high)));
    return value;
}

int16_t ReadInt16(const Json& j, const Where& where, const std::string& field) {
    return static_cast<int16_t>(ReadWhole(j, where, field, INT16_MIN, INT16_MAX));
}

int32_t ReadInt32(const Json& j, const Where& where, const std::string& field) {
    return static_cast<int32_t>(ReadWhole(j, where, field, INT32_MIN, INT32_MAX));
}

// The bits of "0x" and one to eight hex digits; false for any other text.
bool BitsOfText(const std::string& text, uint32_t& bits) {
    if (text.size() < 3 || text.size() > 10 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    bits = 0;
    for (size_t i = 2; i < text.size(); ++i) {
        const char c = text[i];
        uint32_t digit = 0;
        if (c >= '0' && c <= '9') digit = static_cast<uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f') digit = static_cast<uint32_t>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F') digit = static_cast<uint32_t>(c - 'A' + 10);
        else return false;
        bits = (bits << 4) | digit;
    }
    return true;
}

float ReadSingle(const Json& j, const Where& where, const std::string& field) {
    if (j.is_string()) {
        uint32_t bits = 0;
        if (!BitsOfText(j.get_ref<const std::string&>(), bits))
            BadField(where, field, "expected a number or the bits of a single such as \"0x7fc00000\"");
        return std::bit_cast<float>(bits);
    }
    if (!j.is_number()) BadField(where, field, "expected a number");
    float single = 0;
    if (!SingleOfDouble(j.get<double>(), single)) BadField(where, field, "out of the range of a single");
    return single;
}

void ReadSingleInto(const Json& j, const Where& where, const std::string& field, float& out) {
    out = ReadSingle(j, where, field);
}

void ReadInt16Into(const Json& j, const Where& where, const std::string& field, int16_t& out) {
    out = ReadInt16(j, where, field);
}

template <size_t Width>
void ReadText(const Json& j, const Where& where, const std::string& field, FixedText<Width>& text) {
    if (!j.is_string()) BadField(where, field, "expected a text");
    // The JSON text is UTF-8; each of its characters must be one byte, U+0000 to U+00FF.
    const std::string& utf8 = j.get_ref<const std::string&>();
    std::string bytes;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        if (b < 0x80) {
            bytes += static_cast<char>(b);
        } else if ((b == 0xC2 || b == 0xC3) && i + 1 < utf8.size() &&
                   (static_cast<unsigned char>(utf8[i + 1]) & 0xC0) == 0x80) {
            bytes += static_cast<char>(((b & 0x03) << 6) | (static_cast<unsigned char>(utf8[i + 1]) & 0x3F));
            ++i;
        } else {
            BadField(where, field, "holds a character beyond U+00FF; texts are 8-bit");
        }
    }
    if (bytes.size() > Width)
        BadField(where, field,
                 "the text has " + Trim(PlainText(static_cast<double>(bytes.size()))) + " characters, the field holds " +
                     LongText(static_cast<int32_t>(Width)));
    text = bytes;
}

void ReadPoint(const Json& j, const Where& where, const std::string& field, SinglePoint& p) {
    if (!j.is_array() || j.size() != 2) BadField(where, field, "expected [X, Y]");
    p.X = ReadSingle(j[0], where, field + ".X");
    p.Y = ReadSingle(j[1], where, field + ".Y");
}

void ReadCell(const Json& j, const Where& where, const std::string& field, RawCell& cell) {
    if (!j.is_array() || j.size() != cell.size()) BadField(where, field, "expected an array of four bytes");
    for (size_t k = 0; k < cell.size(); ++k)
        cell[k] = static_cast<unsigned char>(
            ReadWhole(j[k], where, field + "[" + LongText(static_cast<int32_t>(k + 1)) + "]", 0, 255));
}

// The 1-based index of an object key: digits only, from 1 to the bound; 0 for any other text.
int IndexOfKey(const std::string& key, int bound) {
    if (key.empty() || key.size() > 9) return 0;
    for (const char c : key)
        if (c < '0' || c > '9') return 0;
    const double index = LeadingNumber(key);
    return index >= 1 && index <= bound ? static_cast<int>(index) : 0;
}

// An array field: a JSON array from element 1 on (it may be shorter than the field), or an
// object of 1-based indexes.
template <typename Array, typename Read>
void ReadArray(const Json& j, const Where& where, const std::string& field, Array& array, Read read) {
    auto elementName = [&](int i) { return field + "[" + LongText(i) + "]"; };
    if (j.is_array()) {
        if (j.size() > static_cast<size_t>(Array::Bound))
            BadField(where, field, "more than " + LongText(Array::Bound) + " elements");
        for (size_t k = 0; k < j.size(); ++k) {
            const int i = static_cast<int>(k + 1);
            read(j[k], where, elementName(i), array[i]);
        }
        return;
    }
    if (!j.is_object()) BadField(where, field, "expected an array, or an object of indexes from 1");
    for (const auto& [key, value] : j.items()) {
        const int i = IndexOfKey(key, Array::Bound);
        if (i == 0) BadField(where, field, "\"" + key + "\" is not an index from 1 to " + LongText(Array::Bound));
        read(value, where, elementName(i), array[i]);
    }
}

const Json& RequireObject(const Json& j, const Where& where, const std::string& field) {
    if (!j.is_object()) BadField(where, field, "expected an object of fields");
    return j;
}

void ReadTool(const Json& j, const Where& where, const std::string& field, ToolSpec& tool) {
    for (const auto& [key, value] : RequireObject(j, where, field).items()) {
        const std::string name = field + "." + key;
        if (key == "Present") tool.Present = ReadInt16(value, where, name);
        else if (key == "Letter") ReadText(value, where, name, tool.Letter);
        else if (key == "ToolName") ReadText(value, where, name, tool.ToolName);
        else if (key == "Size") ReadArray(value, where, name, tool.Size, ReadSingleInto);
        else if (key == "ToolNumber") tool.ToolNumber = ReadInt16(value, where, name);
        else if (key == "WorkType") tool.WorkType = ReadInt16(value, where, name);
        else if (key == "ToolStep") tool.ToolStep = ReadSingle(value, where, name);
        else if (key == "ToolAngle") tool.ToolAngle = ReadSingle(value, where, name);
        else if (key == "StageIndex") tool.StageIndex = ReadInt32(value, where, name);
        else BadField(where, field, "unknown field \"" + key + "\"");
    }
}

void ReadLead(const Json& j, const Where& where, const std::string& field, LeadSpec& lead) {
    for (const auto& [key, value] : RequireObject(j, where, field).items()) {
        const std::string name = field + "." + key;
        if (key == "LeadKind") lead.LeadKind = ReadInt16(value, where, name);
        else if (key == "LeadLength") lead.LeadLength = ReadSingle(value, where, name);
        else if (key == "LeadAngle") lead.LeadAngle = ReadSingle(value, where, name);
        else if (key == "LeadSpare") lead.LeadSpare = ReadInt16(value, where, name);
        else BadField(where, field, "unknown field \"" + key + "\"");
    }
}

void ReadAfter(const Json& j, const Where& where, const std::string& field, AfterAction& after) {
    for (const auto& [key, value] : RequireObject(j, where, field).items()) {
        const std::string name = field + "." + key;
        if (key == "ActionCode") after.ActionCode = ReadInt16(value, where, name);
        else if (key == "ActionValue") after.ActionValue = ReadSingle(value, where, name);
        else BadField(where, field, "unknown field \"" + key + "\"");
    }
}

// One record from its object; fields left out keep their cleared values. Gives true when the
// object names RecordCount.
bool ReadRecordObject(const Json& j, const Where& where, DrawRecord& r) {
    if (!j.is_object()) RunFault(where.Name + ": record " + LongText(where.Record) + ": expected an object of fields");
    bool hasCount = false;
    for (const auto& [key, value] : j.items()) {
        if (key == "EntityCode") r.EntityCode = ReadInt16(value, where, key);
        else if (key == "EntityName") ReadText(value, where, key, r.EntityName);
        else if (key == "EntityText") ReadText(value, where, key, r.EntityText);
        else if (key == "SpareWord") r.SpareWord = ReadInt16(value, where, key);
        else if (key == "RecordCount") {
            r.RecordCount = ReadInt32(value, where, key);
            hasCount = true;
        } else if (key == "CarryWord1") r.CarryWord1 = ReadInt16(value, where, key);
        else if (key == "CarryWord2") r.CarryWord2 = ReadInt16(value, where, key);
        else if (key == "Point") ReadArray(value, where, key, r.Point, ReadPoint);
        else if (key == "Value") ReadArray(value, where, key, r.Value, ReadSingleInto);
        else if (key == "Count") ReadArray(value, where, key, r.Count, ReadInt16Into);
        else if (key == "Spare") ReadArray(value, where, key, r.Spare, ReadCell);
        else if (key == "Side") r.Side = ReadInt16(value, where, key);
        else if (key == "FollowFlag") r.FollowFlag = ReadInt16(value, where, key);
        else if (key == "Extent") ReadArray(value, where, key, r.Extent, ReadPoint);
        else if (key == "Margin") ReadArray(value, where, key, r.Margin, ReadPoint);
        else if (key == "ToolA") ReadTool(value, where, key, r.ToolA);
        else if (key == "ToolB") ReadTool(value, where, key, r.ToolB);
        else if (key == "LeadIn") ReadLead(value, where, key, r.LeadIn);
        else if (key == "LeadOut") ReadLead(value, where, key, r.LeadOut);
        else if (key == "After") ReadAfter(value, where, key, r.After);
        else RunFault(where.Name + ": record " + LongText(where.Record) + ": unknown field \"" + key + "\"");
    }
    return hasCount;
}

}  // namespace

std::string DrawingToJson(std::string_view drawingBytes, const std::string& drawingName) {
    if (drawingBytes.size() % RecordLength != 0)
        RunFault(drawingName + ": the size of a drawing must be a multiple of 518 bytes, not " +
                 Trim(PlainText(static_cast<double>(drawingBytes.size()))) + " bytes");
    const size_t count = drawingBytes.size() / RecordLength;
    if (count == 0) return "[]\n";
    std::string out = "[\n";
    DrawRecord record;
    for (size_t n = 0; n < count; ++n) {
        DecodeRecord(drawingBytes.substr(n * RecordLength, RecordLength), record);
        out += "  " + RecordJson(record);
        out += n + 1 < count ? ",\n" : "\n";
    }
    return out + "]\n";
}

std::string DrawingFromJson(std::string_view jsonText, const std::string& jsonName) {
    Json document;
    try {
        document = Json::parse(jsonText.begin(), jsonText.end());
    } catch (const Json::parse_error& e) {
        const size_t at = e.byte;
        RunFault(jsonName + ": not JSON: syntax error at byte " +
                 Trim(PlainText(static_cast<double>(at))));
    } catch (const Json::exception&) {
        // The one other fault of reading: a number beyond the range of a double.
        RunFault(jsonName + ": a number is too large to read");
    }
    if (!document.is_array()) RunFault(jsonName + ": expected an array of records");
    if (document.size() > static_cast<size_t>(INT32_MAX)) RunFault(jsonName + ": too many records");
    const auto count = static_cast<int32_t>(document.size());
    std::string bytes;
    bytes.reserve(document.size() * RecordLength);
    for (int32_t n = 1; n <= count; ++n) {
        DrawRecord record;
        const Where where{jsonName, n};
        const bool hasCount = ReadRecordObject(document[static_cast<size_t>(n - 1)], where, record);
        if (n == 1 && !hasCount) record.RecordCount = count;
        const RecordBytes encoded = EncodeRecord(record);
        bytes.append(reinterpret_cast<const char*>(encoded.data()), encoded.size());
    }
    return bytes;
}

}  // namespace tvx
