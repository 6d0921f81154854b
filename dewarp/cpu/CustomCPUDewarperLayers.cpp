// Overlays, masks and text as the host hands them over.

#include "dewarp/cpu/CPUState.h"
#include "dewarp/overlays/MaskPolygonFormat.h"
#include "dewarp/overlays/StringFormat.h"
#include "platform/MemoryGuard.h"

#include <utility>

int CCustomCPUDewarper::SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int /*nUnused*/)
{
    const CCPULock oLock(pState->oMutex);
    SState& s = *pState;
    int nResult = 1;
    if (!s.oLayers.sMasks.vMaskPolygons.empty()) {
        s.oReport.Refuse("%s: privacy masks stand in the input overlay's place; %s", "SetInputOverlay",
                         pData != nullptr ? "the image is kept out" : "they stay");
    } else {
        nResult = GuardMemory("SetInputOverlay", s.oReport, 0,
                              [&] { return s.oLayers.SetInputOverlay(pData, nWidth, nHeight, s.oReport); });
    }
    s.RequestFrame();
    return nResult;
}

int CCustomCPUDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int /*nUnused*/,
                                         std::vector<SGRect> vRects)
{
    const CCPULock oLock(pState->oMutex);
    SState& s = *pState;
    const int nResult = GuardMemory("SetOutputOverlay", s.oReport, 0, [&] {
        return s.oLayers.SetOutputOverlay(pData, nWidth, nHeight, vRects, s.oReport);
    });
    s.RequestFrame();
    return nResult;
}

void CCustomCPUDewarper::SetMaskPolygons(unsigned char* pData, int nLength)
{
    const CCPULock oLock(pState->oMutex);
    // A list that cannot be held leaves the masks there are: they must not fall away.
    GuardMemory("SetMaskPolygons", pState->oReport, false, [&] {
        SetMaskPolygons(ParseMaskPolygons(pData, nLength));
        return true;
    });
}

void CCustomCPUDewarper::SetMaskPolygons(std::vector<SGPolygon> vPolygons)
{
    const CCPULock oLock(pState->oMutex);
    pState->oLayers.sMasks.Set(std::move(vPolygons));
    pState->RequestFrame();
}

void CCustomCPUDewarper::SetStrings(unsigned char* pData, int nLength)
{
    const CCPULock oLock(pState->oMutex);
    GuardMemory("SetStrings", pState->oReport, false, [&] {
        SetStrings(ParseStrings(pData, nLength));
        return true;
    });
}

void CCustomCPUDewarper::SetStrings(std::vector<SGPUString> vStrings)
{
    const CCPULock oLock(pState->oMutex);
    GuardMemory("SetStrings", pState->oReport, false, [&] {
        pState->oLayers.sStrings.Set(vStrings, pState->oReport);
        return true;
    });
    pState->RequestFrame();
}
