#include "dewarp/control/Panes.h"

#include "dewarp/control/Refusals.h"
#include "dewarp/views/ViewList.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Pixels; no target is larger.
const int MOST_PIXELS = 16384;

bool IsAngleOrNone(float f)
{
    return std::isnan(f) || std::isfinite(f);
}

bool Has(const SGRect& r, double x, double y)
{
    return x >= r.x && y >= r.y && x < r.x + r.width && y < r.y + r.height;
}

} // namespace

bool CPanes::IsUsable(const SPane& rPane, std::size_t nPane)
{
    const int n = static_cast<int>(nPane);
    const SGRect& r = rPane.sRect;
    if (r.x < 0 || r.y < 0 || r.width < 1 || r.height < 1 || r.x > MOST_PIXELS || r.y > MOST_PIXELS ||
        r.width > MOST_PIXELS - r.x || r.height > MOST_PIXELS - r.y) {
        m_rReport.Refuse("%s: pane %d: %d x %d pixels at %d, %d are no rectangle of a picture", "SetPanes", n,
                         r.width, r.height, r.x, r.y);
        return false;
    }
    const std::span<const SViewEntry> oViews = ListViews();
    if (std::none_of(oViews.begin(), oViews.end(),
                     [&](const SViewEntry& rEntry) { return rEntry.eType == rPane.eView; })) {
        m_rReport.Refuse("%s: pane %d: there is no view %d", "SetPanes", n, static_cast<int>(rPane.eView));
        return false;
    }
    if (!IsAngleOrNone(rPane.fPan) || !IsAngleOrNone(rPane.fTilt) || !IsAngleOrNone(rPane.fZoom) ||
        !std::isfinite(rPane.fRoll) || std::isnan(rPane.fEyeDistance)) {
        m_rReport.Refuse("%s: pane %d: a value is not finite", "SetPanes", n);
        return false;
    }
    return true;
}

bool CPanes::Set(const std::vector<SPane>& vPanes)
{
    if (vPanes.size() > MOST) {
        m_rReport.Refuse("%s: %d panes are more than %d", "SetPanes", static_cast<int>(vPanes.size()),
                         static_cast<int>(MOST));
        return false;
    }
    std::vector<std::unique_ptr<SPaneState>> vStates;
    for (const SPane& rAsked : vPanes) {
        if (!IsUsable(rAsked, vStates.size()))
            return false;
        vStates.push_back(std::make_unique<SPaneState>(m_rReport));
        SPaneState& rPane = *vStates.back();
        rPane.sAsked = rAsked;
        CControl& c = rPane.oControl;
        c.eRequestedView = rAsked.eView;
        c.SetRoll(rAsked.fRoll);
        c.SetEyeDistance(rAsked.fEyeDistance);
        const EMountType eMount =
            IsMountSet(m_rCamera.eRequestedMount) ? m_rCamera.eRequestedMount : MOUNT_CEILING;
        const SPTZ sStart = PositionOf(rAsked, eMount);
        c.sParams.fPan = sStart.fPan;
        c.sParams.fTilt = sStart.fTilt;
        c.sParams.fZoom = sStart.fZoom;
    }
    m_vViews.reserve(MOST);
    m_vViews.clear();
    m_vPanes = std::move(vStates);
    m_nSelected = 0;
    m_bSet.store(!m_vPanes.empty(), std::memory_order_relaxed);
    return true;
}

/// What is not given is the view's own on the mount.
SPTZ CPanes::PositionOf(const SPane& rPane, EMountType eMount) const
{
    SPTZ sPosition = FindView(rPane.eView, eMount).DefaultPTZ(eMount);
    if (!std::isnan(rPane.fPan))
        sPosition.fPan = rPane.fPan;
    if (!std::isnan(rPane.fTilt))
        sPosition.fTilt = rPane.fTilt;
    if (!std::isnan(rPane.fZoom))
        sPosition.fZoom = rPane.fZoom;
    return sPosition;
}

