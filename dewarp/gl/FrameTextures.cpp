#include "dewarp/gl/FrameTextures.h"

#include "dewarp/gl/DriverWatch.h"
#include "dewarp/gl/Textures.h"
#include "dewarp/records/LogTag.h"

#include <GLES3/gl31.h>
#include <android/log.h>

void CFrameTextures::BindFrameBuffer()
{
    if (nFrameBuffer == 0) {
        m_rWatch.BeginMaking();
        glGenFramebuffers(1, &nFrameBuffer);
        m_bAsked = false;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, nFrameBuffer);
}

void CFrameTextures::Attach(unsigned int nTexture)
{
    AttachTexture(nTexture);
    // What lacks memory is told by itself.
    if (m_bAsked || m_rWatch.LacksMemory())
        return;
    m_bAsked = true;
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
        __android_log_print(ANDROID_LOG_INFO, DEWARP_LOG_TAG,
                            "%s:7++++ nError! glCheckFramebufferStatus not complete!\n", "DrawGLScene");
}

void CFrameTextures::BindViewTexture(int nWidth, int nHeight)
{
    BindFrameBuffer();
    m_rTextures.Prepare(nFrameTexture, UNIT_VIEW, nWidth, nHeight);
    m_rTextures.Prepare(nFrameTexture2, UNIT_VIEW_COPY, nWidth, nHeight);
    m_rTextures.Bind(UNIT_VIEW, nFrameTexture);
    Attach(nFrameTexture);
    glActiveTexture(GL_TEXTURE0);
}

void CFrameTextures::Free()
{
    if (nFrameBuffer != 0) {
        glDeleteFramebuffers(1, &nFrameBuffer);
        nFrameBuffer = 0;
    }
    CTextures::Delete(nFrameTexture);
    CTextures::Delete(nFrameTexture2);
}

void CFrameTextures::Forget()
{
    nFrameBuffer = nFrameTexture = nFrameTexture2 = 0;
}
