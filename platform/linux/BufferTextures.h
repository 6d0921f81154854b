/// \file
/// Textures that hold graphic buffers for the driver, one a buffer and context.
#pragma once

#include "platform/linux/BufferContents.h"

#include <EGL/egl.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

/// Textures are kept from frame to frame, so that a pool of buffers costs no allocation; those of buffers
/// that are gone are deleted under their context, at its next frame or with it. Owns: GL names of many
/// contexts. Thread: every operation on the GL thread of the context it is about, which is current unless
/// said otherwise; those of several contexts may run at once. Fails: with 0.
class CBufferTextures
{
public:
    static CBufferTextures& Get();

    /// The buffer's texture in the current context, its contents brought up to date. 0: too large, or no
    /// context.
    unsigned int Prepare(const std::shared_ptr<CBufferContents>& pContents);
    /// Makes room for one more image, so that Remember cannot fail.
    void MakeRoom();
    /// Notes which buffer an image was made of, and that it is gone.
    void Remember(void* pImage, const std::shared_ptr<CBufferContents>& pContents);
    void Forget(void* pImage);
    /// Notes that frames of the current context are drawn into an image from now on.
    void SetTarget(void* pImage);
    /// Brings what was drawn into the target's buffer. The driver has finished the frame. False: it had no
    /// memory for that.
    bool FetchTarget();
    /// Deletes everything of a context, which need not be current: then its names die with it.
    void ReleaseContext(EGLContext pContext);

private:
    struct STexture
    {
        std::weak_ptr<CBufferContents> pContents;
        unsigned int nTexture = 0;
        unsigned long long nHeld = 0; ///< version of the contents it holds; 0: none
    };
    struct SImage
    {
        void* pImage = nullptr;
        std::weak_ptr<CBufferContents> pContents;
    };
    struct SContext
    {
        std::vector<STexture> vTextures;
        std::weak_ptr<CBufferContents> pTarget;
        unsigned int nReadFrameBuffer = 0;
    };

    SContext& Context(EGLContext pContext);
    static STexture* Find(SContext& rContext, const std::shared_ptr<CBufferContents>& pContents);
    static void DeleteOrphans(SContext& rContext);

    std::mutex m_oMutex; ///< of the maps; a context's record belongs to its thread
    std::map<EGLContext, SContext> m_mContexts;
    std::vector<SImage> m_vImages; ///< a few: those of the frames in flight
};
