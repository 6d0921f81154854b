// Pan, tilt, zoom and mouse: the rules are the control room's.

#include "dewarp/cpu/CPUState.h"

void CCustomCPUDewarper::AbsolutePTZ(float fPan, float fTilt, float fZoom)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oControl.AbsolutePTZ(fPan, fTilt, fZoom))
        pState->RequestFrame();
}

void CCustomCPUDewarper::RelativePTZ(float fPan, float fTilt, float fZoom)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oControl.RelativePTZ(fPan, fTilt, fZoom, pState->bViewDrawn))
        pState->RequestFrame();
}

void CCustomCPUDewarper::AnaloguePTZ(float fPan, float fTilt, float fZoom)
{
    pState->oControl.AnaloguePTZ(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::GetPTZAnalog(float& fPan, float& fTilt, float& fZoom)
{
    pState->oControl.GetPTZAnalog(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::GetPTZ(float& fPan, float& fTilt, float& fZoom)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.GetPTZ(fPan, fTilt, fZoom);
}

void CCustomCPUDewarper::OnMouseDown(int x, int y)
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.OnMouseDown(x, y);
}

void CCustomCPUDewarper::OnMouseMove(int x, int y, bool bLockX, bool bLockY)
{
    const CCPULock oLock(pState->oMutex);
    const SFrameDecision& d = pState->sDecision;
    const SDrawnPicture sPicture = {d.sTarget.nWidth, d.sTarget.nHeight, d.sBands.anPlanes[0],
                                    d.sBands.anPlanes[2]};
    if (pState->oControl.OnMouseMove(x, y, bLockX, bLockY, sPicture, pState->bViewDrawn))
        pState->RequestFrame();
}

void CCustomCPUDewarper::OnMouseUp()
{
    const CCPULock oLock(pState->oMutex);
    pState->oControl.OnMouseUp();
}

void CCustomCPUDewarper::OnMouseWheel(double fDelta)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oControl.OnMouseWheel(fDelta, pState->bViewDrawn))
        pState->RequestFrame();
}
