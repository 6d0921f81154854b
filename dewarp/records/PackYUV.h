/// \file
/// Writes a drawn picture in the format of a target. The arithmetic is in integers: every processor writes
/// the same bytes.
#pragma once

#include "dewarp/records/SFrameTarget.h"
#include "dewarp/records/SYUV2RGBConversionParams.h"
#include "platform/Export.h"

/// From bytes of red, green and blue to bytes of Y, U and V, with 16 bits of fraction.
struct SYUVWeights
{
    int anY[3]; ///< of red, green and blue
    int anU[3];
    int anV[3];
    int nY;      ///< what is added to luma; half a step is in it, for rounding
    int nChroma; ///< what is added to chroma; half a step is in it
};

/// One pair of rows of a YUV picture. Owns: nothing.
struct SYUVRows
{
    unsigned char* pUpper; ///< luma
    unsigned char* pLower; ///< luma; the same row again where there is no second one
    unsigned char* pU;
    unsigned char* pV;
    int nChromaStep; ///< bytes from one chroma value to the next: 2 where U and V take turns
};

/// Weights of a space and range in force, with its levels where the range is limited: the way back from what
/// a view makes of its input. Automatic ones count as BT.601 and full. Thread: any. Fails: never.
LUMOR_INTERNAL_API SYUVWeights YUVWeightsOf(const SYUV2RGBConversionParams& rInForce);

/// Writes two rows of BGRA pixels; chroma is the mean of two by two pixels, or of those that there are at the
/// right edge. pLower is the upper row again where there is no second one. Thread: any. Fails: never.
LUMOR_INTERNAL_API void PackYUVRows(const SYUVWeights& rWeights, const unsigned char* pUpper,
                                    const unsigned char* pLower, int nWidth, const SYUVRows& rRows);

/// Writes a picture of BGRA pixels, top row first, into a target without faults. Bytes between row end and
/// stride stay as they are. Thread: any. Fails: never.
LUMOR_INTERNAL_API void PackPicture(const unsigned char* pPixels, int nStride, int nWidth, int nHeight,
                                    const SYUVWeights& rWeights, const SFrameTarget& rTarget);
