#include "drawing/record.h"

#include <cmath>
#include <vector>

#include "common/numeric.h"
#include "common/numtext.h"

namespace tvx {

void ClearTool(ToolSpec& tool) {
    tool.Present = 0;
    tool.Letter = " ";
    tool.ToolName = "";
    for (int i = 1; i <= 4; ++i) tool.Size[i] = 0;
    tool.ToolNumber = 0;
    tool.WorkType = 0;
    tool.ToolStep = 0;
    tool.ToolAngle = 0;
    tool.StageIndex = 0;
}

void ClearLead(LeadSpec& lead) {
    lead.LeadKind = 0;
    lead.LeadLength = 0;
    lead.LeadAngle = 0;
    lead.LeadSpare = 0;
}

void ClearAfter(AfterAction& after) {
    after.ActionCode = 0;
    after.ActionValue = 0;
}

void ClearRecord(DrawRecord& record) {
    record.EntityCode = 0;
    record.EntityName = "";
    record.EntityText = "";
    record.SpareWord = 0;
    record.RecordCount = 0;
    record.CarryWord1 = 0;
    record.CarryWord2 = 0;
    for (int i = 1; i <= 6; ++i) record.Point[i] = SinglePoint{};
    for (int i = 1; i <= 20; ++i) record.Value[i] = 0;
    for (int i = 1; i <= 8; ++i) record.Count[i] = 0;
    for (int i = 1; i <= 2; ++i) record.Spare[i] = RawCell{};
    record.Side = 0;
    record.FollowFlag = 0;
    for (int i = 1; i <= 2; ++i) {
        record.Extent[i] = SinglePoint{};
        record.Margin[i] = SinglePoint{};
    }
    ClearTool(record.ToolA);
    ClearTool(record.ToolB);
    ClearLead(record.LeadIn);
    ClearLead(record.LeadOut);
    ClearAfter(record.After);
}

void CopyTool(const ToolSpec& source, ToolSpec& destination) {
    destination.Present = source.Present;
    destination.Letter = source.Letter;
    destination.ToolName = source.ToolName;
    for (int i = 1; i <= 4; ++i) destination.Size[i] = source.Size[i];
    destination.ToolNumber = source.ToolNumber;
    destination.WorkType = source.WorkType;
    destination.ToolStep = source.ToolStep;
    destination.ToolAngle = source.ToolAngle;
    destination.StageIndex = source.StageIndex;
}

void CopyLead(const LeadSpec& source, LeadSpec& destination) {
    destination.LeadKind = source.LeadKind;
    destination.LeadLength = source.LeadLength;
    destination.LeadAngle = source.LeadAngle;
    destination.LeadSpare = source.LeadSpare;
}

void CopyAfter(const AfterAction& source, AfterAction& destination) {
    destination.ActionCode = source.ActionCode;
    destination.ActionValue = source.ActionValue;
}

void CopyRecord(const DrawRecord& source, DrawRecord& destination) {
    if (&source == &destination) return;
    destination.EntityCode = source.EntityCode;
    destination.EntityName = source.EntityName;
    destination.EntityText = source.EntityText;
    destination.SpareWord = source.SpareWord;
    destination.RecordCount = source.RecordCount;
    destination.CarryWord1 = source.CarryWord1;
    destination.CarryWord2 = source.CarryWord2;
    for (int i = 1; i <= 6; ++i) CopyPoint(source.Point[i], destination.Point[i]);
    for (int i = 1; i <= 20; ++i) destination.Value[i] = source.Value[i];
    for (int i = 1; i <= 8; ++i) destination.Count[i] = source.Count[i];
    for (int i = 1; i <= 2; ++i) destination.Spare[i] = source.Spare[i];
    destination.Side = source.Side;
    destination.FollowFlag = source.FollowFlag;
    for (int i = 1; i <= 2; ++i) {
        CopyPoint(source.Extent[i], destination.Extent[i]);
        CopyPoint(source.Margin[i], destination.Margin[i]);
    }
    CopyTool(source.ToolA, destination.ToolA);
    CopyTool(source.ToolB, destination.ToolB);
    CopyLead(source.LeadIn, destination.LeadIn);
    CopyLead(source.LeadOut, destination.LeadOut);
    CopyAfter(source.After, destination.After);
}

void SwapLeads(DrawRecord& record) {
    LeadSpec held;
    CopyLead(record.LeadIn, held);
    CopyLead(record.LeadOut, record.LeadIn);
    CopyLead(held, record.LeadOut);
}

bool IsPunchWork(int16_t workType) { return workType >= 10 && workType < 40; }
bool IsDualWork(int16_t workType) { return workType % 10 != 0 && workType < 40; }
bool IsProfileWork(int16_t workType) { return workType >= 1 && workType < 10; }
bool IsRotaryWork(int16_t workType) { return workType >= 20; }

namespace {

// A text without the blanks at either end, as Trim gives it, without a copy.
std::string_view TrimmedView(std::string_view text) {
    size_t e = text.size();
    while (e > 0 && text[e - 1] == ' ') --e;
    size_t b = 0;
    while (b < e && text[b] == ' ') ++b;
    return text.substr(b, e - b);
}

template <size_t Width>
std::string_view TrimmedView(const FixedText<Width>& text) {
    return TrimmedView(std::string_view(text.Bytes.data(), Width));
}

}  // namespace

bool SameToolName(const ToolSpec& a, const ToolSpec& b) {
    // Two names of the same bytes, as a record and the tool in work mostly are, need no trimming.
    return a.ToolName.Bytes == b.ToolName.Bytes || TrimmedView(a.ToolName) == TrimmedView(b.ToolName);
}

bool LetterIs(const ToolSpec& tool, char letter) { return tool.Letter.Bytes[0] == letter; }

bool IsWorkedTool(const ToolSpec& tool) { return tool.Present != 0 && tool.WorkType >= 10; }

std::string EntityNameOfCode(int16_t code) {
    switch (code) {
        case 120: return "Line Profile";
        case 130: return "Arc Profile";
        case 210: return "Punch";
        case 220: return "Linear Pattern";
        case 225: return "Grid Pattern";
        case 230: return "Arc Pattern";
        default: return "";
    }
}

namespace {

// A coordinate plus its offset, rounded to the places asked for (none below 0), as a single.
float Moved(float coordinate, double offset, int places) {
    const double sum = static_cast<double>(coordinate) + offset;
    return ToSingle(places < 0 ? sum : RoundTo(sum, places));
}

void MovePoint(SinglePoint& point, double dx, double dy, int places) {
    point.X = Moved(point.X, dx, places);
    point.Y = Moved(point.Y, dy, places);
}

}  // namespace

void MoveRecord(DrawRecord& record, double dx, double dy, int places) {
    for (int i = 1; i <= 6; ++i) MovePoint(record.Point[i], dx, dy, places);
    for (int i = 1; i <= 2; ++i) {
        MovePoint(record.Extent[i], dx, dy, places);
        MovePoint(record.Margin[i], dx, dy, places);
    }
}

void MakeChildRecord(const DrawRecord& parent, int16_t code, DrawRecord& child) {
    // The parent's fields are taken first: the child may be the parent's own record.
    const int16_t carry1 = parent.CarryWord1;
    const int16_t carry2 = parent.CarryWord2;
    ToolSpec tool;
    CopyTool(parent.ToolA, tool);
    ClearRecord(child);
    child.EntityCode = code;
    child.EntityName = EntityNameOfCode(code);
    child.CarryWord1 = carry1;
    child.CarryWord2 = carry2;
    CopyTool(tool, child.ToolA);
}

namespace {

// The comma-separated pieces of a line, each trimmed.
std::vector<std::string> ToolPieces(std::string_view text) {
    std::vector<std::string> pieces;
    size_t start = 0;
    while (true) {
        const size_t comma = text.find(',', start);
        if (comma == std::string_view::npos) {
            pieces.push_back(Trim(text.substr(start)));
            break;
        }
        pieces.push_back(Trim(text.substr(start, comma - start)));
        start = comma + 1;
    }
    return pieces;
}

bool IsToolStringLetter(const std::string& letter) {
    static constexpr std::string_view Letters = "ABCDEFGHIJKLMSP";
    return letter.size() == 1 && Letters.find(letter[0]) != std::string_view::npos;
}

}  // namespace

void ParseToolString(std::string_view text, ToolSpec& tool) {
    ClearTool(tool);
    const std::vector<std::string> pieces = ToolPieces(text);
    if (pieces.size() < 11 || !IsToolStringLetter(pieces[0])) return;
    tool.Letter = pieces[0];
    tool.ToolName = pieces[1];
    for (int i = 1; i <= 4; ++i) tool.Size[i] = ToSingle(LeadingNumber(pieces[static_cast<size_t>(1 + i)]));
    tool.ToolNumber = ToInteger16(std::trunc(LeadingNumber(pieces[6])), "ToolNumber");
    tool.WorkType = ToInteger16(std::trunc(LeadingNumber(pieces[7])), "WorkType");
    tool.ToolStep = ToSingle(LeadingNumber(pieces[8]));
    tool.ToolAngle = ToSingle(LeadingNumber(pieces[9]));
    const int32_t stage = ToInteger32(LeadingNumber(pieces[10]), "StageIndex");
    tool.StageIndex = stage < 1 ? 1 : stage;
    tool.Present = -1;
}

}  // namespace tvx
