#include "tests/support/TestFrame.h"

#include <algorithm>
#include <cmath>

SYUVMatrix YUVMatrix(EYUVSpace eSpace)
{
    switch (eSpace) {
    case YUV_SPACE_BT709:
        return {1.575, 0.187, 0.468, 1.856};
    case YUV_SPACE_BT2020:
        return {1.475, 0.165, 0.571, 1.881};
    case YUV_SPACE_BT601_SCALED:
        return {1.3707, 0.3376, 0.6980, 1.7324};
    default:
        return {1.402, 0.344, 0.714, 1.772};
    }
}

FColour ColourOfYUV(const FYUVBytes& anBytes, EYUVSpace eSpace, bool bLimited)
{
    double y = anBytes[0] / 255.0;
    double u = anBytes[1] / 255.0 - 0.5;
    double v = anBytes[2] / 255.0 - 0.5;
    if (bLimited) {
        y = std::clamp((anBytes[0] - 16.0) / 219.0, 0.0, 1.0);
        u = std::clamp(u * 255.0 / 223.0, -0.5, 0.5);
        v = std::clamp(v * 255.0 / 223.0, -0.5, 0.5);
    }
    const SYUVMatrix sMatrix = YUVMatrix(eSpace);
    FColour aColour = {y + sMatrix.fRedV * v, y - sMatrix.fGreenU * u - sMatrix.fGreenV * v,
                       y + sMatrix.fBlueU * u};
    for (double& fValue : aColour)
        fValue = std::clamp(fValue, 0.0, 1.0);
    return aColour;
}

FYUVBytes YUVOfColour(const FColour& aColour, EYUVSpace eSpace, bool bLimited)
{
    // v and u in terms of y from red and blue, put into green, give y.
    const SYUVMatrix s = YUVMatrix(eSpace);
    const double fU = s.fGreenU / s.fBlueU;
    const double fV = s.fGreenV / s.fRedV;
    const double y = (aColour[1] + fU * aColour[2] + fV * aColour[0]) / (1.0 + fU + fV);
    const double u = (aColour[2] - y) / s.fBlueU;
    const double v = (aColour[0] - y) / s.fRedV;
    const double fChroma = bLimited ? 223.0 : 255.0;
    const double afValues[3] = {bLimited ? 16.0 + 219.0 * y : 255.0 * y, 127.5 + fChroma * u,
                                127.5 + fChroma * v};
    FYUVBytes anBytes = {};
    for (std::size_t i = 0; i < 3; ++i)
        anBytes[i] = static_cast<int>(std::lround(std::clamp(afValues[i], 0.0, 255.0)));
    return anBytes;
}

int BytesPerPixel(int nFormat)
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

CTestFrame::CTestFrame(const STestImage& sPicture, int nFormat, int nStride, EYUVSpace eSpace, bool bLimited)
    : m_eSpace(eSpace), m_bLimited(bLimited)
{
    m_sImage.nWidth = sPicture.nWidth;
    m_sImage.nHeight = sPicture.nHeight;
    m_sImage.nFormat = nFormat;
    m_sImage.eYUVSpace = eSpace;
    m_sImage.eYUVRange = bLimited ? YUV_RANGE_LIMITED : YUV_RANGE_FULL;
    const int nBytes = BytesPerPixel(nFormat);
    const bool bPlanar =
        nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21 || nFormat == IMAGE_FORMAT_YUV420P;
    const int nTight = bPlanar ? (sPicture.nWidth + 1) / 2 * 2 : sPicture.nWidth * nBytes;
    m_sImage.nStride = nStride == 0 ? nTight : nStride;
    static const int RGBA[] = {0, 1, 2, 3};
    static const int BGRA[] = {2, 1, 0, 3};
    static const int GREEN[] = {1};
    if (bPlanar)
        FillYUV(sPicture);
    else if (nBytes == 1)
        FillPacked(sPicture, 1, GREEN);
    else
        FillPacked(sPicture, nBytes,
                   nFormat == IMAGE_FORMAT_BGR24 || nFormat == IMAGE_FORMAT_BGRA32 ? BGRA : RGBA);
}

unsigned char* CTestFrame::NewPlane(int nPlane, int nRowBytes, int nRows, int nStride)
{
    const std::size_t nBytes = static_cast<std::size_t>(nStride) * static_cast<std::size_t>(nRows - 1) +
                               static_cast<std::size_t>(nRowBytes);
    m_avPlanes[nPlane].assign(nBytes, 0xA5);
    // The capacity must not hide a read beyond the end.
    m_avPlanes[nPlane].shrink_to_fit();
    return m_avPlanes[nPlane].data();
}

