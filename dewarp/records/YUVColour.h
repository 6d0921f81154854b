/// \file
/// Colours for pictures that stay YUV.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

/// Turns 0xRRGGBBAA into 0xYYUUVVAA: what masks, text and overlay pixels need when the dewarper draws YUV
/// buffers, where their three channels are mixed into Y, U and V as they are.
/// Units: bytes; the limited range is the one that the views' own conversion takes by default, luma 16..235
/// and chroma 16..239. Automatic space and range count as BT.601 and full.
/// Thread: any. Fails: never; unknown values count as automatic.
LUMOR_API unsigned int ConvertColourToYUV(unsigned int nRGBA, EYUVSpace eSpace, EYUVRange eRange);

/// The way back, as a view would show it: 0xYYUUVVAA to 0xRRGGBBAA. What YUV has beyond the colours is
/// limited. Thread: any. Fails: never.
LUMOR_API unsigned int ConvertYUVToColour(unsigned int nYUVA, EYUVSpace eSpace, EYUVRange eRange);
