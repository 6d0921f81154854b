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
