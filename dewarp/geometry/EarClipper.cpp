#include "dewarp/geometry/EarClipper.h"

#include "dewarp/geometry/IndexSet.h"
#include "dewarp/geometry/PointTree.h"

#include <algorithm>
#include <cstddef>
#include <utility>

static const std::size_t NONE = static_cast<std::size_t>(-1);

// Steps of searching granted to a polygon, at some 50 ns each.
static const long long VISITS_GRANTED = 1LL << 20;
static const long long VISITS_PER_POINT = 512;

// The walk looks at one corner after the other. A corner that does not turn away from the inside is a
// candidate; a candidate whose triangle holds no other point is an ear and is cut off, and the walk goes on
// behind the neighbour that follows it. When a full lap found no ear, the first candidate of the lap is cut.
//
// Walking corner by corner takes the square of the number of points even for plain shapes. The same cuts are
// found faster by remembering: a candidate that was found blocked stays so until the point that blocks it is
// cut, or one of its neighbours. Only corners for which that happened are looked at again.
class CEarClipper
{
public:
    CEarClipper(std::vector<SGPoint> vPoints, long long nMaxVisits);
    std::vector<SGTriangle> Run();

private:
    bool IsCandidate(std::size_t nCorner) const;
    void Refresh(std::size_t nCorner);
    void Block(std::size_t nCorner, std::size_t nBlocker);
    void Unblock(std::size_t nCorner);
    std::size_t FindNextCut();
    void Cut(std::size_t nCorner);

    std::vector<SGPoint> m_vPoints;
    long long m_nMaxVisits;
    CPointTree m_oTree;
    CIndexSet m_oCandidates; ///< corners that turn the right way or not at all
    CIndexSet m_oUnsettled;  ///< candidates not known to be blocked
    std::vector<std::size_t> m_vPrevious;
    std::vector<std::size_t> m_vNext;
    // For each point a list of the corners that it blocks.
    std::vector<std::size_t> m_vFirstBlocked;
    std::vector<std::size_t> m_vBlocker;
    std::vector<std::size_t> m_vNextBlocked;
    std::vector<std::size_t> m_vPreviousBlocked;
    std::size_t m_nStart = 1; ///< where the present lap began
    std::vector<SGTriangle> m_vTriangles;
};

CEarClipper::CEarClipper(std::vector<SGPoint> vPoints, long long nMaxVisits)
    : m_vPoints(std::move(vPoints)), m_nMaxVisits(nMaxVisits), m_oTree(m_vPoints),
      m_oCandidates(m_vPoints.size()), m_oUnsettled(m_vPoints.size()), m_vPrevious(m_vPoints.size()),
      m_vNext(m_vPoints.size()), m_vFirstBlocked(m_vPoints.size(), NONE), m_vBlocker(m_vPoints.size(), NONE),
      m_vNextBlocked(m_vPoints.size(), NONE), m_vPreviousBlocked(m_vPoints.size(), NONE)
{
    const std::size_t n = m_vPoints.size();
    for (std::size_t i = 0; i < n; ++i) {
        m_vPrevious[i] = i == 0 ? n - 1 : i - 1;
        m_vNext[i] = i + 1 == n ? 0 : i + 1;
    }
    for (std::size_t i = 0; i < n; ++i)
        Refresh(i);
    m_vTriangles.reserve(n - 2);
}

bool CEarClipper::IsCandidate(std::size_t nCorner) const
{
    return DoubleArea(m_vPoints[m_vPrevious[nCorner]], m_vPoints[nCorner], m_vPoints[m_vNext[nCorner]]) >= 0;
}

// A neighbour is new: what was known about the corner no longer holds.
void CEarClipper::Refresh(std::size_t nCorner)
{
    Unblock(nCorner);
    if (IsCandidate(nCorner)) {
        m_oCandidates.Insert(nCorner);
        m_oUnsettled.Insert(nCorner);
    } else {
        m_oCandidates.Remove(nCorner);
        m_oUnsettled.Remove(nCorner);
    }
}

