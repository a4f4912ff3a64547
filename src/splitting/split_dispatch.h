#pragma once
// The split dispatch: one entity of a drawing becomes the primitive records that the later
// stages walk (Line Profile, Arc Profile, Punch, Linear Pattern, Grid Pattern, Arc Pattern and
// the marks), appended to the output of a pass behind its OutputCount.
#include "drawing/record.h"
#include "splitting/split_output.h"

namespace tvx {

// Appends the primitives of one record. `record` is the source: only ApplyTrim (a profiled
// 120 or 130) and the clearing of the tools of a library tool whose drawing is missing change
// it. A code below 120 or above 355 writes nothing; a library tool ("U" on a code below 500,
// and every 175) is placed from its tooling drawing.
void SplitRecord(SplitOutput& out, DrawRecord& record);

// A profiled line, arc or circle with its leads as records of their own: the lead-in from the
// source, the working copy without leads and After, the lead-out from the source.
void WriteLeadsTail(SplitOutput& out, const DrawRecord& source, DrawRecord& working);

// An arc pattern (230, and a worked arc) as a row of Punch records.
void ExplodeArcPattern(SplitOutput& out, const DrawRecord& source);
// A linear pattern (220) as a row of Punch records; a count of 1 or less gives one hit.
void ExplodeLinearPattern(SplitOutput& out, const DrawRecord& source);
// A grid (225) as Count[2] rows of Linear Pattern, each row starting where the last ended.
void ExplodeGridPattern(SplitOutput& out, const DrawRecord& source);

// A library tool: its tooling drawing (ShapePath, mode 4) copied to PITooling.drw in the work
// directory, its radius-punch arcs made hits, turned by the entity's angle less the angle it is
// stored at, the entity's After moved to its last worked record, and its records from 2 on
// (marks 350 and 355 left out) moved onto the entity and appended. A missing drawing leaves the
// entity without its tools.
void SplitLibraryTool(SplitOutput& out, DrawRecord& source);

}  // namespace tvx
