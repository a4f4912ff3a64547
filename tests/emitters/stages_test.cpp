#include "emitters/stages.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/fault.h"
#include "common/paths.h"
#include "common/textfile.h"
#include "job/job_fixture.h"

using namespace tvx;

namespace {

std::vector<std::string> SubroutineBlocks() {
    return {"CANNED_PIERCESUB_INIT=TRUE", "PI", "******",  "CANNED_PIERCESUB_SET=TRUE", "PS[VALUE30]", "******",
            "CANNED_LEADSUB_INIT=TRUE",   "LI", "******",  "CANNED_LEADSUB_SET=TRUE",   "LS", "******",
            "CANNED_PATHSUB_INIT=TRUE",   "XI", "******",  "CANNED_PATHSUB_SET=TRUE",   "XS", "******",
            "CANNED_SPECIAL_INIT=TRUE",   "WI", "******",  "CANNED_SPECIAL_SET=TRUE",   "WS", "******",
            "CANNED_CUTSUB_INIT=TRUE",    "CI", "******",  "CANNED_CUTSUB_SET=TRUE",    "CS[VALUE30]", "******"};
}

std::vector<std::string> SubroutineWords() {
    return {"VALUE30 [M159] [FORMAT=D0] [CONV=V]", "END_OF_WORDS [P0] [CONV=*]"};
}

int StatusOf(const std::function<void()>& run) {
    try {
        run();
    } catch (const RunEnd& e) {
        return e.Status;
    }
    return ExitClean;
}

// A fixture whose blocks of the subroutine family go to the second program file.
struct SubroutineFixture : JobFixture {
    SubroutineFixture() : JobFixture(SubroutineBlocks(), SubroutineWords()) {
        OpenEngineOutput(State, State.Engine.PlatinoOutput, Path("Platino.prg"));
        State.Tables.PostParam[9] = 100;
    }
    std::string Subroutines() {
        CloseAllFiles(State);
        return ReadAllBytes(Path("Platino.prg"));
    }
};

// A stage applied: the parameter cell it set and the stage in force after it.
void ExpectStage(const JobFixture& f, int cell, float value, int32_t current) {
    EXPECT_EQ(f.State.Tables.PostParam[cell], value);
    EXPECT_EQ(f.State.Loop.Stages.CurrentStage, current);
}

}  // namespace

TEST(ApplySettingsStage, VLineSetsTheNumericTableNotTheTextTable) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.4"), {"V7,2.5", "******"});
    int32_t stage = 4;
    ApplySettingsStage(f.State, stage, "P");
    EXPECT_EQ(f.State.Tables.PostVar[7], 2.5f);
    EXPECT_EQ(f.State.Tables.PostUserText[7], "");
    EXPECT_EQ(f.State.Tables.PostParam[6], 1.0f);
    EXPECT_EQ(f.State.Tables.PostParam[8], 4.0f);
}

TEST(ApplySettingsStage, EachLetterAssignsItsOwnTableAndOthersArePassedOver) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"P110,30", "M170,1.5", "S3,N2", "Q5,9", "******"});
    int32_t stage = 1;
    ApplySettingsStage(f.State, stage, "P");
    EXPECT_EQ(f.State.Tables.PostParam[110], 30.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[170], 1.5f);
    EXPECT_EQ(f.State.Tables.PostText[3], "N2");
}

TEST(ApplySettingsStage, MissingPunchStageFileIsNoErrorAndTheStageNumberStands) {
    JobFixture f({});
    f.State.Tables.PostParam[6] = 1;
    int32_t stage = 7;
    ApplySettingsStage(f.State, stage, "A");
    EXPECT_EQ(f.State.Tables.PostParam[8], 7.0f);
    ExpectStage(f, 6, 1.0f, 0);
}

// A missing punch stage file is not looked for again with every record, but a stage file that
// the system writes in the meantime is read at the next record that asks for it.
TEST(ApplySettingsStage, AMissingPunchStageFileIsSeenOnceTheSystemWritesIt) {
    JobFixture f({});
    LookupCacheScope lookups;
    int32_t stage = 3;
    ApplySettingsStage(f.State, stage, "A");
    EXPECT_EQ(f.State.Loop.Stages.MissingStage, 3);
    EXPECT_EQ(f.State.Loop.Stages.MissingAt, LookupGeneration());
    ApplySettingsStage(f.State, stage, "B");
    EXPECT_EQ(f.State.Loop.Stages.CurrentStage, 0);
    EXPECT_EQ(f.State.Tables.PostParam[8], 3.0f);
    WriteAllLines(f.Path("PnchStg.3"), {"P40,12", "******"});
    ApplySettingsStage(f.State, stage, "A");
    ExpectStage(f, 40, 12.0f, 3);
}

