// Graphic buffers as input texture and as target; the texts and the fence that go with them.

#include "dewarp/android/CustomGPUDewarperVela.h"

#include "dewarp/Rooms.h"
#include "dewarp/gl/PictureRequests.h"
#include "dewarp/gl/PlaneUpload.h"
#include "dewarp/records/LogTag.h"
#include "dewarp/shaders/YUVTargetText.h"
#include "platform/BufferImages.h"
#include "platform/DriverErrors.h"
#include "platform/MemoryGuard.h"

#include <GLES3/gl31.h>
#include <android/log.h>
#include <ui/GraphicBuffer.h>

#include <cstdint>

namespace
{

// What a buffer's frame says of its colours. Nothing is converted, so nobody reads it.
const EYUVSpace BUFFER_YUV_SPACE = static_cast<EYUVSpace>(6);
const EYUVRange BUFFER_YUV_RANGE = static_cast<EYUVRange>(4);

const EGLint IMAGE_ATTRIBUTES[] = {EGL_IMAGE_PRESERVED_KHR, EGL_TRUE, EGL_NONE};

const char* const NO_IMAGE_TEXT = "%s: Error creating egl image ";

/// The line alone: the reason was kept before, where it is known best.
bool FailImage(const char* pFunction)
{
    __android_log_print(ANDROID_LOG_ERROR, DEWARP_LOG_TAG, NO_IMAGE_TEXT, pFunction);
    return false;
}

void LogNativeBuffer(const ANativeWindowBuffer& rBuffer)
{
    const native_handle_t* const pHandle = rBuffer.handle;
    const int nVersion = pHandle != nullptr ? pHandle->version : 0;
    const int nFds = pHandle != nullptr ? pHandle->numFds : 0;
    const int nInts = pHandle != nullptr ? pHandle->numInts : 0;
    const int nFirst = nFds + nInts > 0 ? pHandle->data[0] : 0;
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                        "%s: Calling eglCreateImageKHR------ with magic 0x%x version %d %d %d 0x%x gaphicb "
                        "width is: %d, height is: %d, stride: %d and format is: %d",
                        "CreateImage", static_cast<unsigned int>(rBuffer.common.magic), nVersion, nFds, nInts,
                        static_cast<unsigned int>(nFirst), rBuffer.width, rBuffer.height, rBuffer.stride,
                        rBuffer.format);
}

} // namespace

bool CCustomGPUDewarperVela::IsThere(bool bEntryPoint, const char* pFunction, const char* pName) const
{
    if (!bEntryPoint)
        pRooms->oReport.Error("%s: the driver has no %s", pFunction, pName);
    return bEntryPoint;
}

EGLImageKHR CCustomGPUDewarperVela::CreateBufferImage(android::GraphicBuffer* pBuffer, const char* pFunction)
{
    if (!bGLStarted || pBuffer == nullptr || pBuffer->getNativeBuffer() == nullptr ||
        !SetCurrentRenderingContext(&pRenderingContext)) {
        pRooms->oReport.Keep(NO_IMAGE_TEXT, pFunction);
        return EGL_NO_IMAGE_KHR;
    }
    // What could not be destroyed is not made.
    if (!IsThere(sExtensions.eglCreateImageKHR != nullptr, pFunction, "eglCreateImageKHR") ||
        !IsThere(sExtensions.eglDestroyImageKHR != nullptr, pFunction, "eglDestroyImageKHR"))
        return EGL_NO_IMAGE_KHR;
    return GuardMemory(pFunction, pRooms->oReport, EGL_NO_IMAGE_KHR, [&] {
        EGLImageKHR pImage = sExtensions.eglCreateImageKHR(
            mDisplay, EGL_NO_CONTEXT, EGL_NATIVE_BUFFER_ANDROID,
            static_cast<EGLClientBuffer>(pBuffer->getNativeBuffer()), IMAGE_ATTRIBUTES);
        if (pImage == EGL_NO_IMAGE_KHR)
            pRooms->oReport.Keep(NO_IMAGE_TEXT, pFunction);
        return pImage;
    });
}

