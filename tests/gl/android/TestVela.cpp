#include "TestVela.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

CTestBuffer::CTestBuffer(int nWidth, int nHeight, int nFormat)
    : m_oBuffer(static_cast<uint32_t>(nWidth), static_cast<uint32_t>(nHeight), nFormat, 1,
                android::GraphicBuffer::USAGE_SW_READ_OFTEN | android::GraphicBuffer::USAGE_SW_WRITE_OFTEN)
{}

static void CopyRows(const unsigned char* pFrom, int nFromStride, unsigned char* pTo, std::size_t nToStride,
                     int nRowBytes, int nRows)
{
    for (int y = 0; y < nRows; ++y)
        std::memcpy(pTo + static_cast<std::size_t>(y) * nToStride,
                    pFrom + static_cast<std::ptrdiff_t>(y) * nFromStride,
                    static_cast<std::size_t>(nRowBytes));
}

void CTestBuffer::Fill(CTestFrame& oFrame)
{
    const SImageProperties& rImage = *oFrame.Image();
    void* pMemory = nullptr;
    if (m_oBuffer.lock(android::GraphicBuffer::USAGE_SW_WRITE_OFTEN, &pMemory) != 0)
        return;
    unsigned char* const pRows = static_cast<unsigned char*>(pMemory);
    const std::size_t nStride = m_oBuffer.getStride();
    if (m_oBuffer.getPixelFormat() == HAL_PIXEL_FORMAT_RGBA_8888) {
        CopyRows(rImage.pPlane0, rImage.nStride, pRows, nStride * 4, rImage.nWidth * 4, rImage.nHeight);
    } else {
        CopyRows(rImage.pPlane0, rImage.nStride, pRows, nStride, rImage.nWidth, rImage.nHeight);
        CopyRows(rImage.pPlane1, rImage.nStride, pRows + nStride * m_oBuffer.getHeight(), nStride,
                 rImage.nWidth / 2 * 2, rImage.nHeight / 2);
    }
    m_oBuffer.unlock();
}

STestImage CTestBuffer::Texels()
{
    const int nWidth = static_cast<int>(m_oBuffer.getWidth());
    const int nHeight = static_cast<int>(m_oBuffer.getHeight());
    STestImage sImage(nWidth, nHeight);
    if (m_oBuffer.getPixelFormat() == HAL_PIXEL_FORMAT_RGBA_8888) {
        void* pMemory = nullptr;
        if (m_oBuffer.lock(android::GraphicBuffer::USAGE_SW_READ_OFTEN, &pMemory) != 0)
            return {};
        for (int y = 0; y < nHeight; ++y)
            std::memcpy(sImage.At(0, y),
                        static_cast<unsigned char*>(pMemory) +
                            static_cast<std::size_t>(y) * m_oBuffer.getStride() * 4,
                        static_cast<std::size_t>(nWidth) * 4);
    } else {
        android_ycbcr sLayout = {};
        if (m_oBuffer.lockYCbCr(android::GraphicBuffer::USAGE_SW_READ_OFTEN, &sLayout) != 0)
            return {};
        const auto At = [](const void* pPlane, std::size_t nOffset) {
            return static_cast<const unsigned char*>(pPlane)[nOffset];
        };
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < nWidth; ++x) {
                const std::size_t nRow = static_cast<std::size_t>(y);
                const std::size_t nChroma =
                    nRow / 2 * sLayout.cstride + static_cast<std::size_t>(x) / 2 * sLayout.chroma_step;
                sImage.Set(x, y, At(sLayout.y, nRow * sLayout.ystride + static_cast<std::size_t>(x)),
                           At(sLayout.cb, nChroma), At(sLayout.cr, nChroma));
            }
    }
    m_oBuffer.unlock();
    return sImage;
}

STestImage CTestBuffer::Picture(EYUVSpace eSpace, bool bLimited)
{
    return m_oBuffer.getPixelFormat() == HAL_PIXEL_FORMAT_RGBA_8888 ? Texels()
                                                                    : ShownByYUV(Texels(), eSpace, bLimited);
}

