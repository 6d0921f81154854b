#include "dewarp/records/FrameCheck.h"

namespace
{

const int MIN_SIZE = 2;
const int MAX_SIZE = 16384;
// No row is longer than the widest picture of 4 bytes a pixel, padded generously.
const int MAX_STRIDE = MAX_SIZE * 4 * 4;

struct SFormat
{
    int nFormat;
    int nPlanes;
    int nPixelBytes; ///< of the first plane
};

const SFormat FORMATS[] = {
    {IMAGE_FORMAT_RGB24, 1, 3},  {IMAGE_FORMAT_BGR24, 1, 3},   {IMAGE_FORMAT_NV12, 2, 1},
    {IMAGE_FORMAT_NV21, 2, 1},   {IMAGE_FORMAT_YUV420P, 3, 1}, {IMAGE_FORMAT_RGBA32, 1, 4},
    {IMAGE_FORMAT_BGRA32, 1, 4}, {IMAGE_FORMAT_GRAY8, 1, 1},
};

const SFormat* FindFormat(int nFormat)
{
    for (const SFormat& rFormat : FORMATS) {
        if (rFormat.nFormat == nFormat)
            return &rFormat;
    }
    return nullptr;
}

} // namespace

std::string FindFrameFault(const SImageProperties* pImage, const SQPInfo* pQP)
{
    if (pImage == nullptr)
        return "no image";
    const SFormat* pFormat = FindFormat(pImage->nFormat);
    if (pFormat == nullptr)
        return "unknown image format " + std::to_string(pImage->nFormat);
    if (pImage->nWidth < MIN_SIZE || pImage->nHeight < MIN_SIZE || pImage->nWidth > MAX_SIZE ||
        pImage->nHeight > MAX_SIZE)
        return "image size " + std::to_string(pImage->nWidth) + " x " + std::to_string(pImage->nHeight) +
               " is outside 2 to 16384";
    if (pImage->nStride < pImage->nWidth * pFormat->nPixelBytes || pImage->nStride > MAX_STRIDE)
        return "stride of " + std::to_string(pImage->nStride) + " bytes does not fit rows of " +
               std::to_string(pImage->nWidth * pFormat->nPixelBytes) + " bytes";
    const unsigned char* const aPlanes[] = {pImage->pPlane0, pImage->pPlane1, pImage->pPlane2};
    for (int i = 0; i < 3; ++i) {
        if (i < pFormat->nPlanes && aPlanes[i] == nullptr)
            return "plane " + std::to_string(i) + " is missing";
    }
    if (pQP != nullptr && pQP->pQP != nullptr &&
        (pQP->nWidth < 1 || pQP->nHeight < 1 || pQP->nStride < pQP->nWidth || pQP->nHeight > MAX_SIZE ||
         pQP->nStride > MAX_STRIDE))
        return "macroblock information has an impossible size";
    return std::string();
}

SImageProperties ImageOf(const SFramePlanes& rFrame)
{
    SImageProperties sImage;
    // Nothing writes to a host's planes; the record has no other way to say so.
    sImage.pPlane0 = const_cast<unsigned char*>(rFrame.apPlanes[0]);
    sImage.pPlane1 = const_cast<unsigned char*>(rFrame.apPlanes[1]);
    sImage.pPlane2 = const_cast<unsigned char*>(rFrame.apPlanes[2]);
    sImage.nWidth = rFrame.nWidth;
    sImage.nHeight = rFrame.nHeight;
    sImage.nStride = rFrame.anStrides[0];
    sImage.nFormat = rFrame.eFormat;
    sImage.eYUVSpace = rFrame.eYUVSpace;
    sImage.eYUVRange = rFrame.eYUVRange;
    return sImage;
}

SFramePlanes PlanesOf(const SImageProperties& rImage)
{
    SFramePlanes sFrame;
    const unsigned char* const aPlanes[] = {rImage.pPlane0, rImage.pPlane1, rImage.pPlane2};
    const int nChroma = rImage.nFormat == IMAGE_FORMAT_YUV420P ? rImage.nStride / 2 : rImage.nStride;
    for (int i = 0; i < 3; ++i) {
        sFrame.apPlanes[i] = aPlanes[i];
        sFrame.anStrides[i] = i == 0 ? rImage.nStride : nChroma;
    }
    sFrame.nWidth = rImage.nWidth;
    sFrame.nHeight = rImage.nHeight;
    sFrame.eFormat = static_cast<EImageFormat>(rImage.nFormat);
    sFrame.eYUVSpace = rImage.eYUVSpace;
    sFrame.eYUVRange = rImage.eYUVRange;
    return sFrame;
}

std::string FindFrameFault(const SFramePlanes& rFrame)
{
    const SImageProperties sImage = ImageOf(rFrame);
    std::string strFault = FindFrameFault(&sImage, nullptr);
    if (!strFault.empty())
        return strFault;
    const SFormat& rFormat = *FindFormat(rFrame.eFormat);
    const int nChromaRow = rFrame.nWidth / 2 * (rFormat.nPlanes == 2 ? 2 : 1);
    for (int i = 1; i < rFormat.nPlanes; ++i) {
        if (rFrame.anStrides[i] < nChromaRow || rFrame.anStrides[i] > MAX_STRIDE)
            return "stride of " + std::to_string(rFrame.anStrides[i]) + " bytes does not fit rows of " +
                   std::to_string(nChromaRow) + " bytes in plane " + std::to_string(i);
    }
    return std::string();
}

std::string FindTargetFault(const SFrameTarget& rTarget, int nWidth, int nHeight)
{
    const int nChroma = nWidth / 2 + nWidth % 2;
    int anRows[3] = {nWidth, 0, 0}; // bytes of a row of each plane
    switch (static_cast<int>(rTarget.eFormat)) {
    case IMAGE_FORMAT_BGRA32:
    case IMAGE_FORMAT_RGBA32:
        anRows[0] = 4 * nWidth;
        break;
    case IMAGE_FORMAT_NV12:
        anRows[1] = 2 * nChroma;
        break;
    case IMAGE_FORMAT_YUV420P:
        anRows[1] = anRows[2] = nChroma;
        break;
    default:
        return "nothing is drawn in image format " + std::to_string(static_cast<int>(rTarget.eFormat));
    }
    if (nWidth < 1 || nHeight < 1 || nWidth > MAX_SIZE || nHeight > MAX_SIZE)
        return "the target has no size yet";
    for (int i = 0; i < 3 && anRows[i] > 0; ++i) {
        if (rTarget.apPlanes[i] == nullptr)
            return "plane " + std::to_string(i) + " of the target is missing";
        if (rTarget.anStrides[i] < anRows[i])
            return "stride of " + std::to_string(rTarget.anStrides[i]) + " bytes does not fit rows of " +
                   std::to_string(anRows[i]) + " bytes in plane " + std::to_string(i) + " of the target";
    }
    return std::string();
}
