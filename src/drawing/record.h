#pragma once
// The entity record of a drawing and the operations that every pass uses on it.
//
// A record in memory holds the same fields in the same order as the 518 bytes of its file form
// (drawing/drawfile.h). Arrays are 1-based: `Record.Value[10]` is the tenth value, and an index
// outside 1..N is a fault of the run naming the field. Texts are held at their exact width,
// blank padded, byte for byte, so that every file reads and writes back unchanged. A record
// made by default is a cleared record (ClearRecord).
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/numtext.h"

namespace tvx {

// The name of a record field as a template argument, for the fault of an index beyond the
// field's bound.
template <size_t N>
struct FieldName {
    char Text[N]{};
    constexpr FieldName(const char (&text)[N]) {
        for (size_t i = 0; i < N; ++i) Text[i] = text[i];
    }
};

// An array field of a record, indexed from 1 to Upper.
template <typename T, int Upper, FieldName Name>
struct FieldArray {
    std::array<T, static_cast<size_t>(Upper)> Cells{};

    static constexpr int Bound = Upper;
    static constexpr const char* FieldTitle() { return Name.Text; }

    T& operator[](long long index) {
        if (index < 1 || index > Upper) IndexFault(Name.Text, index);
        return Cells[static_cast<size_t>(index - 1)];
    }
    const T& operator[](long long index) const {
        if (index < 1 || index > Upper) IndexFault(Name.Text, index);
        return Cells[static_cast<size_t>(index - 1)];
    }
};

// A text field of a fixed width: its bytes exactly, blank padded on the right, no terminator.
// Assigning a longer text keeps its first Width bytes, as a fixed-length text does.
template <size_t Width>
struct FixedText {
    std::array<char, Width> Bytes;

    static constexpr size_t Size = Width;