// The missing file remembered is the file of one stage: another stage's file is looked for.
TEST(ApplySettingsStage, AMissingStageFileSaysNothingOfAnotherStage) {
    JobFixture f({});
    WriteAllLines(f.Path("PnchStg.4"), {"P41,2", "******"});
    LookupCacheScope lookups;
    int32_t three = 3, four = 4;
    ApplySettingsStage(f.State, three, "A");
    ApplySettingsStage(f.State, four, "A");
    ExpectStage(f, 41, 2.0f, 4);
    // And a file deleted by the system is missing at once.
    WriteAllLines(f.Path("PnchStg.3"), {"P42,5", "******"});
    DeleteFile(f.Path("PnchStg.3"));
    ApplySettingsStage(f.State, three, "A");
    ExpectStage(f, 42, 0.0f, 4);
}

// Outside a lookup scope nothing is kept: a file made by any means is read.
TEST(ApplySettingsStage, WithoutALookupScopeAMissingFileIsLookedForEveryTime) {
    JobFixture f({});
    int32_t stage = 5;
    ApplySettingsStage(f.State, stage, "A");
    std::FILE* made = std::fopen(f.Path("PnchStg.5").c_str(), "wb");
    ASSERT_NE(made, nullptr);
    std::fputs("P43,7\r\n******\r\n", made);
    std::fclose(made);
    ApplySettingsStage(f.State, stage, "A");
    EXPECT_EQ(f.State.Tables.PostParam[43], 7.0f);
}

TEST(ApplySettingsStage, PunchStageIsReadFromItsFile) {
    JobFixture f({});
    WriteAllLines(f.Path("PnchStg.2"), {"P40,12", "******"});
    int32_t stage = 2;
    ApplySettingsStage(f.State, stage, "A");
    ExpectStage(f, 40, 12.0f, 2);
}

TEST(ApplySettingsStage, CuttingStageZeroAppliesTheStageInForceWithoutReopeningTheFile) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.3"), {"P40,12", "******"});
    int32_t stage = 3;
    ApplySettingsStage(f.State, stage, "P");
    std::filesystem::remove(f.Path("PrflStg.3"));
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "P");
    EXPECT_EQ(zero, 3);
    EXPECT_EQ(f.State.Tables.PostParam[6], 0.0f);
    EXPECT_EQ(f.State.Tables.PostParam[8], 3.0f);
}

TEST(ApplySettingsStage, ReloadMarkForcesTheStageInForceToBeReadAgain) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.3"), {"P40,12", "******"});
    int32_t stage = 3;
    ApplySettingsStage(f.State, stage, "P");
    f.State.Tables.PostParam[40] = 0;
    f.State.Tables.PostParam[8] = -999;
    ApplySettingsStage(f.State, stage, "P");
    EXPECT_EQ(f.State.Tables.PostParam[40], 12.0f);
    EXPECT_EQ(f.State.Tables.PostParam[6], 1.0f);
}

TEST(ApplySettingsStage, MissingCuttingStageFileIsAFault) {
    JobFixture f({});
    int32_t stage = 9;
    EXPECT_EQ(StatusOf([&] { ApplySettingsStage(f.State, stage, "P"); }), ExitFault);
}

TEST(ApplySettingsStage, STextKeepsItsBlanksAndCommas) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"S5, gas O2, 12 bar ", "******"});
    int32_t stage = 1;
    ApplySettingsStage(f.State, stage, "P");
    EXPECT_EQ(f.State.Tables.PostText[5], " gas O2, 12 bar ");
}

TEST(ApplySettingsStage, EndMarkWithATrailingBlankDoesNotEndTheFile) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"P40,1", "****** ", "P41,2", "******"});
    int32_t stage = 1;
    // "****** " has no comma: the reader does not take it as the end and stops the run.
    EXPECT_EQ(StatusOf([&] { ApplySettingsStage(f.State, stage, "P"); }), ExitSilent);
    EXPECT_EQ(f.State.Tables.PostParam[40], 1.0f);
}

TEST(ApplySettingsStage, FileWithoutEndMarkRunsIntoTheEndOfFileFault) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"P40,1"});
    int32_t stage = 1;
    EXPECT_EQ(StatusOf([&] { ApplySettingsStage(f.State, stage, "P"); }), ExitFault);
    EXPECT_EQ(f.State.Tables.PostParam[40], 1.0f);
}

TEST(ApplySettingsStage, LineWithoutCommaEndsTheRunSilently) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"P40", "******"});
    int32_t stage = 1;
    try {
        ApplySettingsStage(f.State, stage, "P");
        FAIL() << "the run went on";
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitSilent);
        EXPECT_EQ(e.Text, "");
    }
}

