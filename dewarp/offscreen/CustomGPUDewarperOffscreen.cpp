#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include "dewarp/LockScope.h"
#include "dewarp/Rooms.h"
#include "dewarp/offscreen/OffscreenTarget.h"
#include "dewarp/records/FrameCheck.h"
#include "dewarp/shaders/VertexText.h"
#include "platform/Display.h"
#include "platform/FairMutex.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>
#include <android/log.h>

namespace
{

const int MAX_TARGET_SIZE = 16384;

bool Fail(CReport& rReport, const char* pFunction, const char* pMessage)
{
    rReport.Error("%s: %s", pFunction, pMessage);
    return false;
}

} // namespace

struct CCustomGPUDewarperOffscreen::SState
{
    CFairMutex oMutex;
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    EGLDisplay pDisplay = EGL_NO_DISPLAY;
    EGLConfig pConfig = nullptr;
    EGLSurface pSurface = EGL_NO_SURFACE;
    EGLContext pContext = EGL_NO_CONTEXT;
    COffscreenTarget oTarget;
    SCurrentContext sHostContext; ///< what was current where StartGL was called
    bool bDrawToTexture = false;  ///< the main program draws to the intermediate texture
    bool bStarted = false;

    /// A surface of one pixel, for drivers that make no context current without one. Nothing is drawn into
    /// it.
    void CreateSurface()
    {
        const EGLint aSize[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
        pSurface = eglCreatePbufferSurface(pDisplay, pConfig, aSize);
        if (pSurface == EGL_NO_SURFACE)
            eglGetError();
    }

    bool MakeCurrent() const
    {
        return eglGetCurrentContext() == pContext || eglMakeCurrent(pDisplay, pSurface, pSurface, pContext);
    }

    void FreeEGL()
    {
        if (pDisplay == EGL_NO_DISPLAY)
            return;
        if (eglGetCurrentContext() == pContext)
            eglMakeCurrent(pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (pContext != EGL_NO_CONTEXT)
            eglDestroyContext(pDisplay, pContext);
        if (pSurface != EGL_NO_SURFACE)
            eglDestroySurface(pDisplay, pSurface);
        TerminateDisplay(pDisplay);
        pContext = EGL_NO_CONTEXT;
        pSurface = EGL_NO_SURFACE;
        pDisplay = EGL_NO_DISPLAY;
    }
};

CCustomGPUDewarperOffscreen::CCustomGPUDewarperOffscreen() : pState(std::make_unique<SState>())
{
    pRooms->oPrograms.SetYUVOutput(false);
}

CCustomGPUDewarperOffscreen::~CCustomGPUDewarperOffscreen()
{
    CCustomGPUDewarperOffscreen::StopGL();
}

bool CCustomGPUDewarperOffscreen::InitGL(int nWidth, int nHeight)
{
    CLockScope oScope(*this);
    if (nWidth < 1 || nHeight < 1 || nWidth > MAX_TARGET_SIZE || nHeight > MAX_TARGET_SIZE) {
        pRooms->oReport.Error("%s: target size %d x %d is outside 1 to %d", "InitGL", nWidth, nHeight,
                              MAX_TARGET_SIZE);
        return false;
    }
    pState->nTargetWidth = nWidth;
    pState->nTargetHeight = nHeight;
    DrawRequired();
    return true;
}

bool CCustomGPUDewarperOffscreen::StartGL()
{
    CLockScope oScope(*this);
    const auto oDisplays = LockDisplays();
    if (pState->bStarted)
        StopGL();
    pState->sHostContext = GetCurrentContext();
    const bool bDone = GuardMemory("StartGL", pRooms->oReport, false, [&] { return Start(); });
    if (!bDone) {
        pState->FreeEGL();
        RestoreCurrentContext(pState->sHostContext);
    }
    return bDone;
}

bool CCustomGPUDewarperOffscreen::Start()
{
    const bool bHadView = pParams->eViewType != VIEW_UNSET || bHasOldView;
    const float fPan = pParams->fPan;
    const float fTilt = pParams->fTilt;
    const float fZoom = pParams->fZoom;
    pState->pDisplay = OpenOffscreenDisplay();
    if (pState->pDisplay == EGL_NO_DISPLAY)
        return Fail(pRooms->oReport, "StartGL",
                    "no EGL display gives an OpenGL ES 3.1 context (default, surfaceless and device "
                    "platforms tried)");
    pState->pContext = CreateOffscreenContext(pState->pDisplay, &pState->pConfig);
    pState->CreateSurface();
    if (pState->pContext == EGL_NO_CONTEXT ||
        !eglMakeCurrent(pState->pDisplay, pState->pSurface, pState->pSurface, pState->pContext)) {
        return Fail(pRooms->oReport, "StartGL", "the OpenGL ES context cannot be made current");
    }
    ReinitializeOpenGLObjects();
    bSceneInitialized = false;
    bTexturesNeedInit = true;
    sMainShader.bForceReload = true;
    bViewSetupRequired = true;
    bResetObjects = true;
    pState->bDrawToTexture = false;
    pState->bStarted = true;
    // After a restart the view is where it was.
    if (bHadView)
        AbsolutePTZ(fPan, fTilt, fZoom);
    bHasOldView = false;
    return true;
}

bool CCustomGPUDewarperOffscreen::StopGL()
{
    CLockScope oScope(*this);
    const auto oDisplays = LockDisplays();
    if (!pState->bStarted)
        return true;
    const SCurrentContext sBefore = GetCurrentContext();
    // Names die under their own context; when it is lost, or cannot be had here, they die with it.
    if (!pState->MakeCurrent()) {
        ForgetGLNames();
        pState->oTarget.Forget();
    }
    bHasOldView = bHasOldView || pParams->eViewType != VIEW_UNSET;
    ReinitializeOpenGLObjects();
    pState->oTarget.Free();
    pState->bStarted = false;
    // The host finds current what it had: now, or before StartGL where ours stood in its place since.
    const SCurrentContext sHost = sBefore.pContext != pState->pContext ? sBefore : pState->sHostContext;
    pState->FreeEGL();
    RestoreCurrentContext(sHost);
    pState->sHostContext = SCurrentContext();
    return true;
}

bool CCustomGPUDewarperOffscreen::SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                                             unsigned long long nTimestamp)
{
    const std::string strFault = GuardMemory("SetTexture", pRooms->oReport, std::string("out of memory"),
                                             [&] { return FindFrameFault(pImage, pQP); });
    if (!strFault.empty()) {
        CLockScope oScope(*this);
        return Fail(pRooms->oReport, "SetTexture", strFault.c_str());
    }
    return CCustomGPUDewarper::SetTexture(pImage, bGain, pQP, nTimestamp);
}

bool CCustomGPUDewarperOffscreen::CheckOSDependentDrawGLSceneInitialization()
{
    SRooms& r = *pRooms;
    if (!pState->bStarted)
        r.oReport.Standing(FAULT_NOT_STARTED, "%s: GL is not started", "DrawGLScene");
    if (!SetCurrentRenderingContext(&pRenderingContext))
        return false;
    if (pState->oTarget.Has(pState->nTargetWidth, pState->nTargetHeight))
        return true;
    // Frames go to a new target; the one that can still be read back goes with the old.
    r.oReadBack.ForgetFrame();
    r.oWatch.TakeHostErrors("DrawGLScene");
    if (pState->oTarget.Create(pState->nTargetWidth, pState->nTargetHeight))
        return true;
    r.oReport.Standing(FAULT_NO_TARGET, "%s: the driver has no target of that size (%d x %d)", "DrawGLScene",
                       pState->nTargetWidth, pState->nTargetHeight);
    return false;
}

bool CCustomGPUDewarperOffscreen::InitializeScene()
{
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    bSceneInitialized = true;
    return true;
}

std::string CCustomGPUDewarperOffscreen::GetVertexShaderCode()
{
    SVertexTextInput sInput;
    sInput.bFlipHorizontal = sMainShader.bFlipHorizontal;
    sInput.bFlipVertical = sMainShader.bFlipVertical;
    sInput.nRotation = nRotation;
    // Row 0 of the target is the top of the picture; the passes behind the intermediate texture see to that
    // themselves.
    sInput.bInvertY = !pState->bDrawToTexture;
    return VertexText(sInput);
}

bool CCustomGPUDewarperOffscreen::SetCurrentRenderingContext(void** ppContext)
{
    if (!pState->bStarted)
        return false;
    if (!pState->MakeCurrent()) {
        pRooms->oReport.Standing(
            FAULT_CONTEXT, "%s: the context cannot be made current: it is lost, or current on another thread",
            "SetCurrentRenderingContext");
        return false;
    }
    *ppContext = pState->pContext;
    return true;
}

bool CCustomGPUDewarperOffscreen::GetTargetWidthHeight(int& nWidth, int& nHeight)
{
    CLockScope oScope(*this);
    nWidth = pState->nTargetWidth;
    nHeight = pState->nTargetHeight;
    return true;
}

void CCustomGPUDewarperOffscreen::ExchangeOpenglFrontBackBuffers(void* /*pContext*/)
{
    glFlush();
}

void CCustomGPUDewarperOffscreen::Lock()
{
    pState->oMutex.lock();
}

void CCustomGPUDewarperOffscreen::Unlock()
{
    pState->oMutex.unlock();
}

int CCustomGPUDewarperOffscreen::OSDependentCheckLoadShaders()
{
    const bool bWanted = NeedsFrameTexture();
    if (bWanted == pState->bDrawToTexture)
        return 0;
    pState->bDrawToTexture = bWanted;
    return 1;
}

bool CCustomGPUDewarperOffscreen::IsTopDownTarget()
{
    return !NeedsFrameTexture();
}

void CCustomGPUDewarperOffscreen::BindDefaultFrameBuffer()
{
    pState->oTarget.Bind();
}