void CCustomGPUDewarperVela::DestroyBufferImage(EGLImageKHR& rImage)
{
    if (rImage != EGL_NO_IMAGE_KHR && sExtensions.eglDestroyImageKHR != nullptr)
        sExtensions.eglDestroyImageKHR(mDisplay, rImage);
    rImage = EGL_NO_IMAGE_KHR;
}

/// Errors that wait in our context are not of the buffers that are bound next.
void CCustomGPUDewarperVela::TakeHostErrors(const char* pFunction)
{
    if (bGLStarted && SetCurrentRenderingContext(&pRenderingContext))
        pRooms->oWatch.TakeHostErrors(pFunction);
}

bool CCustomGPUDewarperVela::CreateImage(android::GraphicBuffer* pInput)
{
    // One of a frame that was never let go of.
    DestroyBufferImage(mInputImage);
    if (pInput != nullptr && pInput->getNativeBuffer() != nullptr)
        LogNativeBuffer(*pInput->getNativeBuffer());
    TakeHostErrors("CreateImage");
    mInputImage = CreateBufferImage(pInput, "CreateImage");
    if (mInputImage == EGL_NO_IMAGE_KHR) {
        FailImage("CreateImage");
        if (sExtensions.eglDestroyImageKHR != nullptr)
            sExtensions.eglDestroyImageKHR(mDisplay, mInputImage);
        return false;
    }
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG, "%s: eglCreateImageKHR sucessfull", "CreateImage");
    return true;
}

bool CCustomGPUDewarperVela::CreateImageF(android::GraphicBuffer* pInput, android::GraphicBuffer* pOutput)
{
    // Those of a frame that was never let go of.
    DestroyImage();
    if (!AreFitting(pInput, pOutput))
        return FailImage("CreateImageF");
    TakeHostErrors("CreateImageF");
    mInputImage = CreateBufferImage(pInput, "CreateImageF");
    mOutputImage = CreateBufferImage(pOutput, "CreateImageF");
    bool bTarget = mOutputImage != EGL_NO_IMAGE_KHR &&
                   IsThere(sExtensions.glEGLImageTargetRenderbufferStorageOES != nullptr, "CreateImageF",
                           "glEGLImageTargetRenderbufferStorageOES");
    if (bTarget) {
        sExtensions.glEGLImageTargetRenderbufferStorageOES(GL_RENDERBUFFER, mOutputImage);
        bTarget = !TakeDriverErrors(pRooms->oWatch.m_nErrorOfFrame);
        if (!bTarget)
            pRooms->oReport.Keep(NO_IMAGE_TEXT, "CreateImageF");
        SetOutputFormat(static_cast<int>(pOutput->getPixelFormat()));
    }
    if (pInput != nullptr)
        DescribeInput(*pInput);
    if (mInputImage != EGL_NO_IMAGE_KHR && bTarget)
        return true;
    FailImage("CreateImageF");
    if (sExtensions.eglDestroyImageKHR != nullptr)
        sExtensions.eglDestroyImageKHR(mDisplay, mInputImage);
    mInputImage = EGL_NO_IMAGE_KHR;
    return false;
}

/// False, with a line that says why, for buffers that no frame can be drawn with.
bool CCustomGPUDewarperVela::AreFitting(const android::GraphicBuffer* pInput,
                                        const android::GraphicBuffer* pOutput)
{
    if (pInput == nullptr || pOutput == nullptr || pOutput->getNativeBuffer() == nullptr)
        return true; // said when its image is made
    if (pInput == pOutput) {
        pRooms->oReport.Error("%s: one buffer cannot be input and output at once", "CreateImageF");
        return false;
    }
    const int nWidth = static_cast<int>(pOutput->getWidth());
    const int nHeight = static_cast<int>(pOutput->getHeight());
    const bool bEmpty = nWidth < 1 || nHeight < 1; // no buffer at all: said when its image is made
    if (bEmpty || (nWidth == nTargetWidth && nHeight == nTargetHeight))
        return true;
    pRooms->oReport.Error("%s: the output buffer is %d x %d, the pictures are %d x %d", "CreateImageF",
                          nWidth, nHeight, nTargetWidth, nTargetHeight);
    return false;
}

