// Multipart sheets: the flattening of a multipart drawing into moved copies of its parts, the
// preparation of a part drawing, the orders of the copies, and the part drawing of a subprogram.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "common/fault.h"
#include "common/numeric.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "definition/definition_files.h"
#include "expansion/pass_support.h"
#include "expansion/passes.h"

using namespace tvx;
using namespace tvx::passtest;

namespace {

// A run with a parts directory (projects/MP/) and a definition that answers
// MULTIPART_ANGLE_SUPPORT as asked, or does not hold the word.
enum class AngleWord { False, True, Missing };

struct MultipartFixture : PassFixture {
    explicit MultipartFixture(bool angleSupport = false)
        : MultipartFixture(angleSupport ? AngleWord::True : AngleWord::False) {}
    explicit MultipartFixture(AngleWord word) {
        State.Config.ProjectDir = Dir.Path + "/projects/";
        State.Machine.MachineDirName = "MP";
        MakeDirectory(Path("projects/MP"));
        WriteAllLines(Path("M.pst"), {word == AngleWord::Missing ? std::string("PROGRAM_START=TRUE")
                                      : std::string("MULTIPART_ANGLE_SUPPORT=") +
                                            (word == AngleWord::True ? "TRUE" : "FALSE"),
                                      "******"});
        WriteAllLines(Path("M.wrd"), {"X_AXIS [M10] [FORMAT=D3] [CONV=X]", "END_OF_WORDS [P0] [CONV=*]"});
        WriteAllLines(Path("M.lyt"), {"TOOL_LAYOUT=TRUE", "******"});
        State.Machine.MachineStem = Path("M.");
        SetDefinitionFiles(State);
    }
    std::string Sheet() const { return Path("Progmain.drw"); }
    std::string PartFile(const std::string& name) const { return Path("projects/MP/" + name + ".drw"); }
    // Writes a part drawing: a header and the records given.
    void Part(const std::string& name, const std::vector<DrawRecord>& records, int16_t carry = 0) const {
        std::vector<DrawRecord> all{Header(static_cast<int32_t>(records.size()) + 1)};
        all[0].CarryWord1 = carry;
        all.insert(all.end(), records.begin(), records.end());
        WriteDrawing(PartFile(name), all);
    }
    // Writes the sheet: a multipart header and the records given; flattens it; gives every
    // record up to the new RecordCount.
    std::vector<DrawRecord> Explode(const std::vector<DrawRecord>& records) {
        std::vector<DrawRecord> all{Header(static_cast<int32_t>(records.size()) + 1)};
        all[0].CarryWord1 = 500;
        all.insert(all.end(), records.begin(), records.end());
        WriteDrawing(Sheet(), all);
        MultipartExplode(State, Sheet());
        std::vector<DrawRecord> result = ReadDrawing(Sheet());
        result.resize(static_cast<size_t>(result.at(0).RecordCount));
        return result;
    }
};

DrawRecord Layout(const std::string& part, bool alternate = false, float angle = 0) {
    DrawRecord r = Entity(500);
    r.EntityText = part;
    r.Count[5] = alternate ? 1 : 0;
    r.Value[10] = angle;
    return r;
}

DrawRecord Copies(float x, float y, float pitchX, float pitchY, int16_t columns, int16_t rows, float angle = 0,
                  int16_t order = 0) {
    DrawRecord r = Entity(510);
    r.EntityText = "PART";
    r.Point[1] = SinglePoint{x, y};
    r.Value[1] = pitchX;
    r.Value[2] = pitchY;
    r.Count[1] = columns;
    r.Count[2] = rows;
    r.Value[10] = angle;
    r.Count[6] = order;
    return r;
}

DrawRecord Line(float x1, float y1, float x2, float y2, float direction, int16_t code = 120) {
    DrawRecord r = Entity(code);
    r.Point[1] = SinglePoint{x1, y1};
    r.Point[3] = SinglePoint{x2, y2};
    r.Value[1] = ToSingle(std::hypot(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1));
    r.Value[10] = direction;
    return r;
}

DrawRecord Arc(float cx, float cy, float radius, float start, float sweep, int16_t side) {
    DrawRecord r = Entity(130);
    r.Point[4] = SinglePoint{cx, cy};
    r.Value[1] = radius;
    r.Value[10] = start;
    r.Value[11] = sweep;
    r.Side = side;
    return r;
}

DrawRecord HitAt(float x, float y) {
    DrawRecord r = Entity(210);
    r.Point[4] = SinglePoint{x, y};
    r.ToolA = Tool("A");
    return r;
}

std::vector<int16_t> Codes(const std::vector<DrawRecord>& records) {
    std::vector<int16_t> codes;
    for (size_t i = 1; i < records.size(); ++i) codes.push_back(records[i].EntityCode);
    return codes;
}

// The column and row of each copy of a layout, in the order of the walk.
std::vector<std::pair<int32_t, int32_t>> Walk(int16_t order, int32_t columns, int32_t rows) {
    std::vector<std::pair<int32_t, int32_t>> places;
    for (int64_t k = 1; k <= static_cast<int64_t>(columns) * rows; ++k) {
        const CopyPlace p = MultipartCopyPlace(order, columns, rows, k);
        places.emplace_back(p.Column, p.Row);
    }
    return places;
}

}  // namespace

