#include "dewarp/geometry/PointTree.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <numeric>

static const std::size_t LEAF_POINTS = 8;
static const int MAX_DEPTH = 60;

TArea DoubleArea(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC)
{
    const long long nABX = static_cast<long long>(sB.x) - sA.x;
    const long long nABY = static_cast<long long>(sB.y) - sA.y;
    const long long nACX = static_cast<long long>(sC.x) - sA.x;
    const long long nACY = static_cast<long long>(sC.y) - sA.y;
    return static_cast<TArea>(nABX) * nACY - static_cast<TArea>(nABY) * nACX;
}

static bool SamePlace(const SGPoint& sA, const SGPoint& sB)
{
    return sA.x == sB.x && sA.y == sB.y;
}

// Distance of a point from the middle of a box, along the axes, doubled.
static long long DistanceFromMiddle(const SGPoint& sPoint, const SGPoint& sMin, const SGPoint& sMax)
{
    return std::llabs(static_cast<long long>(sMin.x) + sMax.x - 2LL * sPoint.x) +
           std::llabs(static_cast<long long>(sMin.y) + sMax.y - 2LL * sPoint.y);
}

struct CPointTree::SQuery
{
    std::array<SGPoint, 3> asCorners;
    SGPoint sMin;
    SGPoint sMax;

    SQuery(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC)
        : asCorners{sA, sB, sC}, sMin{std::min({sA.x, sB.x, sC.x}), std::min({sA.y, sB.y, sC.y})},
          sMax{std::max({sA.x, sB.x, sC.x}), std::max({sA.y, sB.y, sC.y})}
    {}

    bool IsCorner(const SGPoint& sPoint) const
    {
        return SamePlace(sPoint, asCorners[0]) || SamePlace(sPoint, asCorners[1]) ||
               SamePlace(sPoint, asCorners[2]);
    }

    // The box test also settles triangles without area: on their line every sign is zero.
    bool Contains(const SGPoint& sPoint) const
    {
        if (sPoint.x < sMin.x || sPoint.x > sMax.x || sPoint.y < sMin.y || sPoint.y > sMax.y)
            return false;
        for (std::size_t i = 0; i < 3; ++i)
            if (DoubleArea(asCorners[i], asCorners[(i + 1) % 3], sPoint) < 0)
                return false;
        return !IsCorner(sPoint);
    }

    // False only when no point of the box can count.
    bool MayTouch(const SGPoint& sBoxMin, const SGPoint& sBoxMax) const
    {
        if (sBoxMin.x > sMax.x || sBoxMax.x < sMin.x || sBoxMin.y > sMax.y || sBoxMax.y < sMin.y)
            return false;
        if (SamePlace(sBoxMin, sBoxMax) && IsCorner(sBoxMin))
            return false;
        for (std::size_t i = 0; i < 3; ++i) {
            const SGPoint& sFrom = asCorners[i];
            const SGPoint& sTo = asCorners[(i + 1) % 3];
            // The corner of the box that lies furthest on the inner side of this edge.
            const SGPoint sInmost{sTo.y >= sFrom.y ? sBoxMin.x : sBoxMax.x,
                                  sTo.x >= sFrom.x ? sBoxMax.y : sBoxMin.y};
            if (DoubleArea(sFrom, sTo, sInmost) < 0)
                return false;
        }
        return true;
    }
};

CPointTree::CPointTree(const std::vector<SGPoint>& vPoints)
    : m_vPoints(vPoints), m_vOrder(vPoints.size()), m_vLeaf(vPoints.size()), m_vLive(vPoints.size(), true)
{
    std::iota(m_vOrder.begin(), m_vOrder.end(), std::size_t{0});
    while (m_nDepth < MAX_DEPTH && (vPoints.size() >> m_nDepth) > LEAF_POINTS)
        ++m_nDepth;
    m_vNodes.resize((std::size_t{2} << m_nDepth) - 1);
    Build(0, 0, vPoints.size(), 0);
}

