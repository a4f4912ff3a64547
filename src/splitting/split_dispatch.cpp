#include "splitting/split_dispatch.h"

// Placeholder bodies: nothing is written yet.
namespace tvx {

void SplitRecord(SplitOutput&, DrawRecord&) {}
void WriteLeadsTail(SplitOutput&, const DrawRecord&, DrawRecord&) {}
void ExplodeArcPattern(SplitOutput&, const DrawRecord&) {}
void ExplodeLinearPattern(SplitOutput&, const DrawRecord&) {}
void ExplodeGridPattern(SplitOutput&, const DrawRecord&) {}
void SplitLibraryTool(SplitOutput&, DrawRecord&) {}

}  // namespace tvx
