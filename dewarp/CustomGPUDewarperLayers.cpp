// Overlays, masks and text as the host hands them over.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/overlays/MaskPolygonFormat.h"
#include "dewarp/overlays/StringFormat.h"
#include "platform/MemoryGuard.h"

#include <utility>

// The list comes by value as it does in the setters.
// NOLINTBEGIN(performance-unnecessary-value-param)
int CCustomGPUDewarper::SetOverlay(SGOverlay& sOverlay, unsigned char* pData, int nWidth, int nHeight,
                                   int /*nUnused*/, unsigned int nTextureUnit, std::vector<SGRect> vRects)
// NOLINTEND(performance-unnecessary-value-param)
{
    const int nResult = pRooms->oOverlays.Set(sOverlay, pData, nWidth, nHeight, nTextureUnit, vRects);
    if (nResult != 0)
        RequestFrame();
    return nResult;
}

int CCustomGPUDewarper::SetInputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused)
{
    CLockScope oScope(*this);
    int nResult = 1;
    if (!vMaskPolygons.empty()) {
        pRooms->oReport.Refuse("%s: privacy masks stand in the input overlay's place; %s", "SetInputOverlay",
                               pData != nullptr ? "the image is kept out" : "they stay");
    } else {
        const bool bHadSize = sInputOverlay.nWidth > 0;
        nResult = GuardMemory("SetInputOverlay", pRooms->oReport, 0, [&] {
            return SetOverlay(sInputOverlay, pData, nWidth, nHeight, nUnused, GLUnit(UNIT_INPUT_OVERLAY), {});
        });
        if (nResult != 0)
            pRooms->sMasks.PlaceTaken();
        // A program that was built while the overlay had no size does not look at its unit.
        if (!bHadSize && sInputOverlay.nWidth > 0)
            sMainShader.bForceReload = true;
    }
    sMainShader.bInputOverlay = pData != nullptr;
    RequestFrame();
    return nResult;
}

int CCustomGPUDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused,
                                         std::vector<SGRect> vRects)
{
    CLockScope oScope(*this);
    const int nResult = GuardMemory("SetOutputOverlay", pRooms->oReport, 0, [&] {
        return SetOverlay(sOutputOverlay, pData, nWidth, nHeight, nUnused, GLUnit(UNIT_OUTPUT_OVERLAY),
                          std::move(vRects));
    });
    RequestFrame();
    return nResult;
}

int CCustomGPUDewarper::SetOutputOverlay(unsigned char* pData, int nWidth, int nHeight, int nUnused)
{
    return SetOutputOverlay(pData, nWidth, nHeight, nUnused, {});
}

void CCustomGPUDewarper::SetMaskPolygons(unsigned char* pData, int nLength)
{
    // A list that cannot be held leaves the masks there are: they must not fall away.
    GuardMemory("SetMaskPolygons", pRooms->oReport, false, [&] {
        SetMaskPolygons(ParseMaskPolygons(pData, nLength));
        return true;
    });
}

void CCustomGPUDewarper::SetMaskPolygons(std::vector<SGPolygon> vPolygons)
{
    CLockScope oScope(*this);
    pRooms->sMasks.Set(std::move(vPolygons));
    RequestFrame();
}

void CCustomGPUDewarper::SetStrings(unsigned char* pData, int nLength)
{
    GuardMemory("SetStrings", pRooms->oReport, false, [&] {
        SetStrings(ParseStrings(pData, nLength));
        return true;
    });
}

// The list comes by value as it does for masks. NOLINTNEXTLINE(performance-unnecessary-value-param)
void CCustomGPUDewarper::SetStrings(std::vector<SGPUString> vNewStrings)
{
    CLockScope oScope(*this);
    GuardMemory("SetStrings", pRooms->oReport, false, [&] {
        pRooms->sStrings.Set(vNewStrings, pRooms->oReport);
        return true;
    });
    RequestFrame();
}

void CCustomGPUDewarper::UploadOverlayTexture()
{
    pRooms->oOverlays.Upload();
}

bool CCustomGPUDewarper::BindOverlayTextures()
{
    pRooms->oOverlays.Bind();
    return true;
}

bool CCustomGPUDewarper::UnbindOverlayTextures()
{
    pRooms->oOverlays.Unbind();
    return true;
}

bool CCustomGPUDewarper::NeedsFrameTexture() const
{
    return !vStrings.empty() || COverlayImages::HasImage(sOutputOverlay);
}
