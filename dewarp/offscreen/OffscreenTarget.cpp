#include "dewarp/offscreen/OffscreenTarget.h"

#include <GLES3/gl31.h>

bool COffscreenTarget::Create(int nWidth, int nHeight)
{
    if (m_nFrameBuffer != 0 && nWidth == m_nWidth && nHeight == m_nHeight)
        return true;
    Free();
    GLint nMaxSize = 0;
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &nMaxSize);
    if (nWidth > nMaxSize || nHeight > nMaxSize)
        return false;
    glGenFramebuffers(1, &m_nFrameBuffer);
    glGenRenderbuffers(1, &m_nColorBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, m_nColorBuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, nWidth, nHeight);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_nColorBuffer);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        Free();
        return false;
    }
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    return true;
}

void COffscreenTarget::Free()
{
    if (m_nFrameBuffer != 0)
        glDeleteFramebuffers(1, &m_nFrameBuffer);
    if (m_nColorBuffer != 0)
        glDeleteRenderbuffers(1, &m_nColorBuffer);
    m_nFrameBuffer = 0;
    m_nColorBuffer = 0;
    m_nWidth = 0;
    m_nHeight = 0;
}

void COffscreenTarget::Bind() const
{
    glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
}
