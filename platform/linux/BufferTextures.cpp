#include "platform/linux/BufferTextures.h"

#include "platform/DriverErrors.h"

#include <GLES3/gl31.h>

#include <algorithm>

namespace
{

GLint GetInteger(GLenum nName)
{
    GLint nValue = 0;
    glGetIntegerv(nName, &nValue);
    return nValue;
}

/// Puts back, at the end of a scope, the GL state that uploads change.
class CUploadState
{
public:
    CUploadState()
        : m_nTexture(GetInteger(GL_TEXTURE_BINDING_2D)), m_nAlignment(GetInteger(GL_UNPACK_ALIGNMENT)),
          m_nRowLength(GetInteger(GL_UNPACK_ROW_LENGTH)),
          m_nBuffer(GetInteger(GL_PIXEL_UNPACK_BUFFER_BINDING))
    {
        if (m_nBuffer != 0)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }
    ~CUploadState()
    {
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_nTexture));
        glPixelStorei(GL_UNPACK_ALIGNMENT, m_nAlignment);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, m_nRowLength);
        if (m_nBuffer != 0)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(m_nBuffer));
    }
    CUploadState(const CUploadState&) = delete;
    CUploadState& operator=(const CUploadState&) = delete;

private:
    GLint m_nTexture;
    GLint m_nAlignment;
    GLint m_nRowLength;
    GLint m_nBuffer;
};

/// The same for reading back.
class CReadState
{
public:
    CReadState()
        : m_nFrameBuffer(GetInteger(GL_READ_FRAMEBUFFER_BINDING)),
          m_nAlignment(GetInteger(GL_PACK_ALIGNMENT)), m_nRowLength(GetInteger(GL_PACK_ROW_LENGTH)),
          m_nBuffer(GetInteger(GL_PIXEL_PACK_BUFFER_BINDING))
    {
        if (m_nBuffer != 0)
            glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    ~CReadState()
    {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(m_nFrameBuffer));
        glPixelStorei(GL_PACK_ALIGNMENT, m_nAlignment);
        glPixelStorei(GL_PACK_ROW_LENGTH, m_nRowLength);
        if (m_nBuffer != 0)
            glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(m_nBuffer));
    }
    CReadState(const CReadState&) = delete;
    CReadState& operator=(const CReadState&) = delete;

private:
    GLint m_nFrameBuffer;
    GLint m_nAlignment;
    GLint m_nRowLength;
    GLint m_nBuffer;
};

/// A texture of that size, bound. 0: the driver has none so large, or no memory for it.
unsigned int NewTexture(int nWidth, int nHeight)
{
    const GLint nMaxSize = GetInteger(GL_MAX_TEXTURE_SIZE);
    if (nWidth > nMaxSize || nHeight > nMaxSize)
        return 0;
    unsigned int nTexture = 0;
    glGenTextures(1, &nTexture);
    glBindTexture(GL_TEXTURE_2D, nTexture);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, nWidth, nHeight);
    unsigned int nError = 0;
    if (TakeDriverErrors(nError)) {
        glDeleteTextures(1, &nTexture);
        return 0;
    }
    return nTexture;
}

} // namespace

CBufferTextures& CBufferTextures::Get()
{
    // Never destroyed: dewarpers that live until the end of the process still find it.
    static CBufferTextures* const pTextures = new CBufferTextures;
    return *pTextures;
}

CBufferTextures::SContext& CBufferTextures::Context(EGLContext pContext)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    return m_mContexts[pContext];
}

CBufferTextures::STexture* CBufferTextures::Find(SContext& rContext,
                                                 const std::shared_ptr<CBufferContents>& pContents)
{
    const auto pFound =
        std::find_if(rContext.vTextures.begin(), rContext.vTextures.end(),
                     [&](const STexture& rTexture) { return rTexture.pContents.lock() == pContents; });
    return pFound == rContext.vTextures.end() ? nullptr : &*pFound;
}