TEST(ApplySettingsStage, IndexBeyondTheTableIsAnIndexFault) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.1"), {"S41,x", "******"});
    int32_t stage = 1;
    EXPECT_EQ(StatusOf([&] { ApplySettingsStage(f.State, stage, "P"); }), ExitFault);
}

TEST(ApplySettingsStage, PunchLetterAfterACuttingStageCountsAsTheCuttingLetter) {
    JobFixture f({});
    WriteAllLines(f.Path("PrflStg.2"), {"P40,1", "******"});
    int32_t stage = 2;
    ApplySettingsStage(f.State, stage, "P");
    // Same number, another tool letter: the letter in question is still "P", nothing to do.
    ApplySettingsStage(f.State, stage, "A");
    EXPECT_EQ(f.State.Tables.PostParam[6], 0.0f);
}

TEST(ApplySettingsStage, OutsideTheSubroutineFamilyNoBlockIsWritten) {
    SubroutineFixture f;
    f.State.Tables.PostParam[9] = 10;
    WriteAllLines(f.Path("MtrlStg.0"), {"M159,3", "******"});
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "Z");
    EXPECT_EQ(f.State.Tables.PostMachine[159], 3.0f);
    EXPECT_EQ(f.Subroutines(), "");
}

TEST(ApplySettingsStage, PierceStageWritesInitAndASetBlockForEachNewPierceValue) {
    SubroutineFixture f;
    // The pierce marker starts at 1: a first value of 1 writes nothing; each other new value
    // writes its SET block before it is assigned, and the last value is written once more.
    WriteAllLines(f.Path("MtrlStg.0"), {"M159,1", "P41,1", "M159,2", "M159,2", "M159,5", "******"});
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "Z");
    EXPECT_EQ(f.State.Tables.PostMachine[159], 5.0f);
    EXPECT_EQ(f.State.Loop.Stages.CurrentStage, -1);
    EXPECT_EQ(f.Subroutines(), "PI\r\nPSV1\r\nPSV2\r\nPSV5\r\n");
}

TEST(ApplySettingsStage, PierceValueZeroStopsTheReading) {
    SubroutineFixture f;
    WriteAllLines(f.Path("MtrlStg.0"), {"M159,2", "M159,0", "P41,7", "******"});
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "Z");
    EXPECT_EQ(f.State.Tables.PostParam[41], 0.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[159], 2.0f);
    EXPECT_EQ(f.Subroutines(), "PI\r\nPS\r\nPSV2\r\n");
}

TEST(ApplySettingsStage, LeadStageComparesWithTheEmptyPierceMarker) {
    SubroutineFixture f;
    // For "Y" every value but 0 writes its block, also a repeated one and a 1.
    WriteAllLines(f.Path("MtrlStg.1"), {"M197,1", "M197,1", "M159,4", "******"});
    // As the preload leaves it after an earlier stage of the subroutine family.
    f.State.Loop.Stages.CurrentStage = -1;
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "Y");
    EXPECT_EQ(f.State.Tables.PostMachine[197], 1.0f);
    EXPECT_EQ(f.State.Tables.PostMachine[159], 4.0f);
    EXPECT_EQ(f.Subroutines(), "LI\r\nLS\r\nLS\r\n");
}

TEST(ApplySettingsStage, CuttingStageWritesInitAndSet) {
    SubroutineFixture f;
    WriteAllLines(f.Path("PrflStg.2"), {"M159,9", "******"});
    int32_t stage = 2;
    ApplySettingsStage(f.State, stage, "P");
    EXPECT_EQ(f.Subroutines(), "CI\r\nCSV9\r\n");
}

TEST(LoadMaterialStage, MissingFileChangesNothing) {
    JobFixture f({});
    LoadMaterialStage(f.State, "2");
    EXPECT_EQ(f.State.Tables.PostParam[6], 0.0f);
}

TEST(LoadMaterialStage, AssignsPlainlyInEveryFamilyAndKeepsTheStageState) {
    SubroutineFixture f;
    WriteAllLines(f.Path("MtrlStg.0"), {"M159,0", "P41,7", "******"});
    LoadMaterialStage(f.State, "0");
    EXPECT_EQ(f.State.Tables.PostParam[41], 7.0f);
    EXPECT_EQ(f.State.Loop.Stages.PreviousStageLetter, "");
    EXPECT_EQ(f.Subroutines(), "");
}

TEST(ApplySettingsStage, LeadStageAsTheVeryFirstStageCountsAsInForce) {
    SubroutineFixture f;
    WriteAllLines(f.Path("MtrlStg.1"), {"M197,1", "******"});
    // "Y" is no change of letter, and stage 0 is the stage in force at the start.
    int32_t zero = 0;
    ApplySettingsStage(f.State, zero, "Y");
    EXPECT_EQ(f.State.Tables.PostParam[6], 0.0f);
    EXPECT_EQ(f.Subroutines(), "");
}
