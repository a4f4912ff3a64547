#include "definition/word_lines.h"

#include <cmath>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/post_abort.h"
#include "definition/post_value.h"
#include "state/run_state.h"

namespace tvx {

std::string TagText(const std::string& line, size_t open, size_t openLength) {
    const size_t close = line.find(']', open);
    if (close == std::string::npos || close < open + openLength)
        RunFault("Invalid procedure call: no ] behind \"" + line.substr(open, openLength) + "\" in the line: " + line);
    return line.substr(open + openLength, close - open - openLength);
}

namespace {

bool IsSetTableLetter(char c) { return c == 'M' || c == 'P' || c == 'V'; }

// Takes a format flag out of the format: true when its three letters stand in it, and then
// their first occurrence is removed.
bool TakeFormatFlag(std::string& format, const char* flag) {
    const size_t at = format.find(flag);
    if (at == std::string::npos) return false;
    format.erase(at, 3);
    return true;
}

int32_t CellOfNumber(double number, const char* what) { return ToInteger32(number, what); }

}  // namespace

void ReadTagValue(RunState& state, std::string& line, PostValueType& index, PostValueType& value, bool& active) {
    EngineState& e = state.Engine;
    ValueTables& t = state.Tables;
    e.TextFromS.clear();
    e.TextFromV.clear();
    const bool notWhen = line.find("[NOTWHEN=") != std::string::npos;
    const size_t ifAt = line.find("[IF M");
    const bool withIf = ifAt != std::string::npos;
    if (withIf) line.erase(ifAt + 1, 3);  // "[IF M4=1]" becomes "[M4=1]"
    float savedMemo = 0;

    const size_t mAt = line.find("[M");
    if (mAt != std::string::npos) {
        e.TableLetter = "M";
        const std::string inner = TagText(line, mAt, 2);
        const size_t equals = inner.find('=');
        if (equals != std::string::npos) {
            index = DoubleValue(LeadingNumber(inner.substr(0, equals)));
            value = TextValue(inner.substr(equals + 1));
        } else {
            index = DoubleValue(LeadingNumber(inner));
            value = TextValue("VAL");
        }
        const int32_t n = CellNumber(index, "PostMachine cell");
        savedMemo = t.PostMemo[n];
        if (value.Text == "VAL") {
            const float difference = t.PostMachine[n] - t.PostMemo[n];
            if (RoundTo(static_cast<double>(difference), 3) != 0) {
                t.PostMemo[n] = t.PostMachine[n];
                value = SingleValue(t.PostMachine[n]);
                active = true;
            } else {
                value = NoValue();
                active = false;
            }
        } else {
            const double x = LeadingNumber(value.Text);
            value = DoubleValue(x);
            if (!withIf) {
                if (static_cast<double>(t.PostMemo[n]) == x) {
                    active = false;
                } else {
                    t.PostMemo[n] = ToSingle(x);
                    value = NoValue();
                    active = true;
                }
            } else if (t.PostMachine[n] != t.PostMemo[n] && static_cast<double>(t.PostMachine[n]) == x) {
                t.PostMemo[n] = ToSingle(x);
                value = NoValue();
                active = true;
            } else {
                active = false;
            }
        }
    } else {
        const size_t vAt = line.find("[V");
        const size_t pAt = line.find("[P");
        size_t sAt = line.find("[S");
        if (vAt != std::string::npos && sAt != std::string::npos && sAt > vAt) sAt = std::string::npos;
        if (pAt != std::string::npos) {
            e.TableLetter = "P";
            const std::string inner = TagText(line, pAt, 2);
            if (inner.find('=') == std::string::npos) {
                index = DoubleValue(LeadingNumber(inner));
                value = SingleValue(t.PostParam[CellNumber(index, "PostParam cell")]);
                active = true;
            } else {
                index = TextValue(inner);
                if (TestParamEquals(state, inner)) {
                    value = NoValue();
                    active = true;
                } else {
                    active = false;
                }
            }
        } else {
            if (sAt != std::string::npos) {
                e.TableLetter = "S";
                index = TextValue(TagText(line, sAt, 2));
                const int32_t n = CellNumber(index, "PostText cell");
                value = TextValue(t.PostText[n]);
                FormatTextValue(state);
                e.TextFromS = ValueAsText(value);
                value = NoValue();
                if (n == 25 || n == 26 || n == 27) t.PostText[n].clear();
            }
            if (vAt != std::string::npos) {
                e.TableLetter = "V";
                index = TextValue(TagText(line, vAt, 2));
                const int32_t n = CellNumber(index, "PostUserText cell");
                value = TextValue(t.PostUserText[n]);
                FormatTextValue(state);
                e.TextFromV = ValueAsText(value);
                value = NoValue();
            }
        }
    }

    if (notWhen) {
        const std::string list = TagText(line, line.find("[NOTWHEN="), 9);
        bool changed = false;
        AnyMachineChanged(state, list, changed);
        active = changed;
        // Not changed: the line is taken back, the memo returns to what it was (0 on a line
        // that saved none).
        if (!changed) t.PostMemo[CellNumber(index, "PostMemo cell")] = savedMemo;
    }
}

bool TestParamEquals(RunState& state, const std::string& equation) {
    const size_t equals = equation.find('=');
    const std::string cellText = equals == std::string::npos ? equation : equation.substr(0, equals);
    std::string numberText = equals == std::string::npos ? std::string() : equation.substr(equals + 1);
    std::string x;
    for (char c : numberText)
        if (c != '=') x += c;
    const int32_t n = CellOfNumber(LeadingNumber(cellText), "PostParam cell");
    return ToSingle(LeadingNumber(x)) == state.Tables.PostParam[n];
}

void AnyMachineChanged(RunState& state, const std::string& list, bool& result) {
    result = false;
    std::string number;
    auto test = [&] {
        if (number.empty()) return;
        const int32_t n = CellOfNumber(LeadingNumber(number), "PostMachine cell");
        const float difference = state.Tables.PostMachine[n] - state.Tables.PostMemo[n];
        if (RoundTo(static_cast<double>(difference), 3) != 0) result = true;
        number.clear();
    };
    for (char c : list) {
        if (c == 'M') test();
        else number += c;
    }
    test();
}

void FormatTextValue(RunState& state) {
    const std::string& line = state.Engine.PostWordLine;
    const size_t at = line.find("[FORMAT=");
    if (at == std::string::npos) return;
    const size_t close = line.find(']', at);
    if (close == std::string::npos)
        PostAbort(state, "Reserved Word - end of FORMAT expression ] not found in file " + state.Job.WordFile);
    std::string format = line.substr(at + 8, close - at - 8);
    ApplyFormat(state, format);
}

void ApplyFormat(RunState& state, std::string& format) {
    EngineState& e = state.Engine;
    PostValueType& value = e.PostValue;
    format = Upper(format);
    const std::string whole = format;
    // Names the format in the message of a fault.
    const std::string_view what = whole;
    if (TakeFormatFlag(format, "NTZ")) e.FormatNTZ = true;
    if (TakeFormatFlag(format, "ABS")) e.FormatABS = true;
    if (TakeFormatFlag(format, "NEG")) e.FormatNEG = true;
    if (TakeFormatFlag(format, "INV")) e.FormatINV = true;
    const bool angle = TakeFormatFlag(format, "ANG");
    const bool upper = TakeFormatFlag(format, "UCS");
    if (TakeFormatFlag(format, "NOP")) e.FormatNOP = true;
    const bool plain = TakeFormatFlag(format, "DOD");
    const bool down = TakeFormatFlag(format, "INT");
    const bool up = TakeFormatFlag(format, "RND");
    const bool character = TakeFormatFlag(format, "ASC");
    const size_t maxAt = format.find("MAX");

    if (upper) {
        value = TextValue(Upper(ValueAsText(value)));
        if (whole == "UCS") return;
    }
    if (character) {
        const size_t open = format.find('(');
        const size_t close = format.find(')');
        if (open != std::string::npos && close != std::string::npos) {
            if (close < open) RunFault("Invalid procedure call: format " + whole);
            int32_t code = 0;
            if (!RoundsIntoInt32(LeadingNumber(format.substr(open + 1, close - open - 1)), code) || code < 0 || code > 255)
                RunFault("Invalid procedure call: no character of the code in format " + whole);
            value = TextValue(std::string(1, static_cast<char>(static_cast<unsigned char>(code))));
        }
    }
    if (value.Type == PostValueType::Kind::Text && value.Text.empty()) value = DoubleValue(0);

    // The number forms keep a single as a single; a text becomes a double.
    auto number = [&]() -> PostValueType& {
        if (value.Type == PostValueType::Kind::Text) value = ValueAsNumberValue(value, what);
        return value;
    };
    auto store = [&](double v) {
        if (value.Type == PostValueType::Kind::Single) value.Number = static_cast<double>(ToSingle(v));
        else value.Number = v;
    };
    if (e.FormatABS) store(std::fabs(number().Number));
    if (e.FormatNEG && number().Number > 0) store(-value.Number);
    if (e.FormatINV) store(-number().Number);
    if (angle) value = DoubleValue(Norm360(number().Number));
    if (down) store(std::floor(number().Number));
    if (up) {
        const double v = number().Number;
        store(std::floor(v) == v ? v : std::floor(v) + 1);
    }

    std::string decimalsText = "-1";
    std::string padText = "-1";
    const size_t dAt = format.find('D');
    const size_t pAt = format.find('P');
    if (dAt != std::string::npos && pAt != std::string::npos) {
        if (dAt < pAt) {
            decimalsText = format.substr(dAt + 1, pAt - dAt - 1);
            padText = format.substr(pAt + 1);
        } else {
            padText = format.substr(pAt + 1, dAt - pAt - 1);
            decimalsText = format.substr(dAt + 1);
        }
    } else if (dAt != std::string::npos) {
        decimalsText = format.substr(dAt + 1);
    } else if (pAt != std::string::npos) {
        padText = format.substr(pAt + 1);
    }
    const double decimals = LeadingNumber(decimalsText);
    if (decimals != -1) {
        const int32_t places = ToInteger32(decimals, "format");
        const PostValueType& n = number();
        value = TextValue(n.Type == PostValueType::Kind::Single ? NumberText(static_cast<float>(n.Number), places)
                                                                 : NumberText(n.Number, places));
    }
    const double pad = LeadingNumber(padText);
    if (pad != -1) {
        const std::string text = ValueAsText(value);
        const size_t point = text.find('.');
        const std::string kept = point == std::string::npos ? std::string() : text.substr(point);
        const int32_t whole32 = TruncToInteger32(ValueAsNumber(value, what), "format");
        value = TextValue(PadLong(whole32, ToInteger32(pad, "format")) + kept);
    }
    value = TextValue(TrimLeft(ValueAsText(value)));
    if (maxAt != std::string::npos) {
        const std::string countText = maxAt + 4 <= format.size() ? format.substr(maxAt + 4) : std::string();
        const int32_t count = ToInteger32(LeadingNumber(countText), "format");
        if (count < 0) RunFault("Invalid procedure call: format " + whole);
        if (value.Text.size() > static_cast<size_t>(count)) value.Text.resize(static_cast<size_t>(count));
    }
    if (plain) value = TextValue(NumberText(ValueAsNumber(value, what), -1));
}

void ReadConvText(RunState& state, const std::string& line, std::string& field) {
    EngineState& e = state.Engine;
    const size_t at = line.find("[CONV=");
    if (at == std::string::npos) PostAbort(state, line + " : CONV= not found in definition");
    field = TagText(line, at, 6);
    if (field == "*") field.clear();
    if (!e.TextFromS.empty()) {
        field = e.TextFromS;
        e.PostValue = NoValue();
    }
    if (!e.TextFromV.empty()) {
        field = e.TextFromV;
        e.PostValue = NoValue();
    }
}

void ReadSetText(RunState&, const std::string& line, std::string& list) {
    const size_t at = line.find("[SET=");
    list = at == std::string::npos ? std::string() : TagText(line, at, 5);
}

void ReadTextField(RunState& state, const std::string& line, std::string& text) {
    const size_t at = line.find("[TEXT=");
    if (at == std::string::npos) PostAbort(state, line + " : [TEXT= not found in definition");
    text = TagText(line, at, 6);
}

void ExecuteSetList(RunState& state, const std::string& list) {
    ValueTables& t = state.Tables;
    int step = 0;
    char targetLetter = 0;
    char sourceLetter = 0;
    std::string targetCell;
    std::string source;
    int32_t lastMemo = 0;

    auto carryOut = [&] {
        std::string sourceText = source;
        if (sourceLetter != 0) {
            const int32_t n = CellOfNumber(LeadingNumber(source), "SET source cell");
            if (sourceLetter == 'M') sourceText = PlainText(t.PostMachine[n]);
            else if (sourceLetter == 'P') sourceText = PlainText(t.PostParam[n]);
            else sourceText = t.PostUserText[n];
        }
        const double v = LeadingNumber(sourceText);
        if (targetLetter != 0) {
            const int32_t n = CellOfNumber(LeadingNumber(targetCell), "SET target cell");
            if (targetLetter == 'V') {
                t.PostUserText[n] = TrimLeft(PlainText(v));
            } else if (targetLetter == 'P') {
                t.PostParam[n] = ToSingle(v);
            } else {
                t.PostMemo[n] = ToSingle(v);
                t.PostMemo[n] = ToSingle(RoundTo(static_cast<double>(t.PostMemo[n]), 4));
                lastMemo = n;
            }
        }
        targetLetter = 0;
        sourceLetter = 0;
        targetCell.clear();
        source.clear();
    };

    for (size_t i = 0; i < list.size(); ++i) {
        const char c = list[i];
        if (IsSetTableLetter(c)) {
            ++step;
            if (step == 4) {
                carryOut();
                step = 1;
            }
            if (step == 1) targetLetter = c;
            else if (step == 3) sourceLetter = c;
        } else if (c == '=') {
            const std::string next = i + 1 < list.size() ? Upper(list.substr(i + 1, 1)) : std::string();
            step += (next == "M" || next == "V" || next == "P") ? 1 : 2;
        } else if (step == 1) {
            targetCell += c;
        } else if (step == 3) {
            source += c;
        }
    }
    carryOut();
    t.PostMemo[lastMemo] = ToSingle(RoundTo(static_cast<double>(t.PostMemo[lastMemo]), 4));
}

}  // namespace tvx
