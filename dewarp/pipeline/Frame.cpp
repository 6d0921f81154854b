// One frame: requests become state in force, the view is drawn, passes follow.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/views/GPUObjFisheye.h"
#include "dewarp/views/GPUObjPanorama.h"
#include "dewarp/views/GPUObjPanoramaMulti.h"
#include "dewarp/views/GPUObjPanoramaWall.h"
#include "dewarp/views/GPUObjVCAM.h"
#include "platform/Assert.h"

#include <android/log.h>

namespace
{

bool IsMountSet(EMountType eMount)
{
    return eMount != MOUNT_UNSET && static_cast<int>(eMount) != -1;
}

/// True when an overlay was painted from masks for frames of this size.
bool HoldsMasks(const SGOverlay& rOverlay, const SDewarpParams& rParams)
{
    return rOverlay.pData == nullptr && rOverlay.nTexture != 0 && rOverlay.nWidth == rParams.nImageWidth &&
           rOverlay.nHeight == rParams.nImageHeight;
}

} // namespace

bool CCustomGPUDewarper::DrawGLScene(bool bExchangeBuffers)
{
    CLockScope oScope(*this);
    bool bDrawn = false;
    const bool bWhole = GuardMemory("DrawGLScene", false, [&] {
        bDrawn = DrawFrame(bExchangeBuffers);
        return true;
    });
    // A frame that ran out of memory half way leaves its marks: the next one begins anew.
    if (!bWhole)
        RequestEverything();
    if (!bDrawn && LacksDriverMemory())
        GiveUpFrameObjects();
    nErrorOfFrame = 0;
    return bWhole && bDrawn;
}

bool CCustomGPUDewarper::DrawFrame(bool bExchangeBuffers)
{
    int nWidth = 0;
    int nHeight = 0;
    if (!PrepareTarget(nWidth, nHeight) || !ApplyRequests(nWidth, nHeight) ||
        !SetUpProjection(nWidth, nHeight))
        return false;
    UploadTexture();
    if (!bFrameInTextures)
        return false;
    BindFrameTarget(nWidth, nHeight);
    if (LacksDriverMemory())
        return false;
    glClear(GL_COLOR_BUFFER_BIT);
    DrawView(nWidth, nHeight);
    DrawCompositionPasses(nWidth, nHeight);
    if (LacksDriverMemory())
        return false;
    if (bExchangeBuffers)
        ExchangeOpenglFrontBackBuffers(pRenderingContext);
    UnbindTextures();
    FinishFrame();
    return true;
}

/// Asks for all that a frame can build.
void CCustomGPUDewarper::RequestEverything()
{
    bResetObjects = true;
    bViewSetupRequired = true;
    sMainShader.bForceReload = true;
    pBoundViewObject = nullptr;
    bMaskPolygonsChanged = bMaskPolygonsChanged || !vMaskPolygons.empty();
    bStringsChanged = bStringsChanged || !vStrings.empty();
}

bool CCustomGPUDewarper::PrepareTarget(int& nWidth, int& nHeight)
{
    if (!CheckOSDependentDrawGLSceneInitialization() || !CheckInitializations())
        return false;
    if (!SetCurrentRenderingContext(&pRenderingContext)) {
        pRenderingContext = nullptr;
        return false;
    }
    DeleteParkedTextures();
    DropOversizedOverlays();
    GetTargetWidthHeight(nWidth, nHeight);
    return nWidth > 0 && nHeight > 0 && pParams->nImageWidth > 0 && pParams->nImageHeight > 0;
}

