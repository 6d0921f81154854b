#include "tests/gl/session/CallText.h"

#include <EGL/egl.h>
#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <cstdint>
#include <cstdio>

static const unsigned long long FNV_START = 0xcbf29ce484222325ULL;
static const unsigned long long FNV_PRIME = 0x100000001b3ULL;
// Blue first; OpenGL ES has no such format of its own.
static const int GL_BGR_UPLOAD = 0x80E0;

unsigned long long HashBytes(const void* pData, std::size_t nBytes, unsigned long long nHash)
{
    if (nHash == 0)
        nHash = FNV_START;
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    for (std::size_t i = 0; i < nBytes; ++i)
        nHash = (nHash ^ pBytes[i]) * FNV_PRIME;
    return nHash;
}

std::string HashText(unsigned long long nHash)
{
    char acHash[20];
    std::snprintf(acHash, sizeof acHash, "%016llx", nHash);
    return acHash;
}

static const void* PointerOf(const SGLCall& sCall, int nArg)
{
    // Addresses of user space fit into a double. NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(sCall.aArgs[nArg]));
}

/// Position of a call's EGL attribute list; -1: it has none.
static int AttributeArgument(const std::string& strName)
{
    if (strName == "eglChooseConfig")
        return 1;
    if (strName == "eglCreatePbufferSurface")
        return 2;
    if (strName == "eglCreateContext")
        return 3;
    return strName == "eglCreateImageKHR" ? 4 : -1;
}

static std::string AttributeText(const EGLint* pList)
{
    std::string strText = "{";
    for (; pList != nullptr && *pList != EGL_NONE; pList += 2)
        strText += " " + std::to_string(pList[0]) + "=" + std::to_string(pList[1]);
    return strText + " }";
}

std::string CCallText::Argument(const SGLCall& sCall, int nArg) const
{
    if ((sCall.nPointers >> nArg & 1U) != 0) {
        if (nArg == AttributeArgument(sCall.pName))
            return AttributeText(static_cast<const EGLint*>(PointerOf(sCall, nArg)));
        return PointerOf(sCall, nArg) == nullptr ? "null" : "ptr";
    }
    char acNumber[40];
    std::snprintf(acNumber, sizeof acNumber, "%.10g", sCall.aArgs[nArg]);
    return acNumber;
}

static std::size_t PixelBytes(int nFormat)
{
    switch (nFormat) {
    case GL_RGB:
    case GL_BGR_UPLOAD:
        return 3;
    case GL_RGBA:
    case GL_BGRA_EXT:
        return 4;
    case GL_LUMINANCE_ALPHA:
    case GL_RG:
        return 2;
    default:
        return 1;
    }
}

/// Pixels as GL reads them: width and height stand at nFirst, format, type (bytes) and pointer at the end.
unsigned long long CCallText::HashPixels(const SGLCall& sCall, int nFirst) const
{
    const int nFormatArg = sCall.nArgs - 3;
    const auto* pPixels = static_cast<const unsigned char*>(PointerOf(sCall, sCall.nArgs - 1));
    const std::size_t nPixel = PixelBytes(sCall.Int(nFormatArg));
    const std::size_t nRow = static_cast<std::size_t>(sCall.Int(nFirst)) * nPixel;
    const std::size_t nAlign = static_cast<std::size_t>(m_nUnpackAlignment);
    std::size_t nStride =
        m_nUnpackRowLength > 0 ? static_cast<std::size_t>(m_nUnpackRowLength) * nPixel : nRow;
    nStride = (nStride + nAlign - 1) / nAlign * nAlign;
    unsigned long long nHash = 0;
    for (int y = 0; y < sCall.Int(nFirst + 1); ++y)
        nHash = HashBytes(pPixels + static_cast<std::size_t>(y) * nStride, nRow, nHash);
    return nHash;
}

std::string CCallText::Data(const SGLCall& sCall) const
{
    const std::string strName = sCall.pName;
    unsigned long long nHash = 0;
    if (strName == "glUniformMatrix4fv")
        nHash = HashBytes(PointerOf(sCall, 3), static_cast<std::size_t>(sCall.Int(1)) * 16 * sizeof(float));
    else if (strName == "glBufferData" && PointerOf(sCall, 2) != nullptr)
        nHash = HashBytes(PointerOf(sCall, 2), static_cast<std::size_t>(sCall.Int(1)));
    else if (strName == "glTexImage2D" && PointerOf(sCall, 8) != nullptr)
        nHash = HashPixels(sCall, 3);
    else if (strName == "glTexSubImage2D" && PointerOf(sCall, 8) != nullptr)
        nHash = HashPixels(sCall, 4);
    else
        return std::string();
    return " data=" + HashText(nHash);
}

std::string CCallText::Line(const SGLCall& sCall)
{
    const std::string strName = sCall.pName;
    if (strName == "glPixelStorei" && sCall.Int(0) == GL_UNPACK_ALIGNMENT)
        m_nUnpackAlignment = sCall.Int(1);
    if (strName == "glPixelStorei" && sCall.Int(0) == GL_UNPACK_ROW_LENGTH)
        m_nUnpackRowLength = sCall.Int(1);
    // A new context begins with the values of the standard.
    if (strName == "eglCreateContext") {
        m_nUnpackAlignment = 4;
        m_nUnpackRowLength = 0;
    }
    std::string strLine = strName + "(";
    for (int i = 0; i < sCall.nArgs; ++i)
        strLine += (i == 0 ? "" : ", ") + Argument(sCall, i);
    strLine += ")";
    if (strName == "glShaderSource")
        strLine += " text=" + HashText(HashBytes(sCall.strText.data(), sCall.strText.size()));
    else if (strName != "glUniformMatrix4fv" && !sCall.strText.empty())
        strLine += " " + sCall.strText;
    if (m_bData)
        strLine += Data(sCall);
    return strLine + "\n";
}