// ---- What is flattened and what is left ------------------------------------------------------

TEST(MultipartExplode, ADrawingOfCarryWord499IsLeftAloneWhateverItHolds) {
    MultipartFixture f;
    f.Part("PART", {HitAt(1, 1)});
    DrawRecord header = Header(5);
    header.CarryWord1 = 499;
    WriteDrawing(f.Sheet(), {header, Layout("PART"), Copies(0, 0, 10, 10, 2, 2), Entity(521), Entity(2000)});
    const std::string before = ReadAllBytes(f.Sheet());
    MultipartExplode(f.State, f.Sheet());
    EXPECT_EQ(ReadAllBytes(f.Sheet()), before);
    EXPECT_FALSE(FileExists(f.Path("Explode.tmp")));
    EXPECT_FALSE(FileExists(f.Path("Progpart.drw")));
}

TEST(MultipartExplode, PartRecordsBecomeCopiesAndTheLayoutRecordsGo) {
    MultipartFixture f;
    f.Part("PART", {HitAt(1, 2), Line(0, 0, 5, 0, 0)});
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 100, 50, 2, 3)});
    // Six copies of two records, behind record 1.
    EXPECT_EQ(result.at(0).RecordCount, 13);
    EXPECT_EQ(result.at(0).CarryWord1, 500);
    for (size_t i = 1; i < result.size(); ++i) EXPECT_EQ(result[i].EntityCode, i % 2 == 1 ? 210 : 120) << i;
    EXPECT_FALSE(FileExists(f.Path("Explode.tmp")));
}

TEST(MultipartExplode, ACopyIsThePartMovedToItsColumnAndRowRoundedToFourDecimals) {
    MultipartFixture f;
    f.Part("PART", {Line(1.23456f, 2, 5, 2.00004f, 0)});
    const auto result = f.Explode({Layout("PART"), Copies(10, 20, 100, 50, 2, 2)});
    ASSERT_EQ(result.size(), 5u);
    // Column outer, row inner: (1,1), (1,2), (2,1), (2,2).
    const double dx[] = {10, 10, 110, 110};
    const double dy[] = {20, 70, 20, 70};
    for (int k = 0; k < 4; ++k) {
        const DrawRecord& r = result[static_cast<size_t>(k + 1)];
        EXPECT_EQ(r.Point[1].X, ToSingle(RoundTo(static_cast<double>(1.23456f) + dx[k], 4))) << k;
        EXPECT_EQ(r.Point[1].Y, ToSingle(2 + dy[k])) << k;
        EXPECT_EQ(r.Point[3].X, ToSingle(5 + dx[k])) << k;
        EXPECT_EQ(r.Point[3].Y, ToSingle(RoundTo(static_cast<double>(2.00004f) + dy[k], 4))) << k;
    }
    EXPECT_EQ(result[1].Point[1].X, ToSingle(11.2346));
    EXPECT_EQ(result[1].Point[3].Y, ToSingle(22.0));
}

TEST(MultipartExplode, ALayoutOfOneByOneHasPitchesZeroAndGivesOneCopy) {
    MultipartFixture f;
    f.Part("PART", {HitAt(3, 4)});
    const auto result = f.Explode({Layout("PART"), Copies(7, 8, 500, 600, 1, 1)});
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[1].Point[4].X, 10.0f);
    EXPECT_EQ(result[1].Point[4].Y, 12.0f);
}

TEST(MultipartExplode, APitchOfACountOfOneIsZeroOnItsOwnAxis) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    // One column of three rows: the column pitch 500 is not used, the row pitch is.
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 500, 30, 1, 3)});
    ASSERT_EQ(result.size(), 4u);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(result[static_cast<size_t>(k + 1)].Point[4].X, 0.0f);
        EXPECT_EQ(result[static_cast<size_t>(k + 1)].Point[4].Y, 30.0f * static_cast<float>(k));
    }
}

TEST(MultipartExplode, NoCopiesForACountOfZeroOrBelow) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    EXPECT_EQ(f.Explode({Layout("PART"), Copies(0, 0, 10, 10, 0, 3)}).size(), 1u);
    EXPECT_EQ(f.Explode({Layout("PART"), Copies(0, 0, 10, 10, 3, -2)}).size(), 1u);
}

