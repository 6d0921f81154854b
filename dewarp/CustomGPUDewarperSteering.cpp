// Pan, tilt, zoom and mouse.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/views/GPUObjBase.h"

#include <atomic>
#include <cmath>

namespace
{

/// Brings an angle into [0, 360). Infinity and NaN stay.
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

} // namespace

void CCustomGPUDewarper::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    CLockScope oScope(*this);
    pParams->fPan = fAbsolutePan = fPan;
    pParams->fTilt = fAbsoluteTilt = fTilt;
    pParams->fZoom = fAbsoluteZoom = fZoom;
    bAbsolutePTZPending = true;
    DrawRequired();
    bResetPTZ = false;
}

void CCustomGPUDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    CLockScope oScope(*this);
    pParams->fPan += fPan;
    pParams->fTilt += fTilt;
    pParams->fZoom += fZoom;
    CheckPTZ();
    // The results are compared with the steps: a step from all zeros requests nothing.
    if (pParams->fPan == fPan && pParams->fTilt == fTilt && pParams->fZoom == fZoom)
        return;
    fAbsolutePan = pParams->fPan;
    fAbsoluteTilt = pParams->fTilt;
    fAbsoluteZoom = pParams->fZoom;
    bAbsolutePTZPending = true;
    DrawRequired();
    bResetPTZ = false;
}

void CCustomGPUDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    // No lock: each speed is exchanged whole.
    std::atomic_ref<float>(fAnalogSpeed[0]).store(fPan, std::memory_order_relaxed);
    std::atomic_ref<float>(fAnalogSpeed[1]).store(fTilt, std::memory_order_relaxed);
    std::atomic_ref<float>(fAnalogSpeed[2]).store(fZoom, std::memory_order_relaxed);
}

void CCustomGPUDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    fPan = std::atomic_ref<float>(fAnalogSpeed[0]).load(std::memory_order_relaxed);
    fTilt = std::atomic_ref<float>(fAnalogSpeed[1]).load(std::memory_order_relaxed);
    fZoom = std::atomic_ref<float>(fAnalogSpeed[2]).load(std::memory_order_relaxed);
}

void CCustomGPUDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    CLockScope oScope(*this);
    fPan = pParams->eViewType == VIEW_FISHEYE ? pParams->fPan : WrapAngle(pParams->fPan);
    fTilt = pParams->fTilt;
    fZoom = pParams->fZoom;
}

void CCustomGPUDewarper::CheckPTZ()
{
    if (pActiveViewObject != nullptr && pActiveViewObject == pRequestedViewObject)
        pActiveViewObject->CheckPTZ(pParams);
}

void CCustomGPUDewarper::KeepFinitePTZ(float fPan, float fTilt, float fZoom)
{
    if (!std::isfinite(pParams->fPan))
        pParams->fPan = fPan;
    if (!std::isfinite(pParams->fTilt))
        pParams->fTilt = fTilt;
    if (!std::isfinite(pParams->fZoom))
        pParams->fZoom = fZoom;
}

void CCustomGPUDewarper::OnMouseDown(int x, int y)
{
    CLockScope oScope(*this);
    *pMouseAnchor = {x, y};
    bMouseDown = true;
}

void CCustomGPUDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    CLockScope oScope(*this);
    if (!bMouseDown)
        return;
    if (bLockX)
        pMouseAnchor->x = x;
    if (bLockY)
        pMouseAnchor->y = y;
    const float fPan = pParams->fPan;
    const float fTilt = pParams->fTilt;
    const float fZoom = pParams->fZoom;
    SGPoint sTo{x, y};
    if (pActiveViewObject != nullptr)
        pActiveViewObject->OnMouseMove(pMouseAnchor, &sTo, pParams, pMatrices, &sMainShader);
    *pMouseAnchor = sTo;
    KeepFinitePTZ(fPan, fTilt, fZoom);
    CheckPTZ();
    if (pParams->fPan != fPan || pParams->fTilt != fTilt || pParams->fZoom != fZoom) {
        DrawRequired();
        bResetPTZ = false;
    }
}

void CCustomGPUDewarper::OnMouseUp()
{
    CLockScope oScope(*this);
    bMouseDown = false;
}

void CCustomGPUDewarper::OnMouseWheel(double fDelta)
{
    CLockScope oScope(*this);
    const float fPan = pParams->fPan;
    const float fTilt = pParams->fTilt;
    const float fZoom = pParams->fZoom;
    pParams->fZoom += static_cast<float>(fDelta) / -12.0f;
    KeepFinitePTZ(fPan, fTilt, fZoom);
    CheckPTZ();
    if (pParams->fPan != fPan || pParams->fTilt != fTilt || pParams->fZoom != fZoom)
        DrawRequired();
}
