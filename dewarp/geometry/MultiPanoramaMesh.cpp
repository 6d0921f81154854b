/// \file
/// Meshes of the dual and triple panorama: strips of 90 degrees of azimuth that follow tilt and rotation.
/// They are rebuilt on every move of the view, so whatever does not depend on it is kept in tables.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/MeshInput.h"
#include "dewarp/geometry/RayRow.h"

#include <cmath>
#include <cstddef>
#include <cstring>

static constexpr int nRows = 31;
static constexpr int nCols = 76;
static constexpr int nHalfCols = nCols / 2; ///< columns of one strip
static constexpr int nRowStride = nCols * 5;
static constexpr int nStripVertices = (nRows - 1) * (nHalfCols - 1) * 6;
static constexpr int nGridVertices = (nRows - 1) * (nCols - 1) * 6;

static constexpr float fFirstRow = 0.9424778f; ///< radians: 54 degrees from the optical axis
static constexpr float fRowStep = 0.0418879f;  ///< radians: 2.4 degrees

namespace
{

/// What every build shares: azimuth and layout height of the columns. The second half of the columns starts
/// again at -90 degrees, where the first ended.
struct SColumns
{
    float afSin[nCols];
    float afCos[nCols];
    float afY[nCols];

    SColumns()
    {
        for (int c = 0; c < nCols; ++c) {
            const float fColumn = static_cast<float>(c < nHalfCols ? c : c - nHalfCols);
            float fAlpha = fColumn * -fPi / 74.0f;
            if (c >= nHalfCols)
                fAlpha = fAlpha - fHalfPi;
            afSin[c] = std::sin(fAlpha);
            afCos[c] = std::cos(fAlpha);
            afY[c] = c < nHalfCols ? -(fColumn * 0.027027028f - 1.0f) - 0.5f : fColumn * 0.027027028f - 0.5f;
        }
    }
};

/// One build: where the rays are turned to and how radii become texture coordinates.
struct SStripBuild
{
    const float* pSin;
    const float* pCos;
    const float* pTheta2r;
    float fCosRotation;
    float fSinRotation;
    SRayScale sScale;
};

} // namespace

static const SColumns& Columns()
{
    static const SColumns sColumns;
    return sColumns;
}

/// Texture coordinates of the first nCount columns of a row whose rays lie fElevation radians off the axis.
static void MapRow(const SStripBuild& sBuild, float fElevation, int nCount, SRayRow& sRow)
{
    const float se = std::sin(fElevation);
    const float ce = std::cos(fElevation);
    const float cr = sBuild.fCosRotation;
    const float sr = sBuild.fSinRotation;
    for (int c = 0; c < nCount; ++c) {
        const float fSide = se * sBuild.pCos[c];
        sRow.fA[c] = cr * ce - sr * fSide;
        sRow.fB[c] = -(fSide * cr) - sr * ce;
        sRow.fAxis[c] = -(se * sBuild.pSin[c]);
    }
    MapRayRow(sRow, nCount, sBuild.pTheta2r, sBuild.sScale);
}

/// Fills the grid of both strips; fShift is how far the strips stand off the layout's centre line.
static void FillGrid(const SStripBuild& sBuild, float fElevation, float fShift, float* pGrid)
{
    const float* pY = Columns().afY;
    SRayRow sRow;
    for (int r = 0; r < nRows; ++r) {
        MapRow(sBuild, fElevation + fFirstRow + static_cast<float>(r) * fRowStep, nCols, sRow);
        const float g = static_cast<float>(r) * 0.026666667f - 0.4f;
        float* pPoint = pGrid + static_cast<std::ptrdiff_t>(r) * nRowStride;
        for (int c = 0; c < nCols; ++c, pPoint += 5) {
            pPoint[0] = c < nHalfCols ? g - fShift : fShift - g;
            pPoint[1] = pY[c];
            pPoint[2] = 0.0f;
            pPoint[3] = sRow.fU[c];
            pPoint[4] = sRow.fV[c];
        }
    }
}

static SStripBuild PrepareBuild(const CCustomGPUGeometry& oGeometry, float fRotation)
{
    const float fScale = RadiusScale(oGeometry.m_fRadius, oGeometry.m_nImageHeight);
    const float fAspect = ImageAspect(oGeometry.m_nImageWidth, oGeometry.m_nImageHeight);
    return {oGeometry.m_pSin,    oGeometry.m_pCos,    oGeometry.m_pTheta2rMapping,
            std::cos(fRotation), std::sin(fRotation), {fScale / fAspect, fScale}};
}

