// The walk of the kerf pass over whole drawings: the .krf file beside the drawing, the corners
// trimmed or rounded, the records that break a path.
#include <gtest/gtest.h>

#include <cmath>

#include "common/paths.h"
#include "common/textfile.h"
#include "kerf/kerf.h"
#include "kerf/kerf_support.h"
#include "test_support.h"

using namespace tvx;
using namespace tvx::kerftest;

namespace {

struct KerfFixture {
    TempDir Dir;
    RunState State;
    std::string Drawing;
    std::string Kerf;

    explicit KerfFixture(int16_t turnSense = 0) {
        State.Machine = Machine(turnSense);
        Drawing = Dir.Path + "/Job.drw";
        Kerf = Dir.Path + "/Job.krf";
    }

    std::vector<DrawRecord> Run(const std::vector<DrawRecord>& entities, int16_t expected = 0) {
        WriteDrawingFile(Drawing, entities);
        EXPECT_EQ(KerfDrawing(State, Drawing), expected);
        return ReadDrawingFile(Kerf);
    }
};

DrawRecord Record(int16_t code) {
    DrawRecord r;
    r.EntityCode = code;
    r.EntityName = EntityNameOfCode(code);
    r.Point[1] = SinglePoint{40, 50};
    r.Point[3] = SinglePoint{60, 70};
    return r;
}

}  // namespace

TEST(KerfDrawing, RecordOneIsCopiedWithTheNewCount) {
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, 1)});
    ASSERT_EQ(out.size(), 2u);
    DrawRecord header = Header(2);
    EXPECT_EQ(Bytes(out[0]), Bytes(header));
    EXPECT_EQ(out[0].RecordCount, 2);
}

TEST(KerfDrawing, TheTargetIsTheDrawingsNameWithTheExtensionKrf) {
    KerfFixture f;
    WriteDrawingFile(f.Drawing, {Line(0, 0, 10, 0, 1)});
    // The extension of the path given is replaced on both sides.
    EXPECT_EQ(KerfDrawing(f.State, f.Dir.Path + "/Job.xyz"), 0);
    EXPECT_TRUE(FileExists(f.Kerf));
    EXPECT_EQ(ReadDrawingFile(f.Kerf).size(), 2u);
    EXPECT_FALSE(FileExists(f.Dir.Path + "/Job.xyz"));
}

TEST(KerfDrawing, AnOldTargetIsDeletedFirst) {
    KerfFixture f;
    {
        DrawingFile old;
        OpenDrawing(old, f.Kerf);
        for (int32_t n = 1; n <= 20; ++n) WriteRecord(old, n, Record(210));
    }
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, 1)});
    EXPECT_EQ(out.size(), 2u);
}

TEST(KerfDrawing, TheSourceIsNotChanged) {
    KerfFixture f;
    WriteDrawingFile(f.Drawing, {Line(0, 0, 10, 0, 1), Line(10, 0, 10, 10, 1)});
    const std::string before = ReadAllBytes(f.Drawing);
    KerfDrawing(f.State, f.Drawing);
    EXPECT_EQ(ReadAllBytes(f.Drawing), before);
}

TEST(KerfDrawing, OutsideCornersOfASquareAreTrimmedToTheMeetingOfTheExtendedOffsets) {
    // Counter-clockwise, cut on the right: outside. Each pair of offsets meets beyond the
    // pieces (class 1), within 50 kerf radii of the corner: both are cut to the meeting.
    KerfFixture f;
    const std::vector<DrawRecord> out =
        f.Run({Line(0, 0, 10, 0, 1), Line(10, 0, 10, 10, 1), Line(10, 10, 0, 10, 1), Line(0, 10, 0, 0, 1)});
    ASSERT_EQ(out.size(), 5u);
    EXPECT_EQ(out[0].RecordCount, 5);
    ExpectEnds(out[1], 0, -3.175, 13.175, -3.175);
    ExpectEnds(out[2], 13.175, -3.175, 13.175, 13.175);
    ExpectEnds(out[3], 13.175, 13.175, -3.175, 13.175);
    // The path's own start and end are not joined: the last piece keeps its offset end.
    ExpectEnds(out[4], -3.175, 13.175, -3.175, 0);
    for (size_t i = 1; i < out.size(); ++i) {
        EXPECT_EQ(out[i].EntityCode, 120);
        EXPECT_EQ(out[i].Side, 0);
    }
    EXPECT_EQ(out[1].Value[1], ToSingle(13.175));
}

