#include "bench/peers/PeerFrame.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{

unsigned char Byte(float fValue)
{
    return static_cast<unsigned char>(std::lround(std::clamp(fValue, 0.0f, 255.0f)));
}

/// Share of a soft line, some pixels wide, that recurs in a distance.
float LineShare(float fPosition, float fDistance)
{
    const float fOffset = std::fabs(std::remainder(fPosition, fDistance));
    return std::clamp(4.0f - fOffset, 0.0f, 1.0f);
}

} // namespace

CPeerFrame::CPeerFrame(int nWidth, int nHeight) : m_nWidth(nWidth), m_nHeight(nHeight)
{
    Paint();
    SplitChannels();
    MakeYUV();
}

void CPeerFrame::Paint()
{
    m_vRGBA.resize(static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight) * 4);
    unsigned char* pPixel = m_vRGBA.data();
    for (int y = 0; y < m_nHeight; ++y) {
        for (int x = 0; x < m_nWidth; ++x, pPixel += 4) {
            const float fX = static_cast<float>(x);
            const float fY = static_cast<float>(y);
            const float fLine = std::max(LineShare(fX, 160.0f), LineShare(fY, 120.0f));
            const float fWave = std::sin(fX * 0.011f) * std::cos(fY * 0.013f);
            pPixel[0] = Byte(120.0f + 60.0f * fWave + 60.0f * fLine);
            pPixel[1] = Byte(110.0f + 50.0f * std::sin(fX * 0.004f + fY * 0.006f) + 60.0f * fLine);
            pPixel[2] = Byte(120.0f - 40.0f * fWave + 60.0f * fLine);
            pPixel[3] = 255;
        }
    }
}

void CPeerFrame::SplitChannels()
{
    const std::size_t nPixels = m_vRGBA.size() / 4;
    for (std::size_t c = 0; c < 4; ++c) {
        m_avChannels[c].resize(nPixels);
        for (std::size_t i = 0; i < nPixels; ++i)
            m_avChannels[c][i] = m_vRGBA[4 * i + c];
    }
}

void CPeerFrame::MakeYUV()
{
    const std::size_t nWidth = static_cast<std::size_t>(m_nWidth);
    const std::size_t nPixels = m_vRGBA.size() / 4;
    m_vLuma.resize(nPixels);
    for (std::size_t i = 0; i < nPixels; ++i) {
        const unsigned char* p = &m_vRGBA[4 * i];
        m_vLuma[i] = Byte(0.299f * static_cast<float>(p[0]) + 0.587f * static_cast<float>(p[1]) +
                          0.114f * static_cast<float>(p[2]));
    }
    for (std::vector<unsigned char>& rPlane : m_avChroma)
        rPlane.reserve(nPixels / 4);
    m_vUV.reserve(nPixels / 2);
    // The picture is soft: one pixel of four stands for all.
    for (int y = 0; y + 1 < m_nHeight; y += 2) {
        for (int x = 0; x + 1 < m_nWidth; x += 2) {
            const std::size_t i = static_cast<std::size_t>(y) * nWidth + static_cast<std::size_t>(x);
            const float fLuma = static_cast<float>(m_vLuma[i]);
            const float fU = 128.0f + (static_cast<float>(m_vRGBA[4 * i + 2]) - fLuma) * 0.564f;
            const float fV = 128.0f + (static_cast<float>(m_vRGBA[4 * i]) - fLuma) * 0.713f;
            m_avChroma[0].push_back(Byte(fU));
            m_avChroma[1].push_back(Byte(fV));
            m_vUV.push_back(Byte(fU));
            m_vUV.push_back(Byte(fV));
        }
    }
}
