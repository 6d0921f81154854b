#include "dewarp/DewarperState.h"

#include "dewarp/Rooms.h"

SRooms::SRooms()
{
    // No frame has this zoom: the first comparison finds a difference.
    sLastDrawnParams.fZoom = -1.0f;
    oPrograms.m_vRecords = {&sMainShader,
                            &oOutputOverlay.sOutputOverlayShader,
                            &oStringPass.sStringShader,
                            &oStringPass.sStringCompositeShader,
                            &oMaskPass.sMaskShader,
                            &oCopies.sTextureToScreenShader,
                            &oCopies.sTextureToTextureShader};
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             &sViews.oFisheye, &sViews.oFisheyeCircular, &sViews.oVCAM, &sViews.oPanorama,
             &sViews.oPanoramaWall, &sViews.oPanoramaDual, &sViews.oPanoramaTriple, &sViews.oAnyView,
             &oStringPass.oStringObject, &oOutputOverlay.sQuad.oQuad, &oCopies.sQuad.oQuad})
        pObject->m_pWatch = &oWatch;
}

CDewarperState::CDewarperState()
    : pRooms(new SRooms), sMainShader(pRooms->sMainShader), pMouseAnchor(&pRooms->oControl.sMouseAnchor),
      bMouseDown(pRooms->oControl.bMouseDown), bWireFrame(pRooms->oControl.bWireFrame),
      pGeometry(&pRooms->oGeometry), pParams(&pRooms->oControl.sParams), pMatrices(&pRooms->sMatrices),
      pLastDrawnParams(&pRooms->sLastDrawnParams), nTextureY(pRooms->oInput.nTextureY),
      nTextureUV(pRooms->oInput.nTextureUV), nTextureU(pRooms->oInput.nTextureU),
      nTextureV(pRooms->oInput.nTextureV), nTextureQP(pRooms->oInput.nTextureQP),
      nTextureMBType(pRooms->oInput.nTextureMBType), nTextureRGB(pRooms->oInput.nTextureRGB),
      nFrameBuffer(pRooms->oFrame.nFrameBuffer), nFrameTexture(pRooms->oFrame.nFrameTexture),
      nFrameTexture2(pRooms->oFrame.nFrameTexture2), nMaskTextureA(pRooms->oMaskPass.nMaskTextureA),
      nMaskTextureB(pRooms->oMaskPass.nMaskTextureB), nStringTextureA(pRooms->oStringPass.nStringTextureA),
      nStringTextureB(pRooms->oStringPass.nStringTextureB), nFontTexture(pRooms->oStringPass.nFontTexture),
      pInputPlanes(pRooms->oInput.pInputPlanes), bTexturesNeedInit(pRooms->oInput.bTexturesNeedInit),
      bTextureUpload(pRooms->oInput.bTextureUpload), eInterpolation(pRooms->oControl.eInterpolation),
      eRequestedLens(pRooms->oControl.eRequestedLens), eRequestedView(pRooms->oControl.eRequestedView),
      eRequestedMount(pRooms->oControl.eRequestedMount), nImageFormat(pRooms->oInput.nImageFormat),
      nRotation(pRooms->oControl.nRotation), bLogShaderCode(pRooms->oPrograms.bLogShaderCode),
      pQPInfo(&pRooms->oInput.sQPInfo), pStringObject(&pRooms->oStringPass.oStringObject),
      pReadBack(pRooms->oReadBack.pReadBack), nReadBackCapacity(pRooms->oReadBack.nReadBackCapacity),
      vMaskPolygons(pRooms->sMasks.vMaskPolygons), bMaskPolygonsChanged(pRooms->sMasks.bMaskPolygonsChanged),
      pAuxFisheye(&pRooms->oOutputOverlay.sQuad.oQuad), pAuxFisheye2(&pRooms->oCopies.sQuad.oQuad),
      fAnalogSpeed(pRooms->oControl.fAnalogSpeed), bResetPTZ(pRooms->oControl.bResetPTZ),
      bDrawRequired(pRooms->oControl.bDrawRequired),
      bAbsolutePTZPending(pRooms->oControl.bAbsolutePTZPending), fAbsolutePan(pRooms->oControl.fAbsolutePan),
      fAbsoluteTilt(pRooms->oControl.fAbsoluteTilt), fAbsoluteZoom(pRooms->oControl.fAbsoluteZoom),
      sInputOverlay(pRooms->oOverlays.sInputOverlay), sOutputOverlay(pRooms->oOverlays.sOutputOverlay),
      sOutputOverlayShader(pRooms->oOutputOverlay.sOutputOverlayShader),
      sStringShader(pRooms->oStringPass.sStringShader),
      sStringCompositeShader(pRooms->oStringPass.sStringCompositeShader),
      sMaskShader(pRooms->oMaskPass.sMaskShader),
      sTextureToScreenShader(pRooms->oCopies.sTextureToScreenShader),
      sTextureToTextureShader(pRooms->oCopies.sTextureToTextureShader),
      pOutputOverlayMatrices(&pRooms->oOutputOverlay.sQuad.sMatrices),
      pStringMatrices(&pRooms->oStringPass.sMatrices), pMaskMatrices(&pRooms->oMaskPass.sMatrices),
      pTextureCopyMatrices(&pRooms->oCopies.sQuad.sMatrices),
      pOutputOverlayParams(&pRooms->oOutputOverlay.sQuad.sParams),
      pStringParams(&pRooms->oStringPass.sParams), pMaskParams(&pRooms->oMaskPass.sParams),
      pTextureCopyParams(&pRooms->oCopies.sQuad.sParams), vStrings(pRooms->sStrings.vStrings),
      bStringsChanged(pRooms->sStrings.bStringsChanged),
      anTextureUnitSize(pRooms->oTextures.anTextureUnitSize)
{}

CDewarperState::~CDewarperState() = default;
