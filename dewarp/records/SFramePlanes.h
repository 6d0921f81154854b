/// \file
/// One input frame as decoders and cameras have it: every plane with a stride of its own.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "dewarp/records/SImageProperties.h"
#include "platform/Export.h"

/// The planes are the host's and must stay valid until the next frame has been drawn.
/// Units: pixels, bytes. Rows may be followed by anything; chroma has half the columns and rows, rounded
/// down.
struct LUMOR_API SFramePlanes
{
    const unsigned char* apPlanes[3] = {nullptr, nullptr, nullptr}; ///< Y or all; U or both chroma; V
    int anStrides[3] = {0, 0, 0};                                   ///< from one row of a plane to the next
    int nWidth = 0;
    int nHeight = 0;
    EImageFormat eFormat = IMAGE_FORMAT_NV12;
    EYUVSpace eYUVSpace = YUV_SPACE_AUTO;
    EYUVRange eYUVRange = YUV_RANGE_AUTO;
    bool bGain = false; ///< multiply by the factors of SetGains
};
