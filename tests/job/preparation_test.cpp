#include "job/preparation.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <thread>

#include "common/fault.h"
#include "drawing/drawfile.h"
#include "job/job_fixture.h"
#include "ui/progress.h"

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

// ---- The order of the passes -------------------------------------------------------------------
//
// Each pass of the drawing shows its caption on the progress window as it starts; with stderr on
// a terminal the captions drawn tell the passes that ran, in their order.

namespace {

// What the progress window draws while `run` runs, with stderr on a pseudo-terminal.
std::string DrawnOnATerminal(const std::function<void()>& run) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_GE(master, 0);
    EXPECT_EQ(grantpt(master), 0);
    EXPECT_EQ(unlockpt(master), 0);
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
    EXPECT_GE(terminal, 0);
    termios raw{};
    tcgetattr(terminal, &raw);
    cfmakeraw(&raw);
    tcsetattr(terminal, TCSANOW, &raw);
    std::string drawn;
    std::thread reader([&] {
        char buffer[4096];
        for (;;) {
            const ssize_t got = read(master, buffer, sizeof buffer);
            if (got > 0) drawn.append(buffer, static_cast<size_t>(got));
            else if (got < 0 && errno == EINTR) continue;
            else break;  // EIO once the terminal side is closed
        }
    });
    std::fflush(stderr);
    const int saved = dup(2);
    dup2(terminal, 2);
    close(terminal);
    try {
        run();
    } catch (...) {
        ADD_FAILURE() << "the run ended early";
    }
    HideProgress();
    std::fflush(stderr);
    dup2(saved, 2);
    close(saved);
    reader.join();
    close(master);
    return drawn;
}

// The captions drawn, each once for each time it was shown.
std::vector<std::string> Captions(const std::string& drawn) {
    std::vector<std::string> captions;
    size_t at = 0;
    while ((at = drawn.find('\r', at)) != std::string::npos) {
        ++at;
        const size_t bar = drawn.find(" [", at);
        if (bar == std::string::npos) break;
        const std::string caption = drawn.substr(at, bar - at);
        // A bar drawn again under the same caption belongs to the same pass.
        if (!caption.empty() && caption.find_first_not_of(' ') != std::string::npos &&
            (captions.empty() || captions.back() != caption))
            captions.push_back(caption);
    }
    return captions;
}

const std::string Tooling = "Processing Associative Tooling";
const std::string Shapes = "Processing Shapes";
const std::string Grids = "Processing Grids";
const std::string Cruciforms = "Processing Cruciforms";
const std::string Multiparts = "Processing Multipart(s)";

void ToolMachine(JobFixture& f) {
    f.State.Machine.MachineKind = 10;
    f.State.Machine.IsToolMachine = true;
    f.State.Machine.ShapesDir = f.Path("Shapes/");
    f.State.Machine.CustomDir = f.Path("Custom/");
}

void KeepBesideTheJob(JobFixture& f) {
    f.State.Job.JobPath = f.Path("jobs/JOB");
    f.State.Job.JobName = "JOB";
    MakeDirectory(f.Path("jobs"));
}

}  // namespace

TEST(PreparationOrder, AToolMachineRunsAssociativeToolingThenCruciforms) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    ToolMachine(f);
    const auto captions = Captions(DrawnOnATerminal([&] {
        PrepareDrawing(f.State);
        OpenJobDrawing(f.State);
    }));
    EXPECT_EQ(captions, (std::vector<std::string>{Tooling, Cruciforms}));
    // The cruciform pass came last: it leaves the working count 0.
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
}

TEST(PreparationOrder, AnotherMachineRunsNoPassBeforeGeneration) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    f.State.Machine.MachineKind = 1;
    f.State.Machine.IsProfileMachine = true;
    const auto captions = Captions(DrawnOnATerminal([&] {
        PrepareDrawing(f.State);
        OpenJobDrawing(f.State);
    }));
    EXPECT_TRUE(captions.empty());
}

TEST(PreparationOrder, APacerMachineRunsToolingAndShapesBeforeItsKerf) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    KeepBesideTheJob(f);
    f.State.Machine.MachineKind = 1;
    f.State.Machine.IsProfileMachine = true;
    f.State.Machine.MachineMaker = "Pacer";
    const auto captions = Captions(DrawnOnATerminal([&] { PrepareDrawing(f.State); }));
    EXPECT_EQ(captions, (std::vector<std::string>{Tooling, Shapes}));
    EXPECT_TRUE(FileExists(f.Path("jobs/Auto-Kerf.drw")));
}

// A "Pacer" tool machine runs the associative tooling pass a second time, on the kerfed
// drawing, before the cruciforms.
TEST(PreparationOrder, APacerToolMachineRunsTheAssociativeToolingPassAgainOnTheKerfedDrawing) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    KeepBesideTheJob(f);
    ToolMachine(f);
    f.State.Machine.MachineMaker = "Pacer Systems";
    const auto captions = Captions(DrawnOnATerminal([&] { PrepareDrawing(f.State); }));
    EXPECT_EQ(captions, (std::vector<std::string>{Tooling, Shapes, Tooling, Cruciforms}));
}

