#include "job/preparation.h"

#include "common/numtext.h"
#include "common/paths.h"
#include "config/config.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "drawing/drawfile.h"
#include "expansion/passes.h"
#include "job/job_values.h"
#include "kerf/kerf.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// Reads record 1 of the job's drawing from an open file, takes RecordTotal and settles the
// material it names; the material's name as loaded goes back into the record.
void TakeHeader(RunState& state, DrawingFile& drawing, DrawRecord& header) {
    ReadRecord(drawing, 1, header);
    state.Job.RecordTotal = header.RecordCount;
    std::string material = header.EntityText.Text();
    LoadMaterial(state, material);
    header.EntityText = material;
}

}  // namespace

void PrepareDrawing(RunState& state) {
    JobState& job = state.Job;
    if (Holds(state.Machine.MachineMaker, "Pacer")) {
        AssociativeToolingPass(state, job.DrawingFile);
        ShapePass(state, job.DrawingFile);
        if (KerfDrawing(state, job.DrawingFile) != 0) {
            std::fputc('\a', stderr);
            MessageEnd("Contact Torvanex",
                       "Kerf Calculation Errors !\n\nUnable to calculate cutter path due to path errors");
        }
        DeleteFile(job.DrawingFile);
        const std::string kerf = job.DrawingFile.substr(0, job.DrawingFile.size() - 3) + "krf";
        CopyFileTo(kerf, job.DrawingFile);
        const size_t keep = job.JobPath.size() >= job.JobName.size() ? job.JobPath.size() - job.JobName.size() : 0;
        const std::string keepCopy = job.JobPath.substr(0, keep) + "Auto-Kerf.drw";
        DeleteIfExists(keepCopy);
        CopyFileTo(kerf, keepCopy);
    }
    {
        DrawingFile drawing;
        OpenDrawing(drawing, job.DrawingFile);
        DrawRecord header;
        TakeHeader(state, drawing, header);
    }
    if (state.Machine.IsToolMachine) {
        // The tooling walk tells the cruciform pass whether it has anything to look at.
        CruciformCensus census;
        AssociativeToolingPass(state, job.DrawingFile, census);
        CruciformPass(state, job.DrawingFile, census);
    }
}

void OpenJobDrawing(RunState& state) {
    JobState& job = state.Job;
    DrawingFile& drawing = state.Loop.MainDrawing;
    OpenDrawing(drawing, job.DrawingFile);
    DrawRecord header;
    TakeHeader(state, drawing, header);
    const bool multipart = header.CarryWord1 >= 500;
    state.Tables.PostParam[83] = multipart ? -1.0f : 0.0f;
    if (multipart) {
        const bool placesParts = FindReservedWord(state, "MULTIPART_START");
        CloseInputChannel(state, ChannelDefinition);
        if (!placesParts) {
            // The definition cannot place parts as subroutines: the drawing is flattened.
            CloseDrawing(drawing);
            MultipartExplode(state, job.DrawingFile);
            if (state.Machine.IsToolMachine) {
                AssociativeToolingPass(state, job.DrawingFile);
                ShapePass(state, job.DrawingFile);
            }
            GridPass(state, job.DrawingFile);
            CruciformPass(state, job.DrawingFile);
            OpenDrawing(drawing, job.DrawingFile);
            ReadRecord(drawing, 1, header);
        }
    }
    ReadDrawingHeader(state, header);
    InitJobValues(state);
}

}  // namespace tvx
