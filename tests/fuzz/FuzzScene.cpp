#include "FuzzScene.h"

#include "FuzzSupport.h"
#include "GLWatch.h"

#include <algorithm>

static const int FORMATS[] = {IMAGE_FORMAT_NV12,  IMAGE_FORMAT_YUV420P, IMAGE_FORMAT_RGBA32,
                              IMAGE_FORMAT_RGB24, IMAGE_FORMAT_BGR24,   IMAGE_FORMAT_BGRA32,
                              IMAGE_FORMAT_GRAY8, IMAGE_FORMAT_NV21};

int FramePixelBytes(int nFormat)
{
    switch (nFormat) {
    case IMAGE_FORMAT_RGB24:
    case IMAGE_FORMAT_BGR24:
        return 3;
    case IMAGE_FORMAT_RGBA32:
    case IMAGE_FORMAT_BGRA32:
        return 4;
    default:
        return 1;
    }
}

std::size_t PlaneBytes(const SImageProperties& rImage, int nPlane)
{
    const bool bPlanar = rImage.nFormat == IMAGE_FORMAT_YUV420P;
    const bool bPaired = rImage.nFormat == IMAGE_FORMAT_NV12 || rImage.nFormat == IMAGE_FORMAT_NV21;
    if (std::find(std::begin(FORMATS), std::end(FORMATS), rImage.nFormat) == std::end(FORMATS) ||
        nPlane > (bPlanar   ? 2
                  : bPaired ? 1
                            : 0))
        return 0;
    long long nRow = static_cast<long long>(rImage.nWidth) * FramePixelBytes(rImage.nFormat);
    long long nRows = rImage.nHeight;
    long long nStride = rImage.nStride;
    if (nPlane > 0) {
        nRow = rImage.nWidth / 2 * (bPaired ? 2LL : 1LL);
        nRows /= 2;
        nStride /= bPlanar ? 2 : 1;
    }
    if (nRow < 1 || nRows < 1 || nStride < 1)
        return 0;
    return static_cast<std::size_t>((nRows - 1) * nStride + nRow);
}

void CFuzzFrame::Allocate(std::size_t nMostBytes)
{
    unsigned char** const appPlanes[] = {&sImage.pPlane0, &sImage.pPlane1, &sImage.pPlane2};
    std::size_t nTotal = 0;
    for (int i = 0; i < 3; ++i)
        nTotal += PlaneBytes(sImage, i);
    for (int i = 0; i < 3; ++i) {
        const std::size_t nBytes = nTotal > nMostBytes ? 0 : PlaneBytes(sImage, i);
        m_apPlanes[i].reset(nBytes == 0 ? nullptr : new unsigned char[nBytes]);
        *appPlanes[i] = m_apPlanes[i].get();
        if (nBytes != 0)
            std::memset(m_apPlanes[i].get(), 60 + 50 * i, nBytes);
    }
}

void MakeGoodFrame(CFuzzBytes& rBytes, CFuzzFrame& rFrame)
{
    static const int SPACES[] = {0, 1, 2, 3, 4};
    static const int RANGES[] = {0, 1, 2};
    SImageProperties& rImage = rFrame.sImage;
    rImage.nFormat = FORMATS[rBytes.Byte() % std::size(FORMATS)];
    rImage.nWidth = rBytes.Between(2, 41);
    rImage.nHeight = rBytes.Between(2, 41);
    rImage.nStride = rImage.nWidth * FramePixelBytes(rImage.nFormat);
    const unsigned int nPad = rBytes.Byte();
    if (nPad % 4 == 0)
        rImage.nStride += static_cast<int>(nPad / 4);
    rImage.eYUVSpace = rBytes.OneOf<EYUVSpace>(SPACES);
    rImage.eYUVRange = rBytes.OneOf<EYUVRange>(RANGES);
    rFrame.Allocate(1U << 20);
}

std::unique_ptr<SQPInfo> MakeQPInfo(CFuzzBytes& rBytes)
{
    if (rBytes.Byte() % 4 != 3)
        return nullptr;
    auto pInfo = std::make_unique<SQPInfo>();
    pInfo->nWidth = rBytes.Between(-1, 6);
    pInfo->nHeight = rBytes.Between(-1, 6);
    pInfo->nStride = rBytes.Between(-1, 9);
    const int nEntries = pInfo->nHeight > 0 && pInfo->nStride > 0 ? pInfo->nHeight * pInfo->nStride : 0;
    const unsigned int nArrays = rBytes.Byte();
    if (nArrays % 4 != 3)
        pInfo->pQP = new unsigned char[static_cast<std::size_t>(nEntries)]();
    if ((nArrays & 4) != 0)
        pInfo->pMBType = new unsigned char[static_cast<std::size_t>(nEntries)]();
    if ((nArrays & 8) != 0)
        pInfo->pMotion = new unsigned int[static_cast<std::size_t>(nEntries)]();
    return pInfo;
}

static void TargetSize(CCustomGPUDewarperOffscreen& rDewarper, int& nWidth, int& nHeight)
{
    rDewarper.GetTargetWidthHeight(nWidth, nHeight);
}

static void TargetSize(CDewarper& rDewarper, int& nWidth, int& nHeight)
{
    rDewarper.GetTargetSize(nWidth, nHeight);
}

template <class D>
static bool DrawAndLook(D& rDewarper, bool bExchange, bool bWanted)
{
    const bool bDrawn = rDewarper.DrawGLScene(bExchange);
    RequireNothing(TakeGLErrors(), "GL errors while a frame was drawn");
    Require(bDrawn || !bWanted, "a good frame is drawn");
    if (!bDrawn)
        return false;
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pImage = rDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    RequireNothing(TakeGLErrors(), "GL errors while a frame was read back");
    int nTargetWidth = 0;
    int nTargetHeight = 0;
    TargetSize(rDewarper, nTargetWidth, nTargetHeight);
    Require(pImage != nullptr && nWidth == nTargetWidth && nHeight == nTargetHeight &&
                nStride == 4 * nWidth && nSize == nStride * nHeight,
            "the picture has the size of the target");
    // The address sanitizer looks at the far end of it.
    const std::size_t nBefore =
        static_cast<std::size_t>(nStride) * static_cast<std::size_t>(nHeight + nHeight % 2);
    const volatile unsigned char* pLast = pImage + nBefore + nSize - 1;
    static_cast<void>(*pLast);
    return true;
}

bool DrawAndCheck(CCustomGPUDewarperOffscreen& rDewarper, bool bExchange, bool bWanted)
{
    return DrawAndLook(rDewarper, bExchange, bWanted);
}

bool DrawAndCheck(CDewarper& rDewarper, bool bExchange, bool bWanted)
{
    return DrawAndLook(rDewarper, bExchange, bWanted);
}
