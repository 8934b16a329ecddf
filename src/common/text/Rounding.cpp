#include "common/text/Rounding.h"

#include <cmath>

namespace nb {

double RoundAt(double value, double digits) {
    const double p = digits == 0 ? 1.0 : std::pow(10.0, digits);
    const double shifted = value < 0 ? p * value - 0.5 : p * value + 0.5;
    return std::trunc(shifted) / p;
}

double RoundHalfEven(double value) {
    const double floor = std::floor(value);
    const double fraction = value - floor;
    if (fraction > 0.5) return floor + 1;
    if (fraction < 0.5) return floor;
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

qint64 CLng(double value) {
    return qint64(RoundHalfEven(value));
}

int CInt(double value) {
    return int(RoundHalfEven(value));
}

} // namespace nb
