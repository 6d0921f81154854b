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
