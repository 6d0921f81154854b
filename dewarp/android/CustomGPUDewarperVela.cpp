// EGL objects: made by StartGL, ended by StopGL.

#include "dewarp/android/CustomGPUDewarperVela.h"

#include "dewarp/Rooms.h"
#include "platform/BufferImages.h"
#include "platform/Display.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>
#include <android/log.h>

#include <cstdio>

namespace
{

const EGLint CONFIG_ATTRIBUTES[] = {
    EGL_SURFACE_TYPE,
    EGL_PBUFFER_BIT,
    EGL_RED_SIZE,
    5,
    EGL_GREEN_SIZE,
    6,
    EGL_BLUE_SIZE,
    5,
    EGL_RENDERABLE_TYPE,
    EGL_OPENGL_ES2_BIT,
    EGL_CONFORMANT,
    EGL_OPENGL_ES2_BIT,
    EGL_COLOR_BUFFER_TYPE,
    EGL_RGB_BUFFER,
    EGL_LUMINANCE_SIZE,
    0,
    EGL_NONE,
};

bool Fail(CReport& rReport, const char* pMessage)
{
    __android_log_print(ANDROID_LOG_ERROR, DEWARP_LOG_TAG, pMessage, "StartGL");
    rReport.Keep(pMessage, "StartGL");
    return false;
}

/// Looks for an error that a call left although it reported success.
bool SucceededQuietly(CReport& rReport, const char* pMessage)
{
    const EGLint nError = eglGetError();
    if (nError == EGL_SUCCESS)
        return true;
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, pMessage, "StartGL",
                        static_cast<unsigned int>(nError));
    rReport.Keep(pMessage, "StartGL", static_cast<unsigned int>(nError));
    return false;
}

/// Every shader text is written for OpenGL ES 3.1. A version that cannot be read is trusted.
bool IsCurrentVersionUsable()
{
    const auto* const pVersion = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    int nMajor = 0;
    int nMinor = 0;
    if (pVersion == nullptr || std::sscanf(pVersion, "OpenGL ES %d.%d", &nMajor, &nMinor) != 2)
        return true;
    return nMajor > 3 || (nMajor == 3 && nMinor >= 1);
}

} // namespace

CCustomGPUDewarperVela::CCustomGPUDewarperVela()
{
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Enter", "CCustomGPUDewarperVela");
}

CCustomGPUDewarperVela::~CCustomGPUDewarperVela()
{
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: DeInitialize the OpenGLES",
                        "~CCustomGPUDewarperVela");
    CCustomGPUDewarperVela::StopGL();
    ReleaseFailedStart();
}

bool CCustomGPUDewarperVela::InitGL(int nWidth, int nHeight)
{
    nTargetWidth = nWidth;
    nTargetHeight = nHeight;
    return true;
}

bool CCustomGPUDewarperVela::StartGL()
{
    const auto oDisplays = LockDisplays();
    if (bGLStarted)
        StopGL();
    ReleaseFailedStart();
    sHostContext = GetCurrentContext();
    const bool bDone = GuardMemory("StartGL", pRooms->oReport, false, [&] { return Start(); });
    if (!bDone)
        RestoreCurrentContext(sHostContext);
    return bDone;
}

bool CCustomGPUDewarperVela::Start()
{
    ReinitializeOpenGLObjects();
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Enter", "StartGL");
    if (!OpenDisplay() || !ChooseConfig() || !CreateSurface() || !MakeUsableContextCurrent())
        return false;
    sExtensions = LoadEGLExtensions();
    bExternalTarget = false;
    OSDependentFBO(false);
    if (nFramebuffer == 0 || nRenderbuffer == 0) {
        OSDependentFBO(true);
        return Fail(pRooms->oReport, "%s: the driver makes no framebuffer");
    }
    float fPan = 0.0f;
    float fTilt = 0.0f;
    float fZoom = 0.0f;
    GetPTZ(fPan, fTilt, fZoom);
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: GetPTZ values are: %f, %f, %f", "StartGL",
                        static_cast<double>(fPan), static_cast<double>(fTilt), static_cast<double>(fZoom));
    bSceneInitialized = false;
    bTexturesNeedInit = true;
    sMainShader.bForceReload = true;
    bViewSetupRequired = true;
    bResetObjects = true;
    // The stored pan, not the wrapped one: limits of views lie on both sides of 0.
    AbsolutePTZ(pParams->fPan, pParams->fTilt, pParams->fZoom);
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Initialized the OpenGLES", "StartGL");
    bGLStarted = true;
    return true;
}

