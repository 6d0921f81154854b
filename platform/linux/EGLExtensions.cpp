#include "platform/BufferImages.h"

#include "platform/linux/BufferTextures.h"

#include <android/log.h>

#include <atomic>
#include <bit>
#include <cstdint>

namespace
{

template <class F>
F DriverFunction(const char* pName)
{
    return reinterpret_cast<F>(eglGetProcAddress(pName));
}

// The driver's own functions behind the ones below. They are the same whenever they are asked for.
std::atomic<PFNEGLCREATEIMAGEKHRPROC> pCreateImage{nullptr};
std::atomic<PFNEGLDESTROYIMAGEKHRPROC> pDestroyImage{nullptr};
std::atomic<PFNGLEGLIMAGETARGETRENDERBUFFERSTORAGEOESPROC> pImageRenderbuffer{nullptr};
std::atomic<PFNEGLCLIENTWAITSYNCKHRPROC> pClientWaitSync{nullptr};

EGLImageKHR EGLAPIENTRY CreateImage(EGLDisplay pDisplay, EGLContext pContext, EGLenum nTarget,
                                    EGLClientBuffer pBuffer, const EGLint* pAttributes)
{
    if (nTarget != EGL_NATIVE_BUFFER_ANDROID)
        return pCreateImage.load()(pDisplay, pContext, nTarget, pBuffer, pAttributes);
    const std::shared_ptr<CBufferContents> pContents = ContentsOf(pBuffer);
    const std::uintptr_t nTexture = pContents ? CBufferTextures::Get().Prepare(pContents) : 0;
    if (nTexture == 0)
        return EGL_NO_IMAGE_KHR;
    CBufferTextures::Get().MakeRoom();
    const EGLint aAttributes[] = {EGL_GL_TEXTURE_LEVEL_KHR, 0, EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};
    EGLImageKHR pImage = pCreateImage.load()(pDisplay, eglGetCurrentContext(), EGL_GL_TEXTURE_2D_KHR,
                                             std::bit_cast<EGLClientBuffer>(nTexture), aAttributes);
    if (pImage != EGL_NO_IMAGE_KHR)
        CBufferTextures::Get().Remember(pImage, pContents);
    return pImage;
}

EGLBoolean EGLAPIENTRY DestroyImage(EGLDisplay pDisplay, EGLImageKHR pImage)
{
    CBufferTextures::Get().Forget(pImage);
    return pDestroyImage.load()(pDisplay, pImage);
}

void GL_APIENTRY ImageRenderbuffer(GLenum nTarget, GLeglImageOES pImage)
{
    pImageRenderbuffer.load()(nTarget, pImage);
    CBufferTextures::Get().SetTarget(pImage);
}

/// Brings the drawn picture into the output buffer. Reading back waits by itself where the driver would not.
bool FetchPicture(const char* pFunction)
{
    if (CBufferTextures::Get().FetchTarget())
        return true;
    __android_log_print(ANDROID_LOG_ERROR, "LUMORVIDEOMANAGER_DEWRAP", "%s: the driver is out of memory",
                        pFunction);
    return false;
}

EGLint EGLAPIENTRY ClientWaitSync(EGLDisplay pDisplay, EGLSyncKHR pSync, EGLint nFlags, EGLTimeKHR nTimeout)
{
    const EGLint nResult = pClientWaitSync.load()(pDisplay, pSync, nFlags, nTimeout);
    return FetchPicture("eglClientWaitSyncKHR") ? nResult : EGL_FALSE;
}

/// Puts our function before the driver's. Null where the driver has none.
template <class F>
F Wrap(const char* pName, std::atomic<F>& rDriver, F pOurs)
{
    const F pDriver = DriverFunction<F>(pName);
    if (pDriver == nullptr)
        return nullptr;
    rDriver = pDriver;
    return pOurs;
}

} // namespace

SEGLExtensions LoadEGLExtensions()
{
    SEGLExtensions s;
    s.eglCreateImageKHR = Wrap("eglCreateImageKHR", pCreateImage, &CreateImage);
    s.eglDestroyImageKHR = Wrap("eglDestroyImageKHR", pDestroyImage, &DestroyImage);
    s.glEGLImageTargetTexture2DOES =
        DriverFunction<PFNGLEGLIMAGETARGETTEXTURE2DOESPROC>("glEGLImageTargetTexture2DOES");
    s.glEGLImageTargetRenderbufferStorageOES =
        Wrap("glEGLImageTargetRenderbufferStorageOES", pImageRenderbuffer, &ImageRenderbuffer);
    s.eglCreateSyncKHR = DriverFunction<PFNEGLCREATESYNCKHRPROC>("eglCreateSyncKHR");
    s.eglClientWaitSyncKHR = Wrap("eglClientWaitSyncKHR", pClientWaitSync, &ClientWaitSync);
    s.eglDestroySyncKHR = DriverFunction<PFNEGLDESTROYSYNCKHRPROC>("eglDestroySyncKHR");
    return s;
}

void FinishBufferImages()
{
    glFinish();
    FetchPicture("FinishBufferImages");
}

bool IsYUVImage(int /*nPixelFormat*/)
{
    // Images are made of textures of plain colours here, whatever the buffer holds.
    return false;
}

void ReleaseBufferImages(EGLContext pContext)
{
    CBufferTextures::Get().ReleaseContext(pContext);
}
