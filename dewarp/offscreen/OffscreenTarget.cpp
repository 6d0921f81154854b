#include "dewarp/offscreen/OffscreenTarget.h"

#include "platform/DriverErrors.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <cstring>

namespace
{

bool DriverHasBGRA()
{
    GLint nExtensions = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &nExtensions);
    for (GLint i = 0; i < nExtensions; ++i) {
        const auto* pName =
            reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
        if (pName != nullptr && std::strcmp(pName, "GL_EXT_texture_format_BGRA8888") == 0)
            return true;
    }
    return false;
}

bool IsComplete()
{
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

} // namespace

bool COffscreenTarget::Create(int nWidth, int nHeight)
{
    if (Has(nWidth, nHeight))
        return true;
    Free();
    GLint nMaxTexture = 0;
    GLint nMaxRenderbuffer = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &nMaxTexture);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &nMaxRenderbuffer);
    const int nMaxSize = nMaxTexture < nMaxRenderbuffer ? nMaxTexture : nMaxRenderbuffer;
    if (nWidth > nMaxSize || nHeight > nMaxSize)
        return false;
    glGenFramebuffers(1, &m_nFrameBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
    const bool bMade = m_nFrameBuffer != 0 && ((DriverHasBGRA() && AttachTexture(nWidth, nHeight)) ||
                                               AttachRenderbuffer(nWidth, nHeight));
    // Whatever went wrong here is dealt with here.
    unsigned int nError = 0;
    TakeDriverErrors(nError);
    if (!bMade) {
        Free();
        return false;
    }
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    return true;
}

bool COffscreenTarget::AttachTexture(int nWidth, int nHeight)
{
    glGenTextures(1, &m_nTexture);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, m_nTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_BGRA_EXT, nWidth, nHeight, 0, GL_BGRA_EXT, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_nTexture, 0);
    return IsComplete();
}

bool COffscreenTarget::AttachRenderbuffer(int nWidth, int nHeight)
{
    glGenRenderbuffers(1, &m_nRenderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, m_nRenderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, nWidth, nHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_nRenderbuffer);
    return IsComplete();
}

void COffscreenTarget::Free()
{
    if (m_nFrameBuffer != 0)
        glDeleteFramebuffers(1, &m_nFrameBuffer);
    if (m_nTexture != 0)
        glDeleteTextures(1, &m_nTexture);
    if (m_nRenderbuffer != 0)
        glDeleteRenderbuffers(1, &m_nRenderbuffer);
    Forget();
}

void COffscreenTarget::Forget()
{
    m_nFrameBuffer = m_nTexture = m_nRenderbuffer = 0;
    m_nWidth = m_nHeight = 0;
}

void COffscreenTarget::Bind() const
{
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
}
