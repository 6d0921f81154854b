// What the host says about its camera and the sampling: requests are stored, the rules are the control
// room's.

#include "dewarp/cpu/CPUState.h"
#include "platform/MemoryGuard.h"

bool CCustomCPUDewarper::SetLens(const SLens& rLens)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("SetLens", pState->oReport, false, [&] {
        const bool bTaken = pState->oControl.SetLens(rLens);
        if (bTaken)
            pState->RequestFrame();
        return bTaken;
    });
}

bool CCustomCPUDewarper::SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("SetImageCircle", pState->oReport, false, [&] {
        const bool bTaken = pState->oControl.SetImageCircle({fCenterX, fCenterY, fRadiusX, fRadiusY});
        if (bTaken)
            pState->RequestFrame();
        return bTaken;
    });
}

bool CCustomCPUDewarper::GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY)
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.CircleInForce(fCenterX, fCenterY, fRadiusX, fRadiusY);
}

bool CCustomCPUDewarper::SetMountOrientation(float fYaw, float fPitch, float fRoll)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("SetMountOrientation", pState->oReport, false, [&] {
        const bool bTaken = pState->oControl.SetMountOrientation({fYaw, fPitch, fRoll});
        if (bTaken)
            pState->RequestFrame();
        return bTaken;
    });
}

void CCustomCPUDewarper::GetMountOrientation(float& fYaw, float& fPitch, float& fRoll)
{
    const CCPULock oLock(pState->oMutex);
    const SMountOrientation sOrientation = pState->oControl.Optics().sOrientation;
    fYaw = sOrientation.fYaw;
    fPitch = sOrientation.fPitch;
    fRoll = sOrientation.fRoll;
}

void CCustomCPUDewarper::SetCleanRim(bool bClean)
{
    const CCPULock oLock(pState->oMutex);
    GuardMemory("SetCleanRim", pState->oReport, false, [&] {
        pState->oControl.SetCleanRim(bClean);
        pState->RequestFrame();
        return true;
    });
}

bool CCustomCPUDewarper::GetCleanRim()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.Optics().bCleanRim;
}

void CCustomCPUDewarper::SetRoll(float fDegrees)
{
    const CCPULock oLock(pState->oMutex);
    if (pState->oPanes.Steered().SetRoll(fDegrees))
        pState->RequestFrame();
}

float CCustomCPUDewarper::GetRoll()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPanes.Asked().sParams.fRoll;
}

bool CCustomCPUDewarper::SetViewShape(const SViewShape& rShape)
{
    const CCPULock oLock(pState->oMutex);
    const bool bTaken = pState->oControl.SetViewShape(rShape);
    if (bTaken)
        pState->RequestFrame();
    return bTaken;
}

SViewShape CCustomCPUDewarper::GetViewShape()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oControl.sParams.sShape;
}

bool CCustomCPUDewarper::SetSampling(ESampling eSampling)
{
    const CCPULock oLock(pState->oMutex);
    const bool bTaken = pState->sPicture.SetSampling(eSampling, pState->oReport);
    if (bTaken)
        pState->RequestFrame();
    return bTaken;
}

ESampling CCustomCPUDewarper::GetSampling()
{
    const CCPULock oLock(pState->oMutex);
    return pState->sPicture.eSampling;
}

void CCustomCPUDewarper::SetMinification(bool bAverage)
{
    const CCPULock oLock(pState->oMutex);
    pState->sPicture.bMinification = bAverage;
    pState->RequestFrame();
}

bool CCustomCPUDewarper::GetMinification()
{
    const CCPULock oLock(pState->oMutex);
    return pState->sPicture.bMinification;
}
