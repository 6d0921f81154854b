/// \file
/// Mesh of the wall panorama: the half-sphere in front of a camera on a wall, unrolled through a grid of
/// rays two degrees apart.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/MeshInput.h"
#include "dewarp/geometry/RayRow.h"

#include <cmath>
#include <cstddef>

static constexpr int nGridSide = 91;
static constexpr int nRowStride = nGridSide * 5;
static constexpr int nMeshVertices = (nGridSide - 1) * (nGridSide - 1) * 6;

namespace
{

/// First ray and step of columns and rows, radians.
struct SWallSpan
{
    float fColumnStart = 0.0f;
    float fColumnStep = -0.034906585f;
    float fRowStart = 0.0f;
    float fRowStep = 0.034906585f;
};

/// Turns of the rays: by the camera's tilt, then about the optical axis.
struct SWallTurn
{
    float fCosTilt;
    float fSinTilt;
    float fCosRotation;
    float fSinRotation;
};

} // namespace

/// A tilt widens both spans by twice its size, so that the tilted half-sphere stays inside the grid.
static SWallSpan WidenedSpan(float fTiltAngle, float fTau)
{
    SWallSpan sSpan;
    sSpan.fColumnStart = std::fabs(fTiltAngle) * fPi / 180.0f;
    sSpan.fColumnStep = -((std::fabs(2.0f * fTiltAngle) + 180.0f) * fPi / 180.0f) / 90.0f;
    sSpan.fRowStep = (2.0f * std::fabs(fTau) + fPi) / 90.0f;
    sSpan.fRowStart = fTau > 0.0f ? -2.0f * fTau : 0.0f;
    return sSpan;
}

/// Turned rays of the row at fElevation radians.
static void TurnRow(const SWallTurn& sTurn, float fElevation, const float* pSin, const float* pCos,
                    SRayRow& sRow, float* pDepth)
{
    const float se = std::sin(fElevation);
    const float ce = std::cos(fElevation);
    const float c1 = sTurn.fCosTilt;
    const float s1 = sTurn.fSinTilt;
    const float c2 = sTurn.fCosRotation;
    const float s2 = sTurn.fSinRotation;
    for (int c = 0; c < nGridSide; ++c) {
        const float P = c1 * ce - s1 * se * pSin[c];
        const float Q = s1 * ce + c1 * se * pSin[c];
        sRow.fA[c] = c2 * P - s2 * se * pCos[c];
        sRow.fB[c] = -(se * pCos[c] * c2) - s2 * P;
        sRow.fAxis[c] = -Q;
        pDepth[c] = Q;
    }
}

void CCustomGPUGeometry::GeneratePanoramaWallVertices(int nLensType, float fTiltAngle, float fRotationAngle,
                                                      bool bFixedSpan, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    const float fRadius = DetermineRadius(nLensType, nWidth, nHeight);
    GenerateTheta2rMapping(nLensType);
    m_fGeometryAspect = MeshAspect(MESH_PANORAMA_WALL, nWidth, nHeight);
    CheckTemporaryGridBuffer(nGridSide * nRowStride);
    CheckSinCosBufferSize(nGridSide);

    const float fTilt = UsableAngle(fTiltAngle);
    const float fTau = fTilt * fPi / 180.0f;
    const SWallSpan sSpan = bFixedSpan ? SWallSpan() : WidenedSpan(fTilt, fTau);
    for (int c = 0; c < nGridSide; ++c) {
        const float fBeta = sSpan.fColumnStart + sSpan.fColumnStep * static_cast<float>(c);
        m_pSin[c] = std::sin(fBeta);
        m_pCos[c] = std::cos(fBeta);
    }
    const float fRho = UsableAngle(fRotationAngle) * -fPi / 180.0f;
    const SWallTurn sTurn = {std::cos(fTau), std::sin(fTau), std::cos(fRho), std::sin(fRho)};
    const float fScale = RadiusScale(fRadius, nHeight);
    const SRayScale sScale = {fScale / ImageAspect(nWidth, nHeight), fScale};
    SRayRow sRow;
    float afDepth[nGridSide];
    for (int r = 0; r < nGridSide; ++r) {
        const float fRow = static_cast<float>(r);
        TurnRow(sTurn, sSpan.fRowStart + sSpan.fRowStep * fRow, m_pSin, m_pCos, sRow, afDepth);
        MapRayRow(sRow, nGridSide, m_pTheta2rMapping, sScale);
        float* pPoint = m_pTempGrid + static_cast<std::ptrdiff_t>(r) * nRowStride;
        for (int c = 0; c < nGridSide; ++c, pPoint += 5) {
            pPoint[0] = static_cast<float>(c) * 0.022222223f - 1.0f;
            pPoint[1] = 2.0f * fRow / 90.0f - 1.0f;
            pPoint[2] = afDepth[c];
            pPoint[3] = sRow.fU[c];
            pPoint[4] = sRow.fV[c];
        }
    }
    CheckBufferSize(nMeshVertices);
    m_nVertexCount = nMeshVertices;
    GenerateTriangles(nGridSide, nGridSide, nRowStride, 0);
}
