// What the host says about its camera: requests are stored, the rules are the control room's.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "platform/MemoryGuard.h"

bool CCustomGPUDewarper::SetLens(const SLens& rLens)
{
    CLockScope oScope(*this);
    return GuardMemory("SetLens", pRooms->oReport, false, [&] {
        const bool bTaken = pRooms->oControl.SetLens(rLens);
        if (bTaken)
            RequestFrame();
        return bTaken;
    });
}

bool CCustomGPUDewarper::SetImageCircle(float fCenterX, float fCenterY, float fRadiusX, float fRadiusY)
{
    CLockScope oScope(*this);
    return GuardMemory("SetImageCircle", pRooms->oReport, false, [&] {
        const bool bTaken = pRooms->oControl.SetImageCircle({fCenterX, fCenterY, fRadiusX, fRadiusY});
        if (bTaken)
            RequestFrame();
        return bTaken;
    });
}

bool CCustomGPUDewarper::GetImageCircle(float& fCenterX, float& fCenterY, float& fRadiusX, float& fRadiusY)
{
    CLockScope oScope(*this);
    return pRooms->oControl.CircleInForce(fCenterX, fCenterY, fRadiusX, fRadiusY);
}

bool CCustomGPUDewarper::SetMountOrientation(float fYaw, float fPitch, float fRoll)
{
    CLockScope oScope(*this);
    return GuardMemory("SetMountOrientation", pRooms->oReport, false, [&] {
        const bool bTaken = pRooms->oControl.SetMountOrientation({fYaw, fPitch, fRoll});
        if (bTaken)
            RequestFrame();
        return bTaken;
    });
}

void CCustomGPUDewarper::GetMountOrientation(float& fYaw, float& fPitch, float& fRoll)
{
    CLockScope oScope(*this);
    const SMountOrientation sOrientation = pRooms->oControl.Optics().sOrientation;
    fYaw = sOrientation.fYaw;
    fPitch = sOrientation.fPitch;
    fRoll = sOrientation.fRoll;
}

void CCustomGPUDewarper::SetCleanRim(bool bClean)
{
    CLockScope oScope(*this);
    GuardMemory("SetCleanRim", pRooms->oReport, false, [&] {
        pRooms->oControl.SetCleanRim(bClean);
        RequestFrame();
        return true;
    });
}

bool CCustomGPUDewarper::GetCleanRim()
{
    CLockScope oScope(*this);
    return pRooms->oControl.Optics().bCleanRim;
}

void CCustomGPUDewarper::SetRoll(float fDegrees)
{
    CLockScope oScope(*this);
    if (pRooms->oPanes.Steered().SetRoll(fDegrees))
        RequestFrame();
}

float CCustomGPUDewarper::GetRoll()
{
    CLockScope oScope(*this);
    return pRooms->oPanes.Asked().sParams.fRoll;
}

bool CCustomGPUDewarper::SetViewShape(const SViewShape& rShape)
{
    CLockScope oScope(*this);
    const bool bTaken = pRooms->oControl.SetViewShape(rShape);
    if (bTaken)
        RequestFrame();
    return bTaken;
}

SViewShape CCustomGPUDewarper::GetViewShape()
{
    CLockScope oScope(*this);
    return pParams->sShape;
}
