/// \file
/// Buffers of the mesh generator and the primitives its meshes share.
#include "dewarp/geometry/CustomGPUGeometry.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

/// Floats of a generator vertex: position x, y, z, then texture coordinate u, v.
static constexpr std::size_t nGridFloats = 5;

static void FreeFloats(float*& pFloats)
{
    delete[] pFloats;
    pFloats = nullptr;
}

/// A new array in place of an old one. A size that cannot be counted in bytes asks for all memory there is,
/// so that the allocation fails instead of coming out short.
static void ReplaceFloats(float*& pFloats, int nElements, std::size_t nFloatsEach)
{
    constexpr std::size_t nMaxFloats = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
    FreeFloats(pFloats);
    const std::size_t nCount = static_cast<std::size_t>(nElements);
    pFloats = new float[nCount > nMaxFloats / nFloatsEach ? nMaxFloats : nCount * nFloatsEach];
}

CCustomGPUGeometry::~CCustomGPUGeometry()
{
    FreeFloats(m_pR2ThetaMapping);
    FreeFloats(m_pTheta2rMapping);
    FreeFloats(m_pVCAMVertices);
    FreeFloats(m_pTempGrid);
    FreeFloats(m_pVertices);
    FreeFloats(m_pTexCoords);
    m_nVertexCount = 0;
    FreeFloats(m_pSin);
    FreeFloats(m_pCos);
    m_nSinCosSize = 0;
}

// The capacity counts as nothing until all arrays of a buffer exist: a failed allocation is made good by the
// next request.

void CCustomGPUGeometry::CheckTemporaryGridBuffer(int n)
{
    if (m_nTempGridSize >= n)
        return;
    m_nTempGridSize = 0;
    ReplaceFloats(m_pTempGrid, n, 1);
    m_nTempGridSize = n;
}

void CCustomGPUGeometry::CheckSinCosBufferSize(int n)
{
    if (m_nSinCosSize >= n)
        return;
    m_nSinCosSize = 0;
    ReplaceFloats(m_pSin, n, 1);
    ReplaceFloats(m_pCos, n, 1);
    m_nSinCosSize = n;
}

void CCustomGPUGeometry::CheckBufferSize(int n)
{
    if (m_nBufferSize >= n)
        return;
    m_nBufferSize = 0;
    ReplaceFloats(m_pVertices, n, 3);
    ReplaceFloats(m_pTexCoords, n, 2);
    m_nBufferSize = n;
}

/// Whether nFirst and the nCount entries from there on lie among nSize.
static bool HasRoom(std::int64_t nFirst, std::int64_t nCount, std::int64_t nSize)
{
    return nFirst >= 0 && nFirst + nCount <= nSize;
}

void CCustomGPUGeometry::AddVertex(float x, float y, float z, float u, float v)
{
    if (!HasRoom(m_nVertexCount, 1, m_nBufferSize))
        return;
    float* pVertex = m_pVertices + static_cast<std::size_t>(m_nVertexCount) * 3;
    float* pTexCoord = m_pTexCoords + static_cast<std::size_t>(m_nVertexCount) * 2;
    pVertex[0] = x;
    pVertex[1] = y;
    pVertex[2] = z;
    pTexCoord[0] = u;
    pTexCoord[1] = v;
    ++m_nVertexCount;
}

/// A part of an image side; the middle for an image without pixels.
static float PartOf(float fPixels, float fSide)
{
    return fSide == 0.0f ? 0.5f : fPixels / fSide;
}

/// Limits a pixel offset to half an image side either way; a NaN counts as too large.
static float LimitOffset(float fOffset, float fHalf)
{
    if (!(fOffset <= fHalf))
        fOffset = fHalf;
    if (fOffset < -fHalf)
        fOffset = -fHalf;
    return fOffset;
}

bool CCustomGPUGeometry::HasVCAMRoom(int nFirst, int nCount) const
{
    return m_pVCAMVertices != nullptr && HasRoom(nFirst, nCount, nVCAMBufferSize);
}

