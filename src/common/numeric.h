#pragma once
// Angles, rounding and plane geometry. Pi is the decimal 3.14159265 throughout, never the
// full-precision value: results that reach a machine depend on it.
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace tvx {

inline constexpr double Pi = 3.14159265;

// The powers of ten from 1E+00 to 1E+22, every one exact in a double.
inline constexpr double PowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Rounds a double to the nearest 32-bit single: every store into a record or a table cell
// goes through this. A finite value beyond the single's range is the fault "Overflow".
float ToSingleBeyondRange(double v);
inline float ToSingle(double v) {
    // The common case, a value within the single's range, inline; the rest (beyond it, or not
    // a number) is looked at out of line.
    if (std::fabs(v) <= static_cast<double>(std::numeric_limits<float>::max())) return static_cast<float>(v);
    return ToSingleBeyondRange(v);
}

double Norm360(double angle);
double Norm180(double angle);
double Norm90(double angle);
double RadToDeg(double radians);
void PolarToXY(double distance, double angle, double& x, double& y);
void XYToPolar(double x, double y, double& distance, double& angle);
// Rounds to the given decimal places (at most 6) through a whole number of units of the last
// place, halves to even; beyond 32 bits through the text form, cut behind the decimals.
double RoundToBeyondRange(double value, int places);
inline double RoundTo(double value, int places) {
    // The common case inline: the units of the last place fit a 32-bit integer. A result of
    // zero is +0, as the integer it came through gives it.
    if (places >= 1 && places <= 6) {
        const double scale = PowersOfTen[places];
        const double units = std::rint(value * scale);
        if (units >= -2147483648.0 && units <= 2147483647.0) return units == 0 ? 0.0 : units / scale;
    }
    return RoundToBeyondRange(value, places);
}
float AddAngles(double a, double b);
void RotatePoint(double cx, double cy, double& x, double& y, double turn);
bool PointInBox(float a, float b, float c, float d, double x, double y);

void SwapValues(float& a, float& b);
void SwapValues(double& a, double& b);
void SwapIntegers(int16_t& a, int16_t& b);
void SwapIntegers(int32_t& a, int32_t& b);
void SwapTexts(std::string& a, std::string& b);

struct SinglePoint {
    float X = 0;
    float Y = 0;
};
void CopyPoint(const SinglePoint& source, SinglePoint& destination);

// Rounding of a number to an integer with halves going to the even neighbour, as every
// conversion of a number into an integer cell does. A value outside the integer's range is a
// fault of the run ("Overflow"), naming what was converted.
bool RoundsIntoInt32(double value, int32_t& out);
int16_t ToInteger16(double value, const char* what = "integer");
int32_t ToInteger32(double value, const char* what = "long integer");
// The integer part towards minus infinity, and towards zero, as 32-bit integers; a value out
// of range is the same fault.
int32_t FloorToInteger32(double value, const char* what = "long integer");
int32_t TruncToInteger32(double value, const char* what = "long integer");

}  // namespace tvx
