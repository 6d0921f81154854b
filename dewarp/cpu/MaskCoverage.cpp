#include "dewarp/cpu/MaskCoverage.h"

#include "dewarp/geometry/CustomGPUGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <utility>

// A rasteriser's own grid, and what single precision does to corners far outside.
static const double WIDENING = 1.0 / 128.0;
static const double FAR_WIDENING = 1.0 / (1 << 22);

/// First whole number that is not below f, inside 0 .. nMost.
static int CeilInside(double f, int nMost)
{
    return static_cast<int>(std::clamp(std::ceil(f), 0.0, static_cast<double>(nMost)));
}

bool CMaskCoverage::SetUp(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight)
{
    m_vTriangles.clear();
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_nFirstRow = nHeight;
    m_nEndRow = 0;
    CCustomGPUGeometry oGeometry;
    for (std::size_t n = 0; n < vPolygons.size(); ++n) {
        if (vPolygons[n].vPoints.size() < 3)
            continue;
        oGeometry.GenerateFisheyeMaskVertices(vPolygons[n], nWidth, nHeight);
        if (oGeometry.m_nVertexCount == 0)
            return false;
        if ((vPolygons[n].nColor & 255) == 0)
            continue;
        for (int i = 0; i + 2 < oGeometry.m_nVertexCount; i += 3)
            AddTriangle(oGeometry.m_pVertices + std::ptrdiff_t{i} * 3, static_cast<int>(n));
    }
    m_nFirstRow = std::min(m_nFirstRow, m_nEndRow);
    return true;
}

void CMaskCoverage::AddTriangle(const float* pVertices, int nPolygon)
{
    STriangle s = {};
    s.nPolygon = nPolygon;
    double fFarthest = 0.0;
    for (int i = 0; i < 3; ++i) {
        // Corners are whole numbers: single precision has lost little of them.
        s.afX[i] = std::round((static_cast<double>(pVertices[3 * i]) + 1.0) * 0.5 * m_nWidth);
        s.afY[i] = std::round((1.0 - static_cast<double>(pVertices[3 * i + 1])) * 0.5 * m_nHeight);
        fFarthest = std::max({fFarthest, std::fabs(s.afX[i]), std::fabs(s.afY[i])});
    }
    const double fTurn =
        (s.afX[1] - s.afX[0]) * (s.afY[2] - s.afY[0]) - (s.afX[2] - s.afX[0]) * (s.afY[1] - s.afY[0]);
    if (fTurn == 0.0)
        return;
    if (fTurn < 0.0) {
        std::swap(s.afX[1], s.afX[2]);
        std::swap(s.afY[1], s.afY[2]);
    }
    s.fWidening = WIDENING + fFarthest * FAR_WIDENING;
    const auto [fTop, fBottom] = std::minmax({s.afY[0], s.afY[1], s.afY[2]});
    s.nFirstRow = CeilInside(fTop - s.fWidening - 0.5, m_nHeight);
    s.nEndRow = CeilInside(fBottom + s.fWidening + 0.5, m_nHeight);
    if (s.nFirstRow >= s.nEndRow)
        return;
    m_nFirstRow = std::min(m_nFirstRow, s.nFirstRow);
    m_nEndRow = std::max(m_nEndRow, s.nEndRow);
    m_vTriangles.push_back(s);
}

/// What a triangle covers of a line; edges lie farther out by its widening, corners no farther than that.
bool CMaskCoverage::FindSpan(const STriangle& r, double fY, double& rLeft, double& rRight)
{
    const auto [fLeft, fRight] = std::minmax({r.afX[0], r.afX[1], r.afX[2]});
    rLeft = fLeft - r.fWidening;
    rRight = fRight + r.fWidening;
    for (int i = 0; i < 3; ++i) {
        const int k = (i + 1) % 3;
        const double dx = r.afX[k] - r.afX[i];
        const double dy = r.afY[k] - r.afY[i];
        const double fOut = r.fWidening * std::hypot(dx, dy);
        const double fAlong = dx * (fY - r.afY[i]) + fOut;
        if (dy > 0.0)
            rRight = std::min(rRight, r.afX[i] + fAlong / dy);
        else if (dy < 0.0)
            rLeft = std::max(rLeft, r.afX[i] + fAlong / dy);
        else if (fAlong < 0.0)
            return false;
    }
    return rLeft <= rRight;
}

void CMaskCoverage::FindSpans(int nFirstRow, int nEndRow, std::vector<SMaskSpan>& rSpans) const
{
    rSpans.clear();
    for (const STriangle& rTriangle : m_vTriangles) {
        const int nEnd = std::min(nEndRow, rTriangle.nEndRow);
        for (int y = std::max(nFirstRow, rTriangle.nFirstRow); y < nEnd; ++y) {
            double fLeft = 0.0;
            double fRight = 0.0;
            if (!FindSpan(rTriangle, y + 0.5, fLeft, fRight))
                continue;
            const int nLeft = CeilInside(fLeft - 0.5, m_nWidth);
            const int nRight = std::min(m_nWidth, CeilInside(std::floor(fRight - 0.5) + 1.0, m_nWidth));
            if (nLeft < nRight)
                rSpans.push_back({y, rTriangle.nPolygon, nLeft, nRight});
        }
    }
    std::sort(rSpans.begin(), rSpans.end(), [](const SMaskSpan& a, const SMaskSpan& b) {
        return std::tie(a.y, a.nPolygon, a.x) < std::tie(b.y, b.nPolygon, b.x);
    });
}