bool CCustomGPUDewarper::ApplyRequests(int nWidth, int nHeight)
{
    // After the GL objects were freed, the view objects come back with the first frame.
    if (pFisheye == nullptr)
        CreateViewObjects();
    if (bResetObjects) {
        ResetCustomGPUObjects();
        bResetObjects = false;
    }
    if (!IsMountSet(pParams->eMountType) && !IsMountSet(eRequestedMount))
        eRequestedMount = MOUNT_CEILING;
    CheckMountTypeRequest();
    if (pParams->eViewType == VIEW_UNSET && eRequestedView == VIEW_UNSET)
        eRequestedView = VIEW_VCAM;
    CheckViewTypeRequest();
    if (pRequestedViewObject == nullptr && pActiveViewObject == nullptr)
        __assert2("dewarp/CustomGPUDewarper", __LINE__, "virtual bool CCustomGPUDewarper::DrawGLScene(bool)",
                  "0");
    if (!CheckMainProgram())
        return false;
    if (bResetPTZ)
        ApplyDefaultPTZ();
    if (pRequestedViewObject != pActiveViewObject)
        ActivateRequestedObject();
    const ELensType eMeshLens = ApplyAbsolutePTZ();
    if (pActiveViewObject == nullptr)
        return false;
    ApplyAnalogPTZ();
    ApplyLensRequest(eMeshLens);
    return ApplyMaskRequest(nWidth, nHeight);
}

void CCustomGPUDewarper::CheckViewTypeRequest()
{
    if (eRequestedView == pParams->eViewType)
        return;
    const EViewType eOld = pParams->eViewType;
    const bool bKeepPTZ = (eOld == VIEW_FISHEYE && eRequestedView == VIEW_FISHEYE_CIRCULAR) ||
                          (eOld == VIEW_FISHEYE_CIRCULAR && eRequestedView == VIEW_FISHEYE);
    pParams->eViewType = eRequestedView;
    switch (static_cast<int>(eRequestedView)) {
    case VIEW_VCAM:
    case VIEW_VCAM_QUAD:
        pRequestedViewObject = pVCAM;
        break;
    case VIEW_PANORAMA_QUARTER:
    case VIEW_PANORAMA_FULL:
    case VIEW_PANORAMA_HALF:
        if (pParams->eMountType != MOUNT_WALL)
            pRequestedViewObject = pPanorama;
        else
            pRequestedViewObject = pPanoramaWall;
        break;
    case VIEW_PANORAMA_DUAL:
        pRequestedViewObject = pPanoramaDual;
        break;
    case VIEW_PANORAMA_TRIPLE:
        pRequestedViewObject = pPanoramaTriple;
        break;
    case VIEW_FISHEYE_CIRCULAR:
        pRequestedViewObject = pFisheyeCircular;
        break;
    default:
        pRequestedViewObject = pFisheye;
        break;
    }
    bResetPTZ = !bKeepPTZ;
}

void CCustomGPUDewarper::CheckMountTypeRequest()
{
    if (!IsMountSet(eRequestedMount) || eRequestedMount == pParams->eMountType)
        return;
    pParams->eMountType = eRequestedMount;
    const EViewType eView = pParams->eViewType;
    if (eView == VIEW_PANORAMA_QUARTER || eView == VIEW_PANORAMA_FULL || eView == VIEW_PANORAMA_HALF) {
        if (pParams->eMountType != MOUNT_WALL)
            pRequestedViewObject = pPanorama;
        else
            pRequestedViewObject = pPanoramaWall;
    }
    bResetPTZ = true;
}

void CCustomGPUDewarper::ResetCustomGPUObjects()
{
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             pFisheye, pFisheyeCircular, pVCAM, pPanorama, pPanoramaWall, pPanoramaDual, pPanoramaTriple}) {
        if (pObject != nullptr)
            pObject->Reset();
    }
    if (pActiveViewObject == nullptr)
        return;
    pActiveViewObject->Activate(pGeometry, pParams);
    pActiveViewObject->LoadVertexAndTextureCoordinates(&sMainShader);
    pBoundViewObject = pActiveViewObject;
}

void CCustomGPUDewarper::ApplyDefaultPTZ()
{
    pParams->fPan = 0.0f;
    pParams->fTilt = 0.0f;
    pParams->fZoom = 180.0f;
    const bool bCamera = pParams->eViewType == VIEW_VCAM || pParams->eViewType == VIEW_VCAM_QUAD;
    if (bCamera && IsMountSet(pParams->eMountType)) {
        pParams->fPan = 90.0f;
        if (pParams->eMountType == MOUNT_WALL)
            pParams->fTilt = 90.0f;
        else if (pParams->eMountType == MOUNT_FLOOR)
            pParams->fTilt = 180.0f;
    }
    bResetPTZ = false;
}

