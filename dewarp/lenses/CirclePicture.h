/// \file
/// A frame as the search for its image circle sees it: the luma plane, a small copy of it, and how dark it is
/// around the circle.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// One byte a pixel, nStride bytes from one row to the next.
/// Owns: nothing; the bytes must outlive it.
struct SLumaPlane
{
    const unsigned char* pLuma = nullptr;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;

    const unsigned char* Row(int nRow) const
    {
        return pLuma + static_cast<std::ptrdiff_t>(nRow) * static_cast<std::ptrdiff_t>(nStride);
    }
};

/// Averages of nScale x nScale pixels; columns and rows that do not fill one are left out.
struct SSmallPicture
{
    int nScale = 1;
    int nCols = 0;
    int nRows = 0;
    std::vector<float> vLevels;

    float At(int nCol, int nRow) const
    {
        return vLevels[static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nCols) +
                       static_cast<std::size_t>(nCol)];
    }
};

/// What lies around the circle, in levels of the small picture.
struct SSurround
{
    double fLevel = 0.0;  ///< where no light falls
    double fNoise = 0.0;  ///< standard deviation of one small pixel
    std::string strFault; ///< why there is none; empty when there is
};

/// The picture with its longer side at most nLongSide.
/// Thread: any. Fails: only for want of memory.
SSmallPicture ShrinkPicture(const SLumaPlane& rPlane, int nLongSide);

/// The darkest level that several places at the frame's edge have in common. A circle leaves at least one
/// corner of its frame free, or all of its rim is outside.
/// Thread: any. Fails: says why there is none.
SSurround FindSurround(const SSmallPicture& rPicture);

/// The middle one of some numbers; 0 of none. Reorders them.
double TakeMedian(std::vector<double>& rNumbers);