TEST(PreparationOrder, AFlattenedMultipartOnAToolMachineRunsToolingShapesGridsAndCruciforms) {
    JobFixture f({"MULTIPART_START=FALSE", "******"});
    Drawing(f, 500);
    ToolMachine(f);
    const auto captions = Captions(DrawnOnATerminal([&] {
        PrepareDrawing(f.State);
        OpenJobDrawing(f.State);
    }));
    EXPECT_EQ(captions, (std::vector<std::string>{Tooling, Cruciforms, Multiparts, Tooling, Shapes, Grids, Cruciforms}));
}

TEST(PreparationOrder, AFlattenedMultipartOnAnotherMachineRunsGridsAndCruciforms) {
    JobFixture f({"MULTIPART_START=FALSE", "******"});
    Drawing(f, 500);
    const auto captions = Captions(DrawnOnATerminal([&] {
        PrepareDrawing(f.State);
        OpenJobDrawing(f.State);
    }));
    EXPECT_EQ(captions, (std::vector<std::string>{Multiparts, Grids, Cruciforms}));
}

TEST(PreparationOrder, AMultipartThatTheDefinitionPlacesIsNotFlattened) {
    JobFixture f({"MULTIPART_START=TRUE", "******"});
    Drawing(f, 500);
    ToolMachine(f);
    const auto captions = Captions(DrawnOnATerminal([&] {
        PrepareDrawing(f.State);
        OpenJobDrawing(f.State);
    }));
    EXPECT_EQ(captions, (std::vector<std::string>{Tooling, Cruciforms}));
}

// What the passes do shows in the drawing as well: on a tool machine a radius-punch arc is a hit
// after the preparation, and a shape is left for the generation loop (no shape pass).
TEST(PreparationOrder, AToolMachinesDrawingHasItsCruciformsPunchedAndItsShapesLeft) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    ToolMachine(f);
    DrawingFile file;
    OpenDrawing(file, f.State.Job.DrawingFile);
    DrawRecord header;
    header.EntityCode = 1;
    header.RecordCount = 3;
    header.EntityText = "STEEL";
    WriteRecord(file, 1, header);
    DrawRecord arc;
    arc.EntityCode = 130;
    arc.Side = 1;
    arc.Value[1] = 4;
    arc.Value[11] = 90;
    arc.ToolA.Present = -1;
    arc.ToolA.Letter = "M";
    arc.ToolA.WorkType = 10;
    WriteRecord(file, 2, arc);
    DrawRecord circle;
    circle.EntityCode = 151;
    circle.Value[1] = 5;
    circle.ToolA.Present = -1;
    circle.ToolA.Letter = "A";
    circle.ToolA.WorkType = 10;
    WriteRecord(file, 3, circle);
    CloseDrawing(file);
    WriteAllLines(f.State.Job.SeqFile, {"SEQ", "******"});
    PrepareDrawing(f.State);
    OpenDrawing(file, f.State.Job.DrawingFile);
    EXPECT_EQ(ReadRecord(file, 1).RecordCount, 3);
    EXPECT_EQ(ReadRecord(file, 2).EntityCode, 210);
    EXPECT_EQ(ReadRecord(file, 3).EntityCode, 151);
    EXPECT_EQ(f.State.Job.RecordTotal, 3);
}

// A failing kerf pass (an inside arc that collapses) ends the run with its message box before
// the drawing is replaced.
TEST(PrepareDrawing, AFailingKerfPassEndsTheRunWithTheKerfMessageBox) {
    JobFixture f({"PROGRAM_START=TRUE", "******"});
    Drawing(f, 0);
    KeepBesideTheJob(f);
    f.State.Machine.MachineKind = 1;
    f.State.Machine.IsProfileMachine = true;
    f.State.Machine.MachineMaker = "Pacer";
    f.State.Machine.TurnSense = 0;
    {
        DrawingFile file;
        OpenDrawing(file, f.State.Job.DrawingFile);
        DrawRecord arc;
        arc.EntityCode = 130;
        arc.EntityName = "Arc Profile";
        arc.Value[1] = 2;
        arc.Value[11] = 90;
        arc.Side = 1;  // towards the centre of a counter-clockwise arc in this convention
        WriteRecord(file, 2, arc);
    }
    const std::string before = ReadAllBytes(f.State.Job.DrawingFile);
    try {
        PrepareDrawing(f.State);
        FAIL() << "the run went on";
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text,
                  "Contact Torvanex\nKerf Calculation Errors !\n\nUnable to calculate cutter path due to path errors");
    }
    EXPECT_EQ(ReadAllBytes(f.State.Job.DrawingFile), before);
    EXPECT_FALSE(FileExists(f.Path("jobs/Auto-Kerf.drw")));
}
