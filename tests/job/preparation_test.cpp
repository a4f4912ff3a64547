#include "job/preparation.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "drawing/drawfile.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

void Drawing(JobFixture& f, int16_t carry) {
    DrawingFile file;
    OpenDrawing(file, f.State.Job.DrawingFile);
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 2;
    header.CarryWord1 = carry;
    header.EntityText = "STEEL";
    WriteRecord(file, 1, header);
    DrawRecord hit;
    hit.EntityCode = 210;
    WriteRecord(file, 2, hit);
    WriteAllLines(f.State.Job.SeqFile, {"SEQ", "******"});
    WriteAllLines(f.State.Job.WorkDir + "program.usr", {"******"});
    WriteAllLines(f.State.Machine.MachineStem + "tme", {"******"});
}

}  // namespace

TEST(OpenJobDrawing, PlainDrawingNeverAsksForMultipartStart) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    OpenJobDrawing(f.State);
    EXPECT_EQ(f.State.Tables.PostParam[83], 0.0f);
    EXPECT_EQ(f.State.Job.RecordTotal, 2);
    EXPECT_EQ(f.State.Job.MaterialName, "STEEL");
}

TEST(OpenJobDrawing, MultipartDrawingNeedsTheWordMultipartStart) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 500);
    try {
        OpenJobDrawing(f.State);
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\nReserved Word - MULTIPART_START not found in file " + f.State.Job.PostFile +
                              "\n\nProgram Aborted");
    }
}

TEST(OpenJobDrawing, MultipartDrawingWithAnyMultipartStartLineGoesOn) {
    JobFixture f({"MULTIPART_START=FALSE", "******"});
    Drawing(f, 600);
    OpenJobDrawing(f.State);
    EXPECT_EQ(f.State.Tables.PostParam[83], -1.0f);
    EXPECT_EQ(f.State.Job.RecordTotal, 2);
}

TEST(PrepareDrawing, PacerIsMatchedInTheExactCase) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    f.State.Job.JobPath = f.Path("jobs/JOB");
    f.State.Job.JobName = "JOB";
    MakeDirectory(f.Path("jobs"));
    f.State.Machine.MachineMaker = "PACER CUTTING";
    PrepareDrawing(f.State);
    EXPECT_FALSE(FileExists(f.Path("jobs/Auto-Kerf.drw")));
    f.State.Machine.MachineMaker = "Pacer Cutting";
    PrepareDrawing(f.State);
    // The cutter path replaces the drawing and is kept beside the job.
    EXPECT_TRUE(FileExists(f.Path("Progmain.krf")));
    EXPECT_EQ(ReadAllBytes(f.Path("jobs/Auto-Kerf.drw")), ReadAllBytes(f.State.Job.DrawingFile));
    EXPECT_EQ(f.State.Job.RecordTotal, 2);
}
