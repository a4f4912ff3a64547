#pragma once
// The start of a job: configuration, the job's description files and the job's file names.
namespace tvx {

struct RunState;

// Loads the configuration, the machine and the Default material, and counts the tool rows of
// Program.seq.
void StartJob(RunState& state);
// The first part of StartJob: the configuration, the machine and the Default material, as a
// run loads them.
void LoadRunMachine(RunState& state);
// Counts the tool rows of Program.seq into SeqRowCount.
void CountSequenceRows(RunState& state);
// Reads JobPath, JobName and JobTitle from Program.pth.
void ReadProgramPath(RunState& state);
// Builds the job's file names, opens the word file and copies the definition file.
void SetJobFiles(RunState& state);

}  // namespace tvx
