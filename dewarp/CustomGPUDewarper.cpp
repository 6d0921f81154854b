#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/overlays/GPUObjString.h"
#include "dewarp/views/GPUObjFisheye.h"
#include "dewarp/views/GPUObjPanorama.h"
#include "dewarp/views/GPUObjPanoramaMulti.h"
#include "dewarp/views/GPUObjPanoramaWall.h"
#include "dewarp/views/GPUObjVCAM.h"
#include "platform/ShaderDialect.h"

#include <cstring>

namespace
{

// A view that was asked for but not applied yet: the mount of a dewarper whose GL objects were freed.
const EMountType MOUNT_NOT_APPLIED = static_cast<EMountType>(-1);

template <class T>
void DeleteObject(T*& pObject)
{
    delete pObject;
    pObject = nullptr;
}

/// Deletes one texture and forgets its name. GL thread, context current.
void DeleteTexture(unsigned int& nTexture)
{
    if (nTexture == 0)
        return;
    glDeleteTextures(1, &nTexture);
    nTexture = 0;
}

} // namespace

CCustomGPUDewarper::CCustomGPUDewarper()
    : pMouseAnchor(new SGPoint), pGeometry(new CCustomGPUGeometry), pParams(new SDewarpParams),
      pMatrices(new SDewarpMatrices), pLastDrawnParams(new SDewarpParams), pQPInfo(new SQPInfo),
      pOutputOverlayMatrices(new SDewarpMatrices), pStringMatrices(new SDewarpMatrices),
      pMaskMatrices(new SDewarpMatrices), pTextureCopyMatrices(new SDewarpMatrices),
      pOutputOverlayParams(new SDewarpParams(SDewarpParams::Auxiliary())),
      pStringParams(new SDewarpParams(SDewarpParams::Auxiliary())),
      pMaskParams(new SDewarpParams(SDewarpParams::Auxiliary())),
      pTextureCopyParams(new SDewarpParams(SDewarpParams::Auxiliary())), pDriverTraits(new SDriverTraits)
{
    // No frame has this zoom: the first comparison finds a difference.
    pLastDrawnParams->fZoom = -1.0f;
    CreateViewObjects();
}

CCustomGPUDewarper::~CCustomGPUDewarper()
{
    FreeTextures();
    FreeProgramAndShaders();
    DeleteViewObjects();
    DeleteObject(pStringObject);
    DeleteObject(pAuxFisheye);
    DeleteObject(pAuxFisheye2);
    for (SDewarpParams** ppParams : {&pParams, &pLastDrawnParams, &pOutputOverlayParams, &pStringParams,
                                     &pMaskParams, &pTextureCopyParams})
        DeleteObject(*ppParams);
    for (SDewarpMatrices** ppMatrices :
         {&pMatrices, &pOutputOverlayMatrices, &pStringMatrices, &pMaskMatrices, &pTextureCopyMatrices})
        DeleteObject(*ppMatrices);
    DeleteObject(pGeometry);
    DeleteObject(pMouseAnchor);
    DeleteObject(pQPInfo);
    DeleteObject(pDriverTraits);
    delete[] pReadBack;
    pReadBack = nullptr;
}

void CCustomGPUDewarper::CreateViewObjects()
{
    pFisheye = new CCGPUObjFisheye;
    pFisheyeCircular = new CCGPUObjFisheye;
    pFisheyeCircular->m_nPrimitiveMode = GL_TRIANGLE_FAN;
    pVCAM = new CCGPUObjVCAM;
    pPanorama = new CCGPUObjPanorama;
    pPanoramaWall = new CCGPUObjPanoramaWall;
    pPanoramaDual = new CCGPUObjPanoramaDual;
    pPanoramaTriple = new CCGPUObjPanoramaTriple;
    if (pStringObject == nullptr)
        pStringObject = new CCGPUObjString;
    if (pAuxFisheye == nullptr)
        pAuxFisheye = new CCGPUObjFisheye;
    if (pAuxFisheye2 == nullptr)
        pAuxFisheye2 = new CCGPUObjFisheye;
}

