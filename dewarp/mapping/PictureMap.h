/// \file
/// Points of a picture of one or several views.
#pragma once

#include "dewarp/control/Decision.h"
#include "dewarp/mapping/PointMap.h"
#include "platform/Export.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

/// Answers for the picture that was drawn last as CPointMap does for one view: a point of the picture belongs
/// to the last pane that is drawn there, a point of the frame is found in the first pane that shows it.
/// Units, thread and failures: CPointMap's. Owns: a map for each pane; they are kept.
class LUMOR_INTERNAL_API CPictureMap
{
public:
    /// Room for a picture of so many views: what follows needs none more. Throws for lack of memory.
    void MakeRoom(std::size_t nViews);
    /// A picture of one view, or of panes; bFlips as CPointMap has it. There must be room.
    void SetDrawn(const SFrameDecision& rDecision, bool bFlips);
    void SetDrawn(std::span<const SPlacedView> oViews, bool bFlips);

    int ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) const;
    int FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount) const;
    int FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) const;
    int ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid, int nCount) const;
    int DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid, int nCount) const;
    bool TargetAt(const SPointD& rPoint, SLookTarget& rTarget) const;

private:
    /// A view and where it lies in the picture.
    struct SMap
    {
        CPointMap oPoints;
        SGRect sPlace;
    };

    bool IsOneView() const { return !m_bPanes && m_nMaps > 0; }
    SMap* At(const SPointD& rPoint) const;
    /// Asks each view for each point until one answers; fMap(map, from, to) tells whether it did.
    template <class TFrom, class TTo, class F>
    int MapPoints(const TFrom* pFrom, TTo* pTo, bool* pValid, int nCount, F&& fMap) const;

    std::vector<std::unique_ptr<SMap>> m_vMaps;
    std::size_t m_nMaps = 0; ///< in use
    bool m_bPanes = false;
};
