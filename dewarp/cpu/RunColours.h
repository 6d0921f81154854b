/// \file
/// Colours of layers in the target's format.
#pragma once

#include <cstdint>

/// What the target of a layer holds: pixels of 4 bytes, red or blue first, or YUV planes of a space and range
/// in force.
struct SLayerFormat
{
    bool bYUV = false;
    bool bRedFirst = false;
    int nYUVSpace = 1; ///< EYUVSpace
    int nYUVRange = 1; ///< EYUVRange

    bool operator==(const SLayerFormat& sOther) const = default;
};

/// n / 255 to the nearest, for n up to 65,025.
inline std::uint32_t DivideBy255(std::uint32_t n)
{
    return (n + 128 + ((n + 128) >> 8)) >> 8;
}

/// Colours are bytes R, G, B, A from the low one up, not premultiplied; results are.
/// Owns: nothing. Thread: any. Fails: never.
class CRunColours
{
public:
    CRunColours() = default;
    explicit CRunColours(const SLayerFormat& rFormat);

    /// A pixel of 4 bytes in the target's order.
    std::uint32_t Pixel(std::uint32_t nRGBA) const
    {
        const std::uint32_t nAlpha = nRGBA >> 24;
        const std::uint32_t nRed = DivideBy255((nRGBA & 255) * nAlpha);
        const std::uint32_t nGreen = DivideBy255((nRGBA >> 8 & 255) * nAlpha);
        const std::uint32_t nBlue = DivideBy255((nRGBA >> 16 & 255) * nAlpha);
        return (m_bRedFirst ? nRed | nBlue << 16 : nBlue | nRed << 16) | nGreen << 8 | nAlpha << 24;
    }
    unsigned char Luma(std::uint32_t nRGBA) const
    {
        const std::int32_t y = m_anLuma[0] * static_cast<std::int32_t>(nRGBA & 255) +
                               m_anLuma[1] * static_cast<std::int32_t>(nRGBA >> 8 & 255) +
                               m_anLuma[2] * static_cast<std::int32_t>(nRGBA >> 16 & 255) + m_nLumaMin;
        // The factors' errors do not leave the bytes.
        const std::uint32_t nLuma = static_cast<std::uint32_t>(y < MOST ? y : MOST) * (nRGBA >> 24);
        return static_cast<unsigned char>((nLuma + ONE * 255U / 2U) / (ONE * 255U));
    }
    /// Chroma of up to four pixels: their mean, each counting as much as its alpha, premultiplied by the
    /// greatest of their alphas, which is returned.
    unsigned char Chroma(const std::uint32_t (&anRGBA)[4], unsigned char& rU, unsigned char& rV) const;

private:
    static constexpr int BITS = 14;
    static constexpr std::uint32_t ONE = 1U << BITS;
    static constexpr std::int32_t MOST = 255 << BITS;

    bool m_bRedFirst = false;
    std::int32_t m_anLuma[3] = {};
    std::int32_t m_nLumaMin = 0;
    float m_afU[3] = {};
    float m_afV[3] = {};
};
