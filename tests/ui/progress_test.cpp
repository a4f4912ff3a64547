#include "ui/progress.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

#include "common/textfile.h"
#include "test_support.h"

using namespace tvx;

TEST(Progress, NothingIsShownWhenStderrIsNotATerminal) {
    TempDir dir;
    const std::string errPath = dir.Path + "/err.txt";
    const std::string outPath = dir.Path + "/out.txt";
    std::fflush(stderr);
    std::fflush(stdout);
    const int savedErr = dup(2);
    const int savedOut = dup(1);
    FILE* err = std::fopen(errPath.c_str(), "wb");
    FILE* out = std::fopen(outPath.c_str(), "wb");
    dup2(fileno(err), 2);
    dup2(fileno(out), 1);
    ShowProgress("JOB1");
    for (int p = 0; p <= 100; ++p) SetProgress(p);
    HideProgress();
    std::fflush(stderr);
    std::fflush(stdout);
    dup2(savedErr, 2);
    dup2(savedOut, 1);
    close(savedErr);
    close(savedOut);
    std::fclose(err);
    std::fclose(out);
    EXPECT_EQ(ReadAllBytes(errPath), "");
    EXPECT_EQ(ReadAllBytes(outPath), "");
}