TEST(KerfDrawing, InsideCornersOfASquareAreTrimmedWhereTheOffsetsCross) {
    KerfFixture f;
    const std::vector<DrawRecord> out =
        f.Run({Line(0, 0, 10, 0, -1), Line(10, 0, 10, 10, -1), Line(10, 10, 0, 10, -1), Line(0, 10, 0, 0, -1)});
    ASSERT_EQ(out.size(), 5u);
    ExpectEnds(out[1], 0, 3.175, 6.825, 3.175);
    ExpectEnds(out[2], 6.825, 3.175, 6.825, 6.825);
    ExpectEnds(out[3], 6.825, 6.825, 3.175, 6.825);
    ExpectEnds(out[4], 3.175, 6.825, 3.175, 0);
}

TEST(KerfDrawing, AClassOneMeetingFartherThanFiftyKerfRadiiEndsInACornerArc) {
    // A sharp turn back: the offsets meet some 635 beyond the corner.
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 100, 0, 1), Line(100, 0, 0, 1, 1)});
    ASSERT_EQ(out.size(), 4u);
    EXPECT_EQ(out[0].RecordCount, 4);
    ExpectEnds(out[1], 0, -3.175, 100, -3.175);
    const DrawRecord& arc = out[2];
    EXPECT_EQ(arc.EntityCode, 130);
    EXPECT_EQ(arc.EntityName.Trimmed(), "Arc Profile");
    ExpectPoint(arc.Point[4], 100, 0, 0);
    EXPECT_EQ(arc.Value[1], ToSingle(KerfRadius));
    EXPECT_EQ(arc.Value[10], 270.0f);
    // The end angle 89.4271 less 270 is -180.5729, taken the short way.
    EXPECT_NEAR(arc.Value[11], 179.4271, 1e-3);
    ExpectPoint(arc.Point[1], 100, -3.175);
    EXPECT_EQ(out[3].EntityCode, 120);
    ExpectPoint(out[3].Point[1], arc.Point[3].X, arc.Point[3].Y, 1e-3);
}

TEST(KerfDrawing, AReversalOfTwoLinesMeetsNowhereAndGetsAHalfTurnCornerArc) {
    // Parallel offsets (class 0): the corner arc turns half round the drawn corner; its middle,
    // at 180, lies away from the first line's direction, so the sweep stays as it came.
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, 1), Line(10, 0, 0, 0, 1)});
    ASSERT_EQ(out.size(), 4u);
    ExpectEnds(out[1], 0, -3.175, 10, -3.175);
    EXPECT_EQ(out[2].EntityCode, 130);
    EXPECT_EQ(out[2].Value[10], 270.0f);
    EXPECT_EQ(out[2].Value[11], -180.0f);
    ExpectEnds(out[3], 10, 3.175, 0, 3.175);
}

TEST(KerfDrawing, CollinearLinesHaveOffsetEndsThatCoincideSoNoCornerIsMade) {
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, 1), Line(10, 0, 20, 0, 1)});
    ASSERT_EQ(out.size(), 3u);
    ExpectEnds(out[1], 0, -3.175, 10, -3.175);
    ExpectEnds(out[2], 10, -3.175, 20, -3.175);
    // Met, the two offsets would have a cross product of exactly 0.
    DrawRecord a = Line(0, 0, 10, 0, 1);
    DrawRecord b = Line(10, 0, 20, 0, 1);
    OffsetLine(f.State.Machine, a, KerfRadius);
    OffsetLine(f.State.Machine, b, KerfRadius);
    const Meeting m = MeetEntities(a, b);
    EXPECT_EQ(m.Class, 0);
    EXPECT_EQ(m.X, -999.0);
}

