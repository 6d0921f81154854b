/// \file
/// YUV colour conversions as numbers, and which one counts. Luma and full-range channels are 0..1, chroma is
/// -0.5..0.5.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

/// YUV to RGB: red = y + fRedV v; green = y - fGreenU u - fGreenV v; blue = y + fBlueU u.
struct SColourMatrix
{
    float fRedV;
    float fGreenU;
    float fGreenV;
    float fBlueU;
};

/// RGB to YUV: factors of red, green and blue, with their signs.
struct SYUVMatrix
{
    float fY[3];
    float fU[3];
    float fV[3];
};

/// How much of each colour is in luma: luma = (green + fRed red + fBlue blue) / (1 + fRed + fBlue).
struct SLumaShares
{
    float fRed;
    float fBlue;
};

/// The matrix of a YUV space. Unknown and automatic spaces count as BT.601. Thread: any. Fails: never.
LUMOR_INTERNAL_API const SColourMatrix& ColourMatrixOf(EYUVSpace eSpace);

/// What a YUV to RGB matrix says of luma: u and v in terms of it, put into the equation of green. Thread:
/// any. Fails: never.
SLumaShares LumaSharesOf(const SColourMatrix& rMatrix);

/// RGB frames whose gains are adjusted pass through YUV with these two, BT.601 to three decimals and back
/// with fewer: unit gains come close to the input, not back to it. Thread: any. Fails: never.
LUMOR_INTERNAL_API const SYUVMatrix& AdjustmentToYUV();
LUMOR_INTERNAL_API const SColourMatrix& AdjustmentToRGB();

/// The YUV space to convert from, 1 to 4: the requested one, or the frame's own one (1 to 3) when 0 is
/// requested. Everything else is BT.601.
/// Thread: any. Fails: never.
LUMOR_INTERNAL_API int EffectiveYUVSpace(int nRequested, int nReported);

/// 2, limited, when that is requested or 0 is requested and the frame says so; otherwise 1, full.
/// Thread: any. Fails: never.
LUMOR_INTERNAL_API int EffectiveYUVRange(int nRequested, int nReported);
