/// \file
/// Input frames of every layout, and the colour arithmetic of their formats in double precision.
#pragma once

#include "dewarp/records/SImageProperties.h"
#include "tests/support/TestImage.h"

#include <array>
#include <vector>

/// Red, green and blue, 0..1.
using FColour = std::array<double, 3>;
/// Bytes of one texel: luma, U, V.
using FYUVBytes = std::array<int, 3>;

/// Coefficients of one YUV space: red = y + fRedV v; green = y - fGreenU u - fGreenV v; blue = y + fBlueU u.
struct SYUVMatrix
{
    double fRedV;
    double fGreenU;
    double fGreenV;
    double fBlueU;
};
SYUVMatrix YUVMatrix(EYUVSpace eSpace);

/// What a texel of these bytes shows. Limited: 219 levels above 16 for luma, 223 about the middle for chroma.
FColour ColourOfYUV(const FYUVBytes& anBytes, EYUVSpace eSpace, bool bLimited);
/// The bytes that show a colour best.
FYUVBytes YUVOfColour(const FColour& aColour, EYUVSpace eSpace, bool bLimited);

/// One frame with planes of its own. The planes end with the last pixel of their last row, so that a checker
/// of memory sees a read beyond it; bytes between row end and stride are 0xA5.
class CTestFrame
{
public:
    /// nStride 0: as tight as the format allows (even for 4:2:0). The colour range and space are noted in the
    /// frame too.
    CTestFrame(const STestImage& sPicture, int nFormat, int nStride = 0, EYUVSpace eSpace = YUV_SPACE_BT601,
               bool bLimited = false);

    SImageProperties* Image() { return &m_sImage; }
    int Stride() const { return m_sImage.nStride; }
    /// What the texels of this pixel show, sampled without filtering.
    FColour ColourAt(int x, int y) const;

private:
    void FillPacked(const STestImage& sPicture, int nBytes, const int* pOrder);
    void FillYUV(const STestImage& sPicture);
    unsigned char* NewPlane(int nPlane, int nRowBytes, int nRows, int nStride);
    FYUVBytes BytesAt(int x, int y) const;

    SImageProperties m_sImage;
    std::vector<unsigned char> m_avPlanes[3];
    EYUVSpace m_eSpace;
    bool m_bLimited;
};

/// Bytes a pixel of the first plane.
int BytesPerPixel(int nFormat);