STestImage ShownByYUV(const STestImage& sTexels, EYUVSpace eSpace, bool bLimited)
{
    STestImage sImage(sTexels.nWidth, sTexels.nHeight);
    for (int y = 0; y < sTexels.nHeight; ++y)
        for (int x = 0; x < sTexels.nWidth; ++x) {
            const unsigned char* p = sTexels.At(x, y);
            const FColour aColour = ColourOfYUV({p[0], p[1], p[2]}, eSpace, bLimited);
            sImage.Set(x, y, static_cast<int>(std::lround(aColour[0] * 255.0)),
                       static_cast<int>(std::lround(aColour[1] * 255.0)),
                       static_cast<int>(std::lround(aColour[2] * 255.0)));
        }
    return sImage;
}

CTestVela::CTestVela(int nCols, int nRows)
{
    InitGL(nCols, nRows);
    StartGL();
}

bool CTestVela::DrawFrame(CTestBuffer& oInput, CTestBuffer& oOutput)
{
    if (!CreateImageF(oInput.get(), oOutput.get()))
        return false;
    const bool bDrawn = DrawGLScene(true);
    DestroyImage();
    return bDrawn;
}

bool CTestVela::Apply(const SReferenceSetup& sSetup, CTestBuffer& oInput, CTestBuffer& oOutput)
{
    SetViewType(sSetup.eView);
    SetMountType(sSetup.eMount);
    SetLensType(static_cast<ELensType>(sSetup.nLensType));
    SetMountTilt(static_cast<float>(sSetup.fMountTilt));
    SetStrictTiltLimits(sSetup.bStrict);
    if (!DrawFrame(oInput, oOutput))
        return false;
    AbsolutePTZ(static_cast<float>(sSetup.fPan), static_cast<float>(sSetup.fTilt),
                static_cast<float>(sSetup.fZoom));
    return DrawFrame(oInput, oOutput);
}

// Chroma, given for 2 x 2 input pixels, spreads an edge over about four of them.
static const int FLAT_RADIUS = 4;

static bool IsFlat(const STestImage& sImage, int x, int y, int nFlat)
{
    const unsigned char* const pMiddle = sImage.At(x, y);
    for (int j = y - FLAT_RADIUS; j <= y + FLAT_RADIUS; ++j)
        for (int i = x - FLAT_RADIUS; i <= x + FLAT_RADIUS; ++i)
            for (int k = 0; k < 3; ++k)
                if (std::abs(sImage.At(i, j)[k] - pMiddle[k]) > nFlat)
                    return false;
    return true;
}

SFlatDifference CompareFlatParts(const STestImage& sA, const STestImage& sB, int nFlat)
{
    SFlatDifference sResult;
    if (sA.nWidth != sB.nWidth || sA.nHeight != sB.nHeight) {
        sResult.nMax = 256;
        return sResult;
    }
    int nFlatPixels = 0;
    for (int y = FLAT_RADIUS; y < sA.nHeight - FLAT_RADIUS; ++y)
        for (int x = FLAT_RADIUS; x < sA.nWidth - FLAT_RADIUS; ++x) {
            if (!IsFlat(sA, x, y, nFlat))
                continue;
            ++nFlatPixels;
            for (int k = 0; k < 3; ++k) {
                const int nDiff = std::abs(sA.At(x, y)[k] - sB.At(x, y)[k]);
                if (nDiff > sResult.nMax) {
                    sResult.nMax = nDiff;
                    sResult.nMaxX = x;
                    sResult.nMaxY = y;
                }
            }
        }
    sResult.fShare = static_cast<double>(nFlatPixels) / (static_cast<double>(sA.nWidth) * sA.nHeight);
    return sResult;
}

double NumberOfPointer(const void* p)
{
    return static_cast<double>(reinterpret_cast<std::uintptr_t>(p));
}

void ExpectLine(const CLogCapture& oLog, std::size_t nLine, int nPriority, const std::string& strText)
{
    ASSERT_LT(nLine, oLog.Lines().size()) << oLog.Text();
    EXPECT_EQ(oLog.Lines()[nLine].strText, strText);
    EXPECT_EQ(oLog.Lines()[nLine].nPriority, nPriority) << strText;
    EXPECT_EQ(oLog.Lines()[nLine].strTag, "LUMORVIDEOMANAGER_DEWRAP");
}
