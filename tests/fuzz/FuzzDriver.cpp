// A layer between the library and its driver that makes a GL life short: contexts and compiled programs,
// which take a driver milliseconds, go back to a pool instead of being deleted, and are handed out again.
// What the library asks for, and what it may rely on, stays the same, with one exception: the uniforms of a
// program from the pool hold old values.
#include "FuzzDriver.h"

#include "FuzzSupport.h"
#include "GLWatch.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <cstring>
#include <dlfcn.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

// A mesh of which this many vertices are drawn still shows whether its buffers are there.
static const GLsizei SHORT_MESH = 600;

static bool bShortMeshesWanted = false;
static std::string strErrors;
static std::set<std::pair<char, GLuint>> oNames;
static std::vector<EGLContext> vFreeContexts;
static std::set<EGLContext> oUsedContexts; ///< from the pool, not current since
static std::set<EGLContext> oWatched;

template <class F>
static F Real(F /*fSelf*/, const char* pName)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, pName));
}
// The name is a function. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define REAL(NAME) static const auto fReal = Real(&NAME, #NAME)

void BeginGLInput(bool bShortMeshes)
{
    bShortMeshesWanted = bShortMeshes;
}

std::string TakeGLErrors()
{
    for (int i = 0; i < 8 && eglGetCurrentContext() != EGL_NO_CONTEXT; ++i) {
        const GLenum nError = glGetError();
        if (nError == GL_NO_ERROR)
            break;
        strErrors += " error " + std::to_string(nError);
    }
    return std::exchange(strErrors, std::string());
}

int LivingGLNames()
{
    return static_cast<int>(oNames.size()) + LivingPrograms();
}

// Contexts.

static void GL_APIENTRY OnMessage(GLenum nSource, GLenum nType, GLuint /*nId*/, GLenum /*nSeverity*/,
                                  GLsizei /*nLength*/, const GLchar* pMessage, const void* /*pUser*/)
{
    if (nSource == GL_DEBUG_SOURCE_API_KHR && nType == GL_DEBUG_TYPE_ERROR_KHR &&
        std::strstr(pMessage, "GL_BGR") == nullptr)
        strErrors += std::string(" ") + pMessage;
}

/// A context from the pool looks like a new one where the library could tell.
static void ResetContext()
{
    for (GLenum nUnit = GL_TEXTURE0 + 15; nUnit >= GL_TEXTURE0; --nUnit) {
        glActiveTexture(nUnit);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    for (GLuint i = 0; i < 4; ++i)
        glDisableVertexAttribArray(i);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glUseProgram(0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glDisable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glViewport(0, 0, 1, 1);
}

extern "C" EGLContext eglCreateContext(EGLDisplay pDisplay, EGLConfig pConfig, EGLContext pShare,
                                       const EGLint* pAttributes)
{
    REAL(eglCreateContext);
    if (vFreeContexts.empty())
        return fReal(pDisplay, pConfig, pShare, pAttributes);
    EGLContext pContext = vFreeContexts.back();
    vFreeContexts.pop_back();
    oUsedContexts.insert(pContext);
    return pContext;
}

extern "C" EGLBoolean eglDestroyContext(EGLDisplay /*pDisplay*/, EGLContext pContext)
{
    vFreeContexts.push_back(pContext);
    return EGL_TRUE;
}

/// Contexts in the pool need their display.
extern "C" EGLBoolean eglTerminate(EGLDisplay /*pDisplay*/)
{
    return EGL_TRUE;
}

extern "C" EGLBoolean eglMakeCurrent(EGLDisplay pDisplay, EGLSurface pDraw, EGLSurface pRead,
                                     EGLContext pContext)
{
    REAL(eglMakeCurrent);
    if (!fReal(pDisplay, pDraw, pRead, pContext))
        return EGL_FALSE;
    if (pContext == EGL_NO_CONTEXT)
        return EGL_TRUE;
    if (oWatched.insert(pContext).second) {
        const auto fCallback = reinterpret_cast<PFNGLDEBUGMESSAGECALLBACKKHRPROC>(
            eglGetProcAddress("glDebugMessageCallbackKHR"));
        Require(fCallback != nullptr, "the driver reports errors in words");
        glEnable(GL_DEBUG_OUTPUT_KHR);
        glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS_KHR);
        fCallback(OnMessage, nullptr);
    }
    UseProgramsOf(pContext);
    // A context that was current before keeps its state, as with any driver.
    if (oUsedContexts.erase(pContext) != 0)
        ResetContext();
    return EGL_TRUE;
}

// Names.

static void Born(char nKind, GLsizei nCount, const GLuint* pNames)
{
    for (GLsizei i = 0; i < nCount; ++i)
        oNames.emplace(nKind, pNames[i]);
}

static void Died(char nKind, GLsizei nCount, const GLuint* pNames)
{
    for (GLsizei i = 0; i < nCount; ++i)
        oNames.erase({nKind, pNames[i]});
}

#define NAMES(KIND, GEN, DELETE)                                                                             \
    extern "C" void GEN(GLsizei nCount, GLuint* pNames)                                                      \
    {                                                                                                        \
        REAL(GEN);                                                                                           \
        fReal(nCount, pNames);                                                                               \
        Born(KIND, nCount, pNames);                                                                          \
    }                                                                                                        \
    extern "C" void DELETE(GLsizei nCount, const GLuint* pNames)                                             \
    {                                                                                                        \
        REAL(DELETE);                                                                                        \
        fReal(nCount, pNames);                                                                               \
        Died(KIND, nCount, pNames);                                                                          \
    }

NAMES('t', glGenTextures, glDeleteTextures)
NAMES('b', glGenBuffers, glDeleteBuffers)
NAMES('f', glGenFramebuffers, glDeleteFramebuffers)
NAMES('r', glGenRenderbuffers, glDeleteRenderbuffers)

extern "C" void glDrawArrays(GLenum nMode, GLint nFirst, GLsizei nCount)
{
    REAL(glDrawArrays);
    fReal(nMode, nFirst, bShortMeshesWanted && nCount > SHORT_MESH ? SHORT_MESH : nCount);
}
