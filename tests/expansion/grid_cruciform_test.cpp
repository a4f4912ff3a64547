// The two passes that finish a drawing in place: the cruciform pass (the quarter arcs of a
// radius punch become hits, the working count it holds while it walks) and the grid pass (grids
// of exchanged axes take the plain form).
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/numeric.h"
#include "expansion/pass_support.h"
#include "expansion/passes.h"

using namespace tvx;
using namespace tvx::passtest;

TEST(CruciformPass, TheWorkingCountIsZeroWhenTheWalkIsOver) {
    PassFixture f;
    DrawRecord arc = Entity(130);
    arc.Side = 1;
    arc.Value[1] = 4;
    arc.Value[11] = -90;
    arc.ToolA = Tool("M");
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), arc});
    f.State.Job.WorkingCount = 9;
    CruciformPass(f.State, drawing);
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
    EXPECT_EQ(ReadDrawing(drawing).at(1).EntityCode, 210);
}

namespace {

// A quarter arc of a radius punch: sweep `sweep`, on side `side`, with a tool of the letter.
DrawRecord QuarterArc(float sweep, int16_t side, const char* letter = "M") {
    DrawRecord arc = Entity(130);
    arc.Side = side;
    arc.Value[1] = 4;
    arc.Value[11] = sweep;
    arc.Point[5] = SinglePoint{3, 7};
    arc.ToolA = Tool(letter);
    return arc;
}

// The record that the cruciform pass leaves of one record behind a header.
DrawRecord Cruciformed(PassFixture& f, const DrawRecord& record) {
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), record});
    CruciformPass(f.State, drawing);
    return ReadDrawing(drawing).at(1);
}

}  // namespace

TEST(CruciformPass, AQuarterArcEitherWayOnSide1BecomesOneHitAtItsPoint5) {
    for (float sweep : {90.0f, -90.0f}) {
        PassFixture f;
        const DrawRecord hit = Cruciformed(f, QuarterArc(sweep, 1));
        EXPECT_EQ(hit.EntityCode, 210) << sweep;
        EXPECT_EQ(hit.EntityName.Trimmed(), "Punch");
        EXPECT_EQ(hit.Point[4].X, 3.0f);
        EXPECT_EQ(hit.Point[4].Y, 7.0f);
        EXPECT_EQ(hit.ToolA.Letter.Text(), "M");
        EXPECT_EQ(hit.Value[11], 0.0f);  // nothing else of the arc is kept
    }
}

TEST(CruciformPass, AnArcOnAnotherSideOrOfAnotherToolOrSweepIsLeftAsItIs) {
    for (const DrawRecord& arc : {QuarterArc(90, -1), QuarterArc(90, 0), QuarterArc(90, 1, "B"),
                                  QuarterArc(180, 1), QuarterArc(45, 1)}) {
        PassFixture f;
        EXPECT_EQ(Bytes(Cruciformed(f, arc)), Bytes(arc));
    }
}

// The sweep is compared as the single it is stored as: the single next below 90 is no quarter.
TEST(CruciformPass, ASweepJustBelowNinetyAsASingleIsNoQuarterArc) {
    PassFixture f;
    const float below = std::nextafter(90.0f, 0.0f);
    EXPECT_EQ(Cruciformed(f, QuarterArc(below, 1)).EntityCode, 130);
    PassFixture g;
    EXPECT_EQ(Cruciformed(g, QuarterArc(ToSingle(89.9999999), 1)).EntityCode, 210);
}

// Only code 130 is a radius arc: an arc pattern of the same sweep stays.
TEST(CruciformPass, OnlyAnArcProfileCounts) {
    PassFixture f;
    DrawRecord pattern = QuarterArc(90, 1);
    pattern.EntityCode = 230;
    EXPECT_EQ(Bytes(Cruciformed(f, pattern)), Bytes(pattern));
}

// The walk starts at record 1: a header that is itself a radius arc is replaced like any record.
TEST(CruciformPass, RecordOneIsWalkedToo) {
    PassFixture f;
    DrawRecord header = QuarterArc(90, 1);
    header.RecordCount = 1;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {header});
    CruciformPass(f.State, drawing);
    EXPECT_EQ(ReadDrawing(drawing).at(0).EntityCode, 210);
}

TEST(CruciformPass, TheWalkEndsAtRecordCount) {
    PassFixture f;
    const DrawRecord arc = QuarterArc(90, 1);
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), arc, arc});
    CruciformPass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 3u);
    EXPECT_EQ(after[1].EntityCode, 210);
    EXPECT_EQ(Bytes(after[2]), Bytes(arc));
}

namespace {

// A grid of 4 hits at pitch 2 in rows 3 apart, 5 rows, at 30 degrees, with the flag given.
DrawRecord Grid(int16_t exchanged, int16_t present = -1) {
    DrawRecord grid = Entity(225);
    grid.Value[2] = 2;
    grid.Value[4] = 3;
    grid.Value[10] = 30;
    grid.Count[1] = 4;
    grid.Count[2] = 5;
    grid.Count[3] = exchanged;
    grid.ToolA = Tool("A");
    grid.ToolA.Present = present;
    return grid;
}

DrawRecord Gridded(PassFixture& f, const DrawRecord& record) {
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), record});
    GridPass(f.State, drawing);
    return ReadDrawing(drawing).at(1);
}

}  // namespace

