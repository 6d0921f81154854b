/// \file
/// One input picture in memory, laid out as the library takes it.
#pragma once

#include "dewarp/records/SImageProperties.h"

#include <array>
#include <cstddef>
#include <vector>

/// Bytes a pixel of the first plane of a format (EImageFormat).
int GetBytesPerPixel(int nFormat);

/// Units: pixels and bytes. Owns its planes; what Describe gives points into them.
struct SFrame
{
    int nFormat = 0; ///< EImageFormat
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0; ///< bytes a row of the first plane; even where chroma planes follow
    EYUVSpace eYUVSpace = YUV_SPACE_AUTO;
    EYUVRange eYUVRange = YUV_RANGE_AUTO;
    std::array<std::vector<unsigned char>, 3> avPlanes;

    SFrame() = default;
    SFrame(const SFrame&) = delete;
    SFrame& operator=(const SFrame&) = delete;
    SFrame(SFrame&&) = default;
    SFrame& operator=(SFrame&&) = default;

    /// Takes the size and makes room for the planes. nRowBytes 0: rows without padding.
    void Allocate(int nNewFormat, int nNewWidth, int nNewHeight, int nRowBytes = 0);
    int GetPlaneCount() const;
    /// Bytes from one row of a plane to the next, and its number of rows.
    int GetPlaneStride(int nPlane) const;
    int GetPlaneRows(int nPlane) const;
    SImageProperties Describe();
};
