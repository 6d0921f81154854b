// Shaders and programs from a pool: a text that was compiled before is not compiled again. The library sees
// names that are this layer's own.
#include "FuzzDriver.h"

#include "FuzzSupport.h"

#include <GLES3/gl31.h>

#include <dlfcn.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

// Texts with chance numbers come once and never again.
static const std::size_t MOST_PROGRAMS = 400;
static const GLuint FIRST_NAME = 0x40000000;

template <class F>
static F Real(F /*fSelf*/, const char* pName)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, pName));
}
// The name is a function. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define REAL(NAME) static const auto fReal = Real(&NAME, #NAME)

namespace
{

/// What the library holds a name of.
struct SShader
{
    GLenum nKind = 0;
    std::string strText;
    GLuint nReal = 0;
};
struct SProgram
{
    GLuint anShaders[2] = {0, 0}; ///< real names
    int nShaders = 0;
    GLuint nReal = 0;
};

/// What one context has compiled.
struct SPool
{
    std::map<std::pair<GLenum, std::string>, GLuint> mShaders;
    std::map<std::pair<GLuint, GLuint>, std::vector<GLuint>> mFreePrograms;
    std::size_t nPrograms = 0;
};

} // namespace

static std::map<EGLContext, SPool> mPools;
static SPool* pPool = nullptr;
static std::map<GLuint, SShader> mShaders;
static std::map<GLuint, SProgram> mPrograms;
static GLuint nNextName = FIRST_NAME;

/// Empties a pool that is full while the library holds nothing of it.
static void TrimPool(SPool& rPool)
{
    if (rPool.nPrograms < MOST_PROGRAMS || LivingPrograms() != 0)
        return;
    static const auto fDeleteProgram = Real(&glDeleteProgram, "glDeleteProgram");
    static const auto fDeleteShader = Real(&glDeleteShader, "glDeleteShader");
    for (const auto& [oKey, vNames] : rPool.mFreePrograms) {
        for (const GLuint nName : vNames)
            fDeleteProgram(nName);
    }
    for (const auto& [oKey, nName] : rPool.mShaders)
        fDeleteShader(nName);
    rPool = SPool();
}

void UseProgramsOf(EGLContext pContext)
{
    pPool = &mPools[pContext];
    TrimPool(*pPool);
}

int LivingPrograms()
{
    return static_cast<int>(mShaders.size() + mPrograms.size());
}

/// The driver's name; one that it does not know, either, for a name that is not alive.
template <class T>
static GLuint RealName(const std::map<GLuint, T>& mNames, GLuint nName)
{
    const auto oFound = mNames.find(nName);
    return oFound == mNames.end() ? (nName == 0 ? 0 : 0x7FFFFFFF) : oFound->second.nReal;
}

extern "C" GLuint glCreateShader(GLenum nKind)
{
    mShaders[++nNextName].nKind = nKind;
    return nNextName;
}

extern "C" void glShaderSource(GLuint nName, GLsizei nTexts, const GLchar* const* ppTexts,
                               const GLint* pLengths)
{
    Require(nTexts == 1 && pLengths == nullptr && mShaders.count(nName) != 0, "one text for a living shader");
    mShaders[nName].strText = *ppTexts;
}

extern "C" void glCompileShader(GLuint nName)
{
    Require(mShaders.count(nName) != 0, "a living shader is compiled");
    SShader& rShader = mShaders[nName];
    GLuint& rReal = pPool->mShaders[{rShader.nKind, rShader.strText}];
    if (rReal == 0) {
        rReal = Real(&glCreateShader, "glCreateShader")(rShader.nKind);
        const char* pText = rShader.strText.c_str();
        Real(&glShaderSource, "glShaderSource")(rReal, 1, &pText, nullptr);
        Real(&glCompileShader, "glCompileShader")(rReal);
    }
    rShader.nReal = rReal;
}

extern "C" void glGetShaderiv(GLuint nName, GLenum nWhat, GLint* pValue)
{
    REAL(glGetShaderiv);
    fReal(RealName(mShaders, nName), nWhat, pValue);
}

extern "C" void glGetShaderInfoLog(GLuint nName, GLsizei nRoom, GLsizei* pLength, GLchar* pText)
{
    REAL(glGetShaderInfoLog);
    fReal(RealName(mShaders, nName), nRoom, pLength, pText);
}

extern "C" void glDeleteShader(GLuint nName)
{
    REAL(glDeleteShader);
    if (mShaders.erase(nName) == 0)
        fReal(RealName(mShaders, nName));
}

extern "C" GLuint glCreateProgram()
{
    mPrograms[++nNextName] = SProgram();
    return nNextName;
}

extern "C" void glAttachShader(GLuint nProgram, GLuint nShader)
{
    Require(mPrograms.count(nProgram) != 0 && mShaders.count(nShader) != 0, "living names are attached");
    SProgram& rProgram = mPrograms[nProgram];
    Require(rProgram.nShaders < 2, "two shaders a program");
    rProgram.anShaders[rProgram.nShaders++] = mShaders[nShader].nReal;
}

extern "C" void glLinkProgram(GLuint nName)
{
    Require(mPrograms.count(nName) != 0, "a living program is linked");
    SProgram& rProgram = mPrograms[nName];
    std::vector<GLuint>& rFree = pPool->mFreePrograms[{rProgram.anShaders[0], rProgram.anShaders[1]}];
    if (!rFree.empty()) {
        rProgram.nReal = rFree.back();
        rFree.pop_back();
        return;
    }
    ++pPool->nPrograms;
    rProgram.nReal = Real(&glCreateProgram, "glCreateProgram")();
    for (const GLuint nShader : rProgram.anShaders)
        Real(&glAttachShader, "glAttachShader")(rProgram.nReal, nShader);
    Real(&glLinkProgram, "glLinkProgram")(rProgram.nReal);
}

extern "C" void glDeleteProgram(GLuint nName)
{
    REAL(glDeleteProgram);
    const auto oFound = mPrograms.find(nName);
    if (oFound == mPrograms.end()) {
        fReal(RealName(mPrograms, nName));
        return;
    }
    const SProgram& rProgram = oFound->second;
    if (rProgram.nReal != 0)
        pPool->mFreePrograms[{rProgram.anShaders[0], rProgram.anShaders[1]}].push_back(rProgram.nReal);
    mPrograms.erase(oFound);
}

extern "C" void glUseProgram(GLuint nName)
{
    REAL(glUseProgram);
    fReal(RealName(mPrograms, nName));
}

extern "C" void glGetProgramiv(GLuint nName, GLenum nWhat, GLint* pValue)
{
    REAL(glGetProgramiv);
    fReal(RealName(mPrograms, nName), nWhat, pValue);
}

extern "C" GLint glGetAttribLocation(GLuint nName, const GLchar* pVariable)
{
    REAL(glGetAttribLocation);
    return fReal(RealName(mPrograms, nName), pVariable);
}

extern "C" GLint glGetUniformLocation(GLuint nName, const GLchar* pVariable)
{
    REAL(glGetUniformLocation);
    return fReal(RealName(mPrograms, nName), pVariable);
}
