// Frames out: into the dewarper's own buffer, or the host's memory.

#include "dewarp/cpu/CPUState.h"
#include "dewarp/cpu/WorkerPool.h"
#include "dewarp/records/FrameCheck.h"
#include "platform/MemoryGuard.h"

#include <limits>

static const int MAX_TARGET_SIZE = 16384;

std::string CCustomCPUDewarper::GetEngineText()
{
    const CCPULock oLock(pState->oMutex);
    const int nThreads = pState->CountThreads();
    return std::string("processor, ") + BestKernels().pName + ", " + std::to_string(nThreads) +
           (nThreads == 1 ? " thread" : " threads");
}

bool CCustomCPUDewarper::InitTarget(int nWidth, int nHeight)
{
    const CCPULock oLock(pState->oMutex);
    if (nWidth < 1 || nHeight < 1 || nWidth > MAX_TARGET_SIZE || nHeight > MAX_TARGET_SIZE) {
        pState->oReport.Error("%s: target size %d x %d is outside 1 to %d", "InitTarget", nWidth, nHeight,
                              MAX_TARGET_SIZE);
        return false;
    }
    if (nWidth != pState->nTargetWidth || nHeight != pState->nTargetHeight)
        pState->nDrawnWidth = 0;
    pState->nTargetWidth = nWidth;
    pState->nTargetHeight = nHeight;
    pState->RequestFrame();
    return true;
}

bool CCustomCPUDewarper::GetTargetSize(int& nWidth, int& nHeight)
{
    const CCPULock oLock(pState->oMutex);
    nWidth = pState->nTargetWidth;
    nHeight = pState->nTargetHeight;
    return nWidth > 0;
}

bool CCustomCPUDewarper::DrawGLScene(bool /*bExchangeBuffers*/)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("DrawGLScene", pState->oReport, false,
                       [&] { return pState->Draw(nullptr, "DrawGLScene"); });
}

bool CCustomCPUDewarper::DrawTo(const SFrameTarget& rTarget)
{
    const CCPULock oLock(pState->oMutex);
    return GuardMemory("DrawTo", pState->oReport, false, [&] {
        const std::string strFault = FindTargetFault(rTarget, pState->nTargetWidth, pState->nTargetHeight);
        if (!strFault.empty())
            return pState->Fail("DrawTo", strFault.c_str());
        return pState->Draw(&rTarget, "DrawTo");
    });
}

unsigned char* CCustomCPUDewarper::GetImage(int* pSize, int* pWidth, int* pHeight, int* pStride)
{
    const CCPULock oLock(pState->oMutex);
    const SState& s = *pState;
    const std::size_t nStride = static_cast<std::size_t>(s.nDrawnWidth) * 4;
    const std::size_t nSize = static_cast<std::size_t>(s.nDrawnHeight) * nStride;
    if (s.nDrawnWidth < 1 || nSize > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return nullptr;
    *pWidth = s.nDrawnWidth;
    *pHeight = s.nDrawnHeight;
    *pStride = static_cast<int>(nStride);
    *pSize = static_cast<int>(nSize);
    return s.pBuffer.get();
}
