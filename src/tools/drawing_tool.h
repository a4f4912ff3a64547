#pragma once
#include <cstdint>
#include <ostream>
#include <string>

namespace tvx {

// `torvanex drawing dump FILE.drw`: the drawing as JSON on the stream.
int DrawingDumpCommand(const std::string& drawingPath, std::ostream& out);
// `torvanex drawing build FILE.json -o FILE.drw`.
int DrawingBuildCommand(const std::string& jsonPath, const std::string& drawingPath);

// The largest number of entity records a generated drawing may have: RecordCount, which counts
// record 1 as well, stays a 32-bit integer.
inline constexpr int32_t MostGeneratedRecords = 2147483646;

// Writes a large drawing for measuring a whole job: record 1 as the header of the example
// installation of that kind (its material and sheet), RecordCount records + 1, then `records`
// entity records, written in batches so that memory does not grow with their number.
//   "punch": hits (210) on a 10 mm grid that keeps every tool on the sheet, with the tools of
//            the punch example's hits in turn, 1,000 hits a tool.
//   "laser": small closed outlines of the laser example's profile tool on a 20 mm grid, each a
//            rapid move (110) to its start, then four profile lines (120) and four quarter arcs
//            (130) of a square of 10 with corners of radius 2, cut anticlockwise.
// The grid starts again at its first place when the sheet is full; the last outline is cut
// short when the number of records ends in the middle of it. Every record is bound. The same
// kind and number always give the same bytes. An unknown kind is a fault of the run.
void WriteGeneratedDrawing(const std::string& kind, int32_t records, const std::string& drawingPath);
// `torvanex drawing generate --kind punch|laser --records N -o FILE`: N is a whole number
// from 0 to MostGeneratedRecords.
int DrawingGenerateCommand(const std::string& kind, const std::string& records, const std::string& drawingPath);

}  // namespace tvx