// Halves the points across the longer side of their box. Ties are broken by the point's number, so that the
// tree, and with it the work that is counted, is the same with every standard library.
void CPointTree::Build(std::size_t nNode, std::size_t nFirst, std::size_t nCount, int nDepth)
{
    SNode& sNode = m_vNodes[nNode];
    sNode.nFirst = nFirst;
    sNode.nCount = nCount;
    sNode.nLive = nCount;
    const auto oFirst = m_vOrder.begin() + static_cast<std::ptrdiff_t>(nFirst);
    const auto oEnd = oFirst + static_cast<std::ptrdiff_t>(nCount);
    for (auto o = oFirst; o != oEnd; ++o) {
        const SGPoint& sPoint = m_vPoints[*o];
        const bool bFirst = o == oFirst;
        sNode.sMin =
            bFirst ? sPoint : SGPoint{std::min(sNode.sMin.x, sPoint.x), std::min(sNode.sMin.y, sPoint.y)};
        sNode.sMax =
            bFirst ? sPoint : SGPoint{std::max(sNode.sMax.x, sPoint.x), std::max(sNode.sMax.y, sPoint.y)};
    }
    if (nDepth == m_nDepth) {
        std::sort(oFirst, oEnd);
        for (auto o = oFirst; o != oEnd; ++o)
            m_vLeaf[*o] = nNode;
        return;
    }
    const bool bWide = static_cast<long long>(sNode.sMax.x) - sNode.sMin.x >=
                       static_cast<long long>(sNode.sMax.y) - sNode.sMin.y;
    const std::size_t nHalf = nCount / 2;
    std::nth_element(oFirst, oFirst + static_cast<std::ptrdiff_t>(nHalf), oEnd,
                     [this, bWide](std::size_t nA, std::size_t nB) {
                         const int nKeyA = bWide ? m_vPoints[nA].x : m_vPoints[nA].y;
                         const int nKeyB = bWide ? m_vPoints[nB].x : m_vPoints[nB].y;
                         return nKeyA != nKeyB ? nKeyA < nKeyB : nA < nB;
                     });
    Build(2 * nNode + 1, nFirst, nHalf, nDepth + 1);
    Build(2 * nNode + 2, nFirst + nHalf, nCount - nHalf, nDepth + 1);
}

void CPointTree::Remove(std::size_t nPoint)
{
    m_vLive[nPoint] = false;
    std::size_t nNode = m_vLeaf[nPoint];
    while (nNode != 0) {
        --m_vNodes[nNode].nLive;
        nNode = (nNode - 1) / 2;
    }
    --m_vNodes[0].nLive;
}

bool CPointTree::FindInLeaf(const SNode& sNode, const SQuery& sQuery, std::size_t& nPoint) const
{
    for (std::size_t i = sNode.nFirst; i < sNode.nFirst + sNode.nCount; ++i) {
        if (!m_vLive[m_vOrder[i]] || !sQuery.Contains(m_vPoints[m_vOrder[i]]))
            continue;
        nPoint = m_vOrder[i];
        return true;
    }
    return false;
}

bool CPointTree::FindInside(const SGPoint& sA, const SGPoint& sB, const SGPoint& sC, std::size_t& nPoint)
{
    const SQuery sQuery(sA, sB, sC);
    const std::size_t nFirstLeaf = (std::size_t{1} << m_nDepth) - 1;
    std::array<std::size_t, MAX_DEPTH + 2> anStack{};
    std::size_t nStack = 1;
    while (nStack > 0) {
        const std::size_t nNode = anStack[--nStack];
        const SNode& sNode = m_vNodes[nNode];
        ++m_nVisits;
        if (sNode.nLive == 0 || !sQuery.MayTouch(sNode.sMin, sNode.sMax))
            continue;
        if (nNode >= nFirstLeaf) {
            if (FindInLeaf(sNode, sQuery, nPoint))
                return true;
            continue;
        }
        // The nearer child goes on top. A point near sB keeps the corner blocked for longest, since what lies
        // deeper in the polygon is cut away first.
        const std::size_t nLeft = 2 * nNode + 1;
        const SNode& sLeft = m_vNodes[nLeft];
        const SNode& sRight = m_vNodes[nLeft + 1];
        const bool bLeftNearer = DistanceFromMiddle(sB, sLeft.sMin, sLeft.sMax) <=
                                 DistanceFromMiddle(sB, sRight.sMin, sRight.sMax);
        anStack[nStack++] = bLeftNearer ? nLeft + 1 : nLeft;
        anStack[nStack++] = bLeftNearer ? nLeft : nLeft + 1;
    }
    return false;
}
