#include "definition/block_writer.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"
#include "definition/calc.h"
#include "definition/called_blocks.h"
#include "definition/definition_files.h"
#include "definition/layouts.h"
#include "definition/post_abort.h"
#include "definition/post_value.h"
#include "definition/word_lines.h"
#include "state/run_state.h"

namespace tvx {
namespace {

constexpr std::array<std::string_view, 4> LayoutNames = {"TURRET_LAYOUT", "TOOL_LAYOUT", "REPORT_LAYOUT",
                                                          "TIME_LAYOUT"};
constexpr std::array<std::string_view, 7> DeferredNames = {"BLOCK_NUMBER1",    "BLOCK_NUMBER2",    "BLOCK_MEMO_SET",
                                                           "BLOCK_MEMO_RESET", "BLOCK_SUB_NUMBER", "RESET_PUNCH",
                                                           "INCREMENT_SUB"};

// The number of a layout tag (1 to 4), or 0.
int LayoutNumber(const std::string& tag) {
    // Every layout name is 11 to 13 letters and ends in "LAYOUT".
    if (tag.size() < 11 || tag.size() > 13 || tag.back() != 'T') return 0;
    for (size_t i = 0; i < LayoutNames.size(); ++i)
        if (tag == LayoutNames[i]) return static_cast<int>(i) + 1;
    return 0;
}

bool IsDeferredName(const std::string& tag) {
    if (tag.size() < 11 || tag.size() > 16) return false;
    for (const auto name : DeferredNames)
        if (tag == name) return true;
    return false;
}

// Reads a body line into its runs; a line with "@" or a layout tag has no usable form.
BlockLineForm ParseBlockLine(const std::string& line) {
    BlockLineForm form;
    std::string text;
    std::string tag;
    bool inTag = false;
    auto flush = [&] {
        if (text.empty()) return;
        BlockToken token;
        token.Text = std::move(text);
        token.Blanks = token.Text.find(' ') != std::string::npos;
        form.Tokens.push_back(std::move(token));
        text.clear();
    };
    for (const char c : line) {
        if (c == '@') return BlockLineForm{};
        if (c == '{' || c == '}') {
            flush();
            form.Tokens.push_back(BlockToken{BlockToken::Kind::Brace, std::string(1, c), false, false, WordTag{}});
        } else if (c == '[') {
            flush();
            inTag = true;
        } else if (c == ']') {
            if (LayoutNumber(tag) != 0) return BlockLineForm{};
            flush();
            form.Tokens.push_back(BlockToken{BlockToken::Kind::Tag, tag, false, IsDeferredName(tag), MakeWordTag(tag)});
            inTag = false;
            tag.clear();
        } else if (inTag) {
            tag += c;
        } else {
            text += c;
        }
    }
    flush();
    form.Usable = true;
    return form;
}

// Whether the body line read ends the block.
bool IsBlockEnd(EngineState& e) {
    if (e.PostDefText) return (BodyMarksOf(*e.PostDefText, e.PostDefIndex) & MarkBlockEnd) != 0;
    return Holds(e.PostDefLine, "******");
}

// The form of a body line: kept with its line for a line read from a held text (`keep` then
// holds it for the caller), otherwise by its text while there is room.
const BlockLineForm& BlockLineFormOf(EngineState& e, const std::string& line, BlockLineForm& fresh,
                                     std::shared_ptr<const BlockLineForm>& keep) {
    if (DefinitionText* text = e.PostDefText) {
        if (text->BodyForms.empty()) text->BodyForms.resize(static_cast<size_t>(text->LineCount()));
        auto& form = text->BodyForms[static_cast<size_t>(e.PostDefIndex)];
        if (!form) form = std::make_shared<const BlockLineForm>(ParseBlockLine(line));
        keep = form;
        return *keep;
    }
    if (const auto known = e.BlockLines.find(line); known != e.BlockLines.end()) return known->second;
    if (e.BlockLines.size() < e.BlockLinesKept) return e.BlockLines.emplace(line, ParseBlockLine(line)).first->second;
    fresh = ParseBlockLine(line);
    return fresh;
}

// A 16-bit counter of the line interpreter: one more, and the fault "Overflow" past 32767.
void CountUp(int16_t& counter, const char* what) {
    if (counter == 32767) RunFault(std::string("Overflow: ") + what);
    ++counter;
}

// The longest padding an alignment may ask for.
constexpr double AlignLimit = 1000000.0;

void PadSpaces(std::string& text, double count) {
    if (count > AlignLimit) RunFault("Out of string space: alignment of " + Trim(PlainText(count)) + " columns");
    const int32_t n = ToInteger32(count, "alignment");
    if (n > 0) text.append(static_cast<size_t>(n), ' ');
}

// Where a finished line goes.
void RouteLine(RunState& state) {
    EngineState& e = state.Engine;
    const ValueTables& t = state.Tables;
    std::string& line = e.PostLine;
    TrimInPlace(line);
    const bool notSign = line.size() == 1 && line[0] == '\xAC';
    if (notSign && e.RenumberMode) line.assign(1, '\0');
    if (t.PostParam[9] == 100.0f) {
        if (notSign) line.assign(1, '\0');
        if (!line.empty()) WriteLine(e.PlatinoOutput, line);
    } else if (t.PostParam[80] == 1.0f || !e.SubroutineOutput) {
        if (!line.empty()) WriteLine(e.ProgramOutput, line);
    } else {
        if (!line.empty()) WriteLine(e.SubroutineFile, line);
    }
}

bool IsNumericallyZero(const PostValueType& value) {
    if (value.Type != PostValueType::Kind::Text) return value.Number == 0;
    return IsNumericText(value.Text) && LeadingNumber(value.Text) == 0;
}

}  // namespace

namespace {

[[noreturn]] void NoBlankBehindWord(RunState& state, const std::string& word, std::string_view line) {
    RunFault("Invalid procedure call: no blank behind the word " + word + " in the line \"" + std::string(line) +
             "\" of file " + state.Job.WordFile);
}

// The rolling search read line by line, for a word file read as a stream: from the read
// position to the end, then once more from the top; a second end ends the search with the
// last line read in the word line.
void SearchStreamedWordLine(RunState& state, const std::string& word) {
    EngineState& e = state.Engine;
    TextInput& in = e.WordInput;
    std::string line;
    bool fromTop = false;
    for (;;) {
        if (AtEnd(in)) {
            if (fromTop) return;
            in.Pos = 0;
            fromTop = true;
            continue;
        }
        ReadLine(in, line);
        bool unparsable = false;
        const bool stop = IsWordLine(line, word, unparsable) || unparsable;
        if (fromTop && AtEnd(in)) e.PostWordLine = line;
        if (!stop) continue;
        e.PostWordLine = line;
        if (unparsable) NoBlankBehindWord(state, word, e.PostWordLine);
        return;
    }
}

}  // namespace

namespace {

// The search over the held word file: the place in `stops` of the first stop from the read
// position on, once more from the top at the end of the file, with the file placed behind it;
// -1 when the word has no stop at all, the file then at its end. A stop that cannot be parsed
// is the caller's fault to raise.
ptrdiff_t HeldWordStop(RunState& state, DefinitionText& text, const std::vector<WordStop>& stops) {
    TextInput& in = state.Engine.WordInput;
    int32_t& hint = state.Engine.WordLineHint;
    // Line starts rise strictly, so a line that starts at the position is the one a search
    // would find.
    int32_t next = hint;
    if (next < 0 || static_cast<size_t>(next) >= text.LineStart.size() || text.LineStart[static_cast<size_t>(next)] != in.Pos)
        next = text.LineFrom(in.Pos);
    auto stop = std::lower_bound(stops.begin(), stops.end(), next,
                                 [](const WordStop& s, int32_t line) { return s.Line < line; });
    if (stop == stops.end()) {
        if (stops.empty()) {
            in.Pos = text.Data->size();
            hint = text.LineCount();
            return -1;
        }
        stop = stops.begin();
    }
    in.Pos = text.After(stop->Line);
    hint = stop->Line + 1;
    return stop - stops.begin();
}

}  // namespace

int32_t SearchWordLine(RunState& state, const std::string& word) {
    EngineState& e = state.Engine;
    if (IsStreamed(e.WordInput)) {
        SearchStreamedWordLine(state, word);
        return -1;
    }
    DefinitionText& text = HeldTextOf(state, ChannelWord);
    const std::vector<WordStop>& stops = WordStopsOf(text, word);
    // Found or not, the line in work is the one the search ended at: at the end of the file
    // that is its last line.
    const ptrdiff_t stop = HeldWordStop(state, text, stops);
    if (stop < 0) {
        if (text.LineCount() > 0) e.PostWordLine.assign(text.Line(text.LineCount() - 1));
        return -1;
    }
    const WordStop& found = stops[static_cast<size_t>(stop)];
    e.PostWordLine.assign(text.Line(found.Line));
    if (found.Unparsable) NoBlankBehindWord(state, word, e.PostWordLine);
    return found.Line;
}

WordTag MakeWordTag(const std::string& tag) {
    WordTag w;
    w.Tag = tag;
    // "WORD.text" asks for the text of the word's lines.
    const size_t dot = tag.find(".text");
    w.TextWanted = dot != std::string::npos;
    w.Word = w.TextWanted ? tag.substr(0, dot) : tag;
    if (w.Word == "BLOCK_NUMBER1") w.BlockNumber = 1;
    else if (w.Word == "BLOCK_NUMBER2") w.BlockNumber = 2;
    w.Renumbered = Holds(tag, "BLOCK_NUMBER");
    return w;
}

void EvaluateWord(RunState& state, const std::string& tag) { EvaluateWord(state, MakeWordTag(tag)); }

void EvaluateWord(RunState& state, const WordTag& tag) {
    EngineState& e = state.Engine;
    ValueTables& t = state.Tables;
    if (e.RenumberMode && !tag.Renumbered) {
        // Evaluated in the normal pass already: copied as it stands.
        e.PostLine += '[';
        e.PostLine += tag.Tag;
        e.PostLine += ']';
        return;
    }
    bool active = true;
    e.FieldTextAdded = false;
    e.FormatNTZ = false;
    e.FormatNEG = false;
    e.FormatABS = false;
    e.FormatINV = false;
    const bool textWanted = tag.TextWanted;
    const std::string& word = tag.Word;
    TextInput& in = e.WordInput;
    // A held word file gives each line's form once for the run, and its stops tell where the
    // word's lines are; a streamed one is searched and read anew.
    DefinitionText* held = IsStreamed(in) ? nullptr : &HeldTextOf(state, ChannelWord);
    const std::vector<WordStop>* stops = nullptr;
    ptrdiff_t stop = -1;
    if (held) {
        if (tag.StopsSerial != held->Serial) {
            tag.Stops = &WordStopsOf(*held, word);
            tag.StopsSerial = held->Serial;
        }
        stops = tag.Stops;
        stop = HeldWordStop(state, *held, *stops);
        if (stop >= 0 && (*stops)[static_cast<size_t>(stop)].Unparsable)
            NoBlankBehindWord(state, word, held->Line((*stops)[static_cast<size_t>(stop)].Line));
    } else {
        SearchWordLine(state, word);
    }
    std::unique_ptr<WordLineForm> streamed;  // made only for a streamed word file
    PostValueType index;  // an empty text
    std::string field;

    for (;;) {
        if (AtEnd(in)) PostAbort(state, "Reserved Word - " + word + " not found in file " + state.Job.WordFile);
        const WordLineForm* form = nullptr;
        if (held) {
            form = &WordLineFormOf(*held, (*stops)[static_cast<size_t>(stop)].Line);
        } else {
            streamed = std::make_unique<WordLineForm>(ParseWordLine(e.PostWordLine));
            form = streamed.get();
        }
        if (form->WithIf) e.PostWordLine = form->Line;
        ReadTagValue(state, *form, index, e.PostValue, active);

        if (form->Calc) {
            if (!form->CalcClosed)
                PostAbort(state, "Reserved Word - end of CALC expression ] not found in file " + state.Job.WordFile);
            const std::optional<double> result = EvaluateCalc(state, form->CalcOf);
            if (result) SetDouble(e.PostValue, *result);
            else SetText(e.PostValue, "");
            if (form->NLZ && result && *result < 0) SetDouble(e.PostValue, 0);
        }

        if (form->Format && !IsNoValue(e.PostValue)) {
            if (!form->FormatClosed)
                PostAbort(state, "Reserved Word - end of FORMAT expression ] not found in file " + state.Job.WordFile);
            ApplyFormat(state, form->FormatOf);
        } else {
            e.FormatNOP = false;
            SetPlainNumberText(e.PostValue, word);
        }

        if (form->SetCalc) {
            if (e.TableLetter == 'P') {
                t.PostParam[CellNumber(index, "PostParam cell")] = ToSingle(ValueAsNumber(e.PostValue, word));
            } else if (e.TableLetter == 'M') {
                t.PostMachine[CellNumber(index, "PostMachine cell")] = ToSingle(ValueAsNumber(e.PostValue, word));
            } else if (e.TableLetter == 'V') {
                t.PostVar[CellNumber(index, "PostVar cell")] = ToSingle(ValueAsNumber(e.PostValue, word));
            } else if (e.TableLetter == 'S') {
                t.PostText[CellNumber(index, "PostText cell")] = ValueAsText(e.PostValue);
            }
        }

        // NOP: the line computes and stores, and prints no number.
        if (e.FormatNOP) SetText(e.PostValue, NoValueText);

        field.clear();
        if (active && !textWanted) {
            ReadConvText(state, *form, field);
            if (!IsNoValue(e.PostValue)) {
                if (e.PostValue.Type == PostValueType::Kind::Text) field += e.PostValue.Text;
                else field += ValueAsText(e.PostValue);
            }
            RunSetTag(state, *form);
        }
        if (active && textWanted) {
            std::string text;
            ReadTextField(state, *form, text);
            e.PostLine += text;
            e.FieldTextAdded = true;
        }
        if (e.FormatNTZ && IsNumericallyZero(e.PostValue)) field.clear();
        if (active) {
            e.PostLine += field;
            if (!field.empty()) e.FieldTextAdded = true;
            // The number is stepped after it was printed; a dropped line takes the step back.
            if (tag.BlockNumber == 1) {
                t.PostParam[1] = t.PostParam[1] + t.PostParam[4];
                e.BlockNumber1Used = true;
            } else if (tag.BlockNumber == 2) {
                t.PostParam[2] = t.PostParam[2] + t.PostParam[5];
                e.BlockNumber2Used = true;
            } else if (!word.empty()) {
                CountUp(e.FieldCount, "FieldCount");
            }
        }

        // The word's further lines follow directly, each with the word in column 1. The next
        // line is read, whether it is one of them or not.
        if (AtEnd(in)) break;
        if (held) {
            const int32_t line = (*stops)[static_cast<size_t>(stop)].Line + 1;
            in.Pos = held->After(line);
            e.WordLineHint = line + 1;
            const size_t following = static_cast<size_t>(stop) + 1;
            if (following == stops->size() || (*stops)[following].Line != line) break;
            if ((*stops)[following].Unparsable) NoBlankBehindWord(state, word, held->Line(line));
            ++stop;
            continue;
        }
        ReadLine(in, e.PostWordLine);
        bool unparsable = false;
        if (!IsWordLine(e.PostWordLine, word, unparsable)) {
            if (unparsable) NoBlankBehindWord(state, word, e.PostWordLine);
            break;
        }
    }
}

void WriteReservedBlock(RunState& state) {
    EngineState& e = state.Engine;
    ValueTables& t = state.Tables;
    e.PostDefLine.clear();
    e.PostLine.clear();
    e.NonBlankCount = 0;
    e.FieldCount = 0;

    // Local to the block.
    std::string tag;
    bool inTag = false;
    int align = 0;  // 1 between the braces, -1 behind the closing brace
    std::string alignBuffer;
    int previous = -1;  // the previous literal character, -1 for none
    WordTag readTag;    // the word of the last tag read character by character

    for (;;) {
        if (e.LayoutMode == 0) {
            ReadDefinitionLine(state, e.PostDefLine);
            if (IsBlockEnd(e)) {
                if (e.PostLevel < 1) return;
                // The end of a called block: back to the caller's next line.
                CloseInputChannel(state, e.PostChannel);
                StepBackLevel(state);
                ReadDefinitionLine(state, e.PostDefLine);
                if (e.PostLevel == 0 && IsBlockEnd(e)) return;
            }
        } else {
            e.PostDefText = nullptr;
            NextLayoutLine(state, e.LayoutMode);
        }
        if (e.PostDefLine == NoValueText) {
            e.PostDefLine.clear();
            e.PostDefText = nullptr;
        }

        const bool deferredActive = !e.RenumberMode;
        if (!e.RenumberMode) e.FieldCount = 1;
        // The line is not changed while it is read: tags and layouts work on other registers.
        const std::string& line = e.PostDefLine;

        // A character of text outside the tags: blanks in a row print once (but for the
        // report), unless a word has just printed text.
        auto text = [&](char c) {
            if (e.FieldTextAdded) previous = -1;
            if (c != ' ') CountUp(e.NonBlankCount, "NonBlankCount");
            if (c == ' ' && previous == ' ' && !e.ReportMode) return;
            previous = static_cast<unsigned char>(c);
            if (align == 1) alignBuffer += c;
            else e.PostLine += c;
        };
        // Text without a blank: every character prints and counts, as one by one.
        auto printRun = [&](std::string_view run) {
            if (e.NonBlankCount > 32767 - static_cast<int>(run.size())) RunFault("Overflow: NonBlankCount");
            e.NonBlankCount = static_cast<int16_t>(e.NonBlankCount + static_cast<int>(run.size()));
            previous = static_cast<unsigned char>(run.back());
            if (align == 1) alignBuffer += run;
            else e.PostLine += run;
        };
        // A tag closed by "]" (not a layout tag).
        auto closeTag = [&](const WordTag& word, bool deferred) {
            if (deferred) {
                e.PostLine += '[';
                e.PostLine += word.Tag;
                e.PostLine += ']';
            } else if (align == 1) {
                const size_t before = e.PostLine.size();
                const std::string kept = e.PostLine;
                EvaluateWord(state, word);
                if (e.PostLine.size() > before) alignBuffer += e.PostLine.substr(before);
                e.PostLine = kept;
            } else if (!word.Tag.empty()) {
                EvaluateWord(state, word);
            }
        };

        // Outside the pass over the program a line is worked in its runs, read once.
        BlockLineForm fresh;
        std::shared_ptr<const BlockLineForm> kept;
        const BlockLineForm* form =
            deferredActive && e.BlockLinesKept > 0 ? &BlockLineFormOf(e, line, fresh, kept) : nullptr;
        if (form && form->Usable) {
            for (const BlockToken& token : form->Tokens) {
                switch (token.Type) {
                    case BlockToken::Kind::Brace:
                        e.PostLine += token.Text;
                        CountUp(e.NonBlankCount, "NonBlankCount");
                        break;
                    case BlockToken::Kind::Tag: closeTag(token.Word, token.Deferred); break;
                    case BlockToken::Kind::Text:
                        if (token.Blanks) {
                            for (const char c : token.Text) text(c);
                            break;
                        }
                        printRun(token.Text);
                        break;
                }
            }
            inTag = false;
            tag.clear();
        } else {
            const bool alignable = line.find('@') != std::string::npos;
            for (size_t i = 0; i < line.size(); ++i) {
                const char c = line[i];
                if (c == '{' || c == '}') {
                    if (alignable) {
                        align = c == '{' ? 1 : -1;
                    } else {
                        e.PostLine += c;
                        CountUp(e.NonBlankCount, "NonBlankCount");
                    }
                } else if (c == '@') {
                    if (align != -1) continue;  // a stray @ is lost
                    align = 0;
                    const std::string letter = i + 1 < line.size() ? line.substr(i + 1, 1) : std::string();
                    const std::string digits = i + 2 < line.size() ? line.substr(i + 2, 3) : std::string();
                    const double width = LeadingNumber(digits) - 2;
                    i += 4;
                    const double length = static_cast<double>(e.PostLine.size());
                    if (letter == "L") {
                        if (length < width) PadSpaces(e.PostLine, width - length);
                    } else {
                        const double room = width - static_cast<double>(alignBuffer.size());
                        if (room > length) PadSpaces(e.PostLine, room - length);
                    }
                    e.PostLine += alignBuffer;
                    alignBuffer.clear();
                } else if (c == '[') {
                    inTag = true;
                } else if (c == ']') {
                    if (const int layout = LayoutNumber(tag); layout != 0) {
                        // The rest of the line falls into the tag buffer and is lost.
                        e.LayoutMode = static_cast<int16_t>(layout);
                        OpenDefinitionInput(state, ChannelSequence, state.Job.SeqFile);
                        ReadLine(e.SequenceInput);
                        continue;
                    }
                    // The word of the last tag read this way is kept, with its stops, for the
                    // next line: in the pass over the program it is the block number on each.
                    if (tag != readTag.Tag) readTag = MakeWordTag(tag);
                    closeTag(readTag, deferredActive ? IsDeferredName(tag) : tag.empty());
                    inTag = false;
                    tag.clear();
                } else if (inTag) {
                    tag += c;
                } else if (c == ' ') {
                    text(c);
                } else {
                    // A run of text without blanks prints and counts whole.
                    size_t end = i + 1;
                    while (end < line.size() && line[end] != ' ' && line[end] != '{' && line[end] != '}' &&
                           line[end] != '@' && line[end] != '[' && line[end] != ']')
                        ++end;
                    printRun(std::string_view(line).substr(i, end - i));
                    i = end - 1;
                }
            }
        }

        // End of the line.
        previous = -1;
        if (e.ReportMode) {
            WriteLine(e.ReportOutput, e.PostLine);
        } else if (e.NonBlankCount > 0 || e.FieldCount > 0) {
            RouteLine(state);
        } else {
            // Nothing printed: a block number on the line is not used up.
            if (e.BlockNumber1Used) t.PostParam[1] = t.PostParam[1] - t.PostParam[4];
            if (e.BlockNumber2Used) t.PostParam[2] = t.PostParam[2] - t.PostParam[5];
        }
        e.BlockNumber1Used = false;
        e.BlockNumber2Used = false;
        e.PostLine.clear();
        inTag = false;
        tag.clear();
        e.NonBlankCount = 0;
        e.FieldCount = 0;
    }
}

}  // namespace tvx