TEST(MultipartExplode, CopiesWalkAlongTheAngleOfTheParts) {
    MultipartFixture f(true);  // the control turns parts itself: the part stays as drawn
    f.Part("PART", {HitAt(1, 0)});
    const auto result = f.Explode({Layout("PART", false, 90), Copies(0, 0, 100, 50, 2, 2, 90)});
    ASSERT_EQ(result.size(), 5u);
    // Columns along 90 degrees, rows along 180; pi's eight decimals leave a trace that the
    // rounding to 4 decimals takes away.
    const float x[] = {1, -49, 1, -49};
    const float y[] = {0, 0, 100, 100};
    for (int k = 0; k < 4; ++k) {
        EXPECT_EQ(result[static_cast<size_t>(k + 1)].Point[4].X, x[k]) << k;
        EXPECT_EQ(result[static_cast<size_t>(k + 1)].Point[4].Y, y[k]) << k;
    }
}

TEST(MultipartExplode, CutLinesBecomeProfileLinesWithoutTextOrSpareWord) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    DrawRecord cut1 = Line(0, 50, 200, 50, 0, 521);
    cut1.EntityText = "CUT";
    cut1.SpareWord = 7;
    cut1.ToolA = Tool("A");
    DrawRecord cut2 = Line(100, 0, 100, 200, 90, 522);
    cut2.EntityText = "CUT 2";
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 10, 10, 1, 1), cut1, cut2});
    ASSERT_EQ(result.size(), 4u);
    for (size_t i : {2u, 3u}) {
        EXPECT_EQ(result[i].EntityCode, 120);
        EXPECT_EQ(result[i].EntityText.Trimmed(), "");
        EXPECT_EQ(result[i].SpareWord, 0);
    }
    // Everything else of the cut line stays as it was.
    DrawRecord expected = cut1;
    expected.EntityCode = 120;
    expected.EntityText = "";
    expected.SpareWord = 0;
    EXPECT_EQ(Bytes(result[2]), Bytes(expected));
}

TEST(MultipartExplode, OtherCodesAboveOneAndUpTo1000PassUnchangedAndTheRestIsDropped) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    DrawRecord kept = HitAt(5, 5);
    kept.CarryWord2 = 9;
    const auto result = f.Explode({Entity(1), kept, Entity(2), Entity(0), Entity(1000), Entity(1001), Entity(-5),
                                   Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    EXPECT_EQ(Codes(result), (std::vector<int16_t>{210, 2, 1000, 210}));
    EXPECT_EQ(Bytes(result[1]), Bytes(kept));
}

TEST(MultipartExplode, TheRecordsOfTheDrawingKeepTheirPlaceAroundTheCopies) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    const auto result = f.Explode({Entity(311), Layout("PART"), Copies(0, 0, 10, 0, 2, 1), Entity(321)});
    EXPECT_EQ(Codes(result), (std::vector<int16_t>{311, 210, 210, 321}));
}

// ---- The part's files ------------------------------------------------------------------------

TEST(MultipartExplode, ThePartsSiblingFilesComeToProgpartAndOldOnesGo) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    WriteFileAtomically(f.Path("projects/MP/PART.nts"), "notes");
    WriteFileAtomically(f.Path("projects/MP/PART.stp"), "steps");
    WriteFileAtomically(f.Path("projects/MP/PART.xyz"), "not a part file");
    WriteFileAtomically(f.Path("Progpart.prg"), "an older part's program");
    WriteFileAtomically(f.Path("Progpart.old"), "anything");
    f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    EXPECT_EQ(ReadAllBytes(f.Path("Progpart.nts")), "notes");
    EXPECT_EQ(ReadAllBytes(f.Path("Progpart.stp")), "steps");
    EXPECT_TRUE(FileExists(f.Path("Progpart.drw")));
    EXPECT_FALSE(FileExists(f.Path("Progpart.xyz")));
    EXPECT_FALSE(FileExists(f.Path("Progpart.prg")));
    EXPECT_FALSE(FileExists(f.Path("Progpart.old")));
}

TEST(MultipartExplode, APartTextWithABackslashIsAPathOfItsOwn) {
    MultipartFixture f;
    MakeDirectory(f.Path("elsewhere"));
    WriteDrawing(f.Path("elsewhere/OTHER.drw"), {Header(2), HitAt(4, 4)});
    std::string text = f.Path("elsewhere/OTHER");
    for (char& c : text)
        if (c == '/') c = '\\';
    const auto result = f.Explode({Layout(text), Copies(0, 0, 1, 1, 1, 1)});
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[1].Point[4].X, 4.0f);
}

