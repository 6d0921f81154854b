/// \file
/// The dewarper of cameras: graphic buffers in and out, nothing copied through the CPU.
#pragma once

#include "dewarp/CustomGPUDewarper.h"
#include "platform/CurrentContext.h"
#include "platform/EGLExtensions.h"
#include "platform/Export.h"

namespace android
{
class GraphicBuffer;
}

/// Samples its input as YUV and draws YUV into its output. Row 0 of a drawn buffer is the top row.
///
/// Units: pixels. Owns: context, surface, one use of the display, images of buffers; never the buffers.
/// Thread: everything but InitGL and the control operations on the thread that called StartGL; the host
/// serialises all calls to one dewarper. Several dewarpers may live on one thread or on several.
/// Fails: with false and a log line, save where told.
class LUMOR_API CCustomGPUDewarperVela : public CCustomGPUDewarper
{
public:
    CCustomGPUDewarperVela();
    ~CCustomGPUDewarperVela() override;

    /// Stores the size of the pictures to be drawn, which is that of the output buffers. Always true.
    bool InitGL(int nWidth, int nHeight);
    /// Makes display, surface and context, and the context current on this thread. The view comes back at the
    /// pan, tilt and zoom in force, on a first start at 0, 0, 180: give the position after this.
    bool StartGL();
    /// Frees every GL and EGL object. Always true; may be called without a start and more than once.
    bool StopGL();

    /// Makes an image of the input buffer alone.
    bool CreateImage(android::GraphicBuffer* pInput);
    /// Binds the buffers of the next frame. They must stay valid until DestroyImage. An output of another
    /// size than InitGL's, or one buffer for both, is refused. False: do not draw.
    bool CreateImageF(android::GraphicBuffer* pInput, android::GraphicBuffer* pOutput);
    /// Lets go of the buffers of the last frame.
    void DestroyImage();
    /// Makes (false) or frees (true) framebuffer and renderbuffer; freeing also lets go of input texture and
    /// output image.
    virtual bool OSDependentFBO(bool bFree);

    bool CheckOSDependentDrawGLSceneInitialization() override;
    bool InitializeScene() override;
    bool OSDependentUploadTexture() override;
    bool OSDependentBindTextures() override;
    bool OSDependentUnBindTextures() override;
    std::string GetFragShaderCode() override;
    std::string GetVertexShaderCode() override;
    bool SetCurrentRenderingContext(void** ppContext) override;
    bool GetTargetWidthHeight(int& nWidth, int& nHeight) override;
    /// Waits until the frame has been drawn: then the output buffer is complete.
    void ExchangeOpenglFrontBackBuffers(void* pContext) override;
    void CheckSaveImage(int nWidth, int nHeight) override;
    bool InitializeTextures() override;
    int OSDependentCheckLoadShaders() override;
    int HandleStrings(int nWidth, int nHeight) override;
    void BindDefaultFrameBuffer() override;
    bool IsTopDownTarget() override;
    bool DrawsFlips() override;

    // State, open as that of the base class.
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    EGLint nNumConfigs = 0;
    EGLConfig mConfig = nullptr;
    EGLSurface mSurface = EGL_NO_SURFACE;
    EGLContext mContext = EGL_NO_CONTEXT;
    EGLDisplay mDisplay = EGL_NO_DISPLAY;
    EGLImageKHR mInputImage = EGL_NO_IMAGE_KHR;
    EGLImageKHR mOutputImage = EGL_NO_IMAGE_KHR;
    bool bExternalTarget = false; ///< the target is not ours to make
    unsigned int nInputTexture = 0;
    unsigned int nRenderbuffer = 0;
    unsigned int nFramebuffer = 0;
    EGLSyncKHR mSync = EGL_NO_SYNC_KHR; ///< the last fence
    bool mDrawToTexture = false; ///< the main program draws plain colours into the intermediate texture
    int nStringsState = -1;      ///< the last frame had no strings; -1: not known yet
    bool bGLStarted = false;

private:
    // Steps of StartGL; false: it failed, and said so.
    bool Start();
    bool OpenDisplay();
    bool ChooseConfig();
    bool CreateSurface();
    bool CreateContext(EGLint nVersion);
    bool MakeContextCurrent();
    bool MakeUsableContextCurrent();

    bool MakeOwnContextCurrent() const;
    void TakeHostErrors(const char* pFunction);
    EGLImageKHR CreateBufferImage(android::GraphicBuffer* pBuffer, const char* pFunction);
    void DestroyBufferImage(EGLImageKHR& rImage);
    bool AreFitting(const android::GraphicBuffer* pInput, const android::GraphicBuffer* pOutput);
    void DescribeInput(const android::GraphicBuffer& rInput);
    void SetOutputFormat(int nPixelFormat);
    bool IsThere(bool bEntryPoint, const char* pFunction, const char* pName) const;
    void Stop();
    void ReleaseFailedStart();
    void ReleaseEGL();

    SEGLExtensions sExtensions;
    SCurrentContext sHostContext; ///< what was current where StartGL was called
};
