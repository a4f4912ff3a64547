#include "job/generation.h"

#include <cmath>

#include "common/numeric.h"
#include "common/numtext.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "drawing/drawfile.h"
#include "emitters/emit_common.h"
#include "emitters/paths.h"
#include "emitters/profile.h"
#include "emitters/punch.h"
#include "emitters/shapes.h"
#include "emitters/stages.h"
#include "expansion/passes.h"
#include "state/run_state.h"
#include "ui/progress.h"

namespace tvx {
namespace {

bool HasTool(const DrawRecord& record) { return record.ToolA.Present != 0; }

// The last record of a part drawing that the walk reads: its RecordCount, but never more than
// one record past the end of the file. A damaged count beyond the file would only walk records
// of zeros, which match no tool.
int32_t PartWalkLimit(RunState& state) {
    LoopState& loop = state.Loop;
    const int32_t onDisk = RecordsOnDisk(loop.PartDrawing);
    return loop.PartRecordCount > onDisk + 1 ? onDisk + 1 : loop.PartRecordCount;
}

// Reads the next record of a working stream (Shape.drw, AssTool.drw) into `into`; a record of
// code 0 ends the stream and closes its file.
void ReadWorkingStream(DrawingFile& file, bool& active, int32_t& index, DrawRecord& into) {
    ++index;
    ReadRecord(file, index, into);
    if (into.EntityCode == 0) {
        active = false;
        CloseDrawing(file);
    }
}

// True when a part record's tool is the tool that the 510 record in work asks for.
bool SameToolForPart(const ToolSpec& part, const ToolSpec& wanted) {
    if (part.Letter.Text() != wanted.Letter.Text() || !SameToolName(part, wanted) ||
        part.ToolNumber != wanted.ToolNumber)
        return false;
    for (int i = 1; i <= 4; ++i)
        if (part.Size[i] != wanted.Size[i]) return false;
    return part.ToolStep == wanted.ToolStep || part.WorkType >= 20;
}

// Leaves a part drawing: the part is done for the tool in work.
void EndOfPart(RunState& state) {
    LoopState& loop = state.Loop;
    ValueTables& t = state.Tables;
    WriteBlock(state, "MULTIPART_END");
    state.Engine.SubroutineOutput = false;
    if (t.PostParam[80] == 0 && loop.CallSubroutinesDue) {
        WriteLine(state.Engine.ProgramOutput, "[CALL SUBROUTINES]");
        loop.CallSubroutinesDue = false;
    }
    if (t.PostParam[9] == 11) {
        WriteBlock(state, t.PostMachine[93] == 0 ? "MULTIPART_CALL_X" : "MULTIPART_CALL_Y");
    } else if (t.PostParam[9] != 10) {
        WriteBlock(state, "MULTIPART_LAYOUT");
        WriteBlock(state, "MULTIPART_CALL");
    }
}

// The cells of a part record (code 510).
void SetPartCells(ValueTables& t, const DrawRecord& record) {
    t.PostMachine[96] = record.Point[1].X;
    t.PostMachine[97] = record.Point[1].Y;
    t.PostMachine[94] = record.Value[1];
    t.PostMachine[95] = record.Value[2];
    t.PostMachine[91] = record.Count[3];
    t.PostMachine[93] = record.Count[6];
    if (t.PostMachine[87] == 1 && t.PostMachine[88] == 1) t.PostMachine[91] = 1;
}

void AddOneToCell(float& cell) { cell = ToSingle(static_cast<double>(cell) + 1); }

void MultipartLayout(RunState& state, DrawRecord& record) {
    LoopState& loop = state.Loop;
    ValueTables& t = state.Tables;
    SetMultipartLayoutCells(t, record);
    // One level of the part's path goes: everything up to and including the first backslash.
    const std::string text = record.EntityText.Text();
    const auto slash = text.find('\\');
    if (slash != std::string::npos) record.EntityText = text.substr(slash + 1);
    t.PostText[31] = record.EntityText.Trimmed() + "A" + Trim(PlainText(record.Value[10]));
    CloseDrawing(loop.PartDrawing);
    loop.PartKnown = false;
    const int count = static_cast<int>(loop.PartNames.size()) - 1;
    for (int i = 1; i <= count; ++i) {
        if (loop.PartNames[static_cast<size_t>(i)] == t.PostText[31]) {
            loop.PartKnown = true;
            loop.NextPartNumber = ToInteger16(std::trunc(static_cast<double>(t.PostParam[81])), "part number");
            t.PostParam[81] = loop.PartNumbers[static_cast<size_t>(i)];
            t.PostParam[82] = static_cast<float>(i);
            break;
        }
    }
    if (!loop.PartKnown) {
        loop.PartNames.emplace_back();
        loop.PartNumbers.push_back(0);
        t.PostParam[81] = loop.NextPartNumber;
        t.PostParam[82] = static_cast<float>(loop.PartNames.size() - 1);
    }
    // The last entry takes the part in work, also when the part was known before.
    loop.PartNames.back() = t.PostText[31];
    loop.PartNumbers.back() = ToInteger16(t.PostParam[81], "part number");
    WriteBlock(state, "MULTIPART_LAYOUT");
}

void MultipartPart(RunState& state, DrawRecord& record) {
    LoopState& loop = state.Loop;
    ValueTables& t = state.Tables;
    if (!loop.PartKnown) {
        CloseDrawing(loop.PartDrawing);
        const std::string path = OpenPartDrawing(state, record);
        OpenDrawing(loop.PartDrawing, path);
        if (state.Machine.IsToolMachine) {
            ReadRecord(loop.PartDrawing, 1, loop.PartRecord);
            loop.PartIndex = 1;
            loop.PartRecordCount = loop.PartRecord.RecordCount;
            state.Engine.SubroutineOutput = true;
            SetPartCells(t, record);
            AddOneToCell(t.PostParam[81]);
            WriteBlock(state, "MULTIPART_START");
        }
        return;
    }
    CloseDrawing(loop.PartDrawing);
    SetPartCells(t, record);
    AddOneToCell(t.PostParam[81]);
    WriteBlock(state, "MULTIPART_CALL");
}

// The arcs of codes 130 and 230: a quarter arc worked by a radius punch becomes one hit in
// place; every other arc is a path of the arc emitters.
void DispatchArc(RunState& state, DrawRecord& record) {
    if (IsRadiusPunchArc(record)) {
        ArcToPunch(state, record);
        if (HasTool(record)) EmitPunch(state, record);
    } else if (HasTool(record)) {
        EmitArcPath(state, record);
    }
}

// A shape (codes 151 to 156) with a tool: a library tooling ("U"), a shape cut by the profiling
// head ("P") or a shape worked by a punch (any other letter). Without a tool nothing.
void DispatchShape(RunState& state, DrawRecord& record, void (*cut)(RunState&, DrawRecord&),
                   void (*punched)(RunState&, DrawRecord&)) {
    if (!HasTool(record)) return;
    const std::string letter = record.ToolA.Letter.Text();
    if (letter == "U") {
        MakeAssociatedTooling(state, record);
    } else if (letter == "P") {
        cut(state, record);
    } else {
        punched(state, record);
    }
}

}  // namespace

std::string ToolAngleText(const ToolSpec& tool) {
    if (tool.WorkType >= 20) return "idx";
    return NumberText(tool.ToolStep, -1);
}

std::string FamilyFiveToolCode(RunState& state, const std::string& letter, const ToolSpec& tool) {
    const std::string code = state.Tables.PostText[25];
    auto dimension = [](float size) { return PadLong(ToInteger32(static_cast<double>(size) * 100, "tool size"), 5); };
    const float a = tool.ToolStep;
    const bool square = a == 0 || a == 90 || a == 180 || a == 270 || a == 360;
    const bool straight = a == 0 || a == 180 || a == 360;
    const bool across = a == 90 || a == 270;
    std::string digit = "9", first = code, second;
    if (letter == "A") {
        digit = "1";
        first = dimension(tool.Size[1]);
    } else if (letter == "B" && square) {
        digit = "3";
        first = dimension(tool.Size[1]);
    } else if (letter == "D" && straight) {
        digit = "4";
        first = dimension(tool.Size[1]);
        second = dimension(tool.Size[2]);
    } else if (letter == "D" && across) {
        digit = "4";
        first = dimension(tool.Size[2]);
        second = dimension(tool.Size[1]);
    } else if (letter == "F" && straight) {
        digit = "8";
        first = dimension(tool.Size[1]);
        second = dimension(tool.Size[2]);
    } else if (letter == "F" && across) {
        digit = "7";
        first = dimension(tool.Size[1]);
        second = dimension(tool.Size[2]);
    }
    return code + digit + first + second;
}

bool ToolChanged(RunState& state, const ToolSpec& tool) {
    if (tool.Present == 0) return false;
    const ToolSpec& current = state.Loop.CurrentTool;
    bool same = tool.ToolStep == current.ToolStep && SameToolName(tool, current) &&
                tool.Letter.Bytes == current.Letter.Bytes && tool.ToolNumber == current.ToolNumber;
    for (int i = 1; i <= 4; ++i) same = same && tool.Size[i] == current.Size[i];
    if (same) return false;
    ValueTables& t = state.Tables;
    t.PostMachine[12] = -999;
    if (tool.WorkType >= 20) {
        state.Loop.ToolRotates = true;
    } else {
        state.Loop.ToolRotates = false;
        t.PostMemo[12] = -999;
        t.PostMachine[17] = -999;
        t.PostMemo[17] = -999;
    }
    return true;
}

void SelectTool(RunState& state, const ToolSpec& tool) {
    ValueTables& t = state.Tables;
    LoopState& loop = state.Loop;
    const std::string angle = ToolAngleText(tool);
    const std::string letter = tool.Letter.Trimmed();
    const std::string name = tool.ToolName.Trimmed();

    // The row of Program.seq that holds this tool; station row 0 when none does.
    TextInput seq;
    OpenTextInput(seq, state.Job.SeqFile);
    ReadLine(seq);
    int32_t stationRow = 0;
    std::string rowName;
    for (int row = 1; row <= state.Job.SeqRowCount; ++row) {
        const std::string rowLetter = Trim(ReadItem(seq));
        rowName = Trim(ReadItem(seq));
        float sizes[4];
        for (float& size : sizes) size = ToSingle(LeadingNumber(ReadItem(seq)));
        const std::string rowAngle = Trim(ReadItem(seq));
        const int16_t rowNumber = ToInteger16(LeadingNumber(ReadItem(seq)), "Program.seq tool number");
        const int32_t rowStation = ToInteger32(LeadingNumber(ReadItem(seq)), "Program.seq station");
        bool match = rowLetter == letter && rowName == name && rowAngle == angle && rowNumber == tool.ToolNumber;
        for (int i = 0; i < 4; ++i) match = match && sizes[i] == tool.Size[i + 1];
        if (match) {
            stationRow = rowStation;
            break;
        }
    }
    CloseText(seq);
    CopyTool(tool, loop.CurrentTool);

    const auto& turret = state.Machine.TurretTools;
    if (stationRow < 0 || static_cast<size_t>(stationRow) >= turret.size()) IndexFault("TurretTools", stationRow);
    const TurretTool& station = turret[static_cast<size_t>(stationRow)];
    const int16_t stationNumber = station.Station;
    const std::string codeText = station.ToolText2;
    const std::string label = station.ToolText1;

    const double stations = state.Machine.StationCount;
    double steps = LeadingNumber(codeText) - static_cast<double>(t.PostMemo[0]);
    if (steps < 0) steps += stations;
    if (t.PostParam[192] == -1 && steps > stations / 2) steps = stations - steps;
    t.PostParam[184] = ToSingle(steps);

    t.PostText[26] = label;
    t.PostText[25] = codeText;
    t.PostText[27] = rowName;
    if (t.PostParam[9] == 5) t.PostText[17] = FamilyFiveToolCode(state, letter, tool);

    t.PostMachine[0] = stationNumber;
    t.PostMachine[14] = stationNumber;
    for (int i = 1; i <= 4; ++i) t.PostParam[59 + i] = tool.Size[i];
    t.PostParam[64] = tool.ToolStep;
    t.PostParam[67] = tool.WorkType;
    if (t.PostParam[57] == 0) {
        t.PostParam[57] = t.PostMachine[0];
        t.PostText[28] = codeText;
    }
    if (t.PostMemo[0] > 0) {
        // The timers of the tool that was in work.
        const int32_t previous = ToInteger32(t.PostMemo[0], "station");
        auto& times = state.Job.ToolTimes;
        if (previous < 0 || static_cast<size_t>(previous) >= times.size()) IndexFault("ToolTimes", previous);
        for (int i = 1; i <= 4; ++i)
            times[static_cast<size_t>(previous)][static_cast<size_t>(i)] =
                ToSingle(static_cast<double>(times[static_cast<size_t>(previous)][static_cast<size_t>(i)]) + t.PostParam[203 + i]);
    }
    t.PostMemo[12] = -999;
}

void PrepareGeneration(RunState& state) {
    ValueTables& t = state.Tables;
    JobState& job = state.Job;
    if (t.PostParam[9] == 10) {
        OpenEngineOutput(state, state.Engine.PlatinoOutput, job.PlatinoFile);
        t.PostParam[9] = 100;
        for (const std::string& name : ListFiles(job.WorkDir, "PrflStg.*")) {
            const auto point = name.find('.');
            if (point == std::string::npos) continue;
            int32_t number = ToInteger32(LeadingNumber(name.substr(point + 1)), "stage number");
            ApplySettingsStage(state, number, "P");
        }
        if (FileExists(job.WorkDir + "MtrlStg.0")) {
            int32_t zero = 0;
            ApplySettingsStage(state, zero, "Z");
            if (state.Tables.PostMachine[159] >= 0) WriteBlock(state, "CANNED_PIERCESUB_END");
        }
        // The lead, path and special settings: each loaded plainly, then written as its
        // subroutine.
        const char* digits[] = {"1", "2", "3"};
        const char* letters[] = {"Y", "X", "W"};
        for (int i = 0; i < 3; ++i) {
            LoadMaterialStage(state, digits[i]);
            if (FileExists(job.WorkDir + "MtrlStg." + digits[i])) {
                int32_t zero = 0;
                ApplySettingsStage(state, zero, letters[i]);
            }
        }
        LoadMaterialStage(state, "0");
        if (FileExists(job.WorkDir + "MtrlStg.0")) WriteBlock(state, "CANNED_SAFETY");
        CloseEngineOutput(state, state.Engine.PlatinoOutput);
        t.PostParam[9] = 10;
    }
    if (t.PostParam[81] != 1) OpenSubroutineFile(state);
    ClearTool(state.Loop.CurrentTool);
}

bool FetchRecord(RunState& state) {
    LoopState& loop = state.Loop;
    if (state.Engine.SubroutineOutput) {
        const bool wholeParts = state.Tables.PostParam[9] == 10;
        do {
            if (loop.ShapeActive) ReadWorkingStream(loop.ShapeDrawing, loop.ShapeActive, loop.ShapeIndex, loop.PartRecord);
            if (!loop.ShapeActive) {
                if (loop.ToolingActive)
                    ReadWorkingStream(loop.ToolingDrawing, loop.ToolingActive, loop.ToolingIndex, loop.PartRecord);
                if (!loop.ToolingActive) {
                    ++loop.PartIndex;
                    ReadRecord(loop.PartDrawing, loop.PartIndex, loop.PartRecord);
                }
            }
            const DrawRecord& part = loop.PartRecord;
            if (HasTool(part)) {
                loop.PartMatch = loop.ToolingActive || SameToolForPart(part.ToolA, loop.Record.ToolA);
            } else if (part.EntityCode != 110 && part.EntityCode != 311 && part.EntityCode != 312 &&
                       part.EntityCode != 321) {
                loop.PartMatch = false;
            }
            if (wholeParts) loop.PartMatch = loop.PartIndex <= loop.PartRecordCount;
        } while (!loop.PartMatch && loop.PartIndex < PartWalkLimit(state));
        if (loop.PartMatch) {
            CopyRecord(loop.PartRecord, loop.Record);
            return true;
        }
        EndOfPart(state);
        ++loop.RecordIndex;
        if (loop.RecordIndex > state.Job.RecordTotal) return false;
        ReadRecord(loop.MainDrawing, loop.RecordIndex, loop.Record);
        return true;
    }
    if (loop.ShapeActive) ReadWorkingStream(loop.ShapeDrawing, loop.ShapeActive, loop.ShapeIndex, loop.Record);
    if (!loop.ShapeActive) {
        if (loop.ToolingActive) ReadWorkingStream(loop.ToolingDrawing, loop.ToolingActive, loop.ToolingIndex, loop.Record);
        if (!loop.ToolingActive) {
            ++loop.RecordIndex;
            ReadRecord(loop.MainDrawing, loop.RecordIndex, loop.Record);
        }
    }
    return true;
}

void PrepareRecord(RunState& state) {
    DrawRecord& record = state.Loop.Record;
    record.ToolA.ToolAngle = ToSingle(Norm360(record.ToolA.ToolAngle));
    record.ToolB.ToolAngle = ToSingle(Norm360(record.ToolB.ToolAngle));
    for (ToolSpec* tool : {&record.ToolA, &record.ToolB}) {
        if (LetterIs(*tool, 'A')) {
            tool->ToolStep = 0;
            tool->ToolAngle = 0;
        }
    }
    // Both tests are made: the tool comparison sets the angle cells as it goes.
    const bool stationMoved = state.Tables.PostMachine[0] != state.Tables.PostMemo[0];
    const bool changed = ToolChanged(state, record.ToolA);
    if (stationMoved || changed) SelectTool(state, record.ToolA);
    if (record.ToolA.StageIndex > 0 && record.EntityCode < 500)
        ApplySettingsStage(state, record.ToolA.StageIndex, record.ToolA.Letter.Text());
}

void DispatchRecord(RunState& state) {
    DrawRecord& record = state.Loop.Record;
    switch (record.EntityCode) {
        case 110: EmitMove(state, record); break;
        case 120:
        case 220:
        case 521:
        case 522:
            if (HasTool(record)) EmitLinePath(state, record);
            break;
        case 130:
        case 230: DispatchArc(state, record); break;
        case 151: DispatchShape(state, record, EmitShapeDiameterCut, EmitShapeDiameterPunched); break;
        case 152: DispatchShape(state, record, EmitShapeSingleDCut, EmitShapeSingleDPunched); break;
        case 153: DispatchShape(state, record, EmitShapeDoubleDCut, EmitShapeDoubleDPunched); break;
        case 154: DispatchShape(state, record, EmitShapeObroundCut, EmitShapeObroundPunched); break;
        case 155: DispatchShape(state, record, EmitShapeRadRectangleCut, EmitShapeRadRectanglePunched); break;
        case 156: DispatchShape(state, record, EmitShapeRectangleCut, EmitShapeRectanglePunched); break;
        case 175:
            if (HasTool(record)) MakeAssociatedTooling(state, record);
            break;
        case 210:
            if (HasTool(record)) EmitPunch(state, record);
            break;
        case 225:
            if (HasTool(record)) EmitGrid(state, record);
            break;
        case 311: EmitDwell(state, record); break;
        case 312: EmitPartChute(state, record); break;
        case 321:
        case 322: EmitStop(state, record); break;
        case 350: EmitReposition(state, record); break;
        case 355: EmitSheetManipulation(state, record); break;
        case 500: MultipartLayout(state, record); break;
        case 510: MultipartPart(state, record); break;
        default: break;  // codes that write nothing (1, 171), and unknown codes
    }
}

std::string OpenPartDrawing(RunState& state, DrawRecord& record) {
    std::string path;
    MultipartSubprogram(state, record, path);
    return path;
}

void RunGenerationLoop(RunState& state) {
    LoopState& loop = state.Loop;
    // A RecordCount beyond the records of the file would walk records of zeros for nothing: the
    // walk goes at most one record past the end of the file.
    if (IsOpen(loop.MainDrawing)) {
        const int32_t onDisk = RecordsOnDisk(loop.MainDrawing);
        if (state.Job.RecordTotal > onDisk + 1) state.Job.RecordTotal = onDisk + 1;
    }
    for (;;) {
        if (!FetchRecord(state)) break;
        PrepareRecord(state);
        DispatchRecord(state);
        if (loop.RecordIndex <= state.Job.RecordTotal && state.Job.RecordTotal > 0)
            SetProgress(static_cast<int>(std::floor(static_cast<double>(loop.RecordIndex) / state.Job.RecordTotal * 100)));
        if (!(loop.RecordIndex < state.Job.RecordTotal || state.Engine.SubroutineOutput || loop.ShapeActive ||
              loop.ToolingActive))
            break;
    }
}

}  // namespace tvx