/// Tells the dewarper of the frame; its pixels stay where they are.
void CCustomGPUDewarperVela::DescribeInput(const android::GraphicBuffer& rInput)
{
    SImageProperties sImage;
    sImage.nWidth = static_cast<int>(rInput.getWidth());
    sImage.nHeight = static_cast<int>(rInput.getHeight());
    sImage.nStride = static_cast<int>(rInput.getStride());
    sImage.nFormat = IMAGE_FORMAT_NV12;
    sImage.eYUVSpace = BUFFER_YUV_SPACE;
    sImage.eYUVRange = BUFFER_YUV_RANGE;
    SetTexture(&sImage, false, nullptr, 0);
}

/// Programs that draw into the output are written for YUV or for plain colours: a change has them made anew.
void CCustomGPUDewarperVela::SetOutputFormat(int nPixelFormat)
{
    const bool bYUV = IsYUVImage(nPixelFormat);
    if (bYUV == pRooms->oPrograms.IsYUVOutput())
        return;
    pRooms->oPrograms.SetYUVOutput(bYUV);
    sMainShader.bForceReload = true;
    for (SShaderProperties* pShader :
         {&sOutputOverlayShader, &sStringCompositeShader, &sTextureToScreenShader})
        pShader->Free();
}

void CCustomGPUDewarperVela::DestroyImage()
{
    DestroyBufferImage(mOutputImage);
    DestroyBufferImage(mInputImage);
}

bool CCustomGPUDewarperVela::OSDependentFBO(bool bFree)
{
    if (bFree) {
        if (nInputTexture != 0)
            glDeleteTextures(1, &nInputTexture);
        if (nRenderbuffer != 0)
            glDeleteRenderbuffers(1, &nRenderbuffer);
        if (nFramebuffer != 0)
            glDeleteFramebuffers(1, &nFramebuffer);
        nInputTexture = 0;
        nRenderbuffer = 0;
        nFramebuffer = 0;
        DestroyBufferImage(mOutputImage);
    } else if (!bExternalTarget) {
        // Its storage comes with every output image.
        glGenFramebuffers(1, &nFramebuffer);
        glGenRenderbuffers(1, &nRenderbuffer);
        BindDefaultFrameBuffer();
    }
    return true;
}

void CCustomGPUDewarperVela::BindDefaultFrameBuffer()
{
    glBindRenderbuffer(GL_RENDERBUFFER, nRenderbuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, nFramebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, nRenderbuffer);
}

bool CCustomGPUDewarperVela::InitializeTextures()
{
    glActiveTexture(GL_TEXTURE0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(pParams->nImageStride));
    if (!OSDependentUploadTexture()) {
        pRooms->oReport.Error("%s: Error uploading texture", "InitializeTextures");
        return false;
    }
    bTexturesNeedInit = false;
    return true;
}

bool CCustomGPUDewarperVela::OSDependentUploadTexture()
{
    if (mInputImage == EGL_NO_IMAGE_KHR ||
        !IsThere(sExtensions.glEGLImageTargetTexture2DOES != nullptr, "OSDependentUploadTexture",
                 "glEGLImageTargetTexture2DOES"))
        return false;
    if (nInputTexture == 0)
        glGenTextures(1, &nInputTexture);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_EXTERNAL_OES, nInputTexture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, UnpackAlignment(pParams->nImageStride));
    pRooms->oWatch.BeginMaking();
    sExtensions.glEGLImageTargetTexture2DOES(GL_TEXTURE_EXTERNAL_OES, mInputImage);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return true;
}

