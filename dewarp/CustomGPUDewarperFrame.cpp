// One frame: what was asked for is put in force and decided, then carried out once, from top to bottom.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/geometry/Matrix.h"
#include "dewarp/gl/PictureRequests.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/records/Mirrors.h"
#include "platform/Assert.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>
#include <android/log.h>

bool CCustomGPUDewarper::DrawGLScene(bool bExchangeBuffers)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    bool bDrawn = false;
    const bool bWhole = GuardMemory("DrawGLScene", r.oReport, false, [&] {
        bDrawn = DrawFrame(bExchangeBuffers);
        return true;
    });
    // A frame that ran out of memory half way leaves its marks: the next one begins anew.
    if (!bWhole)
        RequestEverything();
    if (!bDrawn && r.oWatch.LacksMemory())
        GiveUpFrameObjects();
    r.oWatch.EndFrame();
    return bWhole && bDrawn;
}

bool CCustomGPUDewarper::DrawFrame(bool bExchangeBuffers)
{
    SRooms& r = *pRooms;
    STargetShape sTarget;
    if (!PrepareTarget(sTarget))
        return false;
    // After the GL objects were freed, the view objects come back with the first frame.
    if (pFisheye == nullptr)
        CreateViewObjects();
    if (bResetObjects) {
        ResetCustomGPUObjects();
        bResetObjects = false;
    }
    const SPictureSettings sSettings = RequestedSettings(sMainShader);
    if (DrawsFlips())
        r.oControl.FollowMirrors(MirrorsOf(sSettings.bFlipHorizontal, sSettings.bFlipVertical, nRotation));
    const bool bPanes = r.oPanes.IsSet();
    if (!(bPanes ? PreparePanes(sTarget) : PrepareView(sTarget)))
        return false;
    UploadTexture();
    if (!HasFrame() || !AreMasksShown())
        return false;
    BindFrameTarget(sTarget);
    if (r.oWatch.LacksMemory())
        return false;
    r.oReadBack.ForgetFrame();
    glClear(GL_COLOR_BUFFER_BIT);
    if (!bPanes)
        DrawView(sTarget);
    else if (!DrawPanes(sTarget))
        return false;
    DrawCompositionPasses(sTarget.nWidth, sTarget.nHeight);
    if (r.oWatch.LacksMemory())
        return false;
    if (bExchangeBuffers)
        ExchangeOpenglFrontBackBuffers(pRenderingContext);
    UnbindTextures();
    FinishFrame(sTarget);
    return true;
}

/// Everything that the one view needs but the frame itself.
bool CCustomGPUDewarper::PrepareView(const STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    r.oPoints.MakeRoom(1);
    const SAppliedRequests sApplied = r.oControl.ApplyRequests();
    pRequestedViewObject = ObjectInForce();
    DecideLayers();
    const bool bSetUp = Decide(rTarget);
    if (!CheckMainProgram())
        return false;
    ActivateView(sApplied.bNewLens, sApplied.eLensBefore);
    if (!PaintMasks(rTarget))
        return false;
    if (bSetUp || bViewSetupRequired)
        SetUpProjection();
    return true;
}

bool CCustomGPUDewarper::PrepareTarget(STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    if (!CheckOSDependentDrawGLSceneInitialization() || !CheckInitializations())
        return false;
    if (!SetCurrentRenderingContext(&pRenderingContext)) {
        pRenderingContext = nullptr;
        return false;
    }
    if (bLogGLErrors)
        r.oWatch.BeginToldFrame();
    r.oOverlays.DeleteParked();
    if (r.oOverlays.DropOversized())
        sMainShader.bInputOverlay = false;
    GetTargetWidthHeight(rTarget.nWidth, rTarget.nHeight);
    rTarget.bTopDown = IsTopDownTarget();
    if (rTarget.nWidth > 0 && rTarget.nHeight > 0 && pParams->nImageWidth > 0)
        return true;
    r.oReport.Standing(FAULT_NO_TARGET, "%s: the target (%d x %d) or the frame (%d x %d) has no size",
                       "DrawGLScene", rTarget.nWidth, rTarget.nHeight, pParams->nImageWidth,
                       pParams->nImageHeight);
    return false;
}