static float RotationRadians(float fDegrees)
{
    return UsableAngle(fDegrees) * -fPi / 180.0f;
}

static void PrepareBuffers(CCustomGPUGeometry& oGeometry, int nGridFloats)
{
    const SColumns& sColumns = Columns();
    oGeometry.CheckTemporaryGridBuffer(nGridFloats);
    oGeometry.CheckSinCosBufferSize(nCols);
    std::memcpy(oGeometry.m_pSin, sColumns.afSin, sizeof(sColumns.afSin));
    std::memcpy(oGeometry.m_pCos, sColumns.afCos, sizeof(sColumns.afCos));
}

int CCustomGPUGeometry::GenerateDualPanoramaVertices(int nLensType, float fRotationAngle,
                                                     float fElevationOffset, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    DetermineRadius(nLensType, nWidth, nHeight);
    GenerateTheta2rMapping(nLensType);
    m_fGeometryAspect = MeshAspect(MESH_PANORAMA_DUAL, nWidth, nHeight);
    PrepareBuffers(*this, nRows * nRowStride);
    const SStripBuild sBuild = PrepareBuild(*this, RotationRadians(fRotationAngle));
    FillGrid(sBuild, UsableAngle(fElevationOffset) * fPi / 180.0f, 0.4f, m_pTempGrid);
    CheckBufferSize(nGridVertices);
    m_nVertexCount = nGridVertices;
    return GenerateTriangles(nRows, nCols, nRowStride, 0);
}

/// Moves the left strip to the middle and computes its texture coordinates anew, for rays turned a quarter
/// further and without elevation offset.
static void RemapMiddleStrip(const SStripBuild& sBuild, float* pGrid)
{
    SRayRow sRow;
    for (int r = 0; r < nRows; ++r) {
        MapRow(sBuild, fFirstRow + static_cast<float>(r) * fRowStep, nHalfCols, sRow);
        float* pPoint = pGrid + static_cast<std::ptrdiff_t>(r) * nRowStride;
        for (int c = 0; c < nHalfCols; ++c, pPoint += 5) {
            pPoint[0] += 0.8f;
            pPoint[3] = sRow.fU[c];
            pPoint[4] = sRow.fV[c];
        }
    }
}

/// Moves the left strip to the middle and turns its texture coordinates a quarter about the image centre.
static void TurnMiddleStrip(float fAspect, float* pGrid)
{
    for (int r = 0; r < nRows; ++r) {
        float* pPoint = pGrid + static_cast<std::ptrdiff_t>(r) * nRowStride;
        for (int c = 0; c < nHalfCols; ++c, pPoint += 5) {
            const float u = pPoint[3];
            const float v = pPoint[4];
            pPoint[0] += 0.8f;
            pPoint[3] = 0.5f - (v - 0.5f) / fAspect;
            pPoint[4] = fAspect * (u - 0.5f) + 0.5f;
        }
    }
}

int CCustomGPUGeometry::GenerateTriplePanoramaVertices(int nLensType, float fRotationAngle,
                                                       float fElevationOffset, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    DetermineRadius(nLensType, nWidth, nHeight);
    GenerateTheta2rMapping(nLensType);
    m_fGeometryAspect = MeshAspect(MESH_PANORAMA_TRIPLE, nWidth, nHeight);
    PrepareBuffers(*this, nRows * nRowStride * 3 / 2);
    const float fRotation = RotationRadians(fRotationAngle);
    const float fOffset = UsableAngle(fElevationOffset);
    FillGrid(PrepareBuild(*this, fRotation), fOffset * fPi / 180.0f, 0.8f, m_pTempGrid);
    CheckBufferSize(nGridVertices + nStripVertices);
    m_nVertexCount = nGridVertices + nStripVertices;
    const int n = GenerateTriangles(nRows, nCols, nRowStride, 0);
    if (fOffset != 0.0f)
        RemapMiddleStrip(PrepareBuild(*this, fRotation + fHalfPi), m_pTempGrid);
    else
        TurnMiddleStrip(ImageAspect(nWidth, nHeight), m_pTempGrid);
    return GenerateTriangles(nRows, nHalfCols, nRowStride, n);
}
