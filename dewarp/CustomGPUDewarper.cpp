#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/Rooms.h"
#include "platform/Assert.h"

#include <functional>
#include <initializer_list>
#include <thread>

CCustomGPUDewarper::CCustomGPUDewarper()
{
    CreateViewObjects();
}

CCustomGPUDewarper::~CCustomGPUDewarper()
{
    FreeTextures();
    FreeProgramAndShaders();
}

void CCustomGPUDewarper::CreateViewObjects()
{
    SViewObjects& rViews = pRooms->sViews;
    pFisheye = &rViews.oFisheye;
    pFisheyeCircular = &rViews.oFisheyeCircular;
    pVCAM = &rViews.oVCAM;
    pPanorama = &rViews.oPanorama;
    pPanoramaWall = &rViews.oPanoramaWall;
    pPanoramaDual = &rViews.oPanoramaDual;
    pPanoramaTriple = &rViews.oPanoramaTriple;
}

void CCustomGPUDewarper::DeleteViewObjects()
{
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             pFisheye, pFisheyeCircular, pVCAM, pPanorama, pPanoramaWall, pPanoramaDual, pPanoramaTriple}) {
        if (pObject != nullptr)
            pObject->Reset();
    }
    pRooms->sViews.oAnyView.Reset();
    pRooms->oPaneMeshes.Reset();
    pFisheye = nullptr;
    pFisheyeCircular = nullptr;
    pVCAM = nullptr;
    pPanorama = nullptr;
    pPanoramaWall = nullptr;
    pPanoramaDual = nullptr;
    pPanoramaTriple = nullptr;
}

void CCustomGPUDewarper::FreeTextures()
{
    pRooms->oInput.Free();
    pRooms->oFrame.Free();
    pRooms->oMaskPass.Free();
    pRooms->oStringPass.Free();
    pRooms->oOverlays.Free();
}

void CCustomGPUDewarper::ForgetGLNames()
{
    SRooms& r = *pRooms;
    r.oInput.Forget();
    r.oFrame.Forget();
    r.oMaskPass.Forget();
    r.oStringPass.Forget();
    r.oOverlays.Forget();
    r.oPrograms.ForgetAll();
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             &r.sViews.oFisheye, &r.sViews.oFisheyeCircular, &r.sViews.oVCAM, &r.sViews.oPanorama,
             &r.sViews.oPanoramaWall, &r.sViews.oPanoramaDual, &r.sViews.oPanoramaTriple, &r.sViews.oAnyView,
             pStringObject, pAuxFisheye, pAuxFisheye2})
        pObject->Forget();
    r.oPaneMeshes.Forget();
}

void CCustomGPUDewarper::FreeProgramAndShaders()
{
    pRooms->oPrograms.FreeAll();
}

void CCustomGPUDewarper::FreeOpenGLObjects()
{
    SRooms& r = *pRooms;
    FreeTextures();
    FreeProgramAndShaders();
    bViewSetupRequired = true;
    bResetObjects = true;
    bShadersLoaded = false;
    pRequestedViewObject = nullptr;
    pActiveViewObject = nullptr;
    pBoundViewObject = nullptr;
    nLastSetTimestamp = 0;
    nLastDisplayedTimestamp = 0;
    r.oControl.ForgetInForce();
    nDrawCount = 0;
    DeleteViewObjects();
    for (CCGPUObjBase* pObject :
         std::initializer_list<CCGPUObjBase*>{pStringObject, pAuxFisheye, pAuxFisheye2})
        pObject->Reset();

    // What the freed names held comes back with the next frame; the next context may be another driver's.
    r.oInput.ForgetContents();
    r.oTextures.ForgetSizes();
    r.oTextures.ForgetDriver();
    r.oReadBack.ForgetFrame();
    r.oReadBack.ForgetDriver();
    r.oReport.AllOver();
    r.sMasks.Repaint();
    r.sStrings.Redraw();
}

void CCustomGPUDewarper::ReinitializeOpenGLObjects()
{
    FreeOpenGLObjects();
    CreateViewObjects();
}

