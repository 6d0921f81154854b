/// \file
/// Strings as bytes: records back to back, numbers big-endian, no header.
///
///     2  number of characters L, unsigned
///     L  characters, a byte each
///     2  nX, signed 16 bit          4  nColor, 0xRRGGBBAA
///     2  nY, signed 16 bit          1  nHAlign     1  nVAlign
///     2  nHeight, unsigned 16 bit   1  nHRef       1  nVRef
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "platform/Export.h"

#include <vector>

/// Reads strings from bytes, in order. Nothing was drawn of them: rectangle and overlap group are 0.
/// Units: pixels. Owns: nothing; pData is read within nLength only.
/// Thread: any. Touches no GL.
/// Fails: no strings when pData is null or nLength below 1; an incomplete last record is dropped with a log
/// line.
LUMOR_API std::vector<SGPUString> ParseStrings(const unsigned char* pData, int nLength);

/// The bytes from which ParseStrings reads these strings again; what was drawn is not kept.
/// Units: pixels. Owns: nothing. Thread: any. Touches no GL.
/// Fails: a place outside -32768 to 32767, a height or length outside 0 to 65,535, an alignment or reference
/// outside 0 to 255 or more bytes than an int can count is refused with a log line and no bytes at all.
/// Strings never give no bytes otherwise.
LUMOR_API std::vector<unsigned char> BuildStrings(const std::vector<SGPUString>& vStrings);
