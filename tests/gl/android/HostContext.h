/// \file
/// A context of the host, beside those of dewarpers.
#pragma once

#include <EGL/egl.h>
#include <GLES3/gl31.h>

#include <gtest/gtest.h>

/// A context that is not the dewarper's, with a texture in it.
class CHostContext
{
public:
    CHostContext()
    {
        m_pDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
        eglInitialize(m_pDisplay, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_ES_API);
        const EGLint aConfig[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT,
                                  EGL_NONE};
        EGLConfig pConfig = nullptr;
        EGLint nConfigs = 0;
        eglChooseConfig(m_pDisplay, aConfig, &pConfig, 1, &nConfigs);
        const EGLint aContext[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
        m_pContext = eglCreateContext(m_pDisplay, pConfig, EGL_NO_CONTEXT, aContext);
        MakeCurrent();
        glGenTextures(1, &m_nTexture);
        glBindTexture(GL_TEXTURE_2D, m_nTexture);
        const unsigned char aPixel[] = {1, 2, 3, 4};
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, aPixel);
        glGenFramebuffers(1, &m_nFrameBuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, m_nFrameBuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_nTexture, 0);
        glClearColor(0.25f, 0.0f, 0.0f, 0.0f);
    }
    ~CHostContext()
    {
        MakeCurrent();
        glDeleteFramebuffers(1, &m_nFrameBuffer);
        glDeleteTextures(1, &m_nTexture);
        eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(m_pDisplay, m_pContext);
        eglTerminate(m_pDisplay);
    }
    CHostContext(const CHostContext&) = delete;
    CHostContext& operator=(const CHostContext&) = delete;

    void MakeCurrent() const { eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, m_pContext); }
    bool IsCurrent() const { return eglGetCurrentContext() == m_pContext; }
    /// What it bound is bound, what it drew is there.
    void ExpectUntouched() const
    {
        GLint nTexture = 0;
        GLint nFrameBuffer = 0;
        GLfloat aColour[4] = {};
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &nTexture);
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &nFrameBuffer);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, aColour);
        EXPECT_EQ(nTexture, static_cast<GLint>(m_nTexture));
        EXPECT_EQ(nFrameBuffer, static_cast<GLint>(m_nFrameBuffer));
        EXPECT_EQ(aColour[0], 0.25f);
        unsigned char aPixel[4] = {};
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, aPixel);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(aPixel[i], i + 1);
    }

private:
    EGLDisplay m_pDisplay = EGL_NO_DISPLAY;
    EGLContext m_pContext = EGL_NO_CONTEXT;
    GLuint m_nTexture = 0;
    GLuint m_nFrameBuffer = 0;
};