void CCustomGPUDewarper::DeleteViewObjects()
{
    DeleteObject(pFisheye);
    DeleteObject(pFisheyeCircular);
    DeleteObject(pVCAM);
    DeleteObject(pPanorama);
    DeleteObject(pPanoramaWall);
    DeleteObject(pPanoramaDual);
    DeleteObject(pPanoramaTriple);
}

void CCustomGPUDewarper::FreeTextures()
{
    for (unsigned int* pTexture :
         {&nTextureY, &nTextureUV, &nTextureU, &nTextureV, &nTextureQP, &nTextureMBType, &nTextureRGB})
        DeleteTexture(*pTexture);
    if (nFrameBuffer != 0) {
        glDeleteFramebuffers(1, &nFrameBuffer);
        nFrameBuffer = 0;
    }
    for (unsigned int* pTexture : {&nFrameTexture, &nFrameTexture2, &nMaskTextureA, &nMaskTextureB,
                                   &nStringTextureA, &nStringTextureB, &nFontTexture})
        DeleteTexture(*pTexture);
    for (SGOverlay* pOverlay : {&sInputOverlay, &sOutputOverlay})
        ReleaseOverlayTexture(*pOverlay);
    DeleteParkedTextures();
}

void CCustomGPUDewarper::ForgetGLNames()
{
    for (unsigned int* pName :
         {&nTextureY, &nTextureUV, &nTextureU, &nTextureV, &nTextureQP, &nTextureMBType, &nTextureRGB,
          &nFrameBuffer, &nFrameTexture, &nFrameTexture2, &nMaskTextureA, &nMaskTextureB, &nStringTextureA,
          &nStringTextureB, &nFontTexture, &sInputOverlay.nTexture, &sOutputOverlay.nTexture})
        *pName = 0;
    vParkedTextures.clear();
    for (SShaderProperties* pShader :
         {&sMainShader, &sOutputOverlayShader, &sStringShader, &sStringCompositeShader, &sMaskShader,
          &sTextureToScreenShader, &sTextureToTextureShader})
        pShader->bNamesDeleted = true;
    for (CCGPUObjBase* pObject : std::initializer_list<CCGPUObjBase*>{
             pFisheye, pFisheyeCircular, pVCAM, pPanorama, pPanoramaWall, pPanoramaDual, pPanoramaTriple,
             pStringObject, pAuxFisheye, pAuxFisheye2}) {
        if (pObject != nullptr)
            pObject->Forget();
    }
}

void CCustomGPUDewarper::FreeOpenGLObjects()
{
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
    pParams->eViewType = VIEW_UNSET;
    pParams->eMountType = MOUNT_NOT_APPLIED;
    nDrawCount = 0;
    std::memset(anTextureUnitSize, 0, sizeof(anTextureUnitSize));
    DeleteViewObjects();
    pStringObject->Reset();
    pAuxFisheye->Reset();
    pAuxFisheye2->Reset();

    // What the freed names held comes back with the next frame.
    bFrameInTextures = false;
    bDriverMemoryLacks = false;
    eRedBlueUpload = RED_BLUE_UNDECIDED;
    nMaxTextureSize = 0;
    bReadBGRA = true;
    bReadBGRAProven = false;
    *pDriverTraits = SDriverTraits();
    bMaskPolygonsChanged = bMaskPolygonsChanged || !vMaskPolygons.empty();
    bStringsChanged = bStringsChanged || !vStrings.empty();
}

void CCustomGPUDewarper::ReinitializeOpenGLObjects()
{
    FreeOpenGLObjects();
    DeleteObject(pStringObject);
    DeleteObject(pAuxFisheye);
    DeleteObject(pAuxFisheye2);
    CreateViewObjects();
}

// Platform hooks. A subclass with a platform behind it overrides them.

bool CCustomGPUDewarper::CheckOSDependentDrawGLSceneInitialization()
{
    return true;
}

bool CCustomGPUDewarper::CheckInitializations()
{
    if (pParams->nImageHeight < 1)
        return false;
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