/// Asks for all that a frame can build.
void CCustomGPUDewarper::RequestEverything()
{
    bResetObjects = true;
    bViewSetupRequired = true;
    sMainShader.bForceReload = true;
    pBoundViewObject = nullptr;
    pRooms->oPrograms.ForgetFailures();
    pRooms->sMasks.Repaint();
    pRooms->sStrings.Redraw();
}

/// Which objects are without contents cannot be known, so all of them are made anew with the next frame that
/// is handed over.
void CCustomGPUDewarper::GiveUpFrameObjects()
{
    SRooms& r = *pRooms;
    r.oReport.Error("%s: the driver is out of memory", "DrawGLScene");
    FreeTextures();
    r.oTextures.ForgetSizes();
    r.oInput.bFrameInTextures = false;
    bTexturesNeedInit = true;
    for (CCGPUObjBase* pObject :
         std::initializer_list<CCGPUObjBase*>{pStringObject, pAuxFisheye, pAuxFisheye2})
        pObject->Reset();
    RequestEverything();
}

#ifndef NDEBUG
void CCustomGPUDewarper::EnterLocked()
{
    const std::size_t nSelf = std::hash<std::thread::id>()(std::this_thread::get_id()) | 1U;
    std::size_t nNobody = 0;
    if (!pRooms->nThreadInside.compare_exchange_strong(nNobody, nSelf) && nNobody != nSelf)
        __assert2("dewarp/CustomGPUDewarper", __LINE__, "void CCustomGPUDewarper::EnterLocked()",
                  "one thread at a time");
    ++pRooms->nDepthInside;
}

void CCustomGPUDewarper::LeaveLocked()
{
    if (--pRooms->nDepthInside == 0)
        pRooms->nThreadInside = 0;
}
#endif

void CCustomGPUDewarper::RequestFrame()
{
    pRooms->oPrograms.ForgetFailures();
    // The view's program is written anew only when asked for: the one that was given up is.
    if (pRooms->bProgramTriedAgain)
        sMainShader.bForceReload = true;
    pRooms->bProgramTriedAgain = false;
    DrawRequired();
}

bool CCustomGPUDewarper::IsTopDownTarget()
{
    return false;
}

bool CCustomGPUDewarper::DrawsFlips()
{
    return true;
}

// Platform hooks. A subclass with a platform behind it overrides them.

bool CCustomGPUDewarper::CheckOSDependentDrawGLSceneInitialization()
{
    return true;
}

bool CCustomGPUDewarper::CheckInitializations()
{
    if (pParams->nImageHeight < 1) {
        pRooms->oReport.Standing(FAULT_NO_FRAME, "%s: no frame was handed over yet", "DrawGLScene");
        return false;
    }
    if (!bSceneInitialized)
        InitializeScene();
    return true;
}

bool CCustomGPUDewarper::InitializeScene()
{
    return true;
}

void CCustomGPUDewarper::GetIBRDecodingParams() {}

void CCustomGPUDewarper::GetYUV2RGBConversionParams() {}

bool CCustomGPUDewarper::OSDependentUploadTexture()
{
    return false;
}

bool CCustomGPUDewarper::OSDependentBindTextures()
{
    return false;
}

bool CCustomGPUDewarper::OSDependentUnBindTextures()
{
    return false;
}

bool CCustomGPUDewarper::SetCurrentRenderingContext(void** /*ppContext*/)
{
    return true;
}

bool CCustomGPUDewarper::GetTargetWidthHeight(int& nWidth, int& nHeight)
{
    nWidth = 0;
    nHeight = 0;
    return false;
}

void CCustomGPUDewarper::ExchangeOpenglFrontBackBuffers(void* /*pContext*/) {}

void CCustomGPUDewarper::CheckSaveImage(int /*nWidth*/, int /*nHeight*/) {}

void CCustomGPUDewarper::Lock() {}

void CCustomGPUDewarper::Unlock() {}

int CCustomGPUDewarper::OSDependentCheckLoadShaders()
{
    return 0;
}

void CCustomGPUDewarper::DrawRequired()
{
    bDrawRequired = true;
}

void CCustomGPUDewarper::IncrementDrawCount()
{
    ++nDrawCount;
}

void CCustomGPUDewarper::BindDefaultFrameBuffer()
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}
