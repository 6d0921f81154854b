#include "dewarp/gl/ReadBack.h"

#include "dewarp/gl/DriverWatch.h"
#include "platform/DriverErrors.h"
#include "platform/Report.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <limits>
#include <new>
#include <utility>

void CReadBack::SetDrawn(int nWidth, int nHeight)
{
    m_nWidth = nWidth;
    m_nHeight = nHeight;
}

void CReadBack::ForgetDriver()
{
    m_bBGRA = true;
    m_bBGRAProven = false;
}

bool CReadBack::MakeRoom(std::size_t nBytes)
{
    if (pReadBack != nullptr && nReadBackCapacity >= nBytes)
        return true;
    delete[] pReadBack;
    nReadBackCapacity = 0;
    pReadBack = new (std::nothrow) unsigned char[nBytes];
    if (pReadBack == nullptr) {
        m_rReport.Error("%s: out of memory", "GetImage");
        return false;
    }
    nReadBackCapacity = nBytes;
    return true;
}

unsigned char* CReadBack::Read(int* pSize, int* pWidth, int* pHeight, int* pStride)
{
    if (!HasFrame())
        return nullptr;
    const std::size_t nStride = static_cast<std::size_t>(m_nWidth) * 4;
    const std::size_t nRows = static_cast<std::size_t>(m_nHeight);
    const std::size_t nHalf = (nRows + nRows % 2) * nStride;
    if (nHalf > static_cast<std::size_t>(std::numeric_limits<int>::max()) || !MakeRoom(2 * nHalf))
        return nullptr;
    *pWidth = m_nWidth;
    *pHeight = m_nHeight;
    *pStride = static_cast<int>(nStride);
    *pSize = static_cast<int>(nStride * nRows);
    m_rWatch.TakeHostErrors("GetImage");
    glFinish();
    unsigned int nError = 0;
    if (!ReadPixels(pReadBack + nHalf) || TakeDriverErrors(nError)) {
        m_rReport.Error("%s: the driver is out of memory", "GetImage");
        return nullptr;
    }
    return pReadBack;
}

/// False when the probe of the first read met a lack of memory.
bool CReadBack::ReadPixels(unsigned char* pPixels)
{
    if (m_bBGRA) {
        glReadPixels(0, 0, m_nWidth, m_nHeight, GL_BGRA_EXT, GL_UNSIGNED_BYTE, pPixels);
        if (m_bBGRAProven)
            return true;
        const unsigned int nError = glGetError();
        if (nError == GL_OUT_OF_MEMORY)
            return false;
        m_bBGRAProven = true;
        if (nError == GL_NO_ERROR)
            return true;
        m_bBGRA = false;
    }
    // Reading BGRA is an extension; RGBA is always there.
    glReadPixels(0, 0, m_nWidth, m_nHeight, GL_RGBA, GL_UNSIGNED_BYTE, pPixels);
    const std::size_t nPixels = static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
    for (std::size_t i = 0; i < nPixels; ++i)
        std::swap(pPixels[4 * i], pPixels[4 * i + 2]);
    return true;
}