void CCustomGPUGeometry::AddVertex(int nIndex, float x, float y)
{
    if (HasVCAMRoom(nIndex, 1))
        PutVertex(nIndex, x, y);
}

void CCustomGPUGeometry::PutVertex(int nIndex, float x, float y)
{
    const float fWidth = static_cast<float>(m_nImageWidth);
    const float fHeight = static_cast<float>(m_nImageHeight);
    const float fDistance = std::sqrt(x * x + y * y);
    // A radial stretch: 1.5 at the centre, 1 at the rim, so that the cells are small where the lens is dense.
    float fStretch = fDistance * (-0.5f / m_fRadius) + 1.5f;
    if (!std::isfinite(fStretch))
        fStretch = 1.0f;
    const float fImageX = LimitOffset(fStretch * x, fWidth / 2.0f);
    const float fImageY = LimitOffset(fStretch * y, fHeight / 2.0f);
    float fX = 0.0f;
    float fY = 0.0f;
    float fZ = 0.0f;
    Fisheye2Sphere(fImageX, fImageY, fX, fY, fZ);
    const int nHalfWidth = m_nImageWidth / 2;
    const int nHalfHeight = m_nImageHeight / 2;
    float* pVertex = m_pVCAMVertices + static_cast<std::size_t>(nIndex) * nGridFloats;
    pVertex[0] = fX;
    pVertex[1] = fY;
    pVertex[2] = -fZ;
    pVertex[3] = PartOf(fImageX + static_cast<float>(nHalfWidth) + 1.0f, fWidth);
    pVertex[4] = PartOf(static_cast<float>(nHalfHeight) - fImageY, fHeight);
}

void CCustomGPUGeometry::AddTriangle(float x1, float y1, float x2, float y2, int& nIndex)
{
    if (!HasVCAMRoom(nIndex, 3))
        return;
    PutVertex(nIndex, x1, y1);
    PutVertex(nIndex + 1, x2, y1);
    PutVertex(nIndex + 2, x2, y2);
    nIndex += 3;
}

/// Copies one generator vertex over another of the same list.
static void CopyVertex(float* pList, int nFrom, int nTo)
{
    std::memmove(pList + static_cast<std::ptrdiff_t>(nTo) * static_cast<std::ptrdiff_t>(nGridFloats),
                 pList + static_cast<std::ptrdiff_t>(nFrom) * static_cast<std::ptrdiff_t>(nGridFloats),
                 nGridFloats * sizeof(float));
}

void CCustomGPUGeometry::AddTrianglesForQuad(float x, float y, float y2, int& nIndex)
{
    const int n = nIndex;
    if (n < 2 || !HasVCAMRoom(n, 6))
        return;
    CopyVertex(m_pVCAMVertices, n - 1, n);
    CopyVertex(m_pVCAMVertices, n - 2, n + 1);
    float fCircleY = std::sqrt(m_fRadius * m_fRadius - x * x);
    if (fCircleY > y)
        fCircleY = y;
    PutVertex(n + 2, x, fCircleY);
    CopyVertex(m_pVCAMVertices, n + 1, n + 3);
    PutVertex(n + 4, x, y2);
    CopyVertex(m_pVCAMVertices, n + 2, n + 5);
    nIndex = n + 6;
}

void CCustomGPUGeometry::AddTriangle(SGTriangle& sTriangle)
{
    if (!HasRoom(m_nVertexCount, 3, m_nBufferSize))
        return;
    const float fWidth = static_cast<float>(m_nImageWidth);
    const float fHeight = static_cast<float>(m_nImageHeight);
    for (const SGPoint& sCorner : sTriangle.aCorners) {
        const float x = PartOf(2.0f * static_cast<float>(sCorner.x), fWidth) - 1.0f;
        const float y = PartOf(2.0f * static_cast<float>(sCorner.y), fHeight) - 1.0f;
        AddVertex(x, -y, 0.0f, 0.0f, 0.0f);
    }
}

