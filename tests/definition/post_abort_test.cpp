#include "definition/post_abort.h"

#include <gtest/gtest.h>

#include "common/fault.h"
#include "state/run_state.h"

using namespace tvx;

TEST(PostAbort, ShowsTitleMessageTwoLineFeedsAndProgramAborted) {
    RunState state;
    try {
        PostAbort(state, "Reserved Word - CANNED_PUNCH not found in file x.pst");
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitAbort);
        EXPECT_EQ(e.Text, "Torvanex\nReserved Word - CANNED_PUNCH not found in file x.pst\n\nProgram Aborted");
        EXPECT_EQ(state.Engine.PostErrorText, "Reserved Word - CANNED_PUNCH not found in file x.pst");
    }
}

TEST(ValueTables, IndexBeyondTheBoundIsAFaultNamingTableAndIndex) {
    RunState state;
    state.Tables.PostParam[300] = 1;
    try {
        state.Tables.PostParam[301] = 1;
        FAIL();
    } catch (const RunEnd& e) {
        EXPECT_EQ(e.Status, ExitFault);
        EXPECT_EQ(e.Text, "Index out of range: PostParam(301)");
    }
    EXPECT_THROW(state.Tables.PostText[-1], RunEnd);
    EXPECT_THROW(state.Tables.PostUserText[202], RunEnd);
    state.Tables.PostUserText[201] = "x";
}
