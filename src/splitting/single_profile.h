#pragma once
// The single-shape path of a profiled line or arc with leads: its primitives are written to
// Shape.drw at generation time, and the generation loop works them off one by one.
#include <string>

namespace tvx {

struct RunState;
struct DrawRecord;
struct SplitOutput;

// Where Shape.drw lies: beside the job's drawing.
std::string ShapeDrawingPath(const RunState& state);

// How an entity with leads is written by WriteWithLeads.
struct LeadedEntityChoices {
    // The entity's trims are folded into the caller's record first (ApplyTrim), so that the
    // leads join its trimmed ends and the entity is written trimmed.
    bool FoldTrims = false;
    // The entity is written as a whole "Arc Profile" (code 130), and its leads are made from
    // that arc: a circle that no punch works.
    bool AsArcProfile = false;
};

// Writes an entity with its leads as records of their own: the lead-in record (Count[8] 1) when
// LeadIn.LeadKind is non-zero, the entity itself with its leads and its After cleared and bound,
// and the lead-out record (Count[8] 2, with the entity's After) when LeadOut.LeadKind is
// non-zero. The leads are made from the entity as the choices leave it.
void WriteWithLeads(SplitOutput& out, DrawRecord& entity, LeadedEntityChoices choices);

// Makes Shape.drw anew with the lead-in record, the entity itself without its leads and its
// After, and the lead-out record (WriteWithLeads). The entity's trims are folded into it first.
// No header record: the first primitive is record 1, and the end of the file reads as code 0.
// The file is closed on leaving.
void SingleProfile(RunState& state, DrawRecord& record);

}  // namespace tvx
