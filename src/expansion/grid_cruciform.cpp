// The two passes that finish a drawing in place without changing its number of records: grids
// lose their exchanged-axes form, and the quarter arcs of a radius punch become single hits.
#include "common/numeric.h"
#include "drawing/binding.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "splitting/radius_punch.h"
#include "state/run_state.h"
#include "ui/progress.h"

namespace tvx {
namespace {

// The grid test: a tool and the exchanged-axes flag, ANDed as 16-bit integers.
bool IsSwappedGrid(const DrawRecord& record) {
    return record.EntityCode == 225 && (record.ToolA.Present & record.Count[3]) != 0;
}

}  // namespace

void UnswapGrid(DrawRecord& record) {
    if (!IsSwappedGrid(record)) return;
    const float firstPitch = record.Value[2];
    const float secondPitch = record.Value[4];
    const int16_t firstCount = record.Count[1];
    const int16_t secondCount = record.Count[2];
    record.Value[2] = ToSingle(0.0 - secondPitch);
    record.Value[4] = firstPitch;
    record.Value[10] = ToSingle(Norm360(90.0 - record.Value[10]));
    record.Count[1] = secondCount;
    record.Count[2] = firstCount;
    record.Count[3] = 0;
}

void GridPass(RunState&, const std::string& drawing) {
    DrawingFile file;
    OpenDrawing(file, drawing);
    const int32_t count = ReadRecordCount(file);
    ShowProgress("Processing Grids");
    // Records behind the end of the file read as zeros and are no grids: a damaged count does
    // not make the walk read them.
    const int32_t onDisk = RecordsOnDisk(file);
    // Only a grid is decoded, and only a grid that is unswapped is written back.
    ChangeInPlace(
        file, 2, count < onDisk ? count : onDisk,
        [count](int32_t n, const RecordBytes& bytes) {
            SetProgress(static_cast<int>(static_cast<double>(n) / (static_cast<double>(count) + 1) * 100));
            return EntityCodeOf(bytes) == 225;
        },
        [](int32_t, DrawRecord& record) {
            const bool swapped = IsSwappedGrid(record);
            if (swapped) UnswapGrid(record);
            return swapped;
        });
    CloseDrawing(file);
}

bool IsCruciformCandidate(int16_t code, char letter) { return code == 130 && letter == 'M'; }

void CruciformPass(RunState& state, const std::string& drawing, const CruciformCensus& census) {
    if (census.Taken && !census.Candidates) {
        // The walk just before saw every record as it stands and no arc of an "M" tool: the
        // walk would change nothing.
        ShowProgress("Processing Cruciforms");
        SetProgress(100);
        state.Job.WorkingCount = 0;
        return;
    }
    CruciformPass(state, drawing);
}

void CruciformPass(RunState& state, const std::string& drawing) {
    DrawingFile file;
    OpenDrawing(file, drawing);
    const int32_t count = ReadRecordCount(file);
    state.Job.WorkingCount = count;
    ShowProgress("Processing Cruciforms");
    const int32_t onDisk = RecordsOnDisk(file);
    // Every record is put back at its number; one that did not change is the same bytes, so
    // only a replaced arc is written. Only an arc of an "M" tool can be one: no other record is
    // decoded.
    ChangeInPlace(
        file, 1, count < onDisk ? count : onDisk,
        [count](int32_t n, const RecordBytes& bytes) {
            SetProgress(count > 0 ? static_cast<int>(static_cast<double>(n) / count * 100) : 100);
            return IsCruciformCandidate(EntityCodeOf(bytes), ToolLetterOf(bytes));
        },
        [&state](int32_t, DrawRecord& record) {
            const bool arc = IsRadiusPunchArc(record);
            if (arc) ArcToPunch(state, record);
            return arc;
        });
    CloseDrawing(file);
    state.Job.WorkingCount = 0;
}

}  // namespace tvx
