// The passes around the view: masks before it, copies, text and output overlay after it.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/Rooms.h"

#include <GLES3/gl31.h>

int CCustomGPUDewarper::MaskPolygonsToInputOverlay()
{
    SRooms& r = *pRooms;
    if (vMaskPolygons.empty()) {
        if (r.sMasks.bEmptied) {
            r.sMasks.PlaceTaken();
            r.oOverlays.sInputOverlay.Reset();
            sMainShader.bInputOverlay = false;
        }
        return 0;
    }
    const int w = pParams->nImageWidth;
    const int h = pParams->nImageHeight;
    r.oOverlays.GiveInputToMasks(w, h);
    if (!r.oMaskPass.Paint(vMaskPolygons, w, h))
        return -1;
    r.oOverlays.PrepareMaskTexture();
    if (HandleTextureToTexture(w, h, COPY_MASKS_TO_INPUT_OVERLAY) < 0 || r.oWatch.LacksMemory())
        return -1;
    sMainShader.bInputOverlay = true;
    BindDefaultFrameBuffer();
    glActiveTexture(GL_TEXTURE0);
    CPrograms::MakeCurrent(sMainShader);
    if (pActiveViewObject != nullptr) {
        pActiveViewObject->Activate(pGeometry, pParams);
        pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
        pBoundViewObject = pActiveViewObject;
    }
    return 0;
}

int CCustomGPUDewarper::HandleTextureToScreen(int nWidth, int nHeight, int nSource)
{
    SRooms& r = *pRooms;
    if (nSource != COPY_VIEW_TO_SCREEN && nSource != COPY_COPY_TO_SCREEN)
        return 0;
    const bool bCopy = nSource == COPY_COPY_TO_SCREEN;
    if (!r.oCopies.BeginToScreen(nWidth, nHeight, bCopy ? nFrameTexture2 : nFrameTexture,
                                 bCopy ? UNIT_VIEW_COPY : UNIT_VIEW))
        return -1;
    BindDefaultFrameBuffer();
    if (!r.oCopies.DrawToScreen())
        return -1;
    pBoundViewObject = pAuxFisheye2;
    CPrograms::MakeCurrent(sMainShader);
    return 0;
}

int CCustomGPUDewarper::HandleTextureToTexture(int nWidth, int nHeight, int nSource)
{
    SRooms& r = *pRooms;
    if (nSource != COPY_VIEW_TO_COPY && nSource != COPY_MASKS_TO_INPUT_OVERLAY)
        return 0;
    const bool bMasks = nSource == COPY_MASKS_TO_INPUT_OVERLAY;
    if (!r.oCopies.BeginToTexture(nWidth, nHeight, bMasks ? nMaskTextureA : nFrameTexture,
                                  bMasks ? UNIT_MASK_A : UNIT_VIEW))
        return -1;
    r.oCopies.BindTarget(bMasks ? sInputOverlay.nTexture : nFrameTexture2);
    if (!r.oCopies.DrawToTexture())
        return -1;
    pBoundViewObject = pAuxFisheye2;
    CPrograms::MakeCurrent(sMainShader);
    return 0;
}

int CCustomGPUDewarper::HandleOutputOverlay(int nWidth, int nHeight)
{
    SRooms& r = *pRooms;
    if (!r.oOutputOverlay.Begin(nWidth, nHeight))
        return -1;
    BindDefaultFrameBuffer();
    if (!r.oOutputOverlay.Draw(nFrameTexture, sOutputOverlay.nTexture))
        return -1;
    pBoundViewObject = pAuxFisheye;
    CPrograms::MakeCurrent(sMainShader);
    return 0;
}

int CCustomGPUDewarper::UpdateStringOverlay(int nWidth, int nHeight)
{
    SRooms& r = *pRooms;
    r.oStringPass.ChooseTarget(COverlayImages::HasImage(sOutputOverlay));
    if (!r.oStringPass.Update(r.sStrings, nWidth, nHeight))
        return -1;
    pBoundViewObject = pStringObject;
    BindDefaultFrameBuffer();
    CPrograms::MakeCurrent(sMainShader);
    glViewport(0, 0, nWidth, nHeight);
    return 0;
}

int CCustomGPUDewarper::HandleStrings(int nWidth, int nHeight)
{
    SRooms& r = *pRooms;
    r.oStringPass.ChooseTarget(COverlayImages::HasImage(sOutputOverlay));
    if ((bStringsChanged || r.oStringPass.IsStale(nWidth, nHeight)) &&
        UpdateStringOverlay(nWidth, nHeight) < 0)
        return -1;
    if (!r.oStringPass.BeginComposition(nWidth, nHeight))
        return -1;
    const bool bToTexture = r.oStringPass.bToTexture;
    if (bToTexture)
        r.oFrame.BindFrameBuffer();
    else
        BindDefaultFrameBuffer();
    r.oStringPass.Compose(bToTexture ? nFrameTexture2 : nFrameTexture, nWidth, nHeight);
    pBoundViewObject = pStringObject;
    BindDefaultFrameBuffer();
    CPrograms::MakeCurrent(sMainShader);
    glViewport(0, 0, nWidth, nHeight);
    return 0;
}

void CCustomGPUDewarper::DrawCompositionPasses(int nWidth, int nHeight)
{
    const bool bOverlay = pRooms->sDecision.sLayers.bOutputOverlay;
    int nResult = 0;
    if (pRooms->sDecision.sLayers.bText) {
        nResult = bOverlay ? HandleTextureToTexture(nWidth, nHeight, COPY_VIEW_TO_COPY)
                           : HandleTextureToScreen(nWidth, nHeight, COPY_VIEW_TO_SCREEN);
        // Text reads the copy: without one it would stand on whatever the copy's texture holds.
        if (nResult >= 0)
            nResult = HandleStrings(nWidth, nHeight);
    }
    // Without the overlay's program the view is shown without the overlay, not the frame before.
    if (bOverlay && HandleOutputOverlay(nWidth, nHeight) < 0) {
        HandleTextureToScreen(nWidth, nHeight, COPY_VIEW_TO_SCREEN);
        nResult = -1;
    }
    // A pass that could not run leaves its own target bound.
    if (nResult < 0)
        BindDefaultFrameBuffer();
    // The quad view's quarters, and the strings, leave a smaller viewport behind.
    glViewport(0, 0, nWidth, nHeight);
}
