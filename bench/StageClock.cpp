#include "bench/StageClock.h"

#include "bench/Frames.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
#include <dlfcn.h>

namespace
{

double afMilliseconds[STAGE_COUNT];

/// Passes a call on to the function of that name in the next library, and takes its time.
template <class TFunction, class... TArguments>
auto Timed(EStage eStage, const char* pName, TFunction* /*pSelf*/, TArguments... tArguments)
{
    TFunction* const pNext = reinterpret_cast<TFunction*>(dlsym(RTLD_NEXT, pName));
    struct SClock
    {
        explicit SClock(EStage e) : eStage(e) {}
        ~SClock()
        {
            afMilliseconds[eStage] +=
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - oStart).count();
        }
        EStage eStage;
        std::chrono::steady_clock::time_point oStart = std::chrono::steady_clock::now();
    };
    const SClock oClock(eStage);
    return pNext(tArguments...);
}

} // namespace

const char* StageName(EStage eStage)
{
    static const char* const apNames[] = {"display and context", "shader compiler", "textures and buffers",
                                          "draw, with code generation", "read-back"};
    return apNames[eStage];
}

double StageMilliseconds(EStage eStage)
{
    return afMilliseconds[eStage];
}

// The entry points. What is not here counts as the library's own.

extern "C" {

EGLBoolean eglInitialize(EGLDisplay pDisplay, EGLint* pMajor, EGLint* pMinor)
{
    return Timed(STAGE_CONTEXT, "eglInitialize", eglInitialize, pDisplay, pMajor, pMinor);
}
EGLDisplay eglGetDisplay(EGLNativeDisplayType pDisplay)
{
    return Timed(STAGE_CONTEXT, "eglGetDisplay", eglGetDisplay, pDisplay);
}
EGLDisplay eglGetPlatformDisplay(EGLenum nPlatform, void* pDisplay, const EGLAttrib* pAttributes)
{
    return Timed(STAGE_CONTEXT, "eglGetPlatformDisplay", eglGetPlatformDisplay, nPlatform, pDisplay,
                 pAttributes);
}
EGLContext eglCreateContext(EGLDisplay pDisplay, EGLConfig pConfig, EGLContext pShare, const EGLint* pList)
{
    return Timed(STAGE_CONTEXT, "eglCreateContext", eglCreateContext, pDisplay, pConfig, pShare, pList);
}
EGLSurface eglCreatePbufferSurface(EGLDisplay pDisplay, EGLConfig pConfig, const EGLint* pList)
{
    return Timed(STAGE_CONTEXT, "eglCreatePbufferSurface", eglCreatePbufferSurface, pDisplay, pConfig, pList);
}
EGLBoolean eglMakeCurrent(EGLDisplay pDisplay, EGLSurface pDraw, EGLSurface pRead, EGLContext pContext)
{
    return Timed(STAGE_CONTEXT, "eglMakeCurrent", eglMakeCurrent, pDisplay, pDraw, pRead, pContext);
}
EGLBoolean eglTerminate(EGLDisplay pDisplay)
{
    return Timed(STAGE_CONTEXT, "eglTerminate", eglTerminate, pDisplay);
}
EGLBoolean eglDestroyContext(EGLDisplay pDisplay, EGLContext pContext)
{
    return Timed(STAGE_CONTEXT, "eglDestroyContext", eglDestroyContext, pDisplay, pContext);
}

void glCompileShader(GLuint nShader)
{
    Timed(STAGE_SHADERS, "glCompileShader", glCompileShader, nShader);
}
void glLinkProgram(GLuint nProgram)
{
    Timed(STAGE_SHADERS, "glLinkProgram", glLinkProgram, nProgram);
}
void glGetShaderiv(GLuint nShader, GLenum nName, GLint* pValue)
{
    Timed(STAGE_SHADERS, "glGetShaderiv", glGetShaderiv, nShader, nName, pValue);
}
void glGetProgramiv(GLuint nProgram, GLenum nName, GLint* pValue)
{
    Timed(STAGE_SHADERS, "glGetProgramiv", glGetProgramiv, nProgram, nName, pValue);
}
void glUseProgram(GLuint nProgram)
{
    Timed(STAGE_SHADERS, "glUseProgram", glUseProgram, nProgram);
}

void glTexImage2D(GLenum nTarget, GLint nLevel, GLint nInternal, GLsizei nWidth, GLsizei nHeight,
                  GLint nBorder, GLenum nFormat, GLenum nType, const void* pPixels)
{
    Timed(STAGE_UPLOAD, "glTexImage2D", glTexImage2D, nTarget, nLevel, nInternal, nWidth, nHeight, nBorder,
          nFormat, nType, pPixels);
}
void glTexSubImage2D(GLenum nTarget, GLint nLevel, GLint x, GLint y, GLsizei nWidth, GLsizei nHeight,
                     GLenum nFormat, GLenum nType, const void* pPixels)
{
    Timed(STAGE_UPLOAD, "glTexSubImage2D", glTexSubImage2D, nTarget, nLevel, x, y, nWidth, nHeight, nFormat,
          nType, pPixels);
}
void glBufferData(GLenum nTarget, GLsizeiptr nBytes, const void* pData, GLenum nUsage)
{
    Timed(STAGE_UPLOAD, "glBufferData", glBufferData, nTarget, nBytes, pData, nUsage);
}

void glClear(GLbitfield nMask)
{
    Timed(STAGE_DRAW, "glClear", glClear, nMask);
}
void glDrawArrays(GLenum nMode, GLint nFirst, GLsizei nCount)
{
    Timed(STAGE_DRAW, "glDrawArrays", glDrawArrays, nMode, nFirst, nCount);
}
void glFlush()
{
    Timed(STAGE_DRAW, "glFlush", glFlush);
}
void glFinish()
{
    Timed(STAGE_DRAW, "glFinish", glFinish);
}

void glReadPixels(GLint x, GLint y, GLsizei nWidth, GLsizei nHeight, GLenum nFormat, GLenum nType,
                  void* pPixels)
{
    Timed(STAGE_READ, "glReadPixels", glReadPixels, x, y, nWidth, nHeight, nFormat, nType, pPixels);
}

} // extern "C"
