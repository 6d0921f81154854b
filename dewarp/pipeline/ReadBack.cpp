// The drawn frame as bytes.

#include "dewarp/CustomGPUDewarper.h"

#include "dewarp/pipeline/LockScope.h"
#include "dewarp/pipeline/MemoryGuard.h"
#include "dewarp/records/LogTag.h"
#include "platform/DriverErrors.h"

#include <GLES3/gl31.h>
// clang-format off
#include <GLES2/gl2ext.h>
// clang-format on

#include <android/log.h>

#include <limits>
#include <utility>

unsigned char* CCustomGPUDewarper::GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride)
{
    CLockScope oScope(*this);
    const int w = pMatrices->nViewportWidth;
    const int h = pMatrices->nViewportHeight;
    if (w < 1 || h < 1 || !SetCurrentRenderingContext(&pRenderingContext))
        return nullptr;
    const std::size_t nStride = static_cast<std::size_t>(w) * 4;
    const std::size_t nRows = static_cast<std::size_t>(h);
    const std::size_t nHalf = (nRows + nRows % 2) * nStride;
    if (nHalf > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return nullptr;
    if (pReadBack == nullptr || nReadBackCapacity < 2 * nHalf) {
        delete[] pReadBack;
        pReadBack = nullptr;
        nReadBackCapacity = 0;
        pReadBack =
            GuardMemory<unsigned char*>("GetImage", nullptr, [&] { return new unsigned char[2 * nHalf]; });
        if (pReadBack == nullptr)
            return nullptr;
        nReadBackCapacity = 2 * nHalf;
    }
    *pWidth = w;
    *pHeight = h;
    *pStride = static_cast<int>(nStride);
    *pSize = static_cast<int>(nStride * nRows);
    glFinish();
    ReadPixels(w, h, pReadBack + nHalf);
    unsigned int nError = 0;
    if (TakeDriverErrors(nError)) {
        __android_log_print(ANDROID_LOG_ERROR, DEWARP_LOG_TAG, "%s: the driver is out of memory", "GetImage");
        return nullptr;
    }
    return pReadBack;
}

void CCustomGPUDewarper::ReadPixels(int nWidth, int nHeight, unsigned char* pPixels)
{
    if (bReadBGRA) {
        glReadPixels(0, 0, nWidth, nHeight, GL_BGRA_EXT, GL_UNSIGNED_BYTE, pPixels);
        if (bReadBGRAProven)
            return;
        bReadBGRAProven = true;
        if (glGetError() == GL_NO_ERROR)
            return;
        bReadBGRA = false;
    }
    // Reading BGRA is an extension; RGBA is always there.
    glReadPixels(0, 0, nWidth, nHeight, GL_RGBA, GL_UNSIGNED_BYTE, pPixels);
    const std::size_t nPixels = static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight);
    for (std::size_t i = 0; i < nPixels; ++i)
        std::swap(pPixels[4 * i], pPixels[4 * i + 2]);
}
