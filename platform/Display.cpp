#include "platform/Display.h"

#include <EGL/eglext.h>

#include <cstring>
#include <map>

namespace
{

struct SDisplayUse
{
    int nUsers = 0;
    bool bForeign = false; ///< the host initialised it: not ours to terminate
};

struct SRegistry
{
    std::recursive_mutex oMutex;
    std::map<EGLDisplay, SDisplayUse> mUses;
};

SRegistry& Registry()
{
    // Never destroyed: dewarpers that live until the end of the process still find it.
    static SRegistry* const pRegistry = new SRegistry;
    return *pRegistry;
}

bool HasExtension(const char* pList, const char* pName)
{
    const std::size_t nLength = std::strlen(pName);
    for (const char* p = pList; p != nullptr && (p = std::strstr(p, pName)) != nullptr; p += nLength) {
        const bool bStart = p == pList || p[-1] == ' ';
        if (bStart && (p[nLength] == ' ' || p[nLength] == '\0'))
            return true;
    }
    return false;
}

EGLDisplay PlatformDisplay(EGLenum nPlatform, void* pNative)
{
    const auto pGetPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    return pGetPlatformDisplay != nullptr ? pGetPlatformDisplay(nPlatform, pNative, nullptr) : EGL_NO_DISPLAY;
}

/// Initialises a display and sees whether a context can be had on it.
bool IsUsable(EGLDisplay pDisplay)
{
    EGLint nMajor = 0;
    EGLint nMinor = 0;
    if (pDisplay == EGL_NO_DISPLAY || !InitializeDisplay(pDisplay, &nMajor, &nMinor))
        return false;
    EGLConfig pConfig = nullptr;
    EGLContext pContext = CreateOffscreenContext(pDisplay, &pConfig);
    if (pContext != EGL_NO_CONTEXT) {
        eglDestroyContext(pDisplay, pContext);
        return true;
    }
    TerminateDisplay(pDisplay);
    return false;
}

EGLDisplay FirstUsableDevice()
{
    const auto pQueryDevices =
        reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    EGLDeviceEXT aDevices[16];
    EGLint nDevices = 0;
    if (pQueryDevices == nullptr || !pQueryDevices(16, aDevices, &nDevices))
        return EGL_NO_DISPLAY;
    for (EGLint i = 0; i < nDevices; ++i) {
        EGLDisplay pDisplay = PlatformDisplay(EGL_PLATFORM_DEVICE_EXT, aDevices[i]);
        if (IsUsable(pDisplay))
            return pDisplay;
    }
    return EGL_NO_DISPLAY;
}

} // namespace

std::unique_lock<std::recursive_mutex> LockDisplays()
{
    return std::unique_lock<std::recursive_mutex>(Registry().oMutex);
}

bool InitializeDisplay(EGLDisplay pDisplay, EGLint* pMajor, EGLint* pMinor)
{
    SRegistry& rRegistry = Registry();
    const std::lock_guard<std::recursive_mutex> oLock(rRegistry.oMutex);
    // Room for its record comes first: nobody would end a display that is not on record.
    SDisplayUse& rUse = rRegistry.mUses[pDisplay];
    if (rUse.nUsers == 0) {
        // An initialised display answers; the error of one that is not is ours to fetch.
        rUse.bForeign = eglQueryString(pDisplay, EGL_VERSION) != nullptr;
        if (!rUse.bForeign)
            eglGetError();
    }
    if (!eglInitialize(pDisplay, pMajor, pMinor)) {
        if (rUse.nUsers == 0)
            rRegistry.mUses.erase(pDisplay);
        return false;
    }
    ++rUse.nUsers;
    return true;
}

void TerminateDisplay(EGLDisplay pDisplay, bool bReleaseThread)
{
    SRegistry& rRegistry = Registry();
    const std::lock_guard<std::recursive_mutex> oLock(rRegistry.oMutex);
    const auto pFound = rRegistry.mUses.find(pDisplay);
    if (pFound == rRegistry.mUses.end())
        return;
    if (--pFound->second.nUsers > 0) {
        if (bReleaseThread)
            eglReleaseThread();
        return;
    }
    if (!pFound->second.bForeign)
        eglTerminate(pDisplay);
    rRegistry.mUses.erase(pFound);
}

EGLDisplay OpenOffscreenDisplay()
{
    EGLDisplay pDefault = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (IsUsable(pDefault))
        return pDefault;
    const char* pExtensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (HasExtension(pExtensions, "EGL_MESA_platform_surfaceless")) {
        EGLDisplay pSurfaceless = PlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY);
        if (IsUsable(pSurfaceless))
            return pSurfaceless;
    }
    if (HasExtension(pExtensions, "EGL_EXT_platform_device"))
        return FirstUsableDevice();
    return EGL_NO_DISPLAY;
}

EGLContext CreateOffscreenContext(EGLDisplay pDisplay, EGLConfig* pConfig)
{
    if (!eglBindAPI(EGL_OPENGL_ES_API))
        return EGL_NO_CONTEXT;
    // A pbuffer is asked for because some drivers make nothing current without a surface.
    const EGLint aConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT,
                              EGL_NONE};
    EGLint nConfigs = 0;
    if (!eglChooseConfig(pDisplay, aConfig, pConfig, 1, &nConfigs) || nConfigs < 1)
        return EGL_NO_CONTEXT;
    const EGLint aContext[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 1, EGL_NONE};
    return eglCreateContext(pDisplay, *pConfig, EGL_NO_CONTEXT, aContext);
}

SCurrentContext GetCurrentContext()
{
    SCurrentContext sCurrent;
    sCurrent.pDisplay = eglGetCurrentDisplay();
    sCurrent.pDrawSurface = eglGetCurrentSurface(EGL_DRAW);
    sCurrent.pReadSurface = eglGetCurrentSurface(EGL_READ);
    sCurrent.pContext = eglGetCurrentContext();
    return sCurrent;
}

void RestoreCurrentContext(const SCurrentContext& rCurrent)
{
    if (rCurrent.pContext != EGL_NO_CONTEXT)
        eglMakeCurrent(rCurrent.pDisplay, rCurrent.pDrawSurface, rCurrent.pReadSurface, rCurrent.pContext);
}