std::vector<SPane> CPanes::List() const
{
    std::vector<SPane> vPanes;
    for (const std::unique_ptr<SPaneState>& pPane : m_vPanes) {
        SPane sPane = pPane->sAsked;
        const CControl& c = pPane->oControl;
        if (pPane->bDrawn || !pPane->bFresh) {
            sPane.eView = c.eRequestedView;
            sPane.fPan = c.sParams.fPan;
            sPane.fTilt = c.sParams.fTilt;
            sPane.fZoom = c.sParams.fZoom;
            sPane.fRoll = c.sParams.fRoll;
            sPane.fEyeDistance = c.fEyeDistance;
        }
        vPanes.push_back(sPane);
    }
    return vPanes;
}

bool CPanes::SetGap(int nPixels, unsigned int nColor)
{
    if (nPixels < 0 || nPixels > MOST_PIXELS) {
        m_rReport.Refuse("%s: a gap of %d pixels is outside 0 to %d", "SetPaneGap", nPixels, MOST_PIXELS);
        return false;
    }
    m_nGap = nPixels;
    m_nGapColor = nColor;
    return true;
}

bool CPanes::Select(int nPane)
{
    if (nPane < 0 || static_cast<std::size_t>(nPane) >= m_vPanes.size()) {
        m_rReport.Refuse("%s: there is no pane %d", "SelectPane", nPane);
        return false;
    }
    m_nSelected = nPane;
    return true;
}

CControl& CPanes::Steered()
{
    if (!IsSet())
        return m_rCamera;
    SPaneState& rPane = *m_vPanes[static_cast<std::size_t>(m_nSelected)];
    // From now on its position is the host's, also what of it was left to the view.
    if (rPane.bFresh && !rPane.bDrawn) {
        const SDewarpParams& p = rPane.oControl.sParams;
        rPane.oControl.AbsolutePTZ(p.fPan, p.fTilt, p.fZoom);
    }
    rPane.bFresh = false;
    return rPane.oControl;
}

CControl& CPanes::Asked()
{
    return IsSet() ? m_vPanes[static_cast<std::size_t>(m_nSelected)]->oControl : m_rCamera;
}

bool CPanes::SelectAt(double x, double y)
{
    if (!IsSet())
        return true;
    for (std::size_t n = m_vPanes.size(); n-- > 0;) {
        if (!Has(m_vPanes[n]->sPlace, x, y))
            continue;
        m_nSelected = static_cast<int>(n);
        return true;
    }
    return false;
}

/// From pixels of the picture to those of the selected pane. No host has pixels that far out.
void CPanes::ToSelected(int& x, int& y) const
{
    const int nFarthest = 1 << 30;
    const SGRect& r = m_vPanes[static_cast<std::size_t>(m_nSelected)]->sPlace;
    x = std::clamp(x, -nFarthest, nFarthest) - r.x;
    y = std::clamp(y, -nFarthest, nFarthest) - r.y;
}

bool CPanes::PointAt(int& x, int& y)
{
    if (!SelectAt(x, y))
        return false;
    if (IsSet())
        ToSelected(x, y);
    return true;
}

bool CPanes::Follow(int& x, int& y)
{
    if (!IsSet() || !m_vPanes[static_cast<std::size_t>(m_nSelected)]->oControl.bMouseDown)
        return PointAt(x, y);
    ToSelected(x, y);
    return true;
}

bool CPanes::IsDrawn(bool bCamera) const
{
    return IsSet() ? m_vPanes[static_cast<std::size_t>(m_nSelected)]->bDrawn : bCamera;
}

SDrawnPicture CPanes::Picture(const SDrawnPicture& rCamera) const
{
    if (!IsSet())
        return rCamera;
    const SFrameDecision& d = m_vPanes[static_cast<std::size_t>(m_nSelected)]->sDecision;
    return {d.sTarget.nWidth, d.sTarget.nHeight, d.sBands.anPlanes[0], d.sBands.anPlanes[2]};
}

bool CPanes::IsMoving()
{
    if (!IsSet())
        return m_rCamera.IsMoving();
    return std::any_of(m_vPanes.begin(), m_vPanes.end(),
                       [](const std::unique_ptr<SPaneState>& p) { return p->oControl.IsMoving(); });
}

