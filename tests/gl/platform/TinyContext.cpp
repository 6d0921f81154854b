#include "TinyContext.h"

#include <GLES3/gl31.h>

EGLDisplay CTinyContextTest::s_pDisplay = EGL_NO_DISPLAY;
EGLContext CTinyContextTest::s_pContext = EGL_NO_CONTEXT;

void CTinyContextTest::SetUpTestSuite()
{
    s_pDisplay = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (s_pDisplay == EGL_NO_DISPLAY || eglInitialize(s_pDisplay, nullptr, nullptr) != EGL_TRUE)
        return;
    eglBindAPI(EGL_OPENGL_ES_API);
    const EGLint anConfigAttributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                         EGL_OPENGL_ES3_BIT, EGL_NONE};
    EGLConfig pConfig = nullptr;
    EGLint nConfigs = 0;
    eglChooseConfig(s_pDisplay, anConfigAttributes, &pConfig, 1, &nConfigs);
    if (nConfigs < 1)
        return;
    const EGLint anContextAttributes[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 1,
                                          EGL_NONE};
    s_pContext = eglCreateContext(s_pDisplay, pConfig, EGL_NO_CONTEXT, anContextAttributes);
}

void CTinyContextTest::TearDownTestSuite()
{
    if (s_pContext != EGL_NO_CONTEXT)
        eglDestroyContext(s_pDisplay, s_pContext);
    if (s_pDisplay != EGL_NO_DISPLAY)
        eglTerminate(s_pDisplay);
    s_pContext = EGL_NO_CONTEXT;
    s_pDisplay = EGL_NO_DISPLAY;
}

void CTinyContextTest::SetUp()
{
    if (s_pContext == EGL_NO_CONTEXT ||
        eglMakeCurrent(s_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, s_pContext) != EGL_TRUE)
        GTEST_SKIP() << "no OpenGL ES 3.1 context";
}

void CTinyContextTest::TearDown()
{
    if (eglGetCurrentContext() == EGL_NO_CONTEXT)
        return;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    eglMakeCurrent(s_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}
