// What the lens shows at points of the frame.

#include "dewarp/lenses/BodyTurn.h"
#include "dewarp/lenses/CameraOptics.h"
#include "dewarp/lenses/LensMap.h"
#include "dewarp/mapping/PointMap.h"
#include "dewarp/mapping/ViewRules.h"

#include <cmath>
#include <limits>

namespace
{

/// The camera of a drawn picture: its lens and how its body is turned.
class CDrawnCamera
{
public:
    explicit CDrawnCamera(const SFrameDecision& d)
        : m_sShape(FrameShapeOf(d)),
          m_oLens(d.sParams.pOptics.get(), d.sParams.eLensType, d.sParams.nImageWidth, d.sParams.nImageHeight)
    {
        if (d.sParams.pOptics != nullptr)
            m_oBody = CBodyTurn(d.sParams.pOptics->Said().sOrientation);
    }

    bool ToDirection(const SPointD& rPoint, SDirection& rDirection) const
    {
        const SPointD sShown = Mirrored(rPoint);
        SDirection sBody;
        if (!m_oLens.ToDirection(sShown.x, sShown.y, sBody))
            return false;
        rDirection = m_oBody.ToMount(sBody);
        return true;
    }

    bool ToFrame(const SDirection& rDirection, SPointD& rPoint) const
    {
        SPointD sShown;
        const double fLength = std::hypot(rDirection.x, rDirection.y, rDirection.z);
        if (!(fLength > 0.0) || !std::isfinite(fLength) ||
            !m_oLens.ToFrame(m_oBody.ToBody(rDirection), sShown.x, sShown.y))
            return false;
        rPoint = Mirrored(sShown);
        return true;
    }

private:
    /// From the frame as it comes to the frame as it is shown, and back.
    SPointD Mirrored(const SPointD& r) const
    {
        return {m_sShape.bMirrorX ? m_sShape.nWidth - r.x : r.x,
                m_sShape.bMirrorY ? m_sShape.nHeight - r.y : r.y};
    }

    SFrameShape m_sShape;
    CLensMap m_oLens;
    CBodyTurn m_oBody;
};

/// Maps each of an array; counts the results.
template <class TFrom, class TTo, class F>
int MapEach(const TFrom* pFrom, TTo* pTo, bool* pValid, int nCount, const TTo& rNothing, F&& fMap)
{
    int nFound = 0;
    for (int n = 0; n < nCount && pTo != nullptr; ++n) {
        TTo tResult = rNothing;
        const bool bFound = pFrom != nullptr && fMap(pFrom[n], tResult);
        pTo[n] = bFound ? tResult : rNothing;
        if (pValid != nullptr)
            pValid[n] = bFound;
        nFound += bFound ? 1 : 0;
    }
    return nFound;
}

constexpr double NOTHING = std::numeric_limits<double>::quiet_NaN();
constexpr SPointD NO_POINT = {NOTHING, NOTHING};
constexpr SDirection NO_DIRECTION = {NOTHING, NOTHING, NOTHING};

} // namespace

int CPointMap::FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) const
{
    if (m_sDrawn.pView == nullptr)
        return MapEach(pPoints, pResults, pValid, nCount, NO_DIRECTION,
                       [](const SPointD&, SDirection&) { return false; });
    const CDrawnCamera oCamera(m_sDrawn);
    return MapEach(pPoints, pResults, pValid, nCount, NO_DIRECTION,
                   [&](const SPointD& r, SDirection& rResult) { return oCamera.ToDirection(r, rResult); });
}

int CPointMap::DirectionToFrame(const SDirection* pDirections, SPointD* pResults, bool* pValid,
                                int nCount) const
{
    if (m_sDrawn.pView == nullptr)
        return MapEach(pDirections, pResults, pValid, nCount, NO_POINT,
                       [](const SDirection&, SPointD&) { return false; });
    const CDrawnCamera oCamera(m_sDrawn);
    return MapEach(pDirections, pResults, pValid, nCount, NO_POINT,
                   [&](const SDirection& r, SPointD& rResult) { return oCamera.ToFrame(r, rResult); });
}

int CPointMap::ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount)
{
    return MapEach(pPoints, pResults, pValid, nCount, NO_DIRECTION,
                   [&](const SPointD& r, SDirection& rResult) {
                       SPointD sFrame;
                       return ViewToFrame(&r, &sFrame, nullptr, 1) == 1 &&
                              FrameToDirection(&sFrame, &rResult, nullptr, 1) == 1;
                   });
}

int CPointMap::DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount)
{
    return MapEach(pDirections, pResults, pValid, nCount, NO_POINT,
                   [&](const SDirection& r, SPointD& rResult) {
                       SPointD sFrame;
                       return DirectionToFrame(&r, &sFrame, nullptr, 1) == 1 &&
                              FrameToView(&sFrame, &rResult, nullptr, 1) == 1;
                   });
}

bool CPointMap::TargetAt(const SPointD& rPoint, SLookTarget& rTarget) const
{
    const SDewarpParams& rParams = m_sDrawn.sParams;
    if (FrameToDirection(&rPoint, &rTarget.sDirection, nullptr, 1) != 1)
        return false;
    const SFrameShape sShape = FrameShapeOf(m_sDrawn);
    const double u = rPoint.x / rParams.nImageWidth;
    const double v = rPoint.y / rParams.nImageHeight;
    rTarget.u = sShape.bMirrorX ? 1.0 - u : u;
    rTarget.v = sShape.bMirrorY ? 1.0 - v : v;
    rTarget.nRotation = m_sDrawn.nRotation;
    return true;
}
