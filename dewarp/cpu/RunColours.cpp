#include "dewarp/cpu/RunColours.h"

#include "dewarp/records/ColourMatrix.h"

#include <algorithm>
#include <cmath>

namespace
{

// Chroma without colour lies between two levels.
const float CHROMA_MIDDLE = 127.5f;

unsigned char ToByte(float f)
{
    return static_cast<unsigned char>(std::lround(std::clamp(f, 0.0f, 255.0f)));
}

} // namespace

CRunColours::CRunColours(const SLayerFormat& rFormat) : m_bRedFirst(rFormat.bRedFirst)
{
    const SColourMatrix& rMatrix = ColourMatrixOf(static_cast<EYUVSpace>(rFormat.nYUVSpace));
    const bool bLimited = rFormat.nYUVRange == YUV_RANGE_LIMITED;
    const double fLumaSpan = bLimited ? 219.0 / 255.0 : 1.0;
    const float fChromaSpan = bLimited ? 223.0f / 255.0f : 1.0f;
    // u and v in terms of luma, put into the equation of green.
    const double fU = static_cast<double>(rMatrix.fGreenU) / static_cast<double>(rMatrix.fBlueU);
    const double fV = static_cast<double>(rMatrix.fGreenV) / static_cast<double>(rMatrix.fRedV);
    const double fSum = 1.0 + fU + fV;
    const double afLuma[3] = {fV / fSum, 1.0 / fSum, fU / fSum};
    for (int i = 0; i < 3; ++i) {
        m_anLuma[i] = static_cast<std::int32_t>(std::lround(afLuma[i] * fLumaSpan * ONE));
        const float fLuma = static_cast<float>(afLuma[i]);
        m_afU[i] = ((i == 2 ? 1.0f : 0.0f) - fLuma) / rMatrix.fBlueU * fChromaSpan;
        m_afV[i] = ((i == 0 ? 1.0f : 0.0f) - fLuma) / rMatrix.fRedV * fChromaSpan;
    }
    m_nLumaMin = bLimited ? 16 << BITS : 0;
}

unsigned char CRunColours::Chroma(const std::uint32_t (&anRGBA)[4], unsigned char& rU,
                                  unsigned char& rV) const
{
    std::uint32_t nMost = 0;
    std::uint32_t nSum = 0;
    std::uint32_t anSums[3] = {};
    for (const std::uint32_t nRGBA : anRGBA) {
        const std::uint32_t nAlpha = nRGBA >> 24;
        nMost = std::max(nMost, nAlpha);
        nSum += nAlpha;
        for (int i = 0; i < 3; ++i)
            anSums[i] += (nRGBA >> (8 * i) & 255) * nAlpha;
    }
    rU = rV = 0;
    if (nSum == 0)
        return 0;
    float u = 0.0f;
    float v = 0.0f;
    for (int i = 0; i < 3; ++i) {
        const float f = static_cast<float>(anSums[i]) / static_cast<float>(nSum);
        u += m_afU[i] * f;
        v += m_afV[i] * f;
    }
    const float fAlpha = static_cast<float>(nMost) / 255.0f;
    rU = ToByte(std::clamp(CHROMA_MIDDLE + u, 0.0f, 255.0f) * fAlpha);
    rV = ToByte(std::clamp(CHROMA_MIDDLE + v, 0.0f, 255.0f) * fAlpha);
    return static_cast<unsigned char>(nMost);
}