void CCustomGPUDewarper::ActivateRequestedObject()
{
    pActiveViewObject = pRequestedViewObject;
    if (pActiveViewObject == nullptr)
        return;
    pActiveViewObject->Activate(pGeometry, pParams);
    pActiveViewObject->CheckPTZ(pParams);
}

/// Puts a pending position in force. Returns the lens that the meshes were built for.
ELensType CCustomGPUDewarper::ApplyAbsolutePTZ()
{
    const ELensType eMeshLens = pParams->eLensType;
    if (!bAbsolutePTZPending)
        return eMeshLens;
    pParams->fPan = fAbsolutePan;
    pParams->fTilt = fAbsoluteTilt;
    pParams->fZoom = fAbsoluteZoom;
    if (pActiveViewObject != nullptr)
        pActiveViewObject->CheckPTZ(pParams);
    bAbsolutePTZPending = false;
    pParams->eLensType = LENS_UNSET;
    return eMeshLens;
}

void CCustomGPUDewarper::ApplyAnalogPTZ()
{
    float fPanSpeed = 0.0f;
    float fTiltSpeed = 0.0f;
    float fZoomSpeed = 0.0f;
    GetPTZAnalog(fPanSpeed, fTiltSpeed, fZoomSpeed);
    if (fPanSpeed == 0.0f && fTiltSpeed == 0.0f && fZoomSpeed == 0.0f)
        return;
    const float fPan = pParams->fPan;
    const float fTilt = pParams->fTilt;
    const float fZoom = pParams->fZoom;
    pParams->fPan -= fPanSpeed * 4.0f;
    pParams->fTilt += fTiltSpeed * 4.0f;
    pParams->fZoom += fZoomSpeed * 4.0f;
    KeepFinitePTZ(fPan, fTilt, fZoom);
    pActiveViewObject->CheckPTZ(pParams);
}

void CCustomGPUDewarper::ApplyLensRequest(ELensType eMeshLens)
{
    if (eRequestedLens == LENS_UNSET || eRequestedLens == pParams->eLensType)
        return;
    ELensType eLens = eRequestedLens;
    if (eLens == LENS_AUTO)
        eLens = AutoDetectLensType(pParams->nImageWidth, pParams->nImageHeight);
    if (eLens == pParams->eLensType)
        return;
    pParams->eLensType = eLens;
    // An absolute move only forgot the lens: the meshes still are this lens's.
    if (eLens == eMeshLens)
        return;
    bViewSetupRequired = true;
    ResetCustomGPUObjects();
}

bool CCustomGPUDewarper::ApplyMaskRequest(int nWidth, int nHeight)
{
    // Masks count in pixels of the frame: one of another size gets them painted anew.
    if (!vMaskPolygons.empty() && !(sMainShader.bInputOverlay && HoldsMasks(sInputOverlay, *pParams)))
        bMaskPolygonsChanged = true;
    if (!bMaskPolygonsChanged)
        return true;
    // A mask that could not be painted must be tried again: it may not stay open.
    bMaskPolygonsChanged = false;
    const int nResult = MaskPolygonsToInputOverlay();
    if (nResult < 0)
        bMaskPolygonsChanged = true;
    glViewport(0, 0, nWidth, nHeight);
    return nResult >= 0 && CheckMainProgram();
}

void CCustomGPUDewarper::FinishFrame()
{
    if (bLogGLErrors) {
        const unsigned int nError = nErrorOfFrame != 0 ? nErrorOfFrame : glGetError();
        if (nError != 0)
            __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                                "%s: this=%p End of DrawGLScene and the error is=%d\n", "DrawGLScene",
                                static_cast<void*>(this), static_cast<int>(nError));
    }
    bDrawRequired = false;
    nLastDisplayedTimestamp = nLastSetTimestamp;
    IncrementDrawCount();
}
