/// \file
/// Mesh of the virtual camera: the half-sphere in front of the lens, every vertex carrying the texture
/// coordinate of its fisheye pixel. One quadrant of the disc is cut to the lens circle, then mirrored.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/MeshAspect.h"
#include "dewarp/geometry/VCAMBuild.h"
#include "platform/Assert.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

/// The walk along a row must stay on the grid.
static void CheckColumn(int nGridPointIndex, int nLine)
{
    if (!(nGridPointIndex < CVCAMBuild::nGridCols))
        __assert2("dewarp/CustomGPUGeometry", nLine,
                  "void CCustomGPUGeometry::GenerateVCAMVertices(int, int, int)",
                  "nGridPointIndex < nGridCols");
}

CVCAMBuild::CVCAMBuild(CCustomGPUGeometry& oGeometry, float fHalfWidth, float fHalfHeight)
    : m_oGeometry(oGeometry), m_fHalfWidth(fHalfWidth), m_fHalfHeight(fHalfHeight),
      m_fPreviousEdge(-std::sqrt(oGeometry.m_fRadius * oGeometry.m_fRadius - fHalfHeight * fHalfHeight)),
      m_fPreviousY(fHalfHeight)
{}

void CVCAMBuild::FillGrid()
{
    float* pPoint = m_oGeometry.m_pTempGrid;
    for (int j = 0; j < nGridRows; ++j) {
        const float y = m_fHalfHeight + m_fHalfHeight * -2.0f / 60.0f * static_cast<float>(j);
        for (int i = 0; i < nGridCols; ++i, pPoint += 2) {
            const float x = 2.0f * m_fHalfWidth / 60.0f * static_cast<float>(i) - m_fHalfWidth;
            // The quadrant's inner edges lie exactly on the axes.
            pPoint[0] = i == nGridCols - 1 ? 0.0f : x;
            pPoint[1] = j == nGridRows - 1 ? 0.0f : y;
        }
    }
}

float* CVCAMBuild::Band(int nBand) const
{
    return m_oGeometry.m_pVCAMVertices + static_cast<std::ptrdiff_t>(nBand) * nBandVertices * 5;
}

/// The circle widens within the band: a triangle at its new edge, then quads up to its old edge. Returns the
/// column after the last one used.
int CVCAMBuild::StartWideningBand(int nFirstCol, float fEdge, float y, int& nVertex, int& nTriangles)
{
    const float fRadius = m_oGeometry.m_fRadius;
    const float fFirstX = GridX(nFirstCol);
    m_oGeometry.AddTriangle(fEdge, y, fFirstX, std::sqrt(fRadius * fRadius - fFirstX * fFirstX), nVertex);
    ++nTriangles;
    int nGridPointIndex = nFirstCol + 1;
    while (nGridPointIndex < nGridCols && GridX(nGridPointIndex) < m_fPreviousEdge) {
        m_oGeometry.AddTrianglesForQuad(GridX(nGridPointIndex), m_fPreviousY, y, nVertex);
        nTriangles += 2;
        ++nGridPointIndex;
        CheckColumn(nGridPointIndex, __LINE__);
    }
    m_oGeometry.AddTrianglesForQuad(m_fPreviousEdge, m_fPreviousY, y, nVertex);
    nTriangles += 2;
    return nGridPointIndex;
}

void CVCAMBuild::BuildBand(int nBand)
{
    const float fRadius = m_oGeometry.m_fRadius;
    const float y = m_oGeometry.m_pTempGrid[static_cast<std::ptrdiff_t>(nBand + 1) * nGridCols * 2 + 1];
    const float fEdge = std::max(-std::sqrt(fRadius * fRadius - y * y), GridX(0));
    int nGridPointIndex = 0;
    while (nGridPointIndex < nGridCols && !(GridX(nGridPointIndex) > fEdge))
        ++nGridPointIndex;
    CheckColumn(nGridPointIndex, __LINE__);

    int nVertex = nBand * nBandVertices;
    int nTriangles = 0;
    if (GridX(nGridPointIndex) <= m_fPreviousEdge) {
        nGridPointIndex = StartWideningBand(nGridPointIndex, fEdge, y, nVertex, nTriangles);
    } else {
        // The column stays to be processed: it gets a second quad, without area, in the walk below.
        m_oGeometry.AddTriangle(fEdge, y, m_fPreviousEdge, m_fPreviousY, nVertex);
        m_oGeometry.AddTrianglesForQuad(GridX(nGridPointIndex), m_fPreviousY, y, nVertex);
        nTriangles += 3;
    }
    for (; nGridPointIndex < nGridCols; ++nGridPointIndex) {
        m_oGeometry.AddTrianglesForQuad(GridX(nGridPointIndex), m_fPreviousY, y, nVertex);
        nTriangles += 2;
    }
    m_anTriangles[static_cast<std::size_t>(nBand)] = nTriangles;
    m_fPreviousEdge = fEdge;
    m_fPreviousY = y;
}

