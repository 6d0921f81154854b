#include "dewarp/mapping/PointMap.h"

#include "dewarp/mapping/FramePosition.h"
#include "dewarp/mapping/TrianglePlaces.h"
#include "dewarp/mapping/ViewRules.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace
{

/// What rounding may do to a point there and back: pixels of the target, or of the frame.
const double ROUNDING = 1e-6;

/// A point of the frame as a position, and back.
SPointD PositionOf(const SPointD& rPoint)
{
    return {(rPoint.x - 0.5) * POSITION_ONE, (rPoint.y - 0.5) * POSITION_ONE};
}

SPointD PointOf(const SPointD& rPosition)
{
    return {rPosition.x / POSITION_ONE + 0.5, rPosition.y / POSITION_ONE + 0.5};
}

bool IsFinite(const SPointD& r)
{
    return std::isfinite(r.x) && std::isfinite(r.y);
}

/// Lets parts and bands count rows from the top.
void CountFromTop(SFrameDecision& d)
{
    if (d.sTarget.bTopDown)
        return;
    d.sTarget.bTopDown = true;
    for (int i = 0; i < d.nParts; ++i)
        d.aParts[i].nY = d.sTarget.nHeight - d.aParts[i].nY - d.aParts[i].nHeight;
    int* const p = d.sBands.anPlanes;
    if (p[2] == -1 || p[3] == -1)
        return;
    const int nTop = d.sTarget.nHeight - p[3];
    p[3] = d.sTarget.nHeight - p[2];
    p[2] = nTop;
}

/// Answers one question for each point.
template <class F>
int MapAll(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount, F&& rMap)
{
    if (pPoints == nullptr || pResults == nullptr)
        return FindNoPoints(pResults, pValid, nCount);
    int nFound = 0;
    for (int n = 0; n < nCount; ++n) {
        const SPointD sPoint = pPoints[n];
        FindNoPoints(pResults + n, pValid == nullptr ? nullptr : pValid + n, 1);
        SPointD sResult;
        if (!IsFinite(sPoint) || !rMap(sPoint, sResult) || !IsFinite(sResult))
            continue;
        pResults[n] = sResult;
        if (pValid != nullptr)
            pValid[n] = true;
        ++nFound;
    }
    return nFound;
}

} // namespace

void CPointMap::SetDrawn(const SFrameDecision& rDecision, bool bFlips)
{
    m_sDrawn = rDecision;
    if (!bFlips)
        m_sDrawn.sPicture.bFlipHorizontal = m_sDrawn.sPicture.bFlipVertical = false;
    CountFromTop(m_sDrawn);
}

bool CPointMap::Prepare()
{
    if (m_sDrawn.pView == nullptr)
        return false;
    if (m_bBuilt && ShowSamePlaces(m_sBuilt, m_sDrawn))
        return true;
    // Until it is whole the index is nobody's: memory may run out on the way.
    m_bBuilt = false;
    BuildMesh();
    BuildTriangles();
    m_sBuilt = m_sDrawn;
    m_bBuilt = true;
    return true;
}

void CPointMap::BuildMesh()
{
    if (m_sMeshBuiltFor == m_sDrawn.sMesh)
        return;
    m_sMeshBuiltFor = SMeshKey();
    m_sDrawn.pView->BuildMesh(m_oGeometry, m_sDrawn.sMesh);
    m_oMesh.Build(m_oGeometry, IsFan(m_sDrawn.sMesh));
    m_sMeshBuiltFor = m_sDrawn.sMesh;
}

void CPointMap::BuildTriangles()
{
    const SFrameShape sFrame = FrameShapeOf(m_sDrawn);
    m_sCuts = CutsOf(m_sDrawn.sBands, sFrame);
    m_vTriangles.clear();
    m_vViewBoxes.clear();
    m_vFrameBoxes.clear();
    for (int i = 0; i < m_sDrawn.nParts; ++i) {
        const SGRect sRect = PartRect(m_sDrawn.aParts[i], m_sDrawn);
        if (sRect.width < 1 || sRect.height < 1)
            continue;
        m_oProjection.Project(m_oMesh, m_sDrawn.aParts[i], sFrame);
        m_oProjection.Walk(m_oMesh, sRect.y - 1.0, sRect.y + sRect.height + 1.0,
                           [&](const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                               bool) { AddTriangle(rA, rB, rC, sRect); });
    }
    const double fWidth = sFrame.nWidth;
    const double fHeight = sFrame.nHeight;
    m_oViewBins.Build({0.0, 0.0, static_cast<double>(m_sDrawn.sTarget.nWidth),
                       static_cast<double>(m_sDrawn.sTarget.nHeight)},
                      m_vViewBoxes);
    m_oFrameBins.Build({0.0, 0.0, fWidth * POSITION_ONE, fHeight * POSITION_ONE}, m_vFrameBoxes);
}

void CPointMap::AddTriangle(const SScreenVertex& rA, const SScreenVertex& rB, const SScreenVertex& rC,
                            const SGRect& rRect)
{
    STriangle t;
    SScreenTriangle& s = t.s;
    if (!s.SetUp(OnLattice(rA), OnLattice(rB), OnLattice(rC), m_sCuts.bDepth))
        return;
    bool bGone = false;
    t.bCut = IsCut(s, m_sCuts, bGone);
    if (bGone || s.fRight < rRect.x || s.fLeft > rRect.x + rRect.width || s.fBottom < rRect.y ||
        s.fTop > rRect.y + rRect.height)
        return;
    t.sRect = rRect;
    const auto [fLeft, fRight] = std::minmax({rA.u / rA.fInverseW, rB.u / rB.fInverseW, rC.u / rC.fInverseW});
    const auto [fTop, fBottom] = std::minmax({rA.v / rA.fInverseW, rB.v / rB.fInverseW, rC.v / rC.fInverseW});
    const double fMargin = 2.0 * ROUNDING * POSITION_ONE;
    m_vTriangles.push_back(t);
    m_vViewBoxes.push_back({s.fLeft, s.fTop, s.fRight, s.fBottom});
    m_vFrameBoxes.push_back({fLeft - fMargin, fTop - fMargin, fRight + fMargin, fBottom + fMargin});
}

