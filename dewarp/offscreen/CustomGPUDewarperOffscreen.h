/// \file
/// The dewarper for desktops and servers: own EGL context without a window, CPU planes in, pixels out.
#pragma once

#include "dewarp/CustomGPUDewarper.h"
#include "platform/Export.h"

#include <memory>

/// Draws into a framebuffer of its own whose row 0, and so that of GetImage, is the top row of the picture.
///
/// Units: pixels. Owns: display, context, target. Needs no display server and no GPU.
/// Thread: StartGL, DrawGLScene, GetImage and StopGL on one thread, the rendering thread; everything else on
/// any thread, also while a frame is drawn: Lock and Unlock exclude, and nest.
/// Fails: with false and one log line.
class LUMOR_API CCustomGPUDewarperOffscreen : public CCustomGPUDewarper
{
public:
    CCustomGPUDewarperOffscreen();
    ~CCustomGPUDewarperOffscreen() override;

    /// Sets the target size, 1 to 16384 each way. When started, the next frame gets a new target.
    bool InitGL(int nWidth, int nHeight);
    /// Makes display, context and target, and the context current on this thread.
    bool StartGL();
    /// Frees every GL and EGL object. Always true; may be called without a start and more than once.
    bool StopGL();

    /// Refuses what could not be drawn: missing planes, sizes below 2 or above 16384, an unknown format, a
    /// stride below a row. The last good frame is kept then.
    bool SetTexture(SImageProperties* pImage, bool bGain, SQPInfo* pQP,
                    unsigned long long nTimestamp) override;
    bool CheckOSDependentDrawGLSceneInitialization() override;
    bool InitializeScene() override;
    std::string GetVertexShaderCode() override;
    bool SetCurrentRenderingContext(void** ppContext) override;
    bool GetTargetWidthHeight(int& nWidth, int& nHeight) override;
    void ExchangeOpenglFrontBackBuffers(void* pContext) override;
    void Lock() override;
    void Unlock() override;
    int OSDependentCheckLoadShaders() override;
    void BindDefaultFrameBuffer() override;
    bool IsTopDownTarget() override;

private:
    bool Start();

    struct SState; ///< EGL objects, target and lock
    std::unique_ptr<SState> pState;
    bool bHasOldView = false; ///< a view was drawn before GL was stopped
};