// Pitches and counts exchanged, the direction 90 less it, the new first pitch negated, the flag
// cleared; the record is not bound again.
TEST(GridPass, AGridOfExchangedAxesTakesThePlainForm) {
    PassFixture f;
    DrawRecord grid = Grid(-1);
    grid.Point[1] = SinglePoint{123, 456};  // a derived point that a binding would rewrite
    const DrawRecord plain = Gridded(f, grid);
    EXPECT_EQ(plain.Value[2], -3.0f);
    EXPECT_EQ(plain.Value[4], 2.0f);
    EXPECT_EQ(plain.Value[10], 60.0f);
    EXPECT_EQ(plain.Count[1], 5);
    EXPECT_EQ(plain.Count[2], 4);
    EXPECT_EQ(plain.Count[3], 0);
    EXPECT_EQ(plain.Point[1].X, 123.0f);
    EXPECT_EQ(plain.Point[1].Y, 456.0f);
}

TEST(GridPass, TheDirectionIsNormalised) {
    PassFixture f;
    DrawRecord grid = Grid(-1);
    grid.Value[10] = 120;
    EXPECT_EQ(Gridded(f, grid).Value[10], 330.0f);
}

TEST(GridPass, AGridWithCount3ZeroIsUnchanged) {
    PassFixture f;
    const DrawRecord grid = Grid(0);
    EXPECT_EQ(Bytes(Gridded(f, grid)), Bytes(grid));
}

// The tool's Present and Count[3] are ANDed as 16-bit integers: their common bits count.
TEST(GridPass, PresentAndCount3AreAndedBitByBit) {
    PassFixture f;
    EXPECT_EQ(Gridded(f, Grid(2, 1)).Count[3], 2);  // 1 and 2 have no bit in common
    PassFixture g;
    EXPECT_EQ(Gridded(g, Grid(3, 1)).Count[3], 0);
    PassFixture h;
    EXPECT_EQ(Gridded(h, Grid(-1, 0)).Count[3], -1);  // no tool
}

TEST(GridPass, OnlyAGridPatternIsUnswapped) {
    PassFixture f;
    DrawRecord row = Grid(-1);
    row.EntityCode = 220;
    EXPECT_EQ(Bytes(Gridded(f, row)), Bytes(row));
}

// Record 1 is not walked, and the grid pass leaves the working count alone.
TEST(GridPass, TheWalkStartsAtRecord2AndLeavesTheWorkingCount) {
    PassFixture f;
    DrawRecord header = Grid(-1);
    header.RecordCount = 1;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {header});
    f.State.Job.WorkingCount = 7;
    GridPass(f.State, drawing);
    EXPECT_EQ(Bytes(ReadDrawing(drawing).at(0)), Bytes(header));
    EXPECT_EQ(f.State.Job.WorkingCount, 7);
}

TEST(UnswapGrid, ARecordInHandOfThePlainFormIsLeftAsItIs) {
    DrawRecord grid = Grid(0);
    const DrawRecord before = grid;
    UnswapGrid(grid);
    EXPECT_EQ(Bytes(grid), Bytes(before));
    grid = Grid(-1);
    UnswapGrid(grid);
    EXPECT_EQ(grid.Count[3], 0);
    EXPECT_EQ(grid.Value[2], -3.0f);
}

// A damaged RecordCount far beyond the file: the records behind its end are zeros and no grids,
// so the walk ends at the last record on disk and the file stays as it was.
TEST(GridPass, ACountBeyondTheFileEndsAtItsLastRecord) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    DrawRecord header = Header(2);
    header.RecordCount = 2000000000;
    WriteDrawing(drawing, {header, Grid(-1)});
    GridPass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[1].Count[3], 0);
}

// Over a long drawing only the records that change are touched: the quarter arcs and the
// exchanged grids wherever they stand, every other record left as its bytes were.
TEST(CruciformPass, ALongDrawingChangesOnlyItsQuarterArcs) {
    PassFixture f;
    std::vector<DrawRecord> records{Header(700)};
    for (int n = 2; n <= 700; ++n) {
        DrawRecord hit = Entity(210);
        hit.Point[4] = SinglePoint{static_cast<float>(n), 0};
        hit.ToolA = Tool(n % 2 == 0 ? "M" : "A");
        records.push_back(hit);
    }
    const std::vector<int> arcs{2, 256, 257, 512, 513, 700};
    for (int n : arcs) records[static_cast<size_t>(n - 1)] = QuarterArc(90, 1);
    records[99] = QuarterArc(90, -1);
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, records);
    CruciformPass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), records.size());
    for (size_t i = 0; i < records.size(); ++i) {
        const bool arc = std::find(arcs.begin(), arcs.end(), static_cast<int>(i + 1)) != arcs.end();
        if (arc) EXPECT_EQ(after[i].EntityCode, 210) << i + 1;
        else EXPECT_EQ(Bytes(after[i]), Bytes(records[i])) << i + 1;
    }
}

