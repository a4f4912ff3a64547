#include "emitters/shapes.h"

#include "common/numeric.h"
#include "definition/block_writer.h"
#include "definition/definition_files.h"
#include "definition/reserved_word.h"
#include "drawing/drawfile.h"
#include "emitters/punch.h"
#include "splitting/single_profile.h"
#include "splitting/single_shape.h"
#include "state/run_state.h"

namespace tvx {
namespace {

// How a dimension cell is made from the record.
enum class Dimension {
    TwiceValue1,  // 2 * Value[1]: the diameter of the round shapes
    Value1,
    Value2,
};

// What the lead value of a cut shape starts from; the punched shapes have none.
enum class LeadBase {
    None,
    Value1,
    HalfValue1,
};

// One shape emitter: its words, its cells and the single-shape entry point that splits the
// shape when the definition has no block for it.
struct ShapeMacro {
    // The word; for the rectangles the word of unequal sides.
    const char* Word;
    // The word when Value[1] equals Value[2]; null for shapes that have no square form.
    const char* SquareWord;
    Dimension First;   // PostParam[100]
    Dimension Second;  // PostParam[101]
    LeadBase Lead;     // PostParam[104]
    // The lead value is held to the machine's largest lead, PostParam[109].
    bool LeadCap;
    // PostParam[103] takes the corner radius, Value[3].
    bool CornerRadius;
    void (*Split)(RunState&, const DrawRecord&);
};

constexpr ShapeMacro DiameterCut{"SHAPE_DIAMETER_CUT",    nullptr,  Dimension::TwiceValue1,
                                 Dimension::TwiceValue1,  LeadBase::Value1, false, false, SingleCircle};
constexpr ShapeMacro DiameterPunched{"SHAPE_DIAMETER_PUNCHED", nullptr,        Dimension::TwiceValue1,
                                     Dimension::TwiceValue1,   LeadBase::None, false, false, SingleCircle};
constexpr ShapeMacro ObroundCut{"SHAPE_OBROUND_CUT", nullptr,  Dimension::Value1, Dimension::Value2,
                                LeadBase::HalfValue1, true, false, SingleObround};
constexpr ShapeMacro ObroundPunched{"SHAPE_OBROUND_PUNCHED", nullptr, Dimension::Value1, Dimension::Value2,
                                    LeadBase::None, false, false, SingleObround};
constexpr ShapeMacro RectangleCut{"SHAPE_RECTANGLE_CUT", "SHAPE_SQUARE_CUT", Dimension::Value1, Dimension::Value2,
                                  LeadBase::HalfValue1, true, false, SingleRectangle};
constexpr ShapeMacro RectanglePunched{"SHAPE_RECTANGLE_PUNCHED", "SHAPE_SQUARE_PUNCHED", Dimension::Value1,
                                      Dimension::Value2, LeadBase::None, false, false, SingleRectangle};
constexpr ShapeMacro RadRectangleCut{"SHAPE_RADRECTANGLE_CUT", "SHAPE_RADSQUARE_CUT", Dimension::Value1,
                                     Dimension::Value2, LeadBase::HalfValue1, true, true, SingleRadRect};
constexpr ShapeMacro RadRectanglePunched{"SHAPE_RADRECTANGLE_PUNCHED", "SHAPE_RADSQUARE_PUNCHED", Dimension::Value1,
                                         Dimension::Value2, LeadBase::None, false, true, SingleRadRect};
constexpr ShapeMacro SingleDCut{"SHAPE_SINGLED_CUT", nullptr, Dimension::TwiceValue1, Dimension::Value2,
                                LeadBase::Value1, true, false, SingleSingleD};
constexpr ShapeMacro SingleDPunched{"SHAPE_SINGLED_PUNCHED", nullptr, Dimension::TwiceValue1, Dimension::Value2,
                                    LeadBase::None, false, false, SingleSingleD};
constexpr ShapeMacro DoubleDCut{"SHAPE_DOUBLED_CUT", nullptr, Dimension::TwiceValue1, Dimension::Value2,
                                LeadBase::Value1, true, false, SingleDoubleD};
constexpr ShapeMacro DoubleDPunched{"SHAPE_DOUBLED_PUNCHED", nullptr, Dimension::TwiceValue1, Dimension::Value2,
                                    LeadBase::None, false, false, SingleDoubleD};

float DimensionCell(Dimension dimension, const DrawRecord& record) {
    switch (dimension) {
        case Dimension::TwiceValue1: return ToSingle(2.0 * static_cast<double>(record.Value[1]));
        case Dimension::Value1: return record.Value[1];
        case Dimension::Value2: return record.Value[2];
    }
    return 0;
}

// The lead value of a cut shape: its base, held to the largest lead where the row says so, and
// negative unless the shape's Side is -1.
double LeadValue(const ShapeMacro& macro, const ValueTables& t, const DrawRecord& record) {
    double v = macro.Lead == LeadBase::HalfValue1 ? static_cast<double>(record.Value[1]) / 2
                                                  : static_cast<double>(record.Value[1]);
    if (macro.LeadCap && v > static_cast<double>(t.PostParam[109])) v = t.PostParam[109];
    if (record.Side != -1) v = -v;
    return v;
}

void EmitShapeMacro(RunState& state, DrawRecord& record, const ShapeMacro& macro) {
    ValueTables& t = state.Tables;
    t.PostParam[15] = record.Point[4].X;
    t.PostParam[16] = record.Point[4].Y;
    t.PostParam[100] = DimensionCell(macro.First, record);
    t.PostParam[101] = DimensionCell(macro.Second, record);
    t.PostParam[102] = record.Value[10];
    if (macro.CornerRadius) t.PostParam[103] = record.Value[3];
    t.PostParam[106] = record.Side;
    if (macro.Lead != LeadBase::None) t.PostParam[104] = ToSingle(LeadValue(macro, t, record));

    const bool square = macro.SquareWord != nullptr && record.Value[1] == record.Value[2];
    if (FindReservedWord(state, square ? macro.SquareWord : macro.Word)) {
        WriteReservedBlock(state);
        CloseInputChannel(state, ChannelDefinition);
        EmitAfterAction(state, record);
        return;
    }
    // No block for the shape: its primitives are made on Shape.drw, which the loop reads next.
    // Like every emitter, this one leaves the definition file closed.
    CloseInputChannel(state, ChannelDefinition);
    LoopState& loop = state.Loop;
    loop.ShapeActive = true;
    loop.ShapeIndex = 0;
    macro.Split(state, record);
    CloseDrawing(loop.ShapeDrawing);
    OpenDrawing(loop.ShapeDrawing, ShapeDrawingPath(state));
}

}  // namespace

void EmitShapeDiameterCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, DiameterCut); }
void EmitShapeDiameterPunched(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, DiameterPunched); }
void EmitShapeObroundCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, ObroundCut); }
void EmitShapeObroundPunched(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, ObroundPunched); }
void EmitShapeRectangleCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, RectangleCut); }
void EmitShapeRectanglePunched(RunState& state, DrawRecord& record) {
    EmitShapeMacro(state, record, RectanglePunched);
}
void EmitShapeRadRectangleCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, RadRectangleCut); }
void EmitShapeRadRectanglePunched(RunState& state, DrawRecord& record) {
    EmitShapeMacro(state, record, RadRectanglePunched);
}
void EmitShapeSingleDCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, SingleDCut); }
void EmitShapeSingleDPunched(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, SingleDPunched); }
void EmitShapeDoubleDCut(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, DoubleDCut); }
void EmitShapeDoubleDPunched(RunState& state, DrawRecord& record) { EmitShapeMacro(state, record, DoubleDPunched); }

}  // namespace tvx