void CBufferTextures::DeleteOrphans(SContext& rContext)
{
    std::erase_if(rContext.vTextures, [](const STexture& rTexture) {
        if (!rTexture.pContents.expired())
            return false;
        glDeleteTextures(1, &rTexture.nTexture);
        return true;
    });
}

unsigned int CBufferTextures::Prepare(const std::shared_ptr<CBufferContents>& pContents)
{
    EGLContext pContext = eglGetCurrentContext();
    if (pContext == EGL_NO_CONTEXT)
        return 0;
    SContext& rContext = Context(pContext);
    DeleteOrphans(rContext);
    const CUploadState oState;
    STexture* pTexture = Find(rContext, pContents);
    if (pTexture == nullptr) {
        // Room for its record comes first: nobody would delete a texture that is not on record.
        rContext.vTextures.reserve(rContext.vTextures.size() + 1);
        const unsigned int nTexture = NewTexture(pContents->Width(), pContents->Height());
        if (nTexture == 0)
            return 0;
        rContext.vTextures.push_back({pContents, nTexture, 0});
        pTexture = &rContext.vTextures.back();
    } else {
        glBindTexture(GL_TEXTURE_2D, pTexture->nTexture);
    }
    pContents->Upload(pTexture->nHeld);
    return pTexture->nTexture;
}

void CBufferTextures::MakeRoom()
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_vImages.reserve(m_vImages.size() + 1);
}

void CBufferTextures::Remember(void* pImage, const std::shared_ptr<CBufferContents>& pContents)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    m_vImages.push_back({pImage, pContents});
}

void CBufferTextures::Forget(void* pImage)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    std::erase_if(m_vImages, [pImage](const SImage& rImage) { return rImage.pImage == pImage; });
}

void CBufferTextures::SetTarget(void* pImage)
{
    EGLContext pContext = eglGetCurrentContext();
    if (pContext == EGL_NO_CONTEXT)
        return;
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    const auto pFound = std::find_if(m_vImages.begin(), m_vImages.end(),
                                     [pImage](const SImage& rImage) { return rImage.pImage == pImage; });
    SContext& rContext = m_mContexts[pContext];
    rContext.pTarget = pFound == m_vImages.end() ? std::weak_ptr<CBufferContents>() : pFound->pContents;
    // What the frame will be read through: a lack of memory shows before anything is drawn.
    if (rContext.nReadFrameBuffer == 0)
        glGenFramebuffers(1, &rContext.nReadFrameBuffer);
}

bool CBufferTextures::FetchTarget()
{
    EGLContext pContext = eglGetCurrentContext();
    if (pContext == EGL_NO_CONTEXT)
        return true;
    SContext& rContext = Context(pContext);
    const std::shared_ptr<CBufferContents> pContents = rContext.pTarget.lock();
    STexture* const pTexture = pContents ? Find(rContext, pContents) : nullptr;
    if (pTexture == nullptr || rContext.nReadFrameBuffer == 0)
        return true;
    const CReadState oState;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, rContext.nReadFrameBuffer);
    glFramebufferTexture2D(GL_READ_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pTexture->nTexture, 0);
    pContents->ReadBack(pTexture->nHeld);
    unsigned int nError = 0;
    return !TakeDriverErrors(nError);
}

void CBufferTextures::ReleaseContext(EGLContext pContext)
{
    SContext sContext;
    {
        const std::lock_guard<std::mutex> oLock(m_oMutex);
        const auto pFound = m_mContexts.find(pContext);
        if (pFound == m_mContexts.end())
            return;
        sContext = std::move(pFound->second);
        m_mContexts.erase(pFound);
    }
    if (eglGetCurrentContext() != pContext)
        return;
    for (const STexture& rTexture : sContext.vTextures)
        glDeleteTextures(1, &rTexture.nTexture);
    if (sContext.nReadFrameBuffer != 0)
        glDeleteFramebuffers(1, &sContext.nReadFrameBuffer);
}