bool CCustomGPUDewarperVela::OpenDisplay()
{
    // It is ours once it is counted: another dewarper may have it as well.
    EGLDisplay pDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (pDisplay == EGL_NO_DISPLAY)
        return Fail(pRooms->oReport, "%s: Error getting the display");
    EGLint nMajor = 0;
    EGLint nMinor = 0;
    if (!InitializeDisplay(pDisplay, &nMajor, &nMinor))
        return Fail(pRooms->oReport, "%s: Error in opengl es init");
    mDisplay = pDisplay;
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: egl major version is: %d and minro is: %d",
                        "StartGL", nMajor, nMinor);
    if (!eglBindAPI(EGL_OPENGL_ES_API))
        return Fail(pRooms->oReport, "%s: Error in eslbind");
    return SucceededQuietly(pRooms->oReport, "%s failed (%x).\n");
}

bool CCustomGPUDewarperVela::ChooseConfig()
{
    mConfig = nullptr;
    nNumConfigs = 0;
    if (!eglChooseConfig(mDisplay, CONFIG_ATTRIBUTES, &mConfig, 1, &nNumConfigs))
        return Fail(pRooms->oReport, "%s: Error choosing the config");
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: egl numconfig returned is: %d", "StartGL",
                        nNumConfigs);
    return true;
}

/// Nothing is drawn into the surface; the context is made current with it.
bool CCustomGPUDewarperVela::CreateSurface()
{
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                        "%s: Creating a surface of width is: %d and height is: %d", "StartGL", nTargetWidth,
                        nTargetHeight);
    const EGLint aSize[] = {EGL_WIDTH, nTargetWidth, EGL_HEIGHT, nTargetHeight, EGL_NONE};
    mSurface = eglCreatePbufferSurface(mDisplay, mConfig, aSize);
    return mSurface != EGL_NO_SURFACE || Fail(pRooms->oReport, "%s: Error creating surface");
}

bool CCustomGPUDewarperVela::CreateContext(EGLint nVersion)
{
    const EGLint aVersion[] = {EGL_CONTEXT_CLIENT_VERSION, nVersion, EGL_NONE};
    mContext = eglCreateContext(mDisplay, mConfig, EGL_NO_CONTEXT, aVersion);
    return mContext != EGL_NO_CONTEXT;
}

bool CCustomGPUDewarperVela::MakeContextCurrent()
{
    if (!eglMakeCurrent(mDisplay, mSurface, mSurface, mContext))
        return false;
    return SucceededQuietly(pRooms->oReport, "%s failed4 (%x).\n");
}

/// Most drivers answer a request for version 2 with the highest version they have; others need to be asked.
bool CCustomGPUDewarperVela::MakeUsableContextCurrent()
{
    if (CreateContext(2)) {
        if (!MakeContextCurrent())
            return false;
        if (IsCurrentVersionUsable())
            return true;
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(mDisplay, mContext);
    }
    if (!CreateContext(3))
        return Fail(pRooms->oReport, "%s: Error creating surface");
    if (!MakeContextCurrent())
        return false;
    return IsCurrentVersionUsable() || Fail(pRooms->oReport, "%s: Error creating surface");
}

bool CCustomGPUDewarperVela::StopGL()
{
    const auto oDisplays = LockDisplays();
    GuardMemory("StopGL", pRooms->oReport, true, [&] {
        Stop();
        return true;
    });
    return true;
}

