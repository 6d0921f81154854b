/// \file
/// Mesh of the single panorama: the 360-degree band, laid out twice side by side so that it can be scrolled
/// without an end.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/MeshInput.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

static constexpr int nRows = 21;
static constexpr int nCols = 143;
static constexpr int nRowStride = nCols * 5;
static constexpr int nBandVertices = (nRows - 1) * (nCols - 1) * 6;

/// Twice the height of the band times its aspect of 50 / 7.
static constexpr float fBandWidth = 14.285715f;

/// Radius of each row's ring in parts of half the image height; rows go from 90 degrees down to 39.6.
static std::array<float, nRows> RingRadii(const float* pTheta2r, float fScale)
{
    std::array<float, nRows> afRadii{};
    for (int i = 0; i < nRows; ++i) {
        const float t = (static_cast<float>(i) * -0.56f / 20.0f + 1.0f) * 90.0f;
        afRadii[static_cast<std::size_t>(i)] = fScale * LookupRadius(pTheta2r, t);
    }
    return afRadii;
}

static void FillGrid(const std::array<float, nRows>& afRadii, float fAspect, float* pGrid)
{
    for (int c = 0; c < nCols; ++c) {
        const float fColumn = static_cast<float>(c);
        const float fPhi = fColumn * 6.2831855f / 142.0f + fPi;
        const float fSin = std::sin(fPhi) / fAspect;
        const float fCos = std::cos(fPhi);
        const float x = -fBandWidth - fColumn * -fBandWidth / 142.0f;
        for (int i = 0; i < nRows; ++i) {
            const float fRadius = afRadii[static_cast<std::size_t>(i)];
            float* pPoint = pGrid + static_cast<std::ptrdiff_t>(i) * nRowStride + c * 5;
            pPoint[0] = x;
            pPoint[1] = static_cast<float>(i) * -0.1f + 1.0f;
            pPoint[2] = 0.0f;
            pPoint[3] = fSin * -0.5f * fRadius + 0.5f;
            pPoint[4] = 0.5f - fCos * -0.5f * fRadius;
        }
    }
}

void CCustomGPUGeometry::GeneratePanoramaVertices(int nLensType, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    const float fRadius = DetermineRadius(nLensType, nWidth, nHeight);
    GenerateTheta2rMapping(nLensType);
    m_fGeometryAspect = MeshAspect(MESH_PANORAMA, nWidth, nHeight);
    CheckTemporaryGridBuffer(nRows * nRowStride);
    FillGrid(RingRadii(m_pTheta2rMapping, RadiusScale(fRadius, nHeight)), ImageAspect(nWidth, nHeight),
             m_pTempGrid);

    CheckBufferSize(2 * nBandVertices);
    m_nVertexCount = 2 * nBandVertices;
    const std::size_t n = static_cast<std::size_t>(GenerateTriangles(nRows, nCols, nRowStride, 0));
    std::memcpy(m_pTexCoords + 2 * n, m_pTexCoords, 2 * n * sizeof(float));
    std::memcpy(m_pVertices + 3 * n, m_pVertices, 3 * n * sizeof(float));
    for (std::size_t k = n; k < 2 * n; ++k)
        m_pVertices[3 * k] += fBandWidth;
}
