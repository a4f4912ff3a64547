#include "definition/post_value.h"

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"

namespace tvx {

PostValueType TextValue(std::string text) {
    PostValueType v;
    v.Type = PostValueType::Kind::Text;
    v.Text = std::move(text);
    return v;
}

PostValueType SingleValue(float number) {
    PostValueType v;
    v.Type = PostValueType::Kind::Single;
    v.Number = static_cast<double>(number);
    return v;
}

PostValueType DoubleValue(double number) {
    PostValueType v;
    v.Type = PostValueType::Kind::Double;
    v.Number = number;
    return v;
}

PostValueType NoValue() { return DoubleValue(-9999.0); }

void SetText(PostValueType& value, std::string_view text) {
    value.Type = PostValueType::Kind::Text;
    value.Number = 0;
    value.Text.assign(text);
}

void SetSingle(PostValueType& value, float number) {
    value.Type = PostValueType::Kind::Single;
    value.Number = static_cast<double>(number);
    value.Text.clear();
}

void SetDouble(PostValueType& value, double number) {
    value.Type = PostValueType::Kind::Double;
    value.Number = number;
    value.Text.clear();
}

void SetNoValue(PostValueType& value) { SetDouble(value, -9999.0); }

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

bool IsNumericText(std::string_view text) {
    size_t b = 0;
    size_t e = text.size();
    while (b < e && text[b] == ' ') ++b;
    while (e > b && text[e - 1] == ' ') --e;
    const std::string_view t = text.substr(b, e - b);
    if (t.empty()) return false;
    size_t i = 0;
    if (t.size() >= 2 && t[0] == '&') {
        const char kind = t[1];
        if (kind != 'H' && kind != 'h' && kind != 'O' && kind != 'o') return false;
        const bool hex = kind == 'H' || kind == 'h';
        if (t.size() == 2) return false;
        for (i = 2; i < t.size(); ++i) {
            const char c = t[i];
            const bool ok = hex ? (IsDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f')) : (c >= '0' && c <= '7');
            if (!ok) return false;
        }
        return true;
    }
    if (t[i] == '+' || t[i] == '-') ++i;
    size_t digits = 0;
    while (i < t.size() && IsDigit(t[i])) { ++i; ++digits; }
    if (i < t.size() && t[i] == '.') {
        ++i;
        while (i < t.size() && IsDigit(t[i])) { ++i; ++digits; }
    }
    if (digits == 0) return false;
    if (i < t.size() && (t[i] == 'E' || t[i] == 'e' || t[i] == 'D' || t[i] == 'd')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        size_t expDigits = 0;
        while (i < t.size() && IsDigit(t[i])) { ++i; ++expDigits; }
        if (expDigits == 0) return false;
    }
    return i == t.size();
}

std::string ValueAsText(const PostValueType& value) {
    switch (value.Type) {
        case PostValueType::Kind::Text: return value.Text;
        case PostValueType::Kind::Single: return BarePlainText(static_cast<float>(value.Number));
        case PostValueType::Kind::Double: return BarePlainText(value.Number);
    }
    return value.Text;
}

double ValueAsNumber(const PostValueType& value, std::string_view what) {
    if (value.Type != PostValueType::Kind::Text) return value.Number;
    if (value.Text.empty()) return 0;
    if (!IsNumericText(value.Text)) RunFault("Type mismatch: \"" + value.Text + "\" is not a number (" + std::string(what) + ")");
    return LeadingNumber(value.Text);
}

PostValueType ValueAsNumberValue(const PostValueType& value, std::string_view what) {
    if (value.Type != PostValueType::Kind::Text) return value;
    return DoubleValue(ValueAsNumber(value, what));
}

void SetPlainNumberText(PostValueType& value, std::string_view what) {
    // No value reads as its own text, whichever number form holds it.
    if (value.Type != PostValueType::Kind::Text && value.Number == -9999.0) {
        SetText(value, NoValueText);
        return;
    }
    // No value as a text reads as -9999, whose plain text it is already.
    if (value.Type == PostValueType::Kind::Text && value.Text == NoValueText) return;
    const bool single = value.Type == PostValueType::Kind::Single;
    const double number = ValueAsNumber(value, what);
    if (single) AssignBarePlainText(value.Text, static_cast<float>(number));
    else AssignBarePlainText(value.Text, number);
    value.Type = PostValueType::Kind::Text;
    value.Number = 0;
}

void SetNumberText(PostValueType& value, int places) {
    if (value.Type == PostValueType::Kind::Single) AssignNumberText(value.Text, static_cast<float>(value.Number), places);
    else AssignNumberText(value.Text, value.Number, places);
    value.Type = PostValueType::Kind::Text;
    value.Number = 0;
}

int32_t CellNumber(const PostValueType& index, const char* what) {
    if (index.Type != PostValueType::Kind::Text) return ToInteger32(index.Number, what);
    return ToInteger32(ValueAsNumber(index, what), what);
}

}  // namespace tvx