void CTestFrame::FillPacked(const STestImage& sPicture, int nBytes, const int* pOrder)
{
    unsigned char* pPlane = NewPlane(0, sPicture.nWidth * nBytes, sPicture.nHeight, m_sImage.nStride);
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x)
            for (int i = 0; i < nBytes; ++i)
                pPlane[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_sImage.nStride) +
                       static_cast<std::size_t>(x * nBytes + i)] = sPicture.At(x, y)[pOrder[i]];
    m_sImage.pPlane0 = pPlane;
}

void CTestFrame::FillYUV(const STestImage& sPicture)
{
    const bool bThree = m_sImage.nFormat == IMAGE_FORMAT_YUV420P;
    const int nStride = m_sImage.nStride;
    const int nChromaStride = bThree ? nStride / 2 : nStride;
    const int nCols = sPicture.nWidth / 2;
    const int nRows = sPicture.nHeight / 2;
    unsigned char* pLuma = NewPlane(0, sPicture.nWidth, sPicture.nHeight, nStride);
    unsigned char* pFirst = NewPlane(1, bThree ? nCols : 2 * nCols, nRows, nChromaStride);
    unsigned char* pSecond = bThree ? NewPlane(2, nCols, nRows, nChromaStride) : pFirst + 1;
    if (m_sImage.nFormat == IMAGE_FORMAT_NV21)
        std::swap(pFirst, pSecond);
    const int nStep = bThree ? 1 : 2;
    for (int y = 0; y < sPicture.nHeight; ++y)
        for (int x = 0; x < sPicture.nWidth; ++x) {
            const unsigned char* pPixel = sPicture.At(x, y);
            const FYUVBytes anBytes =
                YUVOfColour({pPixel[0] / 255.0, pPixel[1] / 255.0, pPixel[2] / 255.0}, m_eSpace, m_bLimited);
            pLuma[static_cast<std::ptrdiff_t>(y) * nStride + x] = static_cast<unsigned char>(anBytes[0]);
            if (x / 2 >= nCols || y / 2 >= nRows || x % 2 != 0 || y % 2 != 0)
                continue;
            const std::ptrdiff_t nAt = static_cast<std::ptrdiff_t>(y / 2) * nChromaStride + x / 2 * nStep;
            pFirst[nAt] = static_cast<unsigned char>(anBytes[1]);
            pSecond[nAt] = static_cast<unsigned char>(anBytes[2]);
        }
    m_sImage.pPlane0 = m_avPlanes[0].data();
    m_sImage.pPlane1 = m_avPlanes[1].data();
    m_sImage.pPlane2 = bThree ? m_avPlanes[2].data() : nullptr;
}

FYUVBytes CTestFrame::BytesAt(int x, int y) const
{
    const bool bThree = m_sImage.nFormat == IMAGE_FORMAT_YUV420P;
    const int nCol = std::min(x / 2, m_sImage.nWidth / 2 - 1);
    const int nRow = std::min(y / 2, m_sImage.nHeight / 2 - 1);
    const std::ptrdiff_t nChroma =
        static_cast<std::ptrdiff_t>(nRow) * (bThree ? m_sImage.nStride / 2 : m_sImage.nStride) +
        nCol * (bThree ? 1 : 2);
    const int nLuma = m_sImage.pPlane0[static_cast<std::ptrdiff_t>(y) * m_sImage.nStride + x];
    const int nFirst = m_sImage.pPlane1[nChroma];
    const int nSecond = bThree ? m_sImage.pPlane2[nChroma] : m_sImage.pPlane1[nChroma + 1];
    if (m_sImage.nFormat == IMAGE_FORMAT_NV21)
        return {nLuma, nSecond, nFirst};
    return {nLuma, nFirst, nSecond};
}

FColour CTestFrame::ColourAt(int x, int y) const
{
    if (m_sImage.pPlane1 != nullptr)
        return ColourOfYUV(BytesAt(x, y), m_eSpace, m_bLimited);
    const int nBytes = BytesPerPixel(m_sImage.nFormat);
    const unsigned char* pPixel =
        m_sImage.pPlane0 + static_cast<std::ptrdiff_t>(y) * m_sImage.nStride + x * nBytes;
    if (nBytes == 1)
        return {pPixel[0] / 255.0, pPixel[0] / 255.0, pPixel[0] / 255.0};
    const bool bBGR = m_sImage.nFormat == IMAGE_FORMAT_BGR24 || m_sImage.nFormat == IMAGE_FORMAT_BGRA32;
    const double fAlpha = nBytes == 4 ? pPixel[3] / 255.0 : 1.0;
    return {pPixel[bBGR ? 2 : 0] / 255.0 * fAlpha, pPixel[1] / 255.0 * fAlpha,
            pPixel[bBGR ? 0 : 2] / 255.0 * fAlpha};
}