TEST(MultipartExplode, ThePartsTextIsTrimmed) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    EXPECT_EQ(f.Explode({Layout("  PART  "), Copies(0, 0, 1, 1, 1, 1)}).size(), 2u);
}

// ---- A missing part --------------------------------------------------------------------------

TEST(MultipartExplode, APartRecordAfterAMissingPartsLayoutAddsNothing) {
    MultipartFixture f;
    testing::internal::CaptureStderr();
    const auto result = f.Explode({HitAt(9, 9), Layout("GONE"), Copies(0, 0, 10, 10, 2, 2), Entity(321)});
    const std::string shown = testing::internal::GetCapturedStderr();
    EXPECT_EQ(Codes(result), (std::vector<int16_t>{210, 321}));
    EXPECT_EQ(shown, "Torvanex\nSingle Part Missing or Moved!\nRedo Multipart\n");
}

TEST(MultipartExplode, AMissingPartIsReportedOnceAtTheEndAndTheRunGoesOn) {
    MultipartFixture f;
    testing::internal::CaptureStderr();
    std::vector<DrawRecord> result;
    EXPECT_NO_THROW(result = f.Explode({Layout("GONE"), Copies(0, 0, 1, 1, 1, 1), Layout("GONE TOO"),
                                        Copies(0, 0, 1, 1, 1, 1), HitAt(1, 1)}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Torvanex\nSingle Part Missing or Moved!\nRedo Multipart\n");
    EXPECT_EQ(Codes(result), (std::vector<int16_t>{210}));
    EXPECT_FALSE(FileExists(f.Path("Explode.tmp")));
}

TEST(MultipartExplode, PartsAfterAMissingPartAreNotCopiedEither) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    testing::internal::CaptureStderr();
    const auto result =
        f.Explode({Layout("GONE"), Copies(0, 0, 1, 1, 1, 1), Layout("PART"), Copies(0, 0, 1, 1, 2, 2)});
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(result.size(), 1u);
}

TEST(MultipartExplode, NoMessageWhenEveryPartIsThere) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    testing::internal::CaptureStderr();
    f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// ---- Turned parts ------------------------------------------------------------------------------

TEST(MultipartExplode, APartIsTurnedWhenTheControlCannotTurnParts) {
    MultipartFixture f(false);
    f.Part("PART", {HitAt(10, 0)});
    const auto result = f.Explode({Layout("PART", false, 90), Copies(0, 0, 1, 1, 1, 1, 90)});
    ASSERT_EQ(result.size(), 2u);
    EXPECT_NEAR(result[1].Point[4].X, 0.0, 1e-4);
    EXPECT_NEAR(result[1].Point[4].Y, 10.0, 1e-6);
}

TEST(MultipartExplode, APartIsNotTurnedWhenTheControlTurnsParts) {
    MultipartFixture f(true);
    f.Part("PART", {HitAt(10, 0)});
    const auto result = f.Explode({Layout("PART", false, 90), Copies(0, 0, 1, 1, 1, 1, 90)});
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[1].Point[4].X, 10.0f);
    EXPECT_EQ(result[1].Point[4].Y, 0.0f);
}

TEST(MultipartExplode, APartAtAngleZeroNeverAsksTheDefinition) {
    MultipartFixture f(AngleWord::Missing);
    f.Part("PART", {HitAt(10, 0)});
    EXPECT_NO_THROW(f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)}));
}

TEST(MultipartExplode, ATurnedPartNeedsTheWordMultipartAngleSupport) {
    MultipartFixture f(AngleWord::Missing);
    f.Part("PART", {HitAt(10, 0)});
    try {
        f.Explode({Layout("PART", false, 30), Copies(0, 0, 1, 1, 1, 1, 30)});
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_NE(e.Text.find("MULTIPART_ANGLE_SUPPORT"), std::string::npos);
    }
}

TEST(MultipartExplode, ANonRotaryToolOfFourfoldSymmetryLosesItsToolAt45Degrees) {
    MultipartFixture f(false);
    DrawRecord worked = Line(0, 0, 20, 0, 0);
    worked.ToolA = Tool("B", 10);
    f.Part("PART", {worked});
    const auto at45 = f.Explode({Layout("PART", false, 45), Copies(0, 0, 1, 1, 1, 1, 45)});
    ASSERT_EQ(at45.size(), 2u);
    EXPECT_EQ(at45[1].ToolA.Present, 0);
    EXPECT_EQ(at45[1].EntityCode, 120);  // still the line, now plain geometry
    const auto at90 = f.Explode({Layout("PART", false, 90), Copies(0, 0, 1, 1, 1, 1, 90)});
    ASSERT_EQ(at90.size(), 2u);
    EXPECT_NE(at90[1].ToolA.Present, 0);
}

