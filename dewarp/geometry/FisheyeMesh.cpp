/// \file
/// Meshes of the fisheye view: the whole frame as a rectangle, and the lens circle as a fan. Positions span
/// -1..1 vertically and the frame's aspect horizontally.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/MeshInput.h"

#include <cmath>

void CCustomGPUGeometry::GenerateFisheyeVertices(int nWidth, int nHeight)
{
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    m_nVertexCount = 0;
    const float a = MeshAspect(MESH_FISHEYE, nWidth, nHeight);
    m_fGeometryAspect = a;
    CheckBufferSize(6);
    AddVertex(-a, 1.0f, 0.0f, 0.0f, 0.0f);
    AddVertex(-a, -1.0f, 0.0f, 0.0f, 1.0f);
    AddVertex(a, -1.0f, 0.0f, 1.0f, 1.0f);
    AddVertex(a, -1.0f, 0.0f, 1.0f, 1.0f);
    AddVertex(a, 1.0f, 0.0f, 1.0f, 0.0f);
    AddVertex(-a, 1.0f, 0.0f, 0.0f, 0.0f);
}

/// Replaces what lies beyond a bound by the bound on the same side.
static float ClampSigned(float fValue, float fBound)
{
    return std::fabs(fValue) > fBound ? std::copysign(fBound, fValue) : fValue;
}

void CCustomGPUGeometry::GenerateCircularFisheyeVertices(int nLensType, int nWidth, int nHeight)
{
    constexpr int nRimPoints = 181;
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    m_nVertexCount = 0;
    const float a = MeshAspect(MESH_FISHEYE_CIRCULAR, nWidth, nHeight);
    m_fGeometryAspect = a;
    const float fRadius = DetermineRadius(nLensType, nWidth, nHeight);
    CheckBufferSize(nRimPoints + 1);
    AddVertex(0.0f, 0.0f, 0.0f, 0.5f, 0.5f);
    // Two per cent outside the lens circle: the rim is never cut.
    const float fFanRadius = fRadius * 1.02f;
    const float s = nHeight == 0 ? 0.0f : 2.0f * fFanRadius / static_cast<float>(nHeight);
    for (int k = 0; k < nRimPoints; ++k) {
        const float t = static_cast<float>(2 * k) * fPi / 180.0f;
        float x = s * std::cos(t);
        float y = s * std::sin(t);
        if (fRadius > 0.0f) {
            x = ClampSigned(x, a);
            y = ClampSigned(y, 1.0f);
        }
        AddVertex(x, y, 0.0f, x / a * 0.5f + 0.5f, 0.5f - y * 0.5f);
    }
}