/// Half the gap is taken off each side that does not lie on the target's edge: two panes that touch each
/// other end up a gap apart.
SGRect CPanes::PlaceOf(const SPane& rPane, const STargetShape& rTarget) const
{
    const SGRect& r = rPane.sRect;
    if (r.x + r.width > rTarget.nWidth || r.y + r.height > rTarget.nHeight)
        return {};
    const int nBefore = (m_nGap + 1) / 2;
    const int nBehind = m_nGap / 2;
    const int nLeft = r.x > 0 ? r.x + nBefore : 0;
    const int nTop = r.y > 0 ? r.y + nBefore : 0;
    const int nRight = r.x + r.width - (r.x + r.width < rTarget.nWidth ? nBehind : 0);
    const int nBottom = r.y + r.height - (r.y + r.height < rTarget.nHeight ? nBehind : 0);
    return nRight > nLeft && nBottom > nTop ? SGRect{nLeft, nTop, nRight - nLeft, nBottom - nTop} : SGRect{};
}

void CPanes::PutInForce(SPaneState& rPane)
{
    CControl& c = rPane.oControl;
    SDewarpParams& p = c.sParams;
    const SDewarpParams& rCamera = m_rCamera.sParams;
    p.fMountTilt = rCamera.fMountTilt;
    p.bStrictTiltLimits = rCamera.bStrictTiltLimits;
    p.nImageWidth = rCamera.nImageWidth;
    p.nImageHeight = rCamera.nImageHeight;
    p.nImageStride = rCamera.nImageStride;
    p.pOptics = rCamera.pOptics;
    p.sShape = rCamera.sShape;
    c.nRotation = m_rCamera.nRotation;
    c.eRequestedMount = rCamera.eMountType;
    const SPane& a = rPane.sAsked;
    const bool bPlaced = !std::isnan(a.fPan) || !std::isnan(a.fTilt) || !std::isnan(a.fZoom);
    if (rPane.bFresh && !rPane.bDrawn && bPlaced) {
        const SPTZ sStart = PositionOf(a, rCamera.eMountType);
        c.AbsolutePTZ(sStart.fPan, sStart.fTilt, sStart.fZoom);
        c.bResetPTZ = true;
    }
    c.ApplyRequests();
    p.eLensType = rCamera.eLensType;
    rPane.bDrawn = true;
}

void CPanes::Place(SPaneState& rPane, std::size_t nPane, const STargetShape& rTarget)
{
    rPane.sPlace = PlaceOf(rPane.sAsked, rTarget);
    const bool bOutside = rPane.sPlace.width == 0;
    if (bOutside && !rPane.bToldOutside) {
        const SGRect& r = rPane.sAsked.sRect;
        m_rReport.Error("%s: pane %d (%d x %d at %d, %d) has no room in the target (%d x %d) and is left out",
                        "SetPanes", static_cast<int>(nPane), r.width, r.height, r.x, r.y, rTarget.nWidth,
                        rTarget.nHeight);
    }
    rPane.bToldOutside = bOutside;
}

void CPanes::Decide(const STargetShape& rTarget, const SPictureSettings& rPicture)
{
    m_rCamera.ApplyCameraRequests();
    m_vViews.clear();
    for (std::size_t n = 0; n < m_vPanes.size(); ++n) {
        SPaneState& rPane = *m_vPanes[n];
        PutInForce(rPane);
        Place(rPane, n, rTarget);
        if (rPane.sPlace.width == 0)
            continue;
        const STargetShape sShape = {rPane.sPlace.width, rPane.sPlace.height, rTarget.bTopDown};
        if (!IsDecidedFor(rPane.sDecision, rPane.oControl, sShape))
            DecideView(rPane.oControl, sShape, rPane.sDecision);
        rPane.sDecision.sPicture = rPicture;
        m_vViews.push_back({rPane.sAsked.sRect, rPane.sPlace, &rPane.sDecision});
    }
}
