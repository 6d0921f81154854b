// Where things are in the picture.

#include "dewarp/cpu/CPUState.h"
#include "platform/MemoryGuard.h"

int CCustomCPUDewarper::ViewToFrame(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    const CCPULock oLock(pState->oMutex);
    const int nFound = GuardMemory("ViewToFrame", pState->oReport, -1, [&] {
        return pState->oPoints.ViewToFrame(pPoints, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

int CCustomCPUDewarper::FrameToView(const SPointD* pPoints, SPointD* pResults, bool* pValid, int nCount)
{
    const CCPULock oLock(pState->oMutex);
    const int nFound = GuardMemory("FrameToView", pState->oReport, -1, [&] {
        return pState->oPoints.FrameToView(pPoints, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

int CCustomCPUDewarper::ViewToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid,
                                        int nCount)
{
    const CCPULock oLock(pState->oMutex);
    SState& r = *pState;
    const int nFound = GuardMemory("ViewToDirection", r.oReport, -1, [&] {
        return r.oPoints.ViewToDirection(pPoints, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoDirections(pResults, pValid, nCount) : nFound;
}

int CCustomCPUDewarper::DirectionToView(const SDirection* pDirections, SPointD* pResults, bool* pValid,
                                        int nCount)
{
    const CCPULock oLock(pState->oMutex);
    SState& r = *pState;
    const int nFound = GuardMemory("DirectionToView", r.oReport, -1, [&] {
        return r.oPoints.DirectionToView(pDirections, pResults, pValid, nCount);
    });
    return nFound < 0 ? FindNoPoints(pResults, pValid, nCount) : nFound;
}

int CCustomCPUDewarper::FrameToDirection(const SPointD* pPoints, SDirection* pResults, bool* pValid,
                                         int nCount)
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPoints.FrameToDirection(pPoints, pResults, pValid, nCount);
}

bool CCustomCPUDewarper::LookAt(double fFrameX, double fFrameY)
{
    const CCPULock oLock(pState->oMutex);
    SLookTarget sTarget;
    if (!pState->oPoints.TargetAt({fFrameX, fFrameY}, sTarget) || !pState->oPanes.Steered().LookAt(sTarget))
        return false;
    pState->RequestFrame();
    return true;
}

bool CCustomCPUDewarper::LookAtView(double x, double y)
{
    const CCPULock oLock(pState->oMutex);
    double fFrameX = 0.0;
    double fFrameY = 0.0;
    return pState->oPanes.SelectAt(x, y) && CDewarper::ViewToFrame(x, y, fFrameX, fFrameY) &&
           LookAt(fFrameX, fFrameY);
}