bool CPointMap::IsDrawnAt(const STriangle& t, double x, double y, SPointD& rPosition) const
{
    if (x < t.sRect.x || y < t.sRect.y || !(x < t.sRect.x + t.sRect.width) ||
        !(y < t.sRect.y + t.sRect.height) || !Covers(t.s, x, y))
        return false;
    const double dx = x - t.s.afX[0];
    const double dy = y - t.s.afY[0];
    t.s.Show(dx, dy, rPosition.x, rPosition.y);
    return !t.bCut || m_sCuts.Keep(t.s, dx, dy, rPosition.y);
}

/// What the last triangle that is drawn at a place shows there.
bool CPointMap::Show(double x, double y, SPointD& rPosition) const
{
    const std::span<const std::uint32_t> oTriangles = m_oViewBins.At(x, y);
    return std::any_of(oTriangles.rbegin(), oTriangles.rend(), [&](std::uint32_t n) {
        return m_vViewBoxes[n].Has(x, y, 0.0) && IsDrawnAt(m_vTriangles[n], x, y, rPosition);
    });
}

/// Where a position is seen first.
bool CPointMap::Find(const SPointD& rPosition, SPointD& rPlace) const
{
    for (const std::uint32_t n : m_oFrameBins.At(rPosition.x, rPosition.y)) {
        if (!m_vFrameBoxes[n].Has(rPosition.x, rPosition.y, 0.0))
            continue;
        SPointD aPlaces[MOST_PLACES];
        const int nPlaces = PlacesOf(m_vTriangles[n].s, rPosition, aPlaces);
        for (int i = 0; i < nPlaces; ++i) {
            if (!m_vViewBoxes[n].Has(aPlaces[i].x, aPlaces[i].y, ROUNDING) ||
                !Settle(m_vTriangles[n], rPosition, aPlaces[i]))
                continue;
            rPlace = aPlaces[i];
            return true;
        }
    }
    return false;
}

/// Whether a place of a triangle's plane shows a position. Where rounding has carried it over the triangle's
/// rim, or the target's, it is brought back.
bool CPointMap::Settle(const STriangle& t, const SPointD& rPosition, SPointD& rPlace) const
{
    const auto IsShown = [&](const SPointD& r) {
        SPointD s;
        return Show(r.x, r.y, s) && std::fabs(s.x - rPosition.x) <= ROUNDING * POSITION_ONE &&
               std::fabs(s.y - rPosition.y) <= ROUNDING * POSITION_ONE;
    };
    const auto Into = [](double f, int nFirst, int nSize) {
        const double fEnd = static_cast<double>(nFirst) + nSize;
        return f < nFirst && f >= nFirst - ROUNDING ? static_cast<double>(nFirst)
               : f >= fEnd && f <= fEnd + ROUNDING  ? std::nextafter(fEnd, 0.0)
                                                    : f;
    };
    const double fMiddleX = (t.s.afX[0] + t.s.afX[1] + t.s.afX[2]) / 3.0;
    const double fMiddleY = (t.s.afY[0] + t.s.afY[1] + t.s.afY[2]) / 3.0;
    const SPointD sPlace = rPlace;
    // Shares of the way to the middle: most need the least, one that is no wider than a hair the most.
    for (const double fShare : {0.0, 1e-10, 1e-8, 1e-6}) {
        rPlace = {Into(sPlace.x + (fMiddleX - sPlace.x) * fShare, t.sRect.x, t.sRect.width),
                  Into(sPlace.y + (fMiddleY - sPlace.y) * fShare, t.sRect.y, t.sRect.height)};
        if (IsShown(rPlace))
            return true;
    }
    return false;
}

/// Whether light reaches a point of the frame.
bool CPointMap::IsLit(const SPointD& rPoint) const
{
    return m_sDrawn.sBands.sRim.IsLit(rPoint.x / m_sDrawn.sParams.nImageWidth,
                                      rPoint.y / m_sDrawn.sParams.nImageHeight);
}

int CPointMap::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    const bool bReady = nCount > 0 && Prepare();
    return MapAll(pPoints, pResults, pValid, nCount, [&](const SPointD& rPoint, SPointD& rResult) {
        SPointD sPosition;
        const bool bFound = bReady && Show(rPoint.x, rPoint.y, sPosition);
        rResult = PointOf(sPosition);
        return bFound && IsLit(rResult);
    });
}

int CPointMap::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    const bool bReady = nCount > 0 && Prepare();
    return MapAll(pPoints, pResults, pValid, nCount, [&](const SPointD& rPoint, SPointD& rResult) {
        return bReady && IsLit(rPoint) && Find(PositionOf(rPoint), rResult);
    });
}

std::size_t CPointMap::CountBytes() const
{
    return m_vTriangles.capacity() * sizeof(STriangle) +
           (m_vViewBoxes.capacity() + m_vFrameBoxes.capacity()) * sizeof(SBox) + m_oViewBins.CountBytes() +
           m_oFrameBins.CountBytes();
}