    FixedText() { Bytes.fill(' '); }
    FixedText& operator=(std::string_view text) {
        Assign(text);
        return *this;
    }
    void Assign(std::string_view text) {
        Bytes.fill(' ');
        const size_t n = text.size() < Width ? text.size() : Width;
        for (size_t i = 0; i < n; ++i) Bytes[i] = text[i];
    }
    // The whole field, padding included.
    std::string Text() const { return std::string(Bytes.data(), Width); }
    // The field without the blanks at either end.
    std::string Trimmed() const;
};

// A raw 4-byte cell of the record that is carried and copied, never interpreted.
using RawCell = std::array<unsigned char, 4>;

// An entity's tool.
struct ToolSpec {
    int16_t Present = 0;        // non-zero: a tool is assigned; -1 when parsed from a tool string
    FixedText<1> Letter;        // class letter: "A".."M", "S", "P", "U"
    FixedText<64> ToolName;     // the tool's name; compared on the trimmed text
    FieldArray<float, 4, "Size"> Size;  // Size[1] width or diameter, Size[2] length
    int16_t ToolNumber = 0;     // key into the tooling library
    int16_t WorkType = 0;       // work class (IsPunchWork, IsDualWork, IsProfileWork, IsRotaryWork)
    float ToolStep = 0;         // second angle or step
    float ToolAngle = 0;        // rotation in degrees
    int32_t StageIndex = 0;     // index into the settings stages
};

// A lead-in or lead-out.
struct LeadSpec {
    int16_t LeadKind = 0;       // 0 none, |1| straight, |2| quarter circle, |3| half circle; sign = side
    float LeadLength = 0;       // length of a straight lead, radius of an arc lead
    float LeadAngle = 0;        // direction of a straight lead
    int16_t LeadSpare = 0;      // carried and copied
};

// The action after an entity.
struct AfterAction {
    int16_t ActionCode = 0;     // 0 none, 1 stop, 2 dwell, 3 part chute
    float ActionValue = 0;      // e.g. the dwell time
};

// One entity of a drawing.
struct DrawRecord {
    int16_t EntityCode = 0;
    FixedText<18> EntityName;
    FixedText<72> EntityText;
    int16_t SpareWord = 0;      // carried and copied
    int32_t RecordCount = 0;    // record 1 only: the number of records, record 1 included
    int16_t CarryWord1 = 0;     // record 1: 500 or more marks a multipart drawing; inherited
    int16_t CarryWord2 = 0;     // inherited by child records
    FieldArray<SinglePoint, 6, "Point"> Point;
    FieldArray<float, 20, "Value"> Value;
    FieldArray<int16_t, 8, "Count"> Count;
    FieldArray<RawCell, 2, "Spare"> Spare;  // carried and copied
    int16_t Side = 0;
    int16_t FollowFlag = 0;
    FieldArray<SinglePoint, 2, "Extent"> Extent;
    FieldArray<SinglePoint, 2, "Margin"> Margin;
    ToolSpec ToolA;
    ToolSpec ToolB;
    LeadSpec LeadIn;
    LeadSpec LeadOut;
    AfterAction After;
};

void ClearRecord(DrawRecord& record);
void ClearTool(ToolSpec& tool);
void ClearLead(LeadSpec& lead);
void ClearAfter(AfterAction& after);
void CopyRecord(const DrawRecord& source, DrawRecord& destination);
void CopyTool(const ToolSpec& source, ToolSpec& destination);
void CopyLead(const LeadSpec& source, LeadSpec& destination);
void CopyAfter(const AfterAction& source, AfterAction& destination);
// Exchanges LeadIn and LeadOut, every field of each (LeadSpare too); signs stay as they are.
void SwapLeads(DrawRecord& record);

// Classes of a work type (an entity's WorkType or the machine's own type number).
bool IsPunchWork(int16_t workType);    // 10 <= v < 40
bool IsDualWork(int16_t workType);     // v not a multiple of 10 and v < 40
bool IsProfileWork(int16_t workType);  // 1 <= v < 10
bool IsRotaryWork(int16_t workType);   // v >= 20

// True when the two tools' names are the same text once trimmed.
bool SameToolName(const ToolSpec& a, const ToolSpec& b);
// True when the tool's class letter is `letter`; a cleared tool's blank letter is none.
bool LetterIs(const ToolSpec& tool, char letter);
// True when the tool works an entity by hits: Present non-zero and WorkType 10 or more.
bool IsWorkedTool(const ToolSpec& tool);

// The EntityName a made record of the code gets: "Line Profile", "Arc Profile", "Punch",
// "Linear Pattern", "Grid Pattern", "Arc Pattern"; blank for every other code.
std::string EntityNameOfCode(int16_t code);

// Moves a record by dx, dy: its six Points and both Extent and Margin boxes. Each sum is made in
// double precision and stored as a single; with `places` of 0 or more it is first rounded to
// that many decimals (the copies of a multipart are placed to 4), with the default -1 it is not.
void MoveRecord(DrawRecord& record, double dx, double dy, int places = -1);

// Starts a child record of a parent entity: a cleared record with the code and its name, the
// parent's CarryWord1, CarryWord2 and ToolA. Nothing else of the parent is taken, its leads
// included. The caller then fills the defining fields, gives the last child of a split the
// parent's After (CopyAfter) and binds the child (BindRecord) before writing it. Parent and
// child may be the same record.
void MakeChildRecord(const DrawRecord& parent, int16_t code, DrawRecord& child);

// Reads a tool string "Letter, ToolName, Size1, Size2, Size3, Size4, ToolNumber, WorkType,
// ToolStep, ToolAngle, StageIndex" into a tool. Each piece is trimmed; numbers are leading
// numbers of their text; ToolNumber and WorkType are truncated to integers; StageIndex is at
// least 1. A line with fewer than eleven pieces or with a letter that is not one of "A" to "M",
// "S" or "P" gives a cleared tool (Present 0); a good line gives Present -1.
void ParseToolString(std::string_view text, ToolSpec& tool);

template <size_t Width>
std::string FixedText<Width>::Trimmed() const {
    return Trim(std::string_view(Bytes.data(), Width));
}

}  // namespace tvx
