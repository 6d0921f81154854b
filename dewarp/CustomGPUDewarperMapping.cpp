// Where things are in the picture.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "platform/MemoryGuard.h"

int CCustomGPUDewarper::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    const int nFound = GuardMemory("ViewToFrame", r.oReport, -1,
                                   [&] { return r.oPoints.ViewToFrame(pPoints, pResults, pValid, nCount); });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

int CCustomGPUDewarper::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    const int nFound = GuardMemory("FrameToView", r.oReport, -1,
                                   [&] { return r.oPoints.FrameToView(pPoints, pResults, pValid, nCount); });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

bool CCustomGPUDewarper::ViewToFrame(double x, double y, double& fFrameX, double& fFrameY)
{
    SPointD sPoint = {x, y};
    if (ViewToFrame(&sPoint, &sPoint, nullptr, 1) != 1)
        return false;
    fFrameX = sPoint.x;
    fFrameY = sPoint.y;
    return true;
}

bool CCustomGPUDewarper::FrameToView(double fFrameX, double fFrameY, double& x, double& y)
{
    SPointD sPoint = {fFrameX, fFrameY};
    if (FrameToView(&sPoint, &sPoint, nullptr, 1) != 1)
        return false;
    x = sPoint.x;
    y = sPoint.y;
    return true;
}

int CCustomGPUDewarper::ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid,
                                        int nCount)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    const int nFound = GuardMemory("ViewToDirection", r.oReport, -1, [&] {
        return r.oPoints.ViewToDirection(pPoints, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoDirections(pResults, pValid, nCount) : nFound;
}

int CCustomGPUDewarper::DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid,
                                        int nCount)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    const int nFound = GuardMemory("DirectionToView", r.oReport, -1, [&] {
        return r.oPoints.DirectionToView(pDirections, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

int CCustomGPUDewarper::FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid,
                                         int nCount)
{
    CLockScope oScope(*this);
    return pRooms->oPoints.FrameToDirection(pPoints, pResults, pValid, nCount);
}

bool CCustomGPUDewarper::LookAt(double fFrameX, double fFrameY)
{
    CLockScope oScope(*this);
    SLookTarget sTarget;
    if (!pRooms->oPoints.TargetAt({fFrameX, fFrameY}, sTarget) || !pRooms->oPanes.Steered().LookAt(sTarget))
        return false;
    RequestFrame();
    return true;
}

bool CCustomGPUDewarper::LookAtView(double x, double y)
{
    CLockScope oScope(*this);
    double fFrameX = 0.0;
    double fFrameY = 0.0;
    return pRooms->oPanes.SelectAt(x, y) && ViewToFrame(x, y, fFrameX, fFrameY) && LookAt(fFrameX, fFrameY);
}

bool CCustomGPUDewarper::ViewToDirection(double x, double y, SDirection& rDirection)
{
    const SPointD sPoint = {x, y};
    SDirection sResult;
    if (ViewToDirection(&sPoint, &sResult, nullptr, 1) != 1)
        return false;
    rDirection = sResult;
    return true;
}

bool CCustomGPUDewarper::DirectionToView(const SDirection& rDirection, double& x, double& y)
{
    SPointD sResult;
    if (DirectionToView(&rDirection, &sResult, nullptr, 1) != 1)
        return false;
    x = sResult.x;
    y = sResult.y;
    return true;
}

bool CCustomGPUDewarper::FrameToDirection(double fFrameX, double fFrameY, SDirection& rDirection)
{
    const SPointD sPoint = {fFrameX, fFrameY};
    SDirection sResult;
    if (FrameToDirection(&sPoint, &sResult, nullptr, 1) != 1)
        return false;
    rDirection = sResult;
    return true;
}
