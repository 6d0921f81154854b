/// \file
/// One input frame as the host hands it over.
#pragma once

#include "dewarp/records/Enumerations.h"
#include "platform/Export.h"

#include <initializer_list>

/// Planes belong to the host (unless bOwnsBuffers) and must stay valid until the next frame has been drawn.
/// Chroma rows are nStride / 2 (planar) or nStride (interleaved) bytes apart.
struct LUMOR_API SImageProperties
{
    unsigned char* pPlane0 = nullptr; ///< Y, or the only plane of a packed format
    unsigned char* pPlane1 = nullptr; ///< interleaved chroma, or U
    unsigned char* pPlane2 = nullptr; ///< V
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0; ///< bytes a row of the first plane
    int nReserved = 0;
    int nFormat = 0; ///< EImageFormat
    EYUVSpace eYUVSpace = YUV_SPACE_AUTO;
    EYUVRange eYUVRange = YUV_RANGE_AUTO;
    bool bOwnsBuffers = false; ///< the planes were allocated for this record with new[]

    /// Deletes the planes if this record owns them, and forgets them. The flag stays set.
    void FreeSelfBuffers()
    {
        if (!bOwnsBuffers)
            return;
        for (unsigned char** ppPlane : {&pPlane0, &pPlane1, &pPlane2}) {
            delete[] * ppPlane;
            *ppPlane = nullptr;
        }
    }
};