/// What lies over the view, and who has the input overlay's place. The program is chosen by it.
void CCustomGPUDewarper::DecideLayers()
{
    SRooms& r = *pRooms;
    SLayers& rLayers = r.sDecision.sLayers;
    rLayers.bMasks = !vMaskPolygons.empty();
    rLayers.bText = !vStrings.empty();
    rLayers.bOutputOverlay = COverlayImages::HasImage(sOutputOverlay);
    if (rLayers.bMasks) {
        // Masks count in pixels of the frame: one of another size gets them painted anew.
        if (r.oOverlays.GiveInputToMasks(pParams->nImageWidth, pParams->nImageHeight))
            bMaskPolygonsChanged = true;
        sMainShader.bInputOverlay = true;
    } else if (r.sMasks.bEmptied || !COverlayImages::HasImage(sInputOverlay)) {
        // An image that was refused leaves its wish behind, and nothing to show.
        sMainShader.bInputOverlay = false;
    }
    rLayers.bInputOverlay = sMainShader.bInputOverlay;
}

void CCustomGPUDewarper::TakePictureSettings()
{
    SRooms& r = *pRooms;
    r.sDecision.sPicture = RequestedSettings(sMainShader);
    r.oTextures.eSampling = r.sDecision.sPicture.eSampling;
    r.oTextures.bMinification = r.sDecision.sPicture.bMinification;
}

/// Decides the view if it is not decided for this state and target yet. True when its matrices are to be set
/// up.
bool CCustomGPUDewarper::Decide(const STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    const bool bSetUp = bViewSetupRequired || rTarget.nWidth != pMatrices->nViewportWidth ||
                        rTarget.nHeight != pMatrices->nViewportHeight || *pParams != *pLastDrawnParams;
    TakePictureSettings();
    if (IsDecidedFor(r.sDecision, r.oControl, rTarget))
        return bSetUp;
    DecideView(r.oControl, rTarget, r.sDecision);
    RequestBands(r.sDecision.sBands, sMainShader);
    return true;
}

void CCustomGPUDewarper::ResetCustomGPUObjects()
{
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             pFisheye, pFisheyeCircular, pVCAM, pPanorama, pPanoramaWall, pPanoramaDual, pPanoramaTriple}) {
        if (pObject != nullptr)
            pObject->Reset();
    }
    pRooms->sViews.oAnyView.Reset();
    pRooms->oPaneMeshes.Reset();
    if (pActiveViewObject == nullptr)
        return;
    pActiveViewObject->Activate(pGeometry, pParams);
    pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
    pBoundViewObject = pActiveViewObject;
}

void CCustomGPUDewarper::ActivateView(bool bNewLens, ELensType eLensBefore)
{
    if (pRequestedViewObject == nullptr)
        __assert2("dewarp/CustomGPUDewarper", __LINE__, "virtual bool CCustomGPUDewarper::DrawGLScene(bool)",
                  "0");
    if (pRequestedViewObject != pActiveViewObject) {
        pActiveViewObject = pRequestedViewObject;
        SDewarpParams sBefore = *pParams;
        sBefore.eLensType = eLensBefore;
        pActiveViewObject->Activate(pGeometry, &sBefore);
    }
    if (bNewLens) {
        bViewSetupRequired = true;
        ResetCustomGPUObjects();
    }
    const SMeshKey& rWanted = pRooms->sDecision.sMesh;
    if (pActiveViewObject->IsBuiltFor(rWanted))
        return;
    // Panes are built while the projection is set up.
    if (rWanted.eMesh == MESH_PANORAMA_DUAL || rWanted.eMesh == MESH_PANORAMA_TRIPLE)
        bViewSetupRequired = true;
    else
        pActiveViewObject->Rebuild(pGeometry, pParams);
}

/// Paints the masks if they, or what they were painted for, changed. False: a mask would stay open.
bool CCustomGPUDewarper::PaintMasks(const STargetShape& rTarget)
{
    if (!bMaskPolygonsChanged)
        return true;
    // What could not be painted must be tried again.
    bMaskPolygonsChanged = false;
    const int nResult = MaskPolygonsToInputOverlay();
    if (nResult < 0) {
        bMaskPolygonsChanged = true;
        SayIfTooLarge();
    }
    glViewport(0, 0, rTarget.nWidth, rTarget.nHeight);
    return nResult >= 0;
}

