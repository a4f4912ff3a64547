#pragma once
// The generation loop: the walk over the drawing's records, the tool in work, and the
// dispatch of each record to its emitter.
#include <string>

namespace tvx {

struct RunState;
struct ToolSpec;
struct DrawRecord;

// The steps before the first record: the family 10 settings file, the subroutine file, and
// an empty current tool.
void PrepareGeneration(RunState& state);
// Walks the records until the generation is over.
void RunGenerationLoop(RunState& state);

bool ToolChanged(RunState& state, const ToolSpec& tool);
void SelectTool(RunState& state, const ToolSpec& tool);
// The angle text of a tool as Program.seq holds it: "idx" for a rotating tool, else the text
// of its ToolStep.
std::string ToolAngleText(const ToolSpec& tool);
// The family 5 tool code of the selected tool.
std::string FamilyFiveToolCode(RunState& state, const std::string& letter, const ToolSpec& tool);

// Steps of the loop, one record each.
// Fetches the next record into Loop.Record; false when the loop is to be left.
bool FetchRecord(RunState& state);
void PrepareRecord(RunState& state);
void DispatchRecord(RunState& state);
// Copies a multipart's part drawing to the work directory and prepares it; gives its path.
std::string OpenPartDrawing(RunState& state, DrawRecord& record);

}  // namespace tvx
