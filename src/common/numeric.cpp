#include "common/numeric.h"

#include <cmath>
#include <limits>
#include <utility>

#include "common/fault.h"
#include "common/numtext.h"

namespace tvx {
namespace {

// The period loops: add while below 0, subtract while at or above the period, so that an
// angle already in range keeps its bits. An angle so large that the loops would run for
// millions of turns (or never end, for an infinite value) is reduced by the remainder first.
//
// Below that every step of the loops but the last is exact (the period is a whole number and
// every value on the way a multiple of the angle's last place), so the value before the last
// step is the exact remainder, which fmod gives at once; the last steps, an addition that may
// round and what the second loop makes of it, are then made as the loops make them. The loops
// end on +0 for a multiple of the period.
double NormPeriod(double angle, double period) {
    if (!std::isfinite(angle)) return std::isnan(angle) ? angle : 0.0;
    if (angle >= 0 && angle < period) return angle;
    if (std::fabs(angle) > 1.0e9) {
        angle = std::fmod(angle, period);
        while (angle < 0) angle += period;
        while (angle >= period) angle -= period;
        return angle;
    }
    const double rest = std::fmod(angle, period);
    if (rest < 0) {
        // The last addition may round up to the period itself, which the loops then take back
        // to 0.
        const double turned = rest + period;
        return turned >= period ? turned - period : turned;
    }
    return rest == 0 ? 0.0 : rest;
}

}  // namespace

float ToSingleBeyondRange(double v) {
    constexpr double largest = static_cast<double>(std::numeric_limits<float>::max());
    // Values up to half a unit beyond the largest single still round to it.
    constexpr double limit = largest + largest / 33554432.0;  // 2^25: half a unit in the last place
    if (std::isfinite(v) && (v >= limit || v <= -limit))
        RunFault("Overflow: single " + Trim(PlainText(v)));
    if (std::isfinite(v) && v > largest) return std::numeric_limits<float>::max();
    if (std::isfinite(v) && v < -largest) return -std::numeric_limits<float>::max();
    return static_cast<float>(v);
}

double Norm360(double angle) { return NormPeriod(angle, 360.0); }
double Norm180(double angle) { return NormPeriod(angle, 180.0); }
double Norm90(double angle) { return NormPeriod(angle, 90.0); }

double RadToDeg(double radians) { return radians * 180.0 / Pi; }

void PolarToXY(double distance, double angle, double& x, double& y) {
    const double radians = Pi * (Norm360(angle) / 180.0);
    x = distance * std::cos(radians);
    y = distance * std::sin(radians);
}

void XYToPolar(double x, double y, double& distance, double& angle) {
    const int sx = x < 0 ? -1 : (x > 0 ? 1 : 0);
    const int sy = y < 0 ? -1 : (y > 0 ? 1 : 0);
    x = std::fabs(x);
    y = std::fabs(y);
    distance = std::sqrt(x * x + y * y);
    double a = 0;
    if (sx != 0 && sy != 0) a = RadToDeg(std::atan(y / x));
    double result = 0;
    if (sx < 0) {
        result = sy < 0 ? 180.0 + a : (sy == 0 ? 180.0 : 180.0 - a);
    } else if (sx == 0) {
        result = sy < 0 ? 270.0 : (sy == 0 ? 0.0 : 90.0);
    } else {
        result = sy < 0 ? 360.0 - a : (sy == 0 ? 0.0 : a);
    }
    angle = Norm360(result);
}

bool RoundsIntoInt32(double value, int32_t& out) {
    if (!std::isfinite(value)) return false;
    // The default rounding: halves to even. rint rounds as nearbyint does; it may raise the
    // inexact flag, which nothing reads, and so spares the save and restore of the
    // floating-point environment that nearbyint makes.
    const double r = std::rint(value);
    if (r < -2147483648.0 || r > 2147483647.0) return false;
    out = static_cast<int32_t>(r);
    return true;
}

double RoundToBeyondRange(double value, int places) {
    if (places > 6) places = 6;
    int32_t whole = 0;
    if (places >= 1) {
        const double scale = PowersOfTen[places];
        if (RoundsIntoInt32(value * scale, whole)) return static_cast<double>(whole) / scale;
    } else {
        if (RoundsIntoInt32(value, whole)) return static_cast<double>(whole);
    }
    if (std::isnan(value)) return value;
    // Beyond 32 bits: through the text form, cut behind the decimals. This path truncates.
    std::string text = PlainText(value);
    const auto point = text.find('.');
    if (point != std::string::npos) {
        const int keep = places < 0 ? 0 : places;
        text.append(static_cast<size_t>(keep), '0');
        text.resize(point + 1 + static_cast<size_t>(keep));
    }
    return LeadingNumber(text);
}

float AddAngles(double a, double b) { return ToSingle(Norm360(a + b)); }

void RotatePoint(double cx, double cy, double& x, double& y, double turn) {
    double distance = 0;
    double angle = 0;
    XYToPolar(x - cx, y - cy, distance, angle);
    double dx = 0;
    double dy = 0;
    PolarToXY(distance, angle + turn, dx, dy);
    x = cx + dx;
    y = cy + dy;
}

bool PointInBox(float a, float b, float c, float d, double x, double y) {
    if (a > c) std::swap(a, c);
    if (b > d) std::swap(b, d);
    return x >= a && x <= c && y >= b && y <= d;
}

void SwapValues(float& a, float& b) { std::swap(a, b); }
void SwapValues(double& a, double& b) { std::swap(a, b); }
void SwapIntegers(int16_t& a, int16_t& b) { std::swap(a, b); }
void SwapIntegers(int32_t& a, int32_t& b) { std::swap(a, b); }
void SwapTexts(std::string& a, std::string& b) { std::swap(a, b); }

void CopyPoint(const SinglePoint& source, SinglePoint& destination) { destination = source; }

int32_t ToInteger32(double value, const char* what) {
    int32_t out = 0;
    if (!RoundsIntoInt32(value, out)) RunFault(std::string("Overflow: ") + what + " " + Trim(PlainText(value)));
    return out;
}

int16_t ToInteger16(double value, const char* what) {
    int32_t out = 0;
    if (!RoundsIntoInt32(value, out) || out < -32768 || out > 32767)
        RunFault(std::string("Overflow: ") + what + " " + Trim(PlainText(value)));
    return static_cast<int16_t>(out);
}

int32_t FloorToInteger32(double value, const char* what) { return ToInteger32(std::floor(value), what); }
int32_t TruncToInteger32(double value, const char* what) { return ToInteger32(std::trunc(value), what); }

}  // namespace tvx