void CEarClipper::Block(std::size_t nCorner, std::size_t nBlocker)
{
    m_oUnsettled.Remove(nCorner);
    const std::size_t nFirst = m_vFirstBlocked[nBlocker];
    m_vBlocker[nCorner] = nBlocker;
    m_vPreviousBlocked[nCorner] = NONE;
    m_vNextBlocked[nCorner] = nFirst;
    if (nFirst != NONE)
        m_vPreviousBlocked[nFirst] = nCorner;
    m_vFirstBlocked[nBlocker] = nCorner;
}

void CEarClipper::Unblock(std::size_t nCorner)
{
    if (m_vBlocker[nCorner] == NONE)
        return;
    const std::size_t nBefore = m_vPreviousBlocked[nCorner];
    const std::size_t nAfter = m_vNextBlocked[nCorner];
    if (nBefore == NONE)
        m_vFirstBlocked[m_vBlocker[nCorner]] = nAfter;
    else
        m_vNextBlocked[nBefore] = nAfter;
    if (nAfter != NONE)
        m_vPreviousBlocked[nAfter] = nBefore;
    m_vBlocker[nCorner] = NONE;
}

std::size_t CEarClipper::FindNextCut()
{
    std::size_t nCorner = NONE;
    while (m_oTree.GetVisits() < m_nMaxVisits && m_oUnsettled.NextFrom(m_nStart, nCorner)) {
        std::size_t nBlocker = NONE;
        if (!m_oTree.FindInside(m_vPoints[m_vPrevious[nCorner]], m_vPoints[nCorner],
                                m_vPoints[m_vNext[nCorner]], nBlocker))
            return nCorner;
        Block(nCorner, nBlocker);
    }
    return m_oCandidates.NextFrom(m_nStart, nCorner) ? nCorner : m_nStart;
}

void CEarClipper::Cut(std::size_t nCorner)
{
    const std::size_t nPrevious = m_vPrevious[nCorner];
    const std::size_t nNext = m_vNext[nCorner];
    m_vTriangles.push_back({{m_vPoints[nPrevious], m_vPoints[nCorner], m_vPoints[nNext]}});

    Unblock(nCorner);
    m_oCandidates.Remove(nCorner);
    m_oUnsettled.Remove(nCorner);
    m_oTree.Remove(nCorner);
    while (m_vFirstBlocked[nCorner] != NONE) {
        const std::size_t nBlocked = m_vFirstBlocked[nCorner];
        Unblock(nBlocked);
        m_oUnsettled.Insert(nBlocked);
    }
    m_vNext[nPrevious] = nNext;
    m_vPrevious[nNext] = nPrevious;
    Refresh(nPrevious);
    Refresh(nNext);
    m_nStart = m_vNext[nNext];
}

std::vector<SGTriangle> CEarClipper::Run()
{
    const std::size_t n = m_vPoints.size();
    while (m_vTriangles.size() + 3 < n)
        Cut(FindNextCut());
    m_vTriangles.push_back(
        {{m_vPoints[m_vPrevious[m_nStart]], m_vPoints[m_nStart], m_vPoints[m_vNext[m_nStart]]}});
    return std::move(m_vTriangles);
}

// Twice the signed area of the whole outline.
static TArea DoubleArea(const std::vector<SGPoint>& vPoints)
{
    TArea nSum = 0;
    for (std::size_t i = 1; i + 1 < vPoints.size(); ++i)
        nSum += DoubleArea(vPoints[0], vPoints[i], vPoints[i + 1]);
    return nSum;
}

std::vector<SGTriangle> TriangulatePolygon(std::vector<SGPoint> vPoints, long long nMaxVisits)
{
    if (vPoints.size() < 3)
        return {};
    if (DoubleArea(vPoints) < 0)
        std::reverse(vPoints.begin(), vPoints.end());
    return CEarClipper(std::move(vPoints), nMaxVisits).Run();
}

std::vector<SGTriangle> TriangulatePolygon(std::vector<SGPoint> vPoints)
{
    const long long nMaxVisits = VISITS_GRANTED + VISITS_PER_POINT * static_cast<long long>(vPoints.size());
    return TriangulatePolygon(std::move(vPoints), nMaxVisits);
}
