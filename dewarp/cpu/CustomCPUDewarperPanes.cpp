// Several views of the camera in one picture.

#include "dewarp/cpu/CPUState.h"
#include "platform/MemoryGuard.h"

bool CCustomCPUDewarper::SetPanes(std::vector<SPane> vPanes)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("SetPanes", pState->oReport, false, [&] {
        const bool bTaken = pState->oPanes.Set(vPanes);
        if (bTaken)
            pState->RequestFrame();
        return bTaken;
    });
}

std::vector<SPane> CCustomCPUDewarper::GetPanes()
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("GetPanes", pState->oReport, std::vector<SPane>(),
                       [&] { return pState->oPanes.List(); });
}

bool CCustomCPUDewarper::SetPaneGap(int nPixels, unsigned int nColor)
{
    const CCPULock oLock(pState->oMutex);
    const bool bTaken = pState->oPanes.SetGap(nPixels, nColor);
    if (bTaken)
        pState->RequestFrame();
    return bTaken;
}

bool CCustomCPUDewarper::SelectPane(int nPane)
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPanes.Select(nPane);
}

int CCustomCPUDewarper::GetSelectedPane()
{
    const CCPULock oLock(pState->oMutex);
    return pState->oPanes.Selected();
}
