#include "platform/BufferImages.h"

namespace
{

template <class F>
F DriverFunction(const char* pName)
{
    return reinterpret_cast<F>(eglGetProcAddress(pName));
}

// Formats of Android's graphic buffers that hold plain colours; everything else, vendors' own formats
// included, is taken for YUV.
const int PLAIN_FORMATS[] = {
    1,    // RGBA 8888
    2,    // RGBX 8888
    3,    // RGB 888
    4,    // RGB 565
    5,    // BGRA 8888
    0x16, // RGBA, half precision
    0x2B, // RGBA 1010102
};

} // namespace

SEGLExtensions LoadEGLExtensions()
{
    SEGLExtensions s;
    s.eglCreateImageKHR = DriverFunction<PFNEGLCREATEIMAGEKHRPROC>("eglCreateImageKHR");
    s.eglDestroyImageKHR = DriverFunction<PFNEGLDESTROYIMAGEKHRPROC>("eglDestroyImageKHR");
    s.glEGLImageTargetTexture2DOES =
        DriverFunction<PFNGLEGLIMAGETARGETTEXTURE2DOESPROC>("glEGLImageTargetTexture2DOES");
    s.glEGLImageTargetRenderbufferStorageOES = DriverFunction<PFNGLEGLIMAGETARGETRENDERBUFFERSTORAGEOESPROC>(
        "glEGLImageTargetRenderbufferStorageOES");
    s.eglCreateSyncKHR = DriverFunction<PFNEGLCREATESYNCKHRPROC>("eglCreateSyncKHR");
    s.eglClientWaitSyncKHR = DriverFunction<PFNEGLCLIENTWAITSYNCKHRPROC>("eglClientWaitSyncKHR");
    s.eglDestroySyncKHR = DriverFunction<PFNEGLDESTROYSYNCKHRPROC>("eglDestroySyncKHR");
    return s;
}

void FinishBufferImages()
{
    glFinish();
}

bool IsYUVImage(int nPixelFormat)
{
    for (const int nPlain : PLAIN_FORMATS) {
        if (nPixelFormat == nPlain)
            return false;
    }
    return true;
}

void ReleaseBufferImages(EGLContext /*pContext*/) {}