void CCustomGPUDewarper::SetUpProjection()
{
    SRooms& r = *pRooms;
    bViewSetupRequired = false;
    glViewport(0, 0, r.sDecision.sTarget.nWidth, r.sDecision.sTarget.nHeight);
    *pMatrices = r.sDecision.sMatrices;
    SetIdentityMatrix(pMatrices->fModel);
    pVCAM->m_fEyeDistance = r.sDecision.fEyeDistance;
    pVCAM->m_bTopDownTarget = r.sDecision.sTarget.bTopDown;
    r.sViews.oAnyView.m_bTopDownTarget = r.sDecision.sTarget.bTopDown;
    AdjustPTZ();
    MultiplyMatrices(pMatrices->fModelView, pMatrices->fView, pMatrices->fModel);
    MultiplyMatrices(pMatrices->fMVP, pMatrices->fProjection, pMatrices->fModelView);
    CPrograms::MakeCurrent(sMainShader);
    glUniformMatrix4fv(sMainShader.nMVPMatrixLocation, 1, GL_FALSE, pMatrices->fMVP);
    *pLastDrawnParams = *pParams;
}

bool CCustomGPUDewarper::AdjustPTZ()
{
    if (pActiveViewObject != nullptr)
        pActiveViewObject->AdjustPTZ(pGeometry, pParams, pMatrices, ShownImageAspect(*pParams, nRotation),
                                     nRotation);
    return true;
}

bool CCustomGPUDewarper::HasFrame()
{
    SRooms& r = *pRooms;
    if (!r.oInput.bFrameInTextures && !bTextureUpload)
        r.oReport.Standing(FAULT_NO_FRAME, "%s: no frame was handed over since GL was started or freed",
                           "DrawGLScene");
    return r.oInput.bFrameInTextures && !r.oWatch.LacksMemory();
}

/// Looks once more, now that everything is made: no frame is drawn with a mask missing.
bool CCustomGPUDewarper::AreMasksShown()
{
    const bool bShown =
        vMaskPolygons.empty() || (!bMaskPolygonsChanged && sMainShader.bInputOverlayInShader &&
                                  pRooms->oOverlays.ShowsMasks(pParams->nImageWidth, pParams->nImageHeight));
    if (!bShown)
        pRooms->oReport.Standing(FAULT_MASKS, "%s: privacy masks are not painted; no frame is shown",
                                 "DrawGLScene");
    return bShown;
}

void CCustomGPUDewarper::BindFrameTarget(const STargetShape& rTarget)
{
    if (pRooms->sDecision.sLayers.NeedsTexture())
        pRooms->oFrame.BindViewTexture(rTarget.nWidth, rTarget.nHeight);
    else
        BindDefaultFrameBuffer();
}

void CCustomGPUDewarper::DrawView(const STargetShape& rTarget)
{
    glViewport(0, 0, rTarget.nWidth, rTarget.nHeight);
    CPrograms::MakeCurrent(sMainShader);
    BindTextures();
    if (pActiveViewObject != pBoundViewObject) {
        pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
        pBoundViewObject = pActiveViewObject;
    }
    pActiveViewObject->DrawArrays(pParams, pMatrices, &sMainShader);
}

void CCustomGPUDewarper::FinishFrame(const STargetShape& rTarget)
{
    SRooms& r = *pRooms;
    if (bLogGLErrors) {
        const unsigned int nError = r.oWatch.ErrorOfFrame();
        if (nError != 0)
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s: this=%p End of DrawGLScene and the error is=%d\n", "DrawGLScene",
                                static_cast<void*>(this), static_cast<int>(nError));
    }
    r.oReadBack.SetDrawn(rTarget.nWidth, rTarget.nHeight);
    if (r.oPanes.IsSet())
        r.oPoints.SetDrawn(r.oPanes.Views(), DrawsFlips());
    else
        r.oPoints.SetDrawn(r.sDecision, DrawsFlips());
    r.oReport.AllOver();
    bDrawRequired = false;
    nLastDisplayedTimestamp = nLastSetTimestamp;
    IncrementDrawCount();
}

unsigned char* CCustomGPUDewarper::GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride)
{
    CLockScope oScope(*this);
    SRooms& r = *pRooms;
    if (!r.oReadBack.HasFrame() || !SetCurrentRenderingContext(&pRenderingContext))
        return nullptr;
    BindDefaultFrameBuffer();
    return r.oReadBack.Read(pSize, pWidth, pHeight, pStride);
}
