#include "dewarp/mapping/PictureMap.h"

namespace
{

bool Has(const SGRect& r, const SPointD& p)
{
    return p.x >= r.x && p.y >= r.y && p.x < r.x + r.width && p.y < r.y + r.height;
}

void FindNothing(SPointD* pResults, bool* pValid)
{
    FindNoPoints(pResults, pValid, 1);
}

void FindNothing(SDirection* pResults, bool* pValid)
{
    FindNoDirections(pResults, pValid, 1);
}

} // namespace

void CPictureMap::MakeRoom(std::size_t nViews)
{
    while (m_vMaps.size() < nViews)
        m_vMaps.push_back(std::make_unique<SMap>());
}

void CPictureMap::SetDrawn(const SFrameDecision& rDecision, bool bFlips)
{
    m_vMaps[0]->oPoints.SetDrawn(rDecision, bFlips);
    m_nMaps = 1;
    m_bPanes = false;
}

void CPictureMap::SetDrawn(std::span<const SPlacedView> oViews, bool bFlips)
{
    m_nMaps = 0;
    m_bPanes = true;
    for (const SPlacedView& rView : oViews) {
        SMap& rMap = *m_vMaps[m_nMaps];
        rMap.oPoints.SetDrawn(*rView.pDecision, bFlips);
        rMap.sPlace = rView.sPlace;
        ++m_nMaps;
    }
}

/// The view that is seen at a point of the picture; null beside all.
CPictureMap::SMap* CPictureMap::At(const SPointD& rPoint) const
{
    for (std::size_t n = m_nMaps; n-- > 0;) {
        if (Has(m_vMaps[n]->sPlace, rPoint))
            return m_vMaps[n].get();
    }
    return nullptr;
}

template <class TFrom, class TTo, class F>
int CPictureMap::MapPoints(const TFrom* pFrom, TTo* pTo, bool* pValid, int nCount, F&& fMap) const
{
    int nFound = 0;
    for (int n = 0; n < nCount && pTo != nullptr; ++n) {
        TTo tResult{};
        bool bFound = false;
        const TFrom tFrom = pFrom != nullptr ? pFrom[n] : TFrom{};
        for (std::size_t m = 0; m < m_nMaps && pFrom != nullptr && !bFound; ++m)
            bFound = fMap(*m_vMaps[m], tFrom, tResult);
        FindNothing(pTo + n, pValid == nullptr ? nullptr : pValid + n);
        if (!bFound)
            continue;
        pTo[n] = tResult;
        if (pValid != nullptr)
            pValid[n] = true;
        ++nFound;
    }
    return nFound;
}

int CPictureMap::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) const
{
    if (IsOneView())
        return m_vMaps[0]->oPoints.ViewToFrame(pPoints, pResults, pValid, nCount);
    return MapPoints(pPoints, pResults, pValid, nCount, [&](SMap& rMap, const SPointD& p, SPointD& rTo) {
        const SPointD sInside = {p.x - rMap.sPlace.x, p.y - rMap.sPlace.y};
        return At(p) == &rMap && rMap.oPoints.ViewToFrame(&sInside, &rTo, nullptr, 1) == 1;
    });
}

int CPictureMap::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) const
{
    if (IsOneView())
        return m_vMaps[0]->oPoints.FrameToView(pPoints, pResults, pValid, nCount);
    return MapPoints(pPoints, pResults, pValid, nCount, [&](SMap& rMap, const SPointD& p, SPointD& rTo) {
        if (rMap.oPoints.FrameToView(&p, &rTo, nullptr, 1) != 1)
            return false;
        rTo = {rTo.x + rMap.sPlace.x, rTo.y + rMap.sPlace.y};
        return At(rTo) == &rMap;
    });
}

int CPictureMap::FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid,
                                  int nCount) const
{
    // All views are of one camera.
    return MapPoints(pPoints, pResults, pValid, nCount, [](SMap& rMap, const SPointD& p, SDirection& rTo) {
        return rMap.oPoints.FrameToDirection(&p, &rTo, nullptr, 1) == 1;
    });
}

int CPictureMap::ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) const
{
    if (IsOneView())
        return m_vMaps[0]->oPoints.ViewToDirection(pPoints, pResults, pValid, nCount);
    return MapPoints(pPoints, pResults, pValid, nCount, [&](SMap& rMap, const SPointD& p, SDirection& rTo) {
        const SPointD sInside = {p.x - rMap.sPlace.x, p.y - rMap.sPlace.y};
        return At(p) == &rMap && rMap.oPoints.ViewToDirection(&sInside, &rTo, nullptr, 1) == 1;
    });
}

int CPictureMap::DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid,
                                 int nCount) const
{
    if (IsOneView())
        return m_vMaps[0]->oPoints.DirectionToView(pDirections, pResults, pValid, nCount);
    return MapPoints(pDirections, pResults, pValid, nCount,
                     [&](SMap& rMap, const SDirection& r, SPointD& rTo) {
                         if (rMap.oPoints.DirectionToView(&r, &rTo, nullptr, 1) != 1)
                             return false;
                         rTo = {rTo.x + rMap.sPlace.x, rTo.y + rMap.sPlace.y};
                         return At(rTo) == &rMap;
                     });
}

bool CPictureMap::TargetAt(const SPointD& rPoint, SLookTarget& rTarget) const
{
    return m_nMaps > 0 && m_vMaps[0]->oPoints.TargetAt(rPoint, rTarget);
}
