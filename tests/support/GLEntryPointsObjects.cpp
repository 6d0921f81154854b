// The entry points of OpenGL ES that make, delete or question named things.
#include "tests/support/GLForward.h"

#include <GLES3/gl31.h>

static void BornAll(EGLKind eKind, GLsizei nCount, const GLuint* pNames)
{
    CDriverScope oScope;
    for (GLsizei i = 0; i < nCount; ++i)
        CGLRecorder::Get().Born(eKind, pNames[i]);
}

static void DiedAll(EGLKind eKind, GLsizei nCount, const GLuint* pNames)
{
    CDriverScope oScope;
    for (GLsizei i = 0; i < nCount; ++i)
        CGLRecorder::Get().Died(eKind, pNames[i]);
}

/// Deletions are recorded with their first name, so that a test can follow it.
// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names
#define GL_NAMES(KIND, GEN, DEL)                                                                             \
    extern "C" void GEN(GLsizei nCount, GLuint* pNames)                                                      \
    {                                                                                                        \
        static const auto fReal = RealFunction<decltype(&GEN)>(#GEN);                                        \
        ForwardCall<void>(true, CallOf(#GEN, nCount), fReal, nCount, pNames);                                \
        BornAll(KIND, nCount, pNames);                                                                       \
    }                                                                                                        \
    extern "C" void DEL(GLsizei nCount, const GLuint* pNames)                                                \
    {                                                                                                        \
        static const auto fReal = RealFunction<decltype(&DEL)>(#DEL);                                        \
        ForwardCall<void>(true, CallOf(#DEL, nCount, nCount > 0 ? pNames[0] : 0u), fReal, nCount, pNames);   \
        DiedAll(KIND, nCount, pNames);                                                                       \
    }

// NOLINTEND(bugprone-macro-parentheses)

GL_NAMES(GL_KIND_TEXTURE, glGenTextures, glDeleteTextures)
GL_NAMES(GL_KIND_BUFFER, glGenBuffers, glDeleteBuffers)
GL_NAMES(GL_KIND_FRAMEBUFFER, glGenFramebuffers, glDeleteFramebuffers)
GL_NAMES(GL_KIND_RENDERBUFFER, glGenRenderbuffers, glDeleteRenderbuffers)
GL_NAMES(GL_KIND_VERTEX_ARRAY, glGenVertexArrays, glDeleteVertexArrays)

extern "C" GLuint glCreateShader(GLenum nType)
{
    static const auto fReal = RealFunction<decltype(&glCreateShader)>("glCreateShader");
    const GLuint nName = ForwardCall<GLuint>(true, CallOf("glCreateShader", nType), fReal, nType);
    BornAll(GL_KIND_SHADER, 1, &nName);
    return nName;
}

extern "C" void glDeleteShader(GLuint nName)
{
    static const auto fReal = RealFunction<decltype(&glDeleteShader)>("glDeleteShader");
    ForwardCall<void>(true, CallOf("glDeleteShader", nName), fReal, nName);
    DiedAll(GL_KIND_SHADER, 1, &nName);
}

extern "C" GLuint glCreateProgram()
{
    static const auto fReal = RealFunction<decltype(&glCreateProgram)>("glCreateProgram");
    const GLuint nName = ForwardCall<GLuint>(true, CallOf("glCreateProgram"), fReal);
    BornAll(GL_KIND_PROGRAM, 1, &nName);
    return nName;
}

extern "C" void glDeleteProgram(GLuint nName)
{
    static const auto fReal = RealFunction<decltype(&glDeleteProgram)>("glDeleteProgram");
    ForwardCall<void>(true, CallOf("glDeleteProgram", nName), fReal, nName);
    DiedAll(GL_KIND_PROGRAM, 1, &nName);
}

extern "C" void glShaderSource(GLuint nShader, GLsizei nCount, const GLchar* const* ppTexts,
                               const GLint* pLengths)
{
    static const auto fReal = RealFunction<decltype(&glShaderSource)>("glShaderSource");
    CDriverScope oScope;
    SGLCall sCall = CallOf("glShaderSource", nShader, nCount, ppTexts, pLengths);
    for (GLsizei i = 0; i < nCount; ++i)
        sCall.strText += pLengths != nullptr && pLengths[i] >= 0
                             ? std::string(ppTexts[i], static_cast<std::size_t>(pLengths[i]))
                             : std::string(ppTexts[i]);
    ForwardCall<void>(true, sCall, fReal, nShader, nCount, ppTexts, pLengths);
}

/// A query whose answer can be replaced by an injection of that name.
static void AnswerQuery(GLenum nAsked, GLenum nQuery, const char* pInjection, GLint* pAnswer)
{
    CGLRecorder::SInjection sInjection;
    if (nAsked == nQuery && CGLRecorder::Get().TakeInjection(pInjection, sInjection))
        *pAnswer = static_cast<GLint>(sInjection.fResult);
}

extern "C" void glGetShaderiv(GLuint nShader, GLenum nAsked, GLint* pAnswer)
{
    static const auto fReal = RealFunction<decltype(&glGetShaderiv)>("glGetShaderiv");
    ForwardCall<void>(true, CallOf("glGetShaderiv", nShader, nAsked), fReal, nShader, nAsked, pAnswer);
    AnswerQuery(nAsked, GL_COMPILE_STATUS, "GL_COMPILE_STATUS", pAnswer);
}

extern "C" void glGetProgramiv(GLuint nProgram, GLenum nAsked, GLint* pAnswer)
{
    static const auto fReal = RealFunction<decltype(&glGetProgramiv)>("glGetProgramiv");
    ForwardCall<void>(true, CallOf("glGetProgramiv", nProgram, nAsked), fReal, nProgram, nAsked, pAnswer);
    AnswerQuery(nAsked, GL_LINK_STATUS, "GL_LINK_STATUS", pAnswer);
}

extern "C" GLenum glGetError()
{
    static const auto fReal = RealFunction<decltype(&glGetError)>("glGetError");
    const GLenum nReal = ForwardCall<GLenum>(false, CallOf("glGetError"), fReal);
    const GLenum nPending = CGLRecorder::Get().TakePendingError();
    return nPending != GL_NO_ERROR ? nPending : nReal;
}

extern "C" GLint glGetUniformLocation(GLuint nProgram, const GLchar* pName)
{
    static const auto fReal = RealFunction<decltype(&glGetUniformLocation)>("glGetUniformLocation");
    CDriverScope oScope;
    SGLCall sCall = CallOf("glGetUniformLocation", nProgram);
    sCall.strText = pName;
    return ForwardCall<GLint>(true, sCall, fReal, nProgram, pName);
}

extern "C" GLint glGetAttribLocation(GLuint nProgram, const GLchar* pName)
{
    static const auto fReal = RealFunction<decltype(&glGetAttribLocation)>("glGetAttribLocation");
    CDriverScope oScope;
    SGLCall sCall = CallOf("glGetAttribLocation", nProgram);
    sCall.strText = pName;
    return ForwardCall<GLint>(true, sCall, fReal, nProgram, pName);
}

/// The text holds the first matrix, element by element.
extern "C" void glUniformMatrix4fv(GLint nLocation, GLsizei nCount, GLboolean bTranspose,
                                   const GLfloat* pValues)
{
    static const auto fReal = RealFunction<decltype(&glUniformMatrix4fv)>("glUniformMatrix4fv");
    CDriverScope oScope;
    SGLCall sCall = CallOf("glUniformMatrix4fv", nLocation, nCount, bTranspose, pValues);
    for (int i = 0; i < 16; ++i) {
        sCall.strText += std::to_string(pValues[i]);
        sCall.strText += ' ';
    }
    ForwardCall<void>(true, sCall, fReal, nLocation, nCount, bTranspose, pValues);
}
