#pragma once
// The job's texts and numbers put into the value tables before the first block: the drawing's
// header, the timing file, the job's user file and the sheet texts.
#include <string>

namespace tvx {

struct RunState;
struct DrawRecord;

void ReadDrawingHeader(RunState& state, const DrawRecord& header);
void InitJobValues(RunState& state);
// The date "dd-mm-yyyy" and the time "hh:mm" of the run.
void ClockTexts(const RunState& state, std::string& date, std::string& time);

}  // namespace tvx
