// The entry points of EGL, and the extension functions that are asked for by name.
#include "tests/support/GLForward.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl31.h>

#include <GLES2/gl2ext.h>
#include <cstring>

static unsigned long long HandleOf(const void* pHandle)
{
    return static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pHandle));
}

#define EGL_BODY(R, N, ...)                                                                                  \
    static const auto fReal = RealFunction<decltype(&N)>(#N);                                                \
    return ForwardCall<R>(false, CallOf(#N __VA_OPT__(, ) __VA_ARGS__), fReal __VA_OPT__(, ) __VA_ARGS__)

extern "C" EGLDisplay eglGetDisplay(EGLNativeDisplayType a)
{
    EGL_BODY(EGLDisplay, eglGetDisplay, a);
}

extern "C" EGLDisplay eglGetPlatformDisplay(EGLenum a, void* b, const EGLAttrib* c)
{
    EGL_BODY(EGLDisplay, eglGetPlatformDisplay, a, b, c);
}

extern "C" EGLBoolean eglInitialize(EGLDisplay a, EGLint* b, EGLint* c)
{
    EGL_BODY(EGLBoolean, eglInitialize, a, b, c);
}

extern "C" EGLBoolean eglTerminate(EGLDisplay a)
{
    EGL_BODY(EGLBoolean, eglTerminate, a);
}

extern "C" EGLBoolean eglBindAPI(EGLenum a)
{
    EGL_BODY(EGLBoolean, eglBindAPI, a);
}

extern "C" const char* eglQueryString(EGLDisplay a, EGLint b)
{
    EGL_BODY(const char*, eglQueryString, a, b);
}

extern "C" EGLBoolean eglChooseConfig(EGLDisplay a, const EGLint* b, EGLConfig* c, EGLint d, EGLint* e)
{
    EGL_BODY(EGLBoolean, eglChooseConfig, a, b, c, d, e);
}

extern "C" EGLint eglGetError()
{
    EGL_BODY(EGLint, eglGetError);
}

extern "C" EGLContext eglGetCurrentContext()
{
    EGL_BODY(EGLContext, eglGetCurrentContext);
}

extern "C" EGLDisplay eglGetCurrentDisplay()
{
    EGL_BODY(EGLDisplay, eglGetCurrentDisplay);
}

extern "C" EGLSurface eglGetCurrentSurface(EGLint a)
{
    EGL_BODY(EGLSurface, eglGetCurrentSurface, a);
}

extern "C" EGLBoolean eglReleaseThread()
{
    EGL_BODY(EGLBoolean, eglReleaseThread);
}

extern "C" EGLBoolean eglSwapBuffers(EGLDisplay a, EGLSurface b)
{
    EGL_BODY(EGLBoolean, eglSwapBuffers, a, b);
}

extern "C" EGLContext eglCreateContext(EGLDisplay a, EGLConfig b, EGLContext c, const EGLint* d)
{
    static const auto fReal = RealFunction<decltype(&eglCreateContext)>("eglCreateContext");
    EGLContext pContext =
        ForwardCall<EGLContext>(false, CallOf("eglCreateContext", a, b, c, d), fReal, a, b, c, d);
    CDriverScope oScope;
    CGLRecorder::Get().Born(EGL_KIND_CONTEXT, HandleOf(pContext));
    return pContext;
}

extern "C" EGLBoolean eglDestroyContext(EGLDisplay a, EGLContext b)
{
    static const auto fReal = RealFunction<decltype(&eglDestroyContext)>("eglDestroyContext");
    const EGLBoolean bDone = ForwardCall<EGLBoolean>(false, CallOf("eglDestroyContext", a, b), fReal, a, b);
    CDriverScope oScope;
    CGLRecorder::Get().Died(EGL_KIND_CONTEXT, HandleOf(b));
    CGLRecorder::Get().ContextDied(HandleOf(b));
    return bDone;
}

extern "C" EGLSurface eglCreatePbufferSurface(EGLDisplay a, EGLConfig b, const EGLint* c)
{
    static const auto fReal = RealFunction<decltype(&eglCreatePbufferSurface)>("eglCreatePbufferSurface");
    EGLSurface pSurface =
        ForwardCall<EGLSurface>(false, CallOf("eglCreatePbufferSurface", a, b, c), fReal, a, b, c);
    CDriverScope oScope;
    CGLRecorder::Get().Born(EGL_KIND_SURFACE, HandleOf(pSurface));
    return pSurface;
}

extern "C" EGLBoolean eglDestroySurface(EGLDisplay a, EGLSurface b)
{
    static const auto fReal = RealFunction<decltype(&eglDestroySurface)>("eglDestroySurface");
    const EGLBoolean bDone = ForwardCall<EGLBoolean>(false, CallOf("eglDestroySurface", a, b), fReal, a, b);
    CDriverScope oScope;
    CGLRecorder::Get().Died(EGL_KIND_SURFACE, HandleOf(b));
    return bDone;
}

// The driver's words of an error, where it has any to say. What the shader compiler says is left out: a text
// that a driver refuses is handed over again, adapted.
static void GL_APIENTRY OnDebugMessage(GLenum nSource, GLenum nType, GLuint /*nId*/, GLenum /*nSeverity*/,
                                       GLsizei /*nLength*/, const GLchar* pMessage, const void* /*pUser*/)
{
    CDriverScope oScope;
    if (nSource == GL_DEBUG_SOURCE_API_KHR && nType == GL_DEBUG_TYPE_ERROR_KHR)
        CGLRecorder::Get().NoteMessage(pMessage);
}

static __eglMustCastToProperFunctionPointerType RealProcAddress(const char* pName)
{
    static const auto fReal = RealFunction<decltype(&eglGetProcAddress)>("eglGetProcAddress");
    return fReal(pName);
}

extern "C" EGLBoolean eglMakeCurrent(EGLDisplay a, EGLSurface b, EGLSurface c, EGLContext d)
{
    static const auto fReal = RealFunction<decltype(&eglMakeCurrent)>("eglMakeCurrent");
    const EGLBoolean bDone =
        ForwardCall<EGLBoolean>(false, CallOf("eglMakeCurrent", a, b, c, d), fReal, a, b, c, d);
    CDriverScope oScope;
    if (bDone && CurrentGLContext() == HandleOf(d) && CGLRecorder::Get().IsNewContext(HandleOf(d))) {
        const auto fCallback =
            reinterpret_cast<PFNGLDEBUGMESSAGECALLBACKKHRPROC>(RealProcAddress("glDebugMessageCallbackKHR"));
        const auto fEnable = RealFunction<void (*)(GLenum)>("glEnable");
        const auto fError = RealFunction<GLenum (*)()>("glGetError");
        if (fCallback != nullptr) {
            fCallback(OnDebugMessage, nullptr);
            fEnable(GL_DEBUG_OUTPUT_KHR);
            fEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS_KHR);
        }
        while (fError() != GL_NO_ERROR) {
        }
    }
    return bDone;
}

// Extension functions. Each passes on to what eglGetProcAddress of the driver answers.
#define PROC_BODY(R, N, GLCALL, T, ...)                                                                      \
    static const auto fReal = reinterpret_cast<T>(RealProcAddress(#N));                                      \
    return ForwardCall<R>(GLCALL, CallOf(#N, __VA_ARGS__), fReal, __VA_ARGS__)

static void RecordedImageTexture(GLenum a, GLeglImageOES b)
{
    PROC_BODY(void, glEGLImageTargetTexture2DOES, true, PFNGLEGLIMAGETARGETTEXTURE2DOESPROC, a, b);
}

static void RecordedImageRenderbuffer(GLenum a, GLeglImageOES b)
{
    PROC_BODY(void, glEGLImageTargetRenderbufferStorageOES, true,
              PFNGLEGLIMAGETARGETRENDERBUFFERSTORAGEOESPROC, a, b);
}

static EGLImageKHR RecordedCreateImage(EGLDisplay a, EGLContext b, EGLenum c, EGLClientBuffer d,
                                       const EGLint* e)
{
    static const auto fReal =
        reinterpret_cast<PFNEGLCREATEIMAGEKHRPROC>(RealProcAddress("eglCreateImageKHR"));
    EGLImageKHR pImage =
        ForwardCall<EGLImageKHR>(false, CallOf("eglCreateImageKHR", a, b, c, d, e), fReal, a, b, c, d, e);
    CDriverScope oScope;
    CGLRecorder::Get().Born(EGL_KIND_IMAGE, HandleOf(pImage));
    return pImage;
}

static EGLBoolean RecordedDestroyImage(EGLDisplay a, EGLImageKHR b)
{
    static const auto fReal =
        reinterpret_cast<PFNEGLDESTROYIMAGEKHRPROC>(RealProcAddress("eglDestroyImageKHR"));
    const EGLBoolean bDone = ForwardCall<EGLBoolean>(false, CallOf("eglDestroyImageKHR", a, b), fReal, a, b);
    CDriverScope oScope;
    CGLRecorder::Get().Died(EGL_KIND_IMAGE, HandleOf(b));
    return bDone;
}

static EGLSyncKHR RecordedCreateSync(EGLDisplay a, EGLenum b, const EGLint* c)
{
    static const auto fReal = reinterpret_cast<PFNEGLCREATESYNCKHRPROC>(RealProcAddress("eglCreateSyncKHR"));
    EGLSyncKHR pSync = ForwardCall<EGLSyncKHR>(false, CallOf("eglCreateSyncKHR", a, b, c), fReal, a, b, c);
    CDriverScope oScope;
    CGLRecorder::Get().Born(EGL_KIND_SYNC, HandleOf(pSync));
    return pSync;
}

static EGLBoolean RecordedDestroySync(EGLDisplay a, EGLSyncKHR b)
{
    static const auto fReal =
        reinterpret_cast<PFNEGLDESTROYSYNCKHRPROC>(RealProcAddress("eglDestroySyncKHR"));
    const EGLBoolean bDone = ForwardCall<EGLBoolean>(false, CallOf("eglDestroySyncKHR", a, b), fReal, a, b);
    CDriverScope oScope;
    CGLRecorder::Get().Died(EGL_KIND_SYNC, HandleOf(b));
    return bDone;
}

static EGLint RecordedWaitSync(EGLDisplay a, EGLSyncKHR b, EGLint c, EGLTimeKHR d)
{
    PROC_BODY(EGLint, eglClientWaitSyncKHR, false, PFNEGLCLIENTWAITSYNCKHRPROC, a, b, c, d);
}

static EGLDisplay RecordedPlatformDisplay(EGLenum a, void* b, const EGLint* c)
{
    PROC_BODY(EGLDisplay, eglGetPlatformDisplayEXT, false, PFNEGLGETPLATFORMDISPLAYEXTPROC, a, b, c);
}

static EGLBoolean RecordedQueryDevices(EGLint a, EGLDeviceEXT* b, EGLint* c)
{
    PROC_BODY(EGLBoolean, eglQueryDevicesEXT, false, PFNEGLQUERYDEVICESEXTPROC, a, b, c);
}

struct SProcAddress
{
    const char* pName;
    __eglMustCastToProperFunctionPointerType fRecorded;
};

#define PROC_ENTRY(N, F)                                                                                     \
    {                                                                                                        \
#N, reinterpret_cast < __eglMustCastToProperFunctionPointerType>(F)                                  \
    }

/// An injection of "eglGetProcAddress:" and the function's name hides that function.
extern "C" __eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* pName)
{
    static const SProcAddress TABLE[] = {
        PROC_ENTRY(glEGLImageTargetTexture2DOES, RecordedImageTexture),
        PROC_ENTRY(glEGLImageTargetRenderbufferStorageOES, RecordedImageRenderbuffer),
        PROC_ENTRY(eglCreateImageKHR, RecordedCreateImage),
        PROC_ENTRY(eglDestroyImageKHR, RecordedDestroyImage),
        PROC_ENTRY(eglCreateSyncKHR, RecordedCreateSync),
        PROC_ENTRY(eglDestroySyncKHR, RecordedDestroySync),
        PROC_ENTRY(eglClientWaitSyncKHR, RecordedWaitSync),
        PROC_ENTRY(eglGetPlatformDisplayEXT, RecordedPlatformDisplay),
        PROC_ENTRY(eglQueryDevicesEXT, RecordedQueryDevices),
    };
    CDriverScope oScope;
    SGLCall sCall = CallOf("eglGetProcAddress");
    sCall.strText = pName;
    CGLRecorder::Get().Note(sCall);
    CGLRecorder::SInjection sInjection;
    if (CGLRecorder::Get().TakeInjection((std::string("eglGetProcAddress:") + pName).c_str(), sInjection))
        return nullptr;
    const auto fReal = RealProcAddress(pName);
    if (fReal == nullptr)
        return nullptr;
    for (const SProcAddress& sEntry : TABLE)
        if (std::strcmp(sEntry.pName, pName) == 0)
            return sEntry.fRecorded;
    return fReal;
}