int CVCAMBuild::CountTriangles() const
{
    return std::accumulate(m_anTriangles.begin(), m_anTriangles.end(), 0);
}

static void PutOnVerticalAxis(float* pVertex)
{
    pVertex[0] = 0.0f;
    pVertex[3] = 0.5f;
}

static void PutOnHorizontalAxis(float* pVertex)
{
    pVertex[1] = 0.0f;
    pVertex[4] = 0.5f;
}

void CVCAMBuild::CloseSeams()
{
    for (int j = 0; j < nBands; ++j) {
        float* pEnd = Band(j) + static_cast<std::ptrdiff_t>(m_anTriangles[static_cast<std::size_t>(j)]) * 15;
        PutOnVerticalAxis(pEnd - 4 * 5);
        PutOnVerticalAxis(pEnd - 2 * 5);
        PutOnVerticalAxis(pEnd - 1 * 5);
    }
    const int nVertices = 3 * m_anTriangles[nBands - 1];
    float* pBand = Band(nBands - 1);
    for (std::ptrdiff_t n = 0;; n += 6) {
        PutOnHorizontalAxis(pBand + n * 5);
        PutOnHorizontalAxis(pBand + (n + 1) * 5);
        if (n + 4 >= nVertices)
            break;
        PutOnHorizontalAxis(pBand + (n + 4) * 5);
    }
}

/// A single mirror reverses the order of the vertices, which keeps the winding within a half.
void CVCAMBuild::EmitQuadrant(const float* pBand, int nVertices, bool bMirrorX, bool bMirrorY)
{
    float* pPosition = m_oGeometry.m_pVertices + static_cast<std::ptrdiff_t>(m_oGeometry.m_nVertexCount) * 3;
    float* pTexCoord = m_oGeometry.m_pTexCoords + static_cast<std::ptrdiff_t>(m_oGeometry.m_nVertexCount) * 2;
    for (int k = 0; k < nVertices; ++k) {
        const float* pVertex = pBand + static_cast<std::ptrdiff_t>(bMirrorX ? nVertices - 1 - k : k) * 5;
        *pPosition++ = bMirrorX ? -pVertex[0] : pVertex[0];
        *pPosition++ = bMirrorY ? -pVertex[1] : pVertex[1];
        *pPosition++ = pVertex[2];
        *pTexCoord++ = bMirrorX ? 0.5f - (pVertex[3] - 0.5f) : pVertex[3];
        *pTexCoord++ = bMirrorY ? 1.0f - pVertex[4] : pVertex[4];
    }
    m_oGeometry.m_nVertexCount += nVertices;
}

void CVCAMBuild::Emit()
{
    for (int j = 0; j < nBands; ++j) {
        const int nVertices = 3 * m_anTriangles[static_cast<std::size_t>(j)];
        EmitQuadrant(Band(j), nVertices, false, false);
        EmitQuadrant(Band(j), nVertices, true, false);
    }
    for (int j = nBands - 1; j >= 0; --j) {
        const int nVertices = 3 * m_anTriangles[static_cast<std::size_t>(j)];
        EmitQuadrant(Band(j), nVertices, false, true);
        EmitQuadrant(Band(j), nVertices, true, true);
    }
}

void CCustomGPUGeometry::GenerateVCAMVertices(int nLensType, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    const float fRadius = DetermineRadius(nLensType, nWidth, nHeight);
    m_fGeometryAspect = MeshAspect(MESH_VCAM, nWidth, nHeight);
    GenerateR2ThetaMapping(nLensType);
    CheckTemporaryGridBuffer(CVCAMBuild::nGridRows * CVCAMBuild::nGridCols * 2);
    delete[] m_pVCAMVertices;
    m_pVCAMVertices = nullptr;
    if (nWidth < 1 || nHeight < 1)
        return;
    m_pVCAMVertices = new float[static_cast<std::size_t>(nVCAMBufferSize) * 5];
    // A circle larger than the frame is cut at the frame.
    CVCAMBuild oBuild(*this, std::min(static_cast<float>(nWidth) * 0.5f, fRadius),
                      std::min(static_cast<float>(nHeight) * 0.5f, fRadius));
    oBuild.FillGrid();
    for (int j = 0; j < CVCAMBuild::nBands; ++j)
        oBuild.BuildBand(j);
    CheckBufferSize(12 * oBuild.CountTriangles());
    oBuild.CloseSeams();
    oBuild.Emit();
    delete[] m_pVCAMVertices;
    m_pVCAMVertices = nullptr;
}
