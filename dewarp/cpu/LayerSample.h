/// \file
/// Texels of a layer's source at positions between them.
#pragma once

#include "dewarp/cpu/Grid.h"
#include "dewarp/cpu/LayerSource.h"

#include <algorithm>
#include <cstdint>

/// Texels that a sample may need, last column and row inside.
struct SLayerBox
{
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;

    std::int64_t Area() const { return std::int64_t{x1 - x0 + 1} * (y1 - y0 + 1); }
};

/// From positions in an image to positions in another one that lies over all of it, clamped to its edge.
class CLayerScale
{
public:
    CLayerScale() = default;
    CLayerScale(int nFrom, int nTo)
        : m_nFactor(((std::int64_t{nTo} << 32) + nFrom / 2) / nFrom), m_nFrom(nFrom), m_nTo(nTo)
    {}
    std::int32_t operator()(std::int32_t n) const
    {
        const std::int32_t nHalf = POSITION_ONE / 2;
        // Half a pixel beyond the image at most: what lies farther out shows the same.
        n = std::clamp(n, -nHalf, m_nFrom * POSITION_ONE - nHalf);
        if (m_nFrom != m_nTo)
            n = static_cast<std::int32_t>(((std::int64_t{n} + nHalf) * m_nFactor + HALF_FACTOR) >> 32) -
                nHalf;
        return std::clamp(n, 0, (m_nTo - 1) * POSITION_ONE);
    }

private:
    static constexpr std::int64_t HALF_FACTOR = std::int64_t{1} << 31;
    std::int64_t m_nFactor = 0;
    int m_nFrom = 1;
    int m_nTo = 1;
};

/// Texels between two positions along one axis.
inline void TexelsBetween(std::int32_t nLowest, std::int32_t nHighest, bool bLinear, int nSize, int& rFirst,
                          int& rLast)
{
    const std::int32_t nHalf = bLinear ? 0 : POSITION_ONE / 2;
    rFirst = std::min((nLowest + nHalf) >> POSITION_BITS, nSize - 1);
    rLast = std::min(((nHighest + nHalf) >> POSITION_BITS) + (bLinear ? 1 : 0), nSize - 1);
}

inline constexpr std::uint64_t PAIR_OF_HALVES = (std::uint64_t{1} << 32 | 1) << (2 * POSITION_BITS - 1);

/// The mean of four texels, each channel for itself; x and y are the right and the lower ones' shares.
inline std::uint32_t MeanTexel(const std::uint32_t (&an)[4], std::uint32_t x, std::uint32_t y)
{
    if (an[0] == an[1] && an[0] == an[2] && an[0] == an[3])
        return an[0];
    // Two channels in one number: 8 bits and as many as two fractions have fit into half of it.
    const auto Pair = [](std::uint32_t n) {
        return std::uint64_t{n & 255} | std::uint64_t{n >> 16 & 255} << 32;
    };
    const std::uint64_t nOne = POSITION_ONE;
    const std::uint64_t anShares[4] = {(nOne - x) * (nOne - y), x * (nOne - y), (nOne - x) * y,
                                       std::uint64_t{x} * y};
    std::uint64_t nRedBlue = PAIR_OF_HALVES;
    std::uint64_t nGreenAlpha = PAIR_OF_HALVES;
    for (int i = 0; i < 4; ++i) {
        nRedBlue += Pair(an[i]) * anShares[i];
        nGreenAlpha += Pair(an[i] >> 8) * anShares[i];
    }
    const auto Bytes = [](std::uint64_t n) {
        n >>= 2 * POSITION_BITS;
        return static_cast<std::uint32_t>((n & 255) | (n >> 16 & 0xFF0000));
    };
    return Bytes(nRedBlue) | Bytes(nGreenAlpha) << 8;
}

/// One texel or the mean of four, at a position inside an image of that size; rAt(x, y) gives texels.
template <class F>
std::uint32_t SampleTexels(const SGridPoint& rPoint, bool bLinear, int nWidth, int nHeight, F&& rAt)
{
    if (!bLinear)
        return rAt(std::min((rPoint.x + POSITION_ONE / 2) >> POSITION_BITS, nWidth - 1),
                   std::min((rPoint.y + POSITION_ONE / 2) >> POSITION_BITS, nHeight - 1));
    const int x = rPoint.x >> POSITION_BITS;
    const int y = rPoint.y >> POSITION_BITS;
    const int nRight = std::min(x + 1, nWidth - 1);
    const int nBelow = std::min(y + 1, nHeight - 1);
    const std::uint32_t an[4] = {rAt(x, y), rAt(nRight, y), rAt(x, nBelow), rAt(nRight, nBelow)};
    return MeanTexel(an, static_cast<std::uint32_t>(rPoint.x & (POSITION_ONE - 1)),
                     static_cast<std::uint32_t>(rPoint.y & (POSITION_ONE - 1)));
}

/// Samples of positions whose texels lie in a box. A small box is read once.
template <class TSource>
void SampleBox(const TSource& rSource, const SLayerBox& rBox, const SGridPoint* pPoints, int nPoints,
               bool bLinear, std::uint32_t* pSamples)
{
    const int MOST_TEXELS = 4096;
    if (rBox.Area() > MOST_TEXELS) {
        for (int i = 0; i < nPoints; ++i)
            pSamples[i] = SampleTexels(pPoints[i], bLinear, rSource.Width(), rSource.Height(),
                                       [&](int x, int y) { return rSource.At(x, y); });
        return;
    }
    std::uint32_t anTexels[MOST_TEXELS];
    rSource.Read(rBox.x0, rBox.y0, rBox.x1, rBox.y1, anTexels);
    const int nStride = rBox.x1 - rBox.x0 + 1;
    for (int i = 0; i < nPoints; ++i)
        pSamples[i] = SampleTexels(pPoints[i], bLinear, rSource.Width(), rSource.Height(), [&](int x, int y) {
            return anTexels[(y - rBox.y0) * nStride + (x - rBox.x0)];
        });
}
