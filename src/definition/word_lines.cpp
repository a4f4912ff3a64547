#include "definition/word_lines.h"

#include <cmath>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/post_abort.h"
#include "definition/post_value.h"
#include "state/run_state.h"

namespace tvx {

namespace {

// The tag opened by `openLength` characters at `open` (npos: no such tag).
LineTag FindTag(const std::string& line, size_t open, size_t openLength) {
    LineTag tag;
    if (open == std::string::npos) return tag;
    tag.Present = true;
    const size_t close = line.find(']', open);
    if (close == std::string::npos || close < open + openLength) {
        tag.Fault = "Invalid procedure call: no ] behind \"" + line.substr(open, openLength) + "\" in the line: " + line;
        return tag;
    }
    tag.Closed = true;
    tag.Inner = line.substr(open + openLength, close - open - openLength);
    return tag;
}

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

// "n=x" read into the cell's number and x's.
void ParseParamEquals(const std::string& equation, double& cell, double& number) {
    const size_t equals = equation.find('=');
    const std::string cellText = equals == std::string::npos ? equation : equation.substr(0, equals);
    std::string x;
    if (equals != std::string::npos)
        for (size_t i = equals + 1; i < equation.size(); ++i)
            if (equation[i] != '=') x += equation[i];
    cell = LeadingNumber(cellText);
    number = LeadingNumber(x);
}

bool ParamEquals(RunState& state, double cell, double number) {
    const int32_t n = CellOfNumber(cell, "PostParam cell");
    return ToSingle(number) == state.Tables.PostParam[n];
}

void FormatTextValue(RunState& state, const WordLineForm& form) {
    if (!form.Format) return;
    if (!form.FormatClosed)
        PostAbort(state, "Reserved Word - end of FORMAT expression ] not found in file " + state.Job.WordFile);
    ApplyFormat(state, form.FormatOf);
}

}  // namespace

const std::string& TagInner(const LineTag& tag) {
    if (!tag.Closed) RunFault(tag.Fault);
    return tag.Inner;
}

FormatForm ParseFormat(const std::string& format) {
    FormatForm f;
    f.Whole = Upper(format);
    std::string& rest = f.Rest;
    rest = f.Whole;
    f.NTZ = TakeFormatFlag(rest, "NTZ");
    f.ABS = TakeFormatFlag(rest, "ABS");
    f.NEG = TakeFormatFlag(rest, "NEG");
    f.INV = TakeFormatFlag(rest, "INV");
    f.Angle = TakeFormatFlag(rest, "ANG");
    f.UpperCase = TakeFormatFlag(rest, "UCS");
    f.NOP = TakeFormatFlag(rest, "NOP");
    f.Plain = TakeFormatFlag(rest, "DOD");
    f.Down = TakeFormatFlag(rest, "INT");
    f.Up = TakeFormatFlag(rest, "RND");
    f.Character = TakeFormatFlag(rest, "ASC");
    const std::string_view r = rest;
    if (const size_t maxAt = r.find("MAX"); maxAt != std::string::npos) {
        f.HasMax = true;
        f.MaxCount = LeadingNumber(maxAt + 4 <= r.size() ? r.substr(maxAt + 4) : std::string_view());
    }
    if (f.Character) {
        const size_t open = r.find('(');
        const size_t close = r.find(')');
        if (open != std::string::npos && close != std::string::npos) {
            f.HasCode = true;
            f.CodeReversed = close < open;
            if (!f.CodeReversed) f.Code = LeadingNumber(r.substr(open + 1, close - open - 1));
        }
    }
    std::string_view decimalsText = "-1";
    std::string_view padText = "-1";
    const size_t dAt = r.find('D');
    const size_t pAt = r.find('P');
    if (dAt != std::string::npos && pAt != std::string::npos) {
        if (dAt < pAt) {
            decimalsText = r.substr(dAt + 1, pAt - dAt - 1);
            padText = r.substr(pAt + 1);
        } else {
            padText = r.substr(pAt + 1, dAt - pAt - 1);
            decimalsText = r.substr(dAt + 1);
        }
    } else if (dAt != std::string::npos) {
        decimalsText = r.substr(dAt + 1);
    } else if (pAt != std::string::npos) {
        padText = r.substr(pAt + 1);
    }
    f.Decimals = LeadingNumber(decimalsText);
    f.DecimalsFit = RoundsIntoInt32(f.Decimals, f.Places);
    f.Pad = LeadingNumber(padText);
    return f;
}

std::vector<SetAssignment> ParseSetList(const std::string& list) {
    std::vector<SetAssignment> assignments;
    int step = 0;
    SetAssignment a;
    std::string targetCell;
    std::string source;

    // An assignment is complete when the letter of the next one comes, and at the end.
    auto complete = [&] {
        if (a.SourceLetter != 0) a.SourceCell = LeadingNumber(source);
        else a.SourceNumber = LeadingNumber(source);
        a.TargetCell = LeadingNumber(targetCell);
        assignments.push_back(a);
        a = SetAssignment{};
        targetCell.clear();
        source.clear();
    };

    for (size_t i = 0; i < list.size(); ++i) {
        const char c = list[i];
        if (IsSetTableLetter(c)) {
            ++step;
            if (step == 4) {
                complete();
                step = 1;
            }
            if (step == 1) a.TargetLetter = c;
            else if (step == 3) a.SourceLetter = c;
        } else if (c == '=') {
            const std::string next = i + 1 < list.size() ? Upper(list.substr(i + 1, 1)) : std::string();
            step += (next == "M" || next == "V" || next == "P") ? 1 : 2;
        } else if (step == 1) {
            targetCell += c;
        } else if (step == 3) {
            source += c;
        }
    }
    complete();
    return assignments;
}

WordLineForm ParseWordLine(const std::string& text) {
    WordLineForm f;
    f.Line = text;
    std::string& line = f.Line;
    f.NotWhen = line.find("[NOTWHEN=") != std::string::npos;
    const size_t ifAt = line.find("[IF M");
    f.WithIf = ifAt != std::string::npos;
    if (f.WithIf) line.erase(ifAt + 1, 3);  // "[IF M4=1]" becomes "[M4=1]"

    if (const size_t mAt = line.find("[M"); mAt != std::string::npos) {
        f.Kind = WordLineForm::Table::M;
        f.Tag = FindTag(line, mAt, 2);
        if (f.Tag.Closed) {
            const std::string_view inner = f.Tag.Inner;
            const size_t equals = inner.find('=');
            const std::string_view valueText = equals != std::string::npos ? inner.substr(equals + 1) : "VAL";
            f.Index = LeadingNumber(equals != std::string::npos ? inner.substr(0, equals) : inner);
            f.MachineValue = valueText == "VAL";
            f.MachineNumber = LeadingNumber(valueText);
        }
    } else {
        const size_t vAt = line.find("[V");
        const size_t pAt = line.find("[P");
        size_t sAt = line.find("[S");
        if (vAt != std::string::npos && sAt != std::string::npos && sAt > vAt) sAt = std::string::npos;
        if (pAt != std::string::npos) {
            f.Kind = WordLineForm::Table::P;
            f.Tag = FindTag(line, pAt, 2);
            if (f.Tag.Closed) {
                f.ParamEquals = f.Tag.Inner.find('=') != std::string::npos;
                if (f.ParamEquals) ParseParamEquals(f.Tag.Inner, f.ParamCell, f.ParamNumber);
                else f.Index = LeadingNumber(f.Tag.Inner);
            }
        } else {
            f.Kind = WordLineForm::Table::SV;
            f.STag = FindTag(line, sAt, 2);
            f.VTag = FindTag(line, vAt, 2);
        }
    }
    f.IndexFits = RoundsIntoInt32(f.Index, f.IndexCell);
    if (f.NotWhen) f.NotWhenTag = FindTag(line, line.find("[NOTWHEN="), 9);

    // "CALC=" also finds the same letters of "SETCALC=".
    if (const size_t calc = line.find("CALC="); calc != std::string::npos) {
        f.Calc = true;
        const size_t close = line.find(']', calc);
        f.CalcClosed = close != std::string::npos;
        if (f.CalcClosed) {
            f.CalcOf = ParseCalc(line.substr(calc + 5, close - calc - 5));
        }
    }
    f.NLZ = Holds(line, "NLZ");
    if (const size_t format = line.find("[FORMAT="); format != std::string::npos) {
        f.Format = true;
        const size_t close = line.find(']', format);
        f.FormatClosed = close != std::string::npos;
        if (f.FormatClosed) f.FormatOf = ParseFormat(line.substr(format + 8, close - format - 8));
    }
    f.SetCalc = Holds(line, "SETCALC=");
    const size_t conv = line.find("[CONV=");
    f.Conv = conv != std::string::npos;
    f.ConvTag = FindTag(line, conv, 6);
    const size_t set = line.find("[SET=");
    f.Set = set != std::string::npos;
    f.SetTag = FindTag(line, set, 5);
    if (f.SetTag.Closed && !f.SetTag.Inner.empty()) f.SetList = ParseSetList(f.SetTag.Inner);
    const size_t textAt = line.find("[TEXT=");
    f.Text = textAt != std::string::npos;
    f.TextTag = FindTag(line, textAt, 6);
    return f;
}

const WordLineForm& WordLineFormOf(DefinitionText& text, int32_t line) {
    if (text.Forms.empty()) text.Forms.resize(static_cast<size_t>(text.LineCount()));
    std::shared_ptr<const WordLineForm>& form = text.Forms[static_cast<size_t>(line)];
    if (!form) form = std::make_shared<const WordLineForm>(ParseWordLine(std::string(text.Line(line))));
    return *form;
}

void ReadTagValue(RunState& state, const WordLineForm& form, PostValueType& index, PostValueType& value, bool& active) {
    EngineState& e = state.Engine;
    ValueTables& t = state.Tables;
    e.TextFromS.clear();
    e.TextFromV.clear();
    float savedMemo = 0;

    switch (form.Kind) {
        case WordLineForm::Table::M: {
            e.TableLetter = 'M';
            TagInner(form.Tag);
            SetDouble(index, form.Index);
            const int32_t n = form.IndexFits ? form.IndexCell : CellNumber(index, "PostMachine cell");
            savedMemo = t.PostMemo[n];
            if (form.MachineValue) {
                const float difference = t.PostMachine[n] - t.PostMemo[n];
                if (RoundTo(static_cast<double>(difference), 3) != 0) {
                    t.PostMemo[n] = t.PostMachine[n];
                    SetSingle(value, t.PostMachine[n]);
                    active = true;
                } else {
                    SetNoValue(value);
                    active = false;
                }
            } else {
                const double x = form.MachineNumber;
                SetDouble(value, x);
                if (!form.WithIf) {
                    if (static_cast<double>(t.PostMemo[n]) == x) {
                        active = false;
                    } else {
                        t.PostMemo[n] = ToSingle(x);
                        SetNoValue(value);
                        active = true;
                    }
                } else if (t.PostMachine[n] != t.PostMemo[n] && static_cast<double>(t.PostMachine[n]) == x) {
                    t.PostMemo[n] = ToSingle(x);
                    SetNoValue(value);
                    active = true;
                } else {
                    active = false;
                }
            }
            break;
        }
        case WordLineForm::Table::P: {
            e.TableLetter = 'P';
            const std::string& inner = TagInner(form.Tag);
            if (!form.ParamEquals) {
                SetDouble(index, form.Index);
                SetSingle(value, t.PostParam[form.IndexFits ? form.IndexCell : CellNumber(index, "PostParam cell")]);
                active = true;
            } else {
                SetText(index, inner);
                if (ParamEquals(state, form.ParamCell, form.ParamNumber)) {
                    SetNoValue(value);
                    active = true;
                } else {
                    active = false;
                }
            }
            break;
        }
        case WordLineForm::Table::SV:
            if (form.STag.Present) {
                e.TableLetter = 'S';
                SetText(index, TagInner(form.STag));
                const int32_t n = CellNumber(index, "PostText cell");
                SetText(value, t.PostText[n]);
                FormatTextValue(state, form);
                e.TextFromS = ValueAsText(value);
                SetNoValue(value);
                if (n == 25 || n == 26 || n == 27) t.PostText[n].clear();
            }
            if (form.VTag.Present) {
                e.TableLetter = 'V';
                SetText(index, TagInner(form.VTag));
                const int32_t n = CellNumber(index, "PostUserText cell");
                SetText(value, t.PostUserText[n]);
                FormatTextValue(state, form);
                e.TextFromV = ValueAsText(value);
                SetNoValue(value);
            }
            break;
        case WordLineForm::Table::None: break;
    }

    if (form.NotWhen) {
        const std::string& list = TagInner(form.NotWhenTag);
        bool changed = false;
        AnyMachineChanged(state, list, changed);
        active = changed;
        // Not changed: the line is taken back, the memo returns to what it was (0 on a line
        // that saved none).
        if (!changed) t.PostMemo[CellNumber(index, "PostMemo cell")] = savedMemo;
    }
}

bool TestParamEquals(RunState& state, const std::string& equation) {
    double cell = 0;
    double number = 0;
    ParseParamEquals(equation, cell, number);
    return ParamEquals(state, cell, number);
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

void ApplyFormat(RunState& state, std::string& format) {
    const FormatForm form = ParseFormat(format);
    format = form.Rest;
    ApplyFormat(state, form);
}

void ApplyFormat(RunState& state, const FormatForm& form) {
    EngineState& e = state.Engine;
    PostValueType& value = e.PostValue;
    const std::string& whole = form.Whole;
    // Names the format in the message of a fault.
    const std::string_view what = whole;
    if (form.NTZ) e.FormatNTZ = true;
    if (form.ABS) e.FormatABS = true;
    if (form.NEG) e.FormatNEG = true;
    if (form.INV) e.FormatINV = true;
    if (form.NOP) e.FormatNOP = true;
    const bool angle = form.Angle;
    const bool upper = form.UpperCase;
    const bool plain = form.Plain;
    const bool down = form.Down;
    const bool up = form.Up;

    if (upper) {
        SetText(value, Upper(ValueAsText(value)));
        if (whole == "UCS") return;
    }
    if (form.Character && form.HasCode) {
        if (form.CodeReversed) RunFault("Invalid procedure call: format " + whole);
        int32_t code = 0;
        if (!RoundsIntoInt32(form.Code, code) || code < 0 || code > 255)
            RunFault("Invalid procedure call: no character of the code in format " + whole);
        SetText(value, std::string(1, static_cast<char>(static_cast<unsigned char>(code))));
    }
    if (value.Type == PostValueType::Kind::Text && value.Text.empty()) SetDouble(value, 0);

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
    if (angle) SetDouble(value, Norm360(number().Number));
    if (down) store(std::floor(number().Number));
    if (up) {
        const double v = number().Number;
        store(std::floor(v) == v ? v : std::floor(v) + 1);
    }

    const double decimals = form.Decimals;
    if (decimals != -1) {
        const int32_t places = form.DecimalsFit ? form.Places : ToInteger32(decimals, "format");
        number();  // a text becomes its number first
        SetNumberText(value, places);
    }
    const double pad = form.Pad;
    if (pad != -1) {
        const std::string text = ValueAsText(value);
        const size_t point = text.find('.');
        const std::string kept = point == std::string::npos ? std::string() : text.substr(point);
        const int32_t whole32 = TruncToInteger32(ValueAsNumber(value, what), "format");
        SetText(value, PadLong(whole32, ToInteger32(pad, "format")) + kept);
    }
    if (value.Type == PostValueType::Kind::Text) {
        TrimLeftInPlace(value.Text);
    } else {
        SetText(value, ValueAsText(value));
    }
    if (form.HasMax) {
        const int32_t count = ToInteger32(form.MaxCount, "format");
        if (count < 0) RunFault("Invalid procedure call: format " + whole);
        if (value.Text.size() > static_cast<size_t>(count)) value.Text.resize(static_cast<size_t>(count));
    }
    if (plain) SetText(value, NumberText(ValueAsNumber(value, what), -1));
}

void ReadConvText(RunState& state, const WordLineForm& form, std::string& field) {
    EngineState& e = state.Engine;
    if (!form.Conv) PostAbort(state, form.Line + " : CONV= not found in definition");
    field = TagInner(form.ConvTag);
    if (field == "*") field.clear();
    if (!e.TextFromS.empty()) {
        field = e.TextFromS;
        SetNoValue(e.PostValue);
    }
    if (!e.TextFromV.empty()) {
        field = e.TextFromV;
        SetNoValue(e.PostValue);
    }
}

void RunSetTag(RunState& state, const WordLineForm& form) {
    if (!form.Set || TagInner(form.SetTag).empty()) return;
    ExecuteSetList(state, form.SetList);
}

void ReadTextField(RunState& state, const WordLineForm& form, std::string& text) {
    if (!form.Text) PostAbort(state, form.Line + " : [TEXT= not found in definition");
    text = TagInner(form.TextTag);
}

void ExecuteSetList(RunState& state, const std::string& list) { ExecuteSetList(state, ParseSetList(list)); }

void ExecuteSetList(RunState& state, const std::vector<SetAssignment>& list) {
    ValueTables& t = state.Tables;
    int32_t lastMemo = 0;
    for (const SetAssignment& a : list) {
        double v = a.SourceNumber;
        if (a.SourceLetter != 0) {
            const int32_t n = CellOfNumber(a.SourceCell, "SET source cell");
            if (a.SourceLetter == 'M') v = NumberThroughPlainText(t.PostMachine[n]);
            else if (a.SourceLetter == 'P') v = NumberThroughPlainText(t.PostParam[n]);
            else v = LeadingNumber(t.PostUserText[n]);
        }
        if (a.TargetLetter != 0) {
            const int32_t n = CellOfNumber(a.TargetCell, "SET target cell");
            if (a.TargetLetter == 'V') {
                t.PostUserText[n] = TrimLeft(PlainText(v));
            } else if (a.TargetLetter == 'P') {
                t.PostParam[n] = ToSingle(v);
            } else {
                t.PostMemo[n] = ToSingle(v);
                t.PostMemo[n] = ToSingle(RoundTo(static_cast<double>(t.PostMemo[n]), 4));
                lastMemo = n;
            }
        }
    }
    t.PostMemo[lastMemo] = ToSingle(RoundTo(static_cast<double>(t.PostMemo[lastMemo]), 4));
}

}  // namespace tvx
