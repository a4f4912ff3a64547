#include "splitting/single_shape.h"

#include "common/numtext.h"
#include "drawing/drawfile.h"
#include "splitting/single_profile.h"
#include "splitting/single_shape_choice.h"
#include "splitting/split_shapes.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// Makes Shape.drw anew and writes the shape's records to it, counted from 1, then closes it.
// Without a routine nothing happens at all: the file keeps what it held.
void WriteShapeDrawing(RunState& state, const DrawRecord& shape, SingleShapeRoutine routine) {
    if (routine == nullptr) return;
    DrawingFile& file = state.Loop.ShapeDrawing;
    MakeWorkingFile(file, ShapeDrawingPath(state));
    file.WriteBehind = true;  // read only once it is closed
    int32_t count = 0;
    SplitOutput out = FileOutput(state.Machine, file, count, SingleShapeChoices, RecordPlace(state));
    routine(out, shape);
    CloseDrawing(file);
}

// The name of a file without its directory ('\' and '/' both separate).
std::string FileName(const std::string& path) {
    const auto slash = path.find_last_of("\\/");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string PlaceIn(int32_t number, const std::string& path) {
    return "record " + LongText(number) + " of " + FileName(path);
}

}  // namespace

void WriteCirclePlain(SplitOutput& out, const DrawRecord& shape) {
    DrawRecord circle;
    CopyRecord(shape, circle);
    WriteWithLeads(out, circle, LeadedEntityChoices{false, true});
}

SingleShapeRoutine SingleCircleRoutine(const DrawRecord& shape) {
    return IsWorkedTool(shape.ToolA) ? SplitCirclePunched : WriteCirclePlain;
}

SingleShapeRoutine SingleSingleDRoutine(const DrawRecord& shape) {
    return IsWorkedTool(shape.ToolA) ? SplitSingleDPunched : SplitSingleDLeads;
}

SingleShapeRoutine SingleDoubleDRoutine(const DrawRecord& shape) {
    return IsWorkedTool(shape.ToolA) ? SplitDoubleDPunched : SplitDoubleDLeads;
}

SingleShapeRoutine SingleObroundRoutine(const DrawRecord& shape) {
    return IsWorkedTool(shape.ToolA) ? SplitObroundPunched : SplitObroundLeads;
}

SingleShapeRoutine SingleRadRectRoutine(const DrawRecord& shape) {
    const ToolSpec& tool = shape.ToolA;
    if (!IsWorkedTool(tool)) return SplitRadRectLeads;
    // Outside, a round punch's outline whatever the tool's letter.
    if (shape.Side >= 1) return SplitRadRectRound;
    if (LetterIs(tool, 'A')) return SplitRadRectRound;
    if (LetterIs(tool, 'C')) return shape.Count[1] == 0 ? SplitRadRectEdges : ClearRectByGrid;
    if (LetterIs(tool, 'E')) {
        if (shape.Count[1] != 0) return ClearRectByGrid;
        return IsRotaryWork(tool.WorkType) ? SplitRadRectEdgesRotary : SplitRadRectEdges;
    }
    return nullptr;
}

SingleShapeRoutine SingleRectangleRoutine(const DrawRecord& shape) {
    return IsWorkedTool(shape.ToolA) ? SplitRectangleWorked : SplitRectangleLeads;
}

void SingleCircle(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleCircleRoutine(shape));
}
void SingleObround(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleObroundRoutine(shape));
}
void SingleDoubleD(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleDoubleDRoutine(shape));
}
void SingleSingleD(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleSingleDRoutine(shape));
}
void SingleRadRect(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleRadRectRoutine(shape));
}
void SingleRectangle(RunState& state, const DrawRecord& shape) {
    WriteShapeDrawing(state, shape, SingleRectangleRoutine(shape));
}
void SingleCirclePlain(RunState& state, const DrawRecord& shape) { WriteShapeDrawing(state, shape, WriteCirclePlain); }

std::string RecordPlace(const RunState& state) {
    const LoopState& loop = state.Loop;
    if (loop.ToolingActive)
        return PlaceIn(loop.ToolingIndex, loop.ToolingDrawing.Path.empty() ? "AssTool.drw" : loop.ToolingDrawing.Path);
    if (state.Engine.SubroutineOutput)
        return PlaceIn(loop.PartIndex, loop.PartDrawing.Path.empty() ? "progpart.drw" : loop.PartDrawing.Path);
    return PlaceIn(loop.RecordIndex, loop.MainDrawing.Path.empty() ? state.Job.DrawingFile : loop.MainDrawing.Path);
}

}  // namespace tvx
