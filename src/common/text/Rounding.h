#pragma once
// Two roundings live side by side and must not be mixed up:
//  - RoundAt is the program's own arithmetic rounding, half away from zero (line tax of a
//    statement, the summary invoice); the number masks round the same way.
//  - RoundHalfEven / CLng are the platform's integer conversions, half to even ("banker's"),
//    which the invoice arithmetic goes through wherever it turns a float into an integer.

#include <QtGlobal>

namespace nb {

// p = 1 for 0 digits, else 10^digits; (p * value ± 0.5) with the fraction dropped, over p.
// Worked in 64-bit floats exactly so: RoundAt(1.005, 2) is 1 because 1.005 * 100 is
// 100.49999999999999.
double RoundAt(double value, double digits);

// Nearest integer, a half going to the even neighbour: 2.5 -> 2, 3.5 -> 4, -2.5 -> -2.
double RoundHalfEven(double value);
// The platform's conversion to a 32-bit/64-bit integer: RoundHalfEven, then the integer.
qint64 CLng(double value);
int CInt(double value);

} // namespace nb
