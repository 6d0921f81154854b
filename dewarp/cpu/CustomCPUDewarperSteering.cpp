// Pan, tilt, zoom and mouse: the rules are the control room's.

#include "dewarp/cpu/CPUState.h"

void CCustomCPUDewarper::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.Steered().AbsolutePTZ(fPan, fTilt, fZoom))
        pState->RequestFrame();
}

void CCustomCPUDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.Steered().RelativePTZ(fPan, fTilt, fZoom, pState->oPanes.IsDrawn(pState->bViewDrawn)))
        pState->RequestFrame();
}

void CCustomCPUDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    if (!pState->oPanes.IsSet()) {
        pState->oControl.AnaloguePTZ(fPan, fTilt, fZoom);
        return;
    }
    const CCPULock oLock(pState->oMutex);
    pState->oPanes.Steered().AnaloguePTZ(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    if (!pState->oPanes.IsSet()) {
        pState->oControl.GetPTZAnalog(fPan, fTilt, fZoom);
        return;
    }
    const CCPULock oLock(pState->oMutex);
    pState->oPanes.Asked().GetPTZAnalog(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    const CCPULock oLock(pState->oMutex);
    pState->oPanes.Asked().GetPTZ(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::OnMouseDown(int x, int y)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.PointAt(x, y))
        pState->oPanes.Steered().OnMouseDown(x, y);
}

void CCustomCPUDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    const CCPULock oLock(pState->oMutex);
    const SFrameDecision& d = pState->sDecision;
    const SDrawnPicture sPicture = {d.sTarget.nWidth, d.sTarget.nHeight, d.sBands.anPlanes[0],
                                    d.sBands.anPlanes[2]};
    if (pState->oPanes.Follow(x, y) &&
        pState->oPanes.Steered().OnMouseMove(x, y, bLockX, bLockY, pState->oPanes.Picture(sPicture),
                                             pState->oPanes.IsDrawn(pState->bViewDrawn)))
        pState->RequestFrame();
}

void CCustomCPUDewarper::OnMouseUp()
{
    const CCPULock oLock(pState->oMutex);
    pState->oPanes.Steered().OnMouseUp();
}

void CCustomCPUDewarper::OnMouseWheel(double fDelta)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.Steered().OnMouseWheel(fDelta, pState->oPanes.IsDrawn(pState->bViewDrawn)))
        pState->RequestFrame();
}