// ---- Alternating copies ----------------------------------------------------------------------

TEST(MultipartExplode, EverySecondCopyOfAnAlternatingLayoutIsWalkedBackwards) {
    MultipartFixture f;
    f.Part("PART", {HitAt(1, 0), HitAt(2, 0), HitAt(3, 0)});
    const auto result = f.Explode({Layout("PART", true), Copies(0, 0, 0, 10, 1, 3)});
    ASSERT_EQ(result.size(), 10u);
    const float x[] = {1, 2, 3, 3, 2, 1, 1, 2, 3};
    const float y[] = {0, 0, 0, 10, 10, 10, 20, 20, 20};
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(result[i + 1].Point[4].X, x[i]) << i;
        EXPECT_EQ(result[i + 1].Point[4].Y, y[i]) << i;
    }
}

TEST(MultipartExplode, AProfileLineOfAReversedCopyRunsTheOtherWay) {
    MultipartFixture f;
    f.Part("PART", {Line(0, 0, 10, 0, 0)});
    const auto result = f.Explode({Layout("PART", true), Copies(0, 0, 100, 0, 2, 1)});
    ASSERT_EQ(result.size(), 3u);
    EXPECT_EQ(result[1].Point[1].X, 0.0f);
    EXPECT_EQ(result[1].Value[10], 0.0f);
    EXPECT_EQ(result[2].Point[1].X, 110.0f);
    EXPECT_EQ(result[2].Point[3].X, 100.0f);
    EXPECT_EQ(result[2].Value[10], 180.0f);
}

TEST(MultipartExplode, AnArcOfAReversedCopyRunsTheOtherWayOnTheSameSide) {
    MultipartFixture f;
    f.Part("PART", {Arc(0, 0, 10, 0, 90, 1)});
    const auto result = f.Explode({Layout("PART", true), Copies(0, 0, 100, 0, 2, 1)});
    ASSERT_EQ(result.size(), 3u);
    EXPECT_EQ(result[2].Value[10], 90.0f);
    EXPECT_EQ(result[2].Value[11], -90.0f);
    EXPECT_EQ(result[2].Side, 1);
    EXPECT_EQ(result[2].Point[4].X, 100.0f);
    EXPECT_NEAR(result[2].Point[1].X, 100.0, 1e-4);
    EXPECT_NEAR(result[2].Point[1].Y, 10.0, 1e-4);
}

TEST(MultipartExplode, AWorkedRecordOfTheLetterZKeepsItsDirectionInAReversedCopy) {
    MultipartFixture f;
    DrawRecord pierce = Line(0, 0, 10, 0, 0);
    pierce.ToolA = Tool("Z", 10);
    DrawRecord profiled = Line(0, 5, 10, 5, 0);
    profiled.ToolA = Tool("Z", 5);  // a "Z" tool of profile work is reversed like any line
    f.Part("PART", {pierce, profiled});
    const auto result = f.Explode({Layout("PART", true), Copies(0, 0, 100, 0, 2, 1)});
    ASSERT_EQ(result.size(), 5u);
    // The reversed copy: the records from the last to the first.
    EXPECT_EQ(result[3].Point[1].Y, 5.0f);
    EXPECT_EQ(result[3].Value[10], 180.0f);
    EXPECT_EQ(result[4].Point[1].X, 100.0f);
    EXPECT_EQ(result[4].Value[10], 0.0f);
}

TEST(MultipartExplode, ARapidMoveOfAReversedCopyKeepsItsDirection) {
    MultipartFixture f;
    f.Part("PART", {Line(0, 0, 10, 0, 0, 110)});
    const auto result = f.Explode({Layout("PART", true), Copies(0, 0, 100, 0, 2, 1)});
    ASSERT_EQ(result.size(), 3u);
    EXPECT_EQ(result[2].Point[1].X, 100.0f);
    EXPECT_EQ(result[2].Value[10], 0.0f);
}

TEST(MultipartExplode, CopiesDoNotAlternateWithoutTheLayoutsSwitch) {
    MultipartFixture f;
    f.Part("PART", {Line(0, 0, 10, 0, 0)});
    const auto result = f.Explode({Layout("PART", false), Copies(0, 0, 100, 0, 2, 1)});
    ASSERT_EQ(result.size(), 3u);
    EXPECT_EQ(result[2].Value[10], 0.0f);
}

// ---- The part's turning convention -------------------------------------------------------------

