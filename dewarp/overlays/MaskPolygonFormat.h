/// \file
/// Privacy masks as bytes: records back to back, numbers big-endian, no header.
///
///     2      number of points n, unsigned
///     4 * n  x and y of each point, signed 16 bit, pixels of the input image
///     4      colour, 0xRRGGBBAA
#pragma once

#include "dewarp/records/SGRect.h"
#include "platform/Export.h"

#include <vector>

/// Reads masks from bytes, in order; a mask of fewer than 3 points is kept.
/// Units: pixels. Owns: nothing; pData is read within nLength only.
/// Thread: any. Touches no GL.
/// Fails: no masks when pData is null or nLength below 1; an incomplete last record is dropped with a log
/// line.
LUMOR_API std::vector<SGPolygon> ParseMaskPolygons(const unsigned char* pData, int nLength);

/// The bytes from which ParseMaskPolygons reads these masks again.
/// Units: pixels. Owns: nothing. Thread: any. Touches no GL.
/// Fails: a coordinate outside -32768 to 32767, more than 65,535 points in a mask or more bytes than an int
/// can count is refused with a log line and no bytes at all. Masks never give no bytes otherwise, so ask
/// before handing on an empty list: it would take away every mask.
LUMOR_API std::vector<unsigned char> BuildMaskPolygons(const std::vector<SGPolygon>& vPolygons);
