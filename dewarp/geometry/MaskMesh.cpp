// Mesh of one privacy mask: its polygon, cut into triangles, over the whole image.
#include "dewarp/geometry/CustomGPUGeometry.h"
#include "dewarp/geometry/EarClipper.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

// Up to here n * n * 3 vertices (1 MB) are set aside, so that masks of everyday size share one allocation;
// beyond, what is written: 3 vertices for each of n - 2 triangles.
static const std::size_t GENEROUS_POINTS = 128;
// Farther out floats skip pixels, and drivers lose whole triangles when they clip them.
static const int FARTHEST = 1 << 24;
static const std::size_t MOST_POINTS = static_cast<std::size_t>(std::numeric_limits<int>::max()) / 3;

void CCustomGPUGeometry::GenerateFisheyeMaskVertices(SGPolygon sPolygon, int nWidth, int nHeight)
{
    m_nVertexCount = 0;
    const std::size_t n = sPolygon.vPoints.size();
    if (n < 3 || n > MOST_POINTS || nWidth < 1 || nHeight < 1)
        return;
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    m_fGeometryAspect = static_cast<float>(nWidth) / static_cast<float>(nHeight);
    CheckBufferSize(static_cast<int>(n <= GENEROUS_POINTS ? n * n * 3 : (n - 2) * 3));
    for (SGTriangle& sTriangle : TriangulatePolygon(std::move(sPolygon.vPoints))) {
        for (SGPoint& rCorner : sTriangle.aCorners) {
            rCorner.x = std::clamp(rCorner.x, -FARTHEST, FARTHEST);
            rCorner.y = std::clamp(rCorner.y, -FARTHEST, FARTHEST);
        }
        AddTriangle(sTriangle);
    }
}