void CCustomGPUDewarperVela::Stop()
{
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: Stop OpenGLES", "StopGL");
    if (!bGLStarted) {
        ReinitializeOpenGLObjects();
        return;
    }
    const SCurrentContext sBefore = GetCurrentContext();
    // Names die under their own context; when it is lost, or cannot be had on this thread, they die with it.
    if (!MakeOwnContextCurrent()) {
        ForgetGLNames();
        nInputTexture = 0;
        nRenderbuffer = 0;
        nFramebuffer = 0;
    }
    ReinitializeOpenGLObjects();
    // The last frame destroyed it already, which does no harm.
    if (mSync != EGL_NO_SYNC_KHR && sExtensions.eglDestroySyncKHR != nullptr)
        sExtensions.eglDestroySyncKHR(mDisplay, mSync);
    // From the destructor it is this class's own, as it should be. NOLINTNEXTLINE
    OSDependentFBO(true);
    DestroyBufferImage(mInputImage);
    ReleaseBufferImages(mContext);
    // The host finds current what it had: now, or before StartGL where ours stood in its place since.
    const SCurrentContext sHost = sBefore.pContext != mContext ? sBefore : sHostContext;
    ReleaseEGL();
    eglReleaseThread();
    RestoreCurrentContext(sHost);
    sHostContext = SCurrentContext();
    bGLStarted = false;
}

/// A start that failed leaves behind what it had made.
void CCustomGPUDewarperVela::ReleaseFailedStart()
{
    const auto oDisplays = LockDisplays();
    if (mContext != EGL_NO_CONTEXT && eglGetCurrentContext() == mContext)
        eglMakeCurrent(mDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    ReleaseEGL();
}

void CCustomGPUDewarperVela::ReleaseEGL()
{
    if (mDisplay == EGL_NO_DISPLAY)
        return;
    const bool bStillCurrent = mContext != EGL_NO_CONTEXT && eglGetCurrentContext() == mContext;
    if (mContext != EGL_NO_CONTEXT)
        eglDestroyContext(mDisplay, mContext);
    if (mSurface != EGL_NO_SURFACE)
        eglDestroySurface(mDisplay, mSurface);
    TerminateDisplay(mDisplay, bStillCurrent);
    mContext = EGL_NO_CONTEXT;
    mSurface = EGL_NO_SURFACE;
    mDisplay = EGL_NO_DISPLAY;
}

bool CCustomGPUDewarperVela::MakeOwnContextCurrent() const
{
    return eglGetCurrentContext() == mContext || eglMakeCurrent(mDisplay, mSurface, mSurface, mContext);
}

bool CCustomGPUDewarperVela::CheckOSDependentDrawGLSceneInitialization()
{
    if (!bGLStarted)
        pRooms->oReport.Standing(FAULT_NOT_STARTED, "%s: GL is not started", "DrawGLScene");
    return bGLStarted && SetCurrentRenderingContext(&pRenderingContext);
}

bool CCustomGPUDewarperVela::SetCurrentRenderingContext(void** /*ppContext*/)
{
    // The context stays current on the thread that started it, unless somebody else drew there meanwhile.
    if (!bGLStarted || MakeOwnContextCurrent())
        return true;
    pRooms->oReport.Standing(
        FAULT_CONTEXT, "%s: the context cannot be made current: it is lost, or current on another thread",
        "SetCurrentRenderingContext");
    return false;
}

bool CCustomGPUDewarperVela::GetTargetWidthHeight(int& nWidth, int& nHeight)
{
    nWidth = nTargetWidth;
    nHeight = nTargetHeight;
    return true;
}

bool CCustomGPUDewarperVela::InitializeScene()
{
    // Black, where channels are Y, U, V.
    glClearColor(0.0f, 0.5f, 0.5f, 0.0f);
    bSceneInitialized = true;
    return true;
}