TEST(KerfDrawing, ATangentLineAndArcMakeNoCornerRecord) {
    // TurnSense 1: Side -1 on a counter-clockwise arc turns towards its centre, the side the
    // line is cut on.
    KerfFixture f(1);
    const MachineState& m = f.State.Machine;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, -1, m), Arc(10, 10, 10, 270, 90, -1, m)});
    ASSERT_EQ(out.size(), 3u);
    ExpectEnds(out[1], 0, 3.175, 10, 3.175);
    EXPECT_EQ(out[2].EntityCode, 130);
    EXPECT_EQ(out[2].Value[1], ToSingle(6.825));
    EXPECT_EQ(out[2].Value[10], 270.0f);
    EXPECT_EQ(out[2].Value[11], 90.0f);
}

TEST(KerfDrawing, ASideOfZeroLeavesARecordUnchanged) {
    KerfFixture f;
    const DrawRecord line = Line(0, 0, 10, 0, 0);
    const DrawRecord arc = Arc(30, 0, 5, 0, 90, 0);
    const std::vector<DrawRecord> out = f.Run({line, arc});
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(Bytes(out[1]), Bytes(line));
    EXPECT_EQ(Bytes(out[2]), Bytes(arc));
}

TEST(KerfDrawing, ACornerIsOnlyMadeBetweenPiecesOfTheSameSide) {
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, 1), Line(10, 0, 10, 10, -1)});
    ASSERT_EQ(out.size(), 3u);
    // Neither is trimmed and no arc stands between them.
    ExpectEnds(out[1], 0, -3.175, 10, -3.175);
    ExpectEnds(out[2], 6.825, 0, 6.825, 10);
}

TEST(KerfDrawing, ARapidMoveBetweenTwoProfilesClearsPrevOut) {
    KerfFixture f;
    const DrawRecord move = Record(110);
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, -1), move, Line(10, 0, 10, 10, -1)});
    ASSERT_EQ(out.size(), 4u);
    ExpectEnds(out[1], 0, 3.175, 10, 3.175);
    EXPECT_EQ(Bytes(out[2]), Bytes(move));
    ExpectEnds(out[3], 6.825, 0, 6.825, 10);
}

TEST(KerfDrawing, TheEndsOfAPartClearPrevOut) {
    for (int16_t code : {355, 360, 365}) {
        KerfFixture f;
        const DrawRecord between = Record(code);
        const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, -1), between, Line(10, 0, 10, 10, -1)});
        ASSERT_EQ(out.size(), 4u) << code;
        ExpectEnds(out[1], 0, 3.175, 10, 3.175);
        EXPECT_EQ(Bytes(out[2]), Bytes(between)) << code;
        ExpectEnds(out[3], 6.825, 0, 6.825, 10);
    }
}

TEST(KerfDrawing, APassThroughRecordKeepsPrevOutAndIsWrittenAsItIs) {
    KerfFixture f;
    const DrawRecord hit = Record(210);
    const std::vector<DrawRecord> out = f.Run({Line(0, 0, 10, 0, -1), hit, Line(10, 0, 10, 10, -1)});
    ASSERT_EQ(out.size(), 4u);
    // The first piece is written again at its own number, trimmed to the meeting.
    ExpectEnds(out[1], 0, 3.175, 6.825, 3.175);
    EXPECT_EQ(Bytes(out[2]), Bytes(hit));
    ExpectEnds(out[3], 6.825, 3.175, 6.825, 10);
}

