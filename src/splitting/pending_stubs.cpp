// Empty split routines until the shape routines are on this branch.
#include "splitting/split_shapes.h"

namespace tvx {

void SplitSingleDProfile(SplitOutput&, const DrawRecord&) {}
void SplitDoubleDProfile(SplitOutput&, const DrawRecord&) {}
void SplitObroundProfile(SplitOutput&, const DrawRecord&) {}
void SplitRadRectProfile(SplitOutput&, const DrawRecord&) {}
void SplitRectangleProfile(SplitOutput&, const DrawRecord&) {}
void SplitSingleDLeads(SplitOutput&, const DrawRecord&) {}
void SplitDoubleDLeads(SplitOutput&, const DrawRecord&) {}
void SplitObroundLeads(SplitOutput&, const DrawRecord&) {}
void SplitRadRectLeads(SplitOutput&, const DrawRecord&) {}
void SplitRectangleLeads(SplitOutput&, const DrawRecord&) {}
void SplitCirclePunched(SplitOutput&, const DrawRecord&) {}
void SplitSingleDPunched(SplitOutput&, const DrawRecord&) {}
void SplitDoubleDPunched(SplitOutput&, const DrawRecord&) {}
void SplitObroundPunched(SplitOutput&, const DrawRecord&) {}
void SplitRadRect(SplitOutput&, const DrawRecord&) {}
void SplitRadRectRound(SplitOutput&, const DrawRecord&) {}
void ClearRectByGrid(SplitOutput&, const DrawRecord&) {}
void SplitRadRectEdges(SplitOutput&, const DrawRecord&) {}
void SplitRadRectEdgesRotary(SplitOutput&, const DrawRecord&) {}
void MatchToolToRectangle(const DrawRecord&, const ToolSpec&, double& alongL, double& acrossL) { alongL = acrossL = 0; }
void SplitRectangle(SplitOutput&, const DrawRecord&) {}
void SplitRectangleWorked(SplitOutput&, const DrawRecord&) {}
void SplitRectangleOutside(SplitOutput&, const DrawRecord&) {}
void SplitRectangleOutsideRotary(SplitOutput&, const DrawRecord&) {}
void SplitRectangleOutsideTwoTools(SplitOutput&, const DrawRecord&) {}
void SplitRectangleInsideRound(SplitOutput&, const DrawRecord&) {}
void SplitRectangleInside(SplitOutput&, const DrawRecord&) {}
void SplitRectangleInsideRotary(SplitOutput&, const DrawRecord&) {}
void SplitRectangleInsideTwoTools(SplitOutput&, const DrawRecord&) {}
void SplitRectangleInsideTwoRound(SplitOutput&, const DrawRecord&) {}

}  // namespace tvx