TEST(GridPass, ALongDrawingChangesOnlyItsExchangedGrids) {
    PassFixture f;
    std::vector<DrawRecord> records{Header(600)};
    for (int n = 2; n <= 600; ++n) records.push_back(Grid(n % 3 == 0 ? 0 : 1, n % 5 == 0 ? 0 : -1));
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, records);
    GridPass(f.State, drawing);
    const std::vector<DrawRecord> after = ReadDrawing(drawing);
    ASSERT_EQ(after.size(), records.size());
    int unswapped = 0;
    for (size_t i = 1; i < records.size(); ++i) {
        DrawRecord expected = records[i];
        UnswapGrid(expected);
        EXPECT_EQ(Bytes(after[i]), Bytes(expected)) << i + 1;
        if (Bytes(after[i]) != Bytes(records[i])) ++unswapped;
    }
    // The grids of numbers that are no multiple of 3 (exchanged) nor of 5 (with a tool).
    EXPECT_EQ(unswapped, 319);
}

TEST(CruciformCensus, AToolingWalkThatLeavesTheDrawingTellsOfItsRadiusArcs) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(3), Entity(120), QuarterArc(90, 1)});
    CruciformCensus census;
    AssociativeToolingPass(f.State, drawing, census);
    EXPECT_TRUE(census.Taken);
    EXPECT_TRUE(census.Candidates);
    CruciformPass(f.State, drawing, census);
    EXPECT_EQ(ReadDrawing(drawing).at(2).EntityCode, 210);
}

// An arc of another tool is no candidate: only an "M" tool's arc is looked at.
TEST(CruciformCensus, AnArcOfAnotherToolIsNoCandidate) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), QuarterArc(90, 1, "B")});
    CruciformCensus census;
    AssociativeToolingPass(f.State, drawing, census);
    EXPECT_TRUE(census.Taken);
    EXPECT_FALSE(census.Candidates);
}

// A census of no candidates spares the walk: a radius arc written behind the census's back is
// left as it is, which the walk would have punched.
TEST(CruciformCensus, ACensusOfNoCandidatesSparesTheWalk) {
    PassFixture f;
    const std::string drawing = f.Path("Progmain.drw");
    WriteDrawing(drawing, {Header(2), Entity(120)});
    CruciformCensus census;
    AssociativeToolingPass(f.State, drawing, census);
    ASSERT_TRUE(census.Taken);
    ASSERT_FALSE(census.Candidates);
    WriteDrawing(drawing, {Header(2), QuarterArc(90, 1)});
    f.State.Job.WorkingCount = 9;
    CruciformPass(f.State, drawing, census);
    EXPECT_EQ(f.State.Job.WorkingCount, 0);
    EXPECT_EQ(ReadDrawing(drawing).at(1).EntityCode, 130);
    CruciformPass(f.State, drawing);
    EXPECT_EQ(ReadDrawing(drawing).at(1).EntityCode, 210);
}

// With the census or without it, the tooling walk and the cruciform pass leave the same bytes.
RC_GTEST_PROP(CruciformCensus, TheSparedWalkLeavesWhatTheWalkLeaves, ()) {
    std::vector<DrawRecord> records;
    const int count = *rc::gen::inRange(0, 6);
    for (int i = 0; i < count; ++i) {
        switch (*rc::gen::inRange(0, 5)) {
            case 0: records.push_back(QuarterArc(90, 1)); break;
            case 1: records.push_back(QuarterArc(45, 1)); break;
            case 2: records.push_back(QuarterArc(90, 1, "B")); break;
            case 3: records.push_back(Entity(120)); break;
            default: records.push_back(Entity(210)); break;
        }
    }
    const int32_t stated = *rc::gen::inRange(0, count + 3);
    records.insert(records.begin(), Header(stated));
    const size_t cut = *rc::gen::inRange<size_t>(0, 300);
    std::vector<std::string> results;
    for (bool withCensus : {false, true}) {
        PassFixture f;
        const std::string drawing = f.Path("Progmain.drw");
        WriteDrawing(drawing, records);
        // A partial last record, as a damaged drawing may end.
        std::string bytes = ReadAllBytes(drawing);
        bytes.resize(bytes.size() - std::min(cut, bytes.size() - RecordLength));
        WriteFileAtomically(drawing, bytes);
        if (withCensus) {
            CruciformCensus census;
            AssociativeToolingPass(f.State, drawing, census);
            CruciformPass(f.State, drawing, census);
        } else {
            AssociativeToolingPass(f.State, drawing);
            CruciformPass(f.State, drawing);
        }
        RC_ASSERT(f.State.Job.WorkingCount == 0);
        results.push_back(ReadAllBytes(drawing));
    }
    RC_ASSERT(results[0] == results[1]);
}
