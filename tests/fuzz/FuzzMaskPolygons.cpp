// Bytes to masks, back to bytes, and to triangles.
#include "FuzzSupport.h"

#include "dewarp/CustomGPUGeometry.h"
#include "dewarp/geometry/EarClipper.h"
#include "dewarp/geometry/PointTree.h"
#include "dewarp/overlays/MaskPolygonFormat.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

// Triangulating is slow beside parsing; this many points an input show every turn it can take.
static const std::size_t MOST_POINTS = 2000;

// Length of the whole records and their number, counted without the parser.
static std::size_t WholeBytes(const std::uint8_t* pData, std::size_t nSize, std::size_t& nRecords)
{
    std::size_t nOffset = 0;
    nRecords = 0;
    while (nSize - nOffset >= 2) {
        const std::size_t nPoints = pData[nOffset] * 256U + pData[nOffset + 1];
        if (nSize - nOffset < 6 + 4 * nPoints)
            break;
        nOffset += 6 + 4 * nPoints;
        ++nRecords;
    }
    return nOffset;
}

static TArea OutlineArea(const std::vector<SGPoint>& vPoints)
{
    TArea nSum = 0;
    for (std::size_t i = 0; i < vPoints.size(); ++i) {
        const SGPoint& sFrom = vPoints[i];
        const SGPoint& sTo = vPoints[(i + 1) % vPoints.size()];
        nSum += static_cast<TArea>(sFrom.x) * sTo.y - static_cast<TArea>(sFrom.y) * sTo.x;
    }
    return nSum < 0 ? -nSum : nSum;
}

// The signed areas of the triangles add up to the outline's, whatever its shape.
static void CheckTriangles(const SGPolygon& sPolygon)
{
    const std::vector<SGTriangle> vTriangles = TriangulatePolygon(sPolygon.vPoints);
    const std::size_t n = sPolygon.vPoints.size();
    Require(vTriangles.size() == (n < 3 ? 0 : n - 2), "n - 2 triangles");
    TArea nSum = 0;
    for (const SGTriangle& sTriangle : vTriangles)
        nSum += DoubleArea(sTriangle.aCorners[0], sTriangle.aCorners[1], sTriangle.aCorners[2]);
    Require(n < 3 || nSum == OutlineArea(sPolygon.vPoints), "areas add up");
}

static void CheckMesh(const SGPolygon& sPolygon, CCustomGPUGeometry& oGeometry, int nWidth, int nHeight)
{
    oGeometry.GenerateFisheyeMaskVertices(sPolygon, nWidth, nHeight);
    const std::size_t n = sPolygon.vPoints.size();
    const bool bMesh = n >= 3 && nWidth > 0 && nHeight > 0;
    const std::size_t nVertices = bMesh ? 3 * (n - 2) : 0;
    Require(static_cast<std::size_t>(oGeometry.m_nVertexCount) == nVertices, "3 vertices a triangle");
    Require(std::all_of(oGeometry.m_pVertices, oGeometry.m_pVertices + 3 * nVertices,
                        [](float f) { return std::isfinite(f); }),
            "finite positions");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize)
{
    if (nSize > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return 0;
    const CFuzzInput oInput;
    std::size_t nRecords = 0;
    const std::size_t nWhole = WholeBytes(pData, nSize, nRecords);
    const std::vector<SGPolygon> vPolygons = ParseMaskPolygons(pData, static_cast<int>(nSize));
    Require(vPolygons.size() == nRecords, "every whole record is read");
    const std::vector<unsigned char> vBytes = BuildMaskPolygons(vPolygons);
    Require(vBytes.size() == nWhole && std::equal(vBytes.begin(), vBytes.end(), pData), "same bytes again");

    std::size_t nLeft = MOST_POINTS;
    for (const SGPolygon& sPolygon : vPolygons) {
        if (sPolygon.vPoints.size() > nLeft)
            break;
        nLeft -= sPolygon.vPoints.size();
        CheckTriangles(sPolygon);
    }
    // One geometry for all inputs, as the dewarper has one for all masks. The image size comes from the
    // input, 0 and below among others.
    static CCustomGPUGeometry oGeometry;
    if (!vPolygons.empty() && vPolygons[0].vPoints.size() <= MOST_POINTS) {
        const int nColor = static_cast<int>(vPolygons[0].nColor & 0xFFFFU);
        CheckMesh(vPolygons[0], oGeometry, nColor - 100, 2000 - nColor / 32);
    }
    return 0;
}