TEST(MultipartExplode, ArcsOfAPartOfTheOtherTurningConventionAreMirroredInSense) {
    MultipartFixture f;
    f.State.Machine.TurnSense = 1;
    f.Part("PART", {Arc(0, 0, 10, 0, 90, 1), Line(0, 0, 1, 0, 0)});  // FollowFlag 0: the other convention
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    ASSERT_EQ(result.size(), 3u);
    EXPECT_EQ(result[1].Side, -1);
    EXPECT_EQ(result[2].Side, 0);
}

TEST(MultipartExplode, ArcsOfAPartOfTheMachinesConventionKeepTheirSense) {
    MultipartFixture f;
    f.State.Machine.TurnSense = 0;
    f.Part("PART", {Arc(0, 0, 10, 0, 90, 1)});
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    ASSERT_EQ(result.at(1).Side, 1);
}

TEST(MultipartExplode, AnOlderPartFileTellsItsTurningDirectionByTheSideOfRecordOne) {
    MultipartFixture f;
    f.State.Machine.TurnSense = 1;
    // CarryWord1 below 1000, FollowFlag 0, Side 1: the part turns like TurnSense 1.
    WriteDrawing(f.PartFile("PART"), {Header(2), Arc(0, 0, 10, 0, 90, 1)});
    {
        std::vector<DrawRecord> part = ReadDrawing(f.PartFile("PART"));
        part[0].Side = 1;
        WriteDrawing(f.PartFile("PART"), part);
    }
    EXPECT_EQ(f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)}).at(1).Side, 1);
    // The fix is made on the record held: the part file keeps its record 1.
    EXPECT_EQ(ReadDrawing(f.Path("Progpart.drw")).at(0).Side, 1);
}

TEST(MultipartExplode, ANewerPartFilesSideOfRecordOneTellsNothing) {
    MultipartFixture f;
    f.State.Machine.TurnSense = 1;
    std::vector<DrawRecord> part{Header(2), Arc(0, 0, 10, 0, 90, 1)};
    part[0].CarryWord1 = 1000;
    part[0].Side = 1;
    WriteDrawing(f.PartFile("PART"), part);
    EXPECT_EQ(f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 1, 1)}).at(1).Side, -1);
}

// ---- Limits ------------------------------------------------------------------------------------

TEST(MultipartExplode, CopiesBeyondTheRecordCountOfADrawingAreAFault) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0), HitAt(1, 0), HitAt(2, 0)});
    try {
        f.Explode({Layout("PART"), Copies(0, 0, 1, 1, 32767, 32767)});
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_NE(e.Text.find("32767 x 32767"), std::string::npos);
    }
}

TEST(MultipartExplode, ARecordCountBeyondTheFileEndsTheWalkAtItsLastRecord) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    DrawRecord header = Header(90);
    header.CarryWord1 = 500;
    WriteDrawing(f.Sheet(), {header, Layout("PART"), Copies(0, 0, 1, 1, 1, 1)});
    MultipartExplode(f.State, f.Sheet());
    EXPECT_EQ(ReadDrawing(f.Sheet()).at(0).RecordCount, 2);
}

// ---- PartPrepare -------------------------------------------------------------------------------

TEST(PartPrepare, RecordsThatAreNoEntityOfASinglePartAreDropped) {
    MultipartFixture f;
    const std::string part = f.Path("Progpart.drw");
    WriteDrawing(part, {Header(8), HitAt(1, 1), Entity(0), Entity(500), Entity(1), Entity(521), Entity(1200),
                        Line(0, 0, 1, 0, 0)});
    PartPrepare(f.State, part);
    const auto records = ReadDrawing(part);
    EXPECT_EQ(records.at(0).RecordCount, 3);
    EXPECT_EQ(records.at(1).EntityCode, 210);
    EXPECT_EQ(records.at(2).EntityCode, 120);
}

TEST(PartPrepare, ACountBeyondTheFileIsCutToTheRecordsThere) {
    MultipartFixture f;
    const std::string part = f.Path("Progpart.drw");
    WriteDrawing(part, {Header(40), HitAt(1, 1)});
    PartPrepare(f.State, part);
    EXPECT_EQ(ReadDrawing(part).at(0).RecordCount, 2);
}

TEST(PartPrepare, ASoundPartIsNotWritten) {
    MultipartFixture f;
    const std::string part = f.Path("Progpart.drw");
    DrawRecord odd = HitAt(1.23456789f, 1);  // not bound, not rounded: left as it is
    WriteDrawing(part, {Header(2), odd});
    const std::string before = ReadAllBytes(part);
    PartPrepare(f.State, part);
    EXPECT_EQ(ReadAllBytes(part), before);
}

// ---- The orders of the copies ------------------------------------------------------------------

using Places = std::vector<std::pair<int32_t, int32_t>>;