bool CCustomGPUDewarperVela::OSDependentBindTextures()
{
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_EXTERNAL_OES, nInputTexture);
    return true;
}

bool CCustomGPUDewarperVela::OSDependentUnBindTextures()
{
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_EXTERNAL_OES, 0);
    return true;
}

void CCustomGPUDewarperVela::ExchangeOpenglFrontBackBuffers(void* /*pContext*/)
{
    const char* const pFunction = "ExchangeOpenglFrontBackBuffers";
    if (!IsThere(sExtensions.eglCreateSyncKHR != nullptr, pFunction, "eglCreateSyncKHR") ||
        !IsThere(sExtensions.eglClientWaitSyncKHR != nullptr, pFunction, "eglClientWaitSyncKHR") ||
        !IsThere(sExtensions.eglDestroySyncKHR != nullptr, pFunction, "eglDestroySyncKHR")) {
        FinishBufferImages();
        return;
    }
    mSync = sExtensions.eglCreateSyncKHR(mDisplay, EGL_SYNC_FENCE_KHR, nullptr);
    if (mSync == EGL_NO_SYNC_KHR) {
        // Without a fence the frame is waited for the long way: the buffer must be complete on return.
        FinishBufferImages();
        return;
    }
    glFlush();
    sExtensions.eglClientWaitSyncKHR(mDisplay, mSync, 0, EGL_FOREVER_KHR);
    sExtensions.eglDestroySyncKHR(mDisplay, mSync);
}

void CCustomGPUDewarperVela::CheckSaveImage(int /*nWidth*/, int /*nHeight*/) {}

int CCustomGPUDewarperVela::HandleStrings(int nWidth, int nHeight)
{
    const int nNoStrings = vStrings.empty() ? 1 : 0;
    if (nNoStrings != nStringsState) {
        nStringsState = nNoStrings;
        // They are rebuilt for the right kind of target.
        sStringShader.Free();
        sStringCompositeShader.Free();
    }
    return CCustomGPUDewarper::HandleStrings(nWidth, nHeight);
}

int CCustomGPUDewarperVela::OSDependentCheckLoadShaders()
{
    const bool bDrawToTexture = NeedsFrameTexture();
    if (bDrawToTexture == mDrawToTexture)
        return 0;
    __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                        "%s: bDrawToTexture=%d mDrawToTexture=%d mContext=%d", "OSDependentCheckLoadShaders",
                        bDrawToTexture ? 1 : 0, mDrawToTexture ? 1 : 0,
                        static_cast<int>(reinterpret_cast<std::intptr_t>(mContext)));
    mDrawToTexture = bDrawToTexture;
    return 1;
}

bool CCustomGPUDewarperVela::IsTopDownTarget()
{
    return !NeedsFrameTexture();
}

bool CCustomGPUDewarperVela::DrawsFlips()
{
    return false;
}

std::string CCustomGPUDewarperVela::GetVertexShaderCode()
{
    return YUVTargetVertexText(mDrawToTexture);
}

std::string CCustomGPUDewarperVela::GetFragShaderCode()
{
    sMainShader.bInputOverlayInShader = sMainShader.bInputOverlay;
    // Images have the linear filter, whatever the type of interpolation says.
    const ESampling eSampling = RequestedSettings(sMainShader).SamplingInForce(INTERPOLATION_LINEAR);
    const SYUVTargetSampling sSampling = {eSampling, sMainShader.bMinification, pParams->nImageWidth,
                                          pParams->nImageHeight};
    return YUVTargetFragmentText(mDrawToTexture, sMainShader.bInputOverlay, GetFragShaderDiscardCode(),
                                 GetFragShaderRimCode(), sSampling);
}
