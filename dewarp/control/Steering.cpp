// Pan, tilt, zoom and mouse.

#include "dewarp/control/Control.h"
#include "dewarp/control/Refusals.h"
#include "dewarp/views/PTZLimits.h"
#include "dewarp/views/ViewList.h"

#include <atomic>
#include <cmath>

float WrapAngle(float fAngle)
{
    if (!std::isfinite(fAngle))
        return fAngle;
    float fWrapped = std::fmod(fAngle, 360.0f);
    if (fWrapped < 0.0f)
        fWrapped += 360.0f;
    // A tiny negative angle rounds to a whole turn.
    if (fWrapped >= 360.0f)
        fWrapped -= 360.0f;
    return fWrapped;
}

void LimitPosition(const CView& rView, SDewarpParams& rParams)
{
    const SPTZRange sPan = rView.Limits(rParams).sPan;
    if (sPan.bPeriodic)
        rParams.fPan = WithoutTurns(rParams.fPan);
    rView.LimitPTZ(rParams);
    // Both ends of a strip are the same place, and a view may exchange them: one of them stands for it.
    if (sPan.bPeriodic && rParams.fPan >= sPan.fHigh)
        rParams.fPan = sPan.fLow;
}

const CView& CControl::FindViewInForce(const SDewarpParams& rParams)
{
    return FindView(rParams.eViewType, rParams.eMountType);
}

void CControl::LimitPTZ()
{
    LimitPosition(View(), sParams);
}

void CControl::KeepFinite(const SPTZ& rBefore)
{
    if (!std::isfinite(sParams.fPan))
        sParams.fPan = rBefore.fPan;
    if (!std::isfinite(sParams.fTilt))
        sParams.fTilt = rBefore.fTilt;
    if (!std::isfinite(sParams.fZoom))
        sParams.fZoom = rBefore.fZoom;
}

bool CControl::HasMoved(const SPTZ& rBefore) const
{
    return sParams.fPan != rBefore.fPan || sParams.fTilt != rBefore.fTilt || sParams.fZoom != rBefore.fZoom;
}

bool CControl::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    if (!AreUsable({fPan, fTilt, fZoom}, "AbsolutePTZ", m_rReport))
        return false;
    sParams.fPan = fAbsolutePan = fPan;
    sParams.fTilt = fAbsoluteTilt = fTilt;
    sParams.fZoom = fAbsoluteZoom = fZoom;
    bAbsolutePTZPending = true;
    bResetPTZ = false;
    return true;
}

bool CControl::RelativePTZ(float fPan, float fTilt, float fZoom, bool bInForce)
{
    if (!AreUsable({fPan, fTilt, fZoom}, "RelativePTZ", m_rReport))
        return false;
    const SPTZ sBefore = Position();
    sParams.fPan += fPan;
    sParams.fTilt += fTilt;
    sParams.fZoom += fZoom;
    KeepFinite(sBefore);
    if (bInForce)
        LimitPTZ();
    // The results are compared with the steps: a step from all zeros requests nothing.
    if (sParams.fPan == fPan && sParams.fTilt == fTilt && sParams.fZoom == fZoom)
        return false;
    fAbsolutePan = sParams.fPan;
    fAbsoluteTilt = sParams.fTilt;
    fAbsoluteZoom = sParams.fZoom;
    bAbsolutePTZPending = true;
    bResetPTZ = false;
    return true;
}

bool CControl::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    // No lock: each speed is exchanged whole.
    std::atomic_ref<float>(fAnalogSpeed[0]).store(fPan, std::memory_order_relaxed);
    std::atomic_ref<float>(fAnalogSpeed[1]).store(fTilt, std::memory_order_relaxed);
    std::atomic_ref<float>(fAnalogSpeed[2]).store(fZoom, std::memory_order_relaxed);
    return IsMoving();
}

void CControl::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    fPan = std::atomic_ref<float>(fAnalogSpeed[0]).load(std::memory_order_relaxed);
    fTilt = std::atomic_ref<float>(fAnalogSpeed[1]).load(std::memory_order_relaxed);
    fZoom = std::atomic_ref<float>(fAnalogSpeed[2]).load(std::memory_order_relaxed);
}

bool CControl::IsMoving()
{
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    GetPTZAnalog(fPan, fTilt, fZoom);
    return fPan != 0.0f || fTilt != 0.0f || fZoom != 0.0f;
}

void CControl::GetPTZ(float& fPan, float& fTilt, float& fZoom) const
{
    fPan = sParams.eViewType == VIEW_FISHEYE ? sParams.fPan : WrapAngle(sParams.fPan);
    fTilt = sParams.fTilt;
    fZoom = sParams.fZoom;
}

bool CControl::LookAt(const SLookTarget& rTarget)
{
    SDewarpParams sTurned = sParams;
    if (!View().LookAt(rTarget, sTurned)) {
        m_rReport.Refuse("%s: this view cannot be turned to a place", "LookAt");
        return false;
    }
    return AbsolutePTZ(sTurned.fPan, sTurned.fTilt, sTurned.fZoom);
}

void CControl::OnMouseDown(int x, int y)
{
    sMouseAnchor = {x, y};
    bMouseDown = true;
}

bool CControl::OnMouseMove(int x, int y, bool bLockX, bool bLockY, const SDrawnPicture& rPicture,
                           bool bInForce)
{
    if (!bMouseDown)
        return false;
    if (bLockX)
        sMouseAnchor.x = x;
    if (bLockY)
        sMouseAnchor.y = y;
    const SPTZ sBefore = Position();
    if (bInForce) {
        const SDrag sDrag = {sMouseAnchor,       {x, y},           rPicture.nWidth, rPicture.nHeight,
                             rPicture.nLeftBand, rPicture.nTopBand};
        View().Drag(sDrag, sParams);
        KeepFinite(sBefore);
        LimitPTZ();
    }
    sMouseAnchor = {x, y};
    if (!HasMoved(sBefore))
        return false;
    bResetPTZ = false;
    return true;
}

void CControl::OnMouseUp()
{
    bMouseDown = false;
}

bool CControl::OnMouseWheel(double fDelta, bool bInForce)
{
    const SPTZ sBefore = Position();
    sParams.fZoom += static_cast<float>(fDelta) / -12.0f;
    KeepFinite(sBefore);
    if (bInForce)
        LimitPTZ();
    return HasMoved(sBefore);
}
