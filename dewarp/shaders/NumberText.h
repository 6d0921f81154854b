/// \file
/// Numbers as shader text.
#pragma once

#include <string>

/// A number as a default text stream writes it: six significant digits, the shorter of fixed and exponent
/// form, no trailing zeros, no forced decimal point (0.858824, 1, 1e+06). Always in the classic locale: the
/// program's own locale may group digits or write a comma, which no shader compiler takes.
/// Thread: any. Touches no GL.
/// Fails: never; what is not finite is written "inf" or "nan".
std::string NumberText(float fNumber);
std::string NumberText(int nNumber);

/// The number in fixed form with that many digits behind the point, rounded (0.6980).
std::string NumberTextFixed(float fNumber, int nDecimals);

/// As NumberText, with ".0" at the end when no decimal point was written (1.0, but also 1e+06.0).
std::string NumberTextWithPoint(float fNumber);