namespace
{

/// A grid point as it is copied around: its position with the float behind it, and its texture coordinate.
struct SCellCorner
{
    explicit SCellCorner(const float* pPoint)
    {
        std::memcpy(afPosition, pPoint, sizeof afPosition);
        std::memcpy(afTexCoord, pPoint + 3, sizeof afTexCoord);
    }

    /// Writes four floats; the fourth belongs to the next vertex, which is written after this one.
    void PutPosition(float* pVertex) const { std::memcpy(pVertex, afPosition, sizeof afPosition); }
    void PutTexCoord(float* pTexCoord) const { std::memcpy(pTexCoord, afTexCoord, sizeof afTexCoord); }

    float afPosition[4];
    float afTexCoord[2];
};

} // namespace

/// Writes the two triangles of one cell: A, B, C and C, D, A, but for the last vertex's position.
static void WriteCell(const SCellCorner& sA, const SCellCorner& sB, const SCellCorner& sC,
                      const SCellCorner& sD, float* pVertex, float* pTexCoord)
{
    sA.PutPosition(pVertex);
    sB.PutPosition(pVertex + 3);
    sC.PutPosition(pVertex + 6);
    sC.PutPosition(pVertex + 9);
    sD.PutPosition(pVertex + 12);
    sA.PutTexCoord(pTexCoord);
    sB.PutTexCoord(pTexCoord + 2);
    sC.PutTexCoord(pTexCoord + 4);
    sC.PutTexCoord(pTexCoord + 6);
    sD.PutTexCoord(pTexCoord + 8);
    sA.PutTexCoord(pTexCoord + 10);
}

int CCustomGPUGeometry::GenerateTriangles(int nRows, int nCols, int nRowStride, int nFirstVertex)
{
    if (nCols < 2 || nRows < 2)
        return nFirstVertex;
    const std::int64_t nCells = std::int64_t{nRows - 1} * (nCols - 1);
    const std::int64_t nLastRow = std::int64_t{nRows - 1} * nRowStride;
    if (nRowStride < 0 || !HasRoom(nLastRow, std::int64_t{nCols} * 5, m_nTempGridSize) ||
        nCells > m_nBufferSize || !HasRoom(nFirstVertex, nCells * 6, m_nBufferSize))
        return nFirstVertex;
    float* pVertex = m_pVertices + static_cast<std::size_t>(nFirstVertex) * 3;
    float* pTexCoord = m_pTexCoords + static_cast<std::size_t>(nFirstVertex) * 2;
    const std::ptrdiff_t nStride = nRowStride;
    const int nEnd = nFirstVertex + (nRows - 1) * (nCols - 1) * 6;
    int k = nFirstVertex;
    for (int j = 0; j < nCols - 1; ++j) {
        const float* pPoint = m_pTempGrid + nGridFloats * static_cast<std::size_t>(j);
        SCellCorner sA(pPoint);
        SCellCorner sD(pPoint + nGridFloats);
        for (int i = 0; i < nRows - 1; ++i) {
            pPoint += nStride;
            const SCellCorner sB(pPoint);
            const SCellCorner sC(pPoint + nGridFloats);
            WriteCell(sA, sB, sC, sD, pVertex, pTexCoord);
            k += 6;
            if (k < nEnd)
                sA.PutPosition(pVertex + 15);
            else // nothing may be written behind the mesh
                std::memcpy(pVertex + 15, pPoint - nStride, 3 * sizeof(float));
            sA = sB;
            sD = sC;
            pVertex += 18;
            pTexCoord += 12;
        }
    }
    return k;
}

void CCustomGPUGeometry::ReplicateVertex(int nFrom, int nTo)
{
    if (HasVCAMRoom(nFrom, 1) && HasVCAMRoom(nTo, 1))
        CopyVertex(m_pVCAMVertices, nFrom, nTo);
}
