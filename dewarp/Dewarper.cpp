#include "dewarp/Dewarper.h"

#include <cstddef>

bool CDewarper::GetTargetSize(int& nWidth, int& nHeight)
{
    nWidth = nHeight = 0;
    return false;
}

bool CDewarper::DrawTo(void* pTarget, int nStride, EImageFormat eFormat)
{
    SFrameTarget sTarget;
    sTarget.eFormat = eFormat;
    sTarget.apPlanes[0] = static_cast<unsigned char*>(pTarget);
    sTarget.anStrides[0] = nStride;
    int nWidth = 0;
    int nHeight = 0;
    // What is not a target is refused by who draws: without the planes that follow it is none.
    if (pTarget == nullptr || nStride < 1 || !GetTargetSize(nWidth, nHeight))
        return DrawTo(sTarget);
    unsigned char* pPlane = sTarget.apPlanes[0] + static_cast<std::ptrdiff_t>(nStride) * nHeight;
    if (eFormat == IMAGE_FORMAT_NV12) {
        sTarget.apPlanes[1] = pPlane;
        sTarget.anStrides[1] = nStride;
    } else if (eFormat == IMAGE_FORMAT_YUV420P) {
        const int nChromaStride = nStride / 2 + nStride % 2;
        for (int i = 1; i < 3; ++i) {
            sTarget.apPlanes[i] = pPlane;
            sTarget.anStrides[i] = nChromaStride;
            pPlane += static_cast<std::ptrdiff_t>(nChromaStride) * (nHeight / 2 + nHeight % 2);
        }
    }
    return DrawTo(sTarget);
}