TEST(MultipartCopyPlace, OrderZeroWalksEachColumnFromItsFirstRow) {
    EXPECT_EQ(Walk(0, 2, 3), (Places{{1, 1}, {1, 2}, {1, 3}, {2, 1}, {2, 2}, {2, 3}}));
}

TEST(MultipartCopyPlace, OrderOneIsThePlainOrderBackwards) {
    EXPECT_EQ(Walk(1, 2, 3), (Places{{2, 3}, {2, 2}, {2, 1}, {1, 3}, {1, 2}, {1, 1}}));
}

TEST(MultipartCopyPlace, OrderTwoWalksColumnsWithRowsAlternatelyUpAndDown) {
    EXPECT_EQ(Walk(2, 3, 2), (Places{{1, 1}, {1, 2}, {2, 2}, {2, 1}, {3, 1}, {3, 2}}));
}

TEST(MultipartCopyPlace, OrderThreeWalksEachRowFromItsFirstColumn) {
    EXPECT_EQ(Walk(3, 2, 3), (Places{{1, 1}, {2, 1}, {1, 2}, {2, 2}, {1, 3}, {2, 3}}));
}

TEST(MultipartCopyPlace, OrderFourIsTheRowOrderBackwards) {
    EXPECT_EQ(Walk(4, 2, 3), (Places{{2, 3}, {1, 3}, {2, 2}, {1, 2}, {2, 1}, {1, 1}}));
}

TEST(MultipartCopyPlace, OrderFiveWalksRowsWithColumnsAlternatelyForwardAndBack) {
    EXPECT_EQ(Walk(5, 3, 2), (Places{{1, 1}, {2, 1}, {3, 1}, {3, 2}, {2, 2}, {1, 2}}));
}

TEST(MultipartCopyPlace, AnyOtherOrderIsThePlainOrder) {
    EXPECT_EQ(Walk(6, 2, 2), Walk(0, 2, 2));
    EXPECT_EQ(Walk(-1, 2, 2), Walk(0, 2, 2));
}

TEST(MultipartCopyPlace, ALayoutWithoutColumnsOrRowsGivesTheFirstPlace) {
    const CopyPlace p = MultipartCopyPlace(2, 0, 5, 1);
    EXPECT_EQ(p.Column, 1);
    EXPECT_EQ(p.Row, 1);
    EXPECT_EQ(MultipartCopyPlace(5, 4, -1, 3).Row, 1);
}

TEST(MultipartExplode, TheOrderOfThePartRecordPlacesTheCopies) {
    MultipartFixture f;
    f.Part("PART", {HitAt(0, 0)});
    const auto result = f.Explode({Layout("PART"), Copies(0, 0, 10, 100, 2, 2, 0, 3)});
    ASSERT_EQ(result.size(), 5u);
    const float x[] = {0, 10, 0, 10};
    const float y[] = {0, 0, 100, 100};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(result[i + 1].Point[4].X, x[i]) << i;
        EXPECT_EQ(result[i + 1].Point[4].Y, y[i]) << i;
    }
}

// ---- The part drawing of a subprogram ----------------------------------------------------------

TEST(MultipartSubprogram, ThePartIsCopiedToProgpartAndItsCellsAreSet) {
    MultipartFixture f(true);
    f.Part("PART", {HitAt(10, 0)});
    DrawRecord record = Copies(5, 6, 100, 50, 1, 3, 90);
    record.EntityText = " PART ";
    record.Count[5] = 4;
    std::string drawing;
    MultipartSubprogram(f.State, record, drawing);
    const ValueTables& t = f.State.Tables;
    EXPECT_EQ(drawing, f.Path("progpart.drw"));
    EXPECT_TRUE(FileExists(drawing));
    EXPECT_EQ(t.PostMachine[89], 5.0f);
    EXPECT_EQ(t.PostMachine[90], 6.0f);
    EXPECT_EQ(t.PostMachine[85], 0.0f);  // one column: no pitch
    EXPECT_EQ(t.PostMachine[86], 50.0f);
    EXPECT_EQ(t.PostMachine[87], 1.0f);
    EXPECT_EQ(t.PostMachine[88], 3.0f);
    EXPECT_EQ(t.PostMachine[93], 4.0f);
    for (int i = 80; i <= 90; ++i) EXPECT_EQ(t.PostMemo[i], -9999.0f) << i;
    EXPECT_EQ(t.PostMemo[91], -1.0f);
    // The start as drawn, and turned by the parts' angle for the program's first move.
    EXPECT_EQ(t.PostParam[89], 10.0f);
    EXPECT_EQ(t.PostParam[90], 0.0f);
    EXPECT_NEAR(t.PostParam[87], 0.0, 1e-5);
    EXPECT_NEAR(t.PostParam[88], 10.0, 1e-5);
    // The control turns parts: the copy is as drawn.
    EXPECT_EQ(ReadDrawing(drawing).at(1).Point[4].X, 10.0f);
}

