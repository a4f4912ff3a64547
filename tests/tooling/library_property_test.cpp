// Properties of the test of a library tool at an angle, for random tools and angles.
#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <vector>

#include "tooling/library.h"

using namespace tvx;

namespace {

// Steps that divide a full turn into whole degrees: every sum of them from a whole angle is a
// whole number, exact in singles.
const std::vector<int>& WholeSteps() {
    static const std::vector<int> steps = {1, 2, 3, 4, 5, 6, 8, 9, 10, 12, 15, 18, 20, 24, 30, 36, 40, 45, 60, 72, 90, 120, 180};
    return steps;
}

}  // namespace

RC_GTEST_PROP(ToolFitsAngleProperty, WholeStepFitsTheOwnAngleAndOneStepEitherWayInsideATurn, ()) {
    const int step = *rc::gen::elementOf(WholeSteps());
    const int angle = *rc::gen::inRange(0, 360);
    const int turns = *rc::gen::inRange(-3, 4);
    const double given = angle + 360.0 * turns;
    RC_ASSERT(ToolFitsAngle(static_cast<float>(angle), given, step));
    if (angle + step < 360) RC_ASSERT(ToolFitsAngle(static_cast<float>(angle + step), given, step));
    if (angle - step >= 0) RC_ASSERT(ToolFitsAngle(static_cast<float>(angle - step), given, -step));
}

RC_GTEST_PROP(ToolFitsAngleProperty, WholeStepFitsExactlyTheAnglesOfItsRow, ()) {
    const int step = *rc::gen::elementOf(WholeSteps());
    const int angle = *rc::gen::inRange(0, 360);
    const int wanted = *rc::gen::inRange(-10, 370);
    const bool inRow = wanted >= 0 && wanted < 360 && ((wanted - angle) % step + step) % step == 0;
    RC_ASSERT(ToolFitsAngle(static_cast<float>(wanted), angle, step) == inRow);
}

RC_GTEST_PROP(ToolFitsAngleProperty, StepOfNothingOrAWholeTurnFitsNothingButTheOwnAngle, ()) {
    const double step = *rc::gen::elementOf(std::vector<double>{0.0, 360.0, -360.0, 720.0});
    const float angle = static_cast<float>(*rc::gen::inRange(0, 3600000) / 10000.0);
    const float wanted = static_cast<float>(*rc::gen::inRange(-3600000, 7200000) / 10000.0);
    RC_ASSERT(ToolFitsAngle(angle, angle, step));
    RC_ASSERT(ToolFitsAngle(wanted, angle, step) == (wanted == angle));
}

RC_GTEST_PROP(ToolFitsAngleProperty, NothingOutsideATurnFitsButTheOwnAngle, ()) {
    const double step = *rc::gen::inRange(-3600, 3600) / 10.0;
    const double angle = *rc::gen::inRange(-720000, 720000) / 1000.0;
    const float wanted = static_cast<float>(*rc::gen::elementOf(std::vector<double>{-0.5, -90.0, 360.5, 720.0, 1000.0}));
    RC_ASSERT(!ToolFitsAngle(wanted, angle, step));
}