TEST(KerfDrawing, ACollapsedInsideArcGivesMinusOneWithTheTargetStillWritten) {
    KerfFixture f;
    const std::vector<DrawRecord> out =
        f.Run({Arc(0, 0, 2, 0, 90, 1), Line(0, 2, -10, 2, 0), Line(-10, 2, -10, 20, 0)}, -1);
    ASSERT_EQ(out.size(), 4u);
    EXPECT_EQ(out[0].RecordCount, 4);
    EXPECT_EQ(out[1].EntityCode, 130);
    EXPECT_EQ(out[1].Value[1], 2.0f);
    EXPECT_EQ(out[3].EntityCode, 120);
}

TEST(KerfDrawing, ARecordCountBeyondTheRecordsOnDiskEndsAtTheLastOfThem) {
    KerfFixture f;
    {
        DrawingFile file;
        MakeWorkingFile(file, f.Drawing);
        WriteRecord(file, 1, Header(500));
        WriteRecord(file, 2, Line(0, 0, 10, 0, -1));
        WriteRecord(file, 3, Line(10, 0, 10, 10, -1));
    }
    EXPECT_EQ(KerfDrawing(f.State, f.Drawing), 0);
    const std::vector<DrawRecord> out = ReadDrawingFile(f.Kerf);
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0].RecordCount, 3);
    ExpectEnds(out[2], 6.825, 3.175, 6.825, 10);
}

TEST(KerfDrawing, ADrawingOfRecordOneAloneGivesRecordOneAlone) {
    KerfFixture f;
    const std::vector<DrawRecord> out = f.Run({});
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(out[0].RecordCount, 1);
}

TEST(KerfDrawing, BothSearchesWriteTheSameFile) {
    KerfFixture f;
    WriteDrawingFile(f.Drawing, {Line(0, 0, 10, 0, -1), Arc(10, 10, 10, 270, 90, -1), Arc(30, 10, 10, 180, -90, -1),
                                 Line(30, 0, 40, 0, -1), Arc(40, 10, 10, 270, 180, 1)});
    KerfDrawing(f.State, f.Drawing, MeetingSearch::EveryPair);
    const std::string every = ReadAllBytes(f.Kerf);
    KerfDrawing(f.State, f.Drawing, MeetingSearch::BoxedRuns);
    EXPECT_EQ(ReadAllBytes(f.Kerf), every);
}

// A staircase of 700 steps cut on its left: every inside corner is trimmed where the offsets
// cross and every outside one where they meet extended, so each piece is its drawn line moved by
// (-3.175, 3.175), the first start and the last end aside. The target is written in batches, and
// pieces trimmed after their batch went out are put back in place all the same.
TEST(KerfDrawing, ALongPathIsTrimmedAtEveryCornerAcrossTheBatchesOfTheTarget) {
    KerfFixture f;
    std::vector<DrawRecord> entities;
    double x = 0;
    double y = 0;
    for (int i = 0; i < 700; ++i) {
        const double nx = i % 2 == 0 ? x + 10 : x;
        const double ny = i % 2 == 0 ? y : y + 10;
        entities.push_back(Line(x, y, nx, ny, -1));
        x = nx;
        y = ny;
    }
    const std::vector<DrawRecord> out = f.Run(entities);
    ASSERT_EQ(out.size(), 701u);
    EXPECT_EQ(out[0].RecordCount, 701);
    for (size_t i = 0; i < entities.size(); ++i) {
        const DrawRecord& drawn = entities[i];
        const double x1 = i == 0 ? drawn.Point[1].X : drawn.Point[1].X - 3.175;
        const double y1 = i == 0 ? drawn.Point[1].Y + 3.175 : drawn.Point[1].Y + 3.175;
        const double x2 = i + 1 == entities.size() ? drawn.Point[3].X - 3.175 : drawn.Point[3].X - 3.175;
        const double y2 = i + 1 == entities.size() ? drawn.Point[3].Y : drawn.Point[3].Y + 3.175;
        SCOPED_TRACE(i);
        ExpectEnds(out[i + 1], x1, y1, x2, y2, 1e-3);
    }
}