TEST(MultipartSubprogram, ThePartIsTurnedForAControlThatCannotTurnParts) {
    MultipartFixture f(false);
    f.Part("PART", {HitAt(10, 0)});
    DrawRecord record = Copies(0, 0, 0, 0, 1, 1, 90);
    std::string drawing;
    MultipartSubprogram(f.State, record, drawing);
    EXPECT_NEAR(ReadDrawing(drawing).at(1).Point[4].Y, 10.0, 1e-5);
    // The measured start is already turned; the program's start turns it once more.
    EXPECT_NEAR(f.State.Tables.PostParam[89], 0.0, 1e-4);
    EXPECT_NEAR(f.State.Tables.PostParam[90], 10.0, 1e-5);
    EXPECT_NEAR(f.State.Tables.PostParam[87], -10.0, 1e-4);
    EXPECT_NEAR(f.State.Tables.PostParam[88], 0.0, 1e-4);
}

// ---- Property: n x m copies ---------------------------------------------------------------------

namespace {

// A coordinate of five decimals within the sheet.
float SheetCoordinate() { return ToSingle(*rc::gen::inRange(-2000000, 2000000) / 1000.0); }

}  // namespace

// Flattening n x m copies of a part of k records gives n x m x k records besides the rest of the
// drawing, and every copied point is the part's point plus the copy's offset, rounded to 4
// decimals.
RC_GTEST_PROP(MultipartExplodeProperty, CopiesAreThePartMovedByTheirOffsetsRoundedToFourDecimals, ()) {
    MultipartFixture f(true);  // the control turns the parts: the part is copied as drawn
    const int columns = *rc::gen::inRange(1, 5);
    const int rows = *rc::gen::inRange(1, 5);
    const int k = *rc::gen::inRange(1, 5);
    const int rest = *rc::gen::inRange(0, 4);
    const float angle = *rc::gen::element(0.0f, 30.0f, 90.0f, 180.0f, -45.0f, 12.5f);
    const float ox = SheetCoordinate(), oy = SheetCoordinate();
    const float px = ToSingle(*rc::gen::inRange(0, 500000) / 1000.0);
    const float py = ToSingle(*rc::gen::inRange(0, 500000) / 1000.0);
    std::vector<DrawRecord> part;
    for (int i = 0; i < k; ++i) {
        const float x1 = SheetCoordinate(), y1 = SheetCoordinate(), x2 = SheetCoordinate(), y2 = SheetCoordinate();
        double length = 0, direction = 0;
        XYToPolar(static_cast<double>(x2) - x1, static_cast<double>(y2) - y1, length, direction);
        part.push_back(Line(x1, y1, x2, y2, ToSingle(direction)));
    }
    f.Part("PART", part);
    std::vector<DrawRecord> sheet;
    for (int i = 0; i < rest; ++i) sheet.push_back(Entity(311));
    sheet.push_back(Layout("PART", false, angle));
    sheet.push_back(Copies(ox, oy, px, py, static_cast<int16_t>(columns), static_cast<int16_t>(rows), angle));
    const auto result = f.Explode(sheet);
    RC_ASSERT(result.size() == static_cast<size_t>(1 + rest + columns * rows * k));
    size_t at = 1 + static_cast<size_t>(rest);
    for (int c = 1; c <= columns; ++c) {
        for (int r = 1; r <= rows; ++r) {
            double cx = 0, cy = 0, rx = 0, ry = 0;
            PolarToXY((c - 1) * static_cast<double>(columns == 1 ? 0.0f : px), angle, cx, cy);
            PolarToXY((r - 1) * static_cast<double>(rows == 1 ? 0.0f : py), static_cast<double>(angle) + 90, rx, ry);
            const double dx = static_cast<double>(ox) + cx + rx;
            const double dy = static_cast<double>(oy) + cy + ry;
            for (const DrawRecord& from : part) {
                const DrawRecord& copy = result[at++];
                RC_ASSERT(copy.EntityCode == from.EntityCode);
                RC_ASSERT(copy.Point[1].X == ToSingle(RoundTo(from.Point[1].X + dx, 4)));
                RC_ASSERT(copy.Point[1].Y == ToSingle(RoundTo(from.Point[1].Y + dy, 4)));
                RC_ASSERT(copy.Point[3].X == ToSingle(RoundTo(from.Point[3].X + dx, 4)));
                RC_ASSERT(copy.Point[3].Y == ToSingle(RoundTo(from.Point[3].Y + dy, 4)));
            }
        }
    }
}
