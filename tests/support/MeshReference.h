/// \file
/// What a view's mesh shows at each pixel, in double precision: the mesh and the matrices are the library's,
/// rasterising and sampling are not.
#pragma once

#include "dewarp/records/SDewarpParams.h"
#include "dewarp/records/SImageProperties.h"
#include "dewarp/records/SQPInfo.h"
#include "dewarp/records/SYUV2RGBConversionParams.h"
#include "tests/support/TestImage.h"

#include <array>
#include <vector>

/// A state in force.
struct SMeshState
{
    SDewarpParams sParams;
    int nRotation = 0;
    float fEyeDistance = 0.0f;
    bool bFlipHorizontal = false;
    bool bFlipVertical = false;
    int nTargetWidth = 0;
    int nTargetHeight = 0;
};

struct SMeshPixel
{
    bool bDrawn = false;
    bool bEdge = false; ///< a neighbour is drawn and this one not, or shows another part of the frame
    double u = 0.0;     ///< texture coordinate, mirrored as the state says
    double v = 0.0;
};

class CMeshReference
{
public:
    explicit CMeshReference(const SMeshState& rState);

    const SMeshPixel& At(int x, int y) const
    {
        return m_vPixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                         static_cast<std::size_t>(x)];
    }

private:
    struct SCorner; ///< in clip space
    struct STriangle;
    struct SPart;

    void DrawPart(const SPart& rPart, const std::vector<SCorner>& vCorners, bool bFan);
    void DrawTriangle(const SPart& rPart, const std::array<SCorner, 3>& aCorners);
    void DrawFlat(const SPart& rPart, const STriangle& rTriangle);
    void FindEdges();
    bool IsEdge(int x, int y, int nX, int nY) const;

    int m_nWidth;
    int m_nHeight;
    std::vector<SMeshPixel> m_vPixels;
    std::vector<std::array<double, 4>> m_vSlopes; ///< of u and v, a pixel to the right and one down
};

/// How a frame's bytes are shown.
struct SColourState
{
    SYUV2RGBConversionParams sYUV; ///< as set by the host
    bool bGain = false;
    double fLumaGain = 1.0;
    double fChromaGain = 1.0;
    bool bLinear = false;
    const SQPInfo* pQP = nullptr; ///< quantisers of a YUV420P frame, with types; null: none
};

/// Red, green, blue and alpha of a texture coordinate, levels.
std::array<double, 4> ReferenceColour(const SImageProperties& rImage, const SColourState& rState, double u,
                                      double v);

/// How near a coordinate comes to the border between two texels of any plane: texels.
double DistanceToTexelBorder(const SImageProperties& rImage, double u, double v);
/// The same for an image of that size.
double DistanceToTexelBorder(int nWidth, int nHeight, double u, double v);
