// Blending: blocks of bytes, each byte with its layer and with how much of the picture it keeps.
#include "dewarp/cpu/RunLayer.h"

#include <cstring>

namespace
{

const int BLOCK_BYTES = 64;
const int BLOCK_PIXELS = BLOCK_BYTES / 4;
const std::uint32_t ALPHA_BYTE = 0xFF000000U;

/// Layer and weight of each byte of a block.
struct SBlock
{
    alignas(16) unsigned char aLayer[BLOCK_BYTES];
    alignas(16) unsigned char aKeep[BLOCK_BYTES];
};

inline void BlendBytes(unsigned char* __restrict pTarget, const SBlock& __restrict rBlock)
{
    for (int i = 0; i < BLOCK_BYTES; ++i) {
        const auto n = static_cast<std::uint16_t>(pTarget[i] * rBlock.aKeep[i] + 128);
        const auto nScaled = static_cast<std::uint16_t>(static_cast<std::uint16_t>(n + (n >> 8)) >> 8);
        pTarget[i] = static_cast<unsigned char>(rBlock.aLayer[i] + nScaled);
    }
}

/// The layer counts as much as pAlpha says.
inline void BlendBytesByAlpha(unsigned char* __restrict pTarget, const SBlock& __restrict rBlock,
                              const unsigned char* __restrict pAlpha)
{
    for (int i = 0; i < BLOCK_BYTES; ++i) {
        const auto n =
            static_cast<std::uint16_t>(pTarget[i] * rBlock.aKeep[i] + rBlock.aLayer[i] * pAlpha[i] + 128);
        pTarget[i] = static_cast<unsigned char>(static_cast<std::uint16_t>(n + (n >> 8)) >> 8);
    }
}

/// One byte in all four of a word.
inline std::uint32_t Spread(std::uint32_t n)
{
    n |= n << 8;
    return n | n << 16;
}

/// Blends a block of pixels; bByAlpha as in BlendPixels.
template <bool bByAlpha>
inline void BlendPixelBytes(unsigned char* pTarget, const SBlock& rBlock)
{
    if constexpr (bByAlpha) {
        std::uint32_t anAlpha[BLOCK_PIXELS];
        unsigned char aAlpha[BLOCK_BYTES];
        std::memcpy(anAlpha, pTarget, BLOCK_BYTES);
        for (int i = 0; i < BLOCK_PIXELS; ++i)
            anAlpha[i] = Spread(anAlpha[i] >> 24);
        std::memcpy(aAlpha, anAlpha, BLOCK_BYTES);
        BlendBytesByAlpha(pTarget, rBlock, aAlpha);
    } else {
        BlendBytes(pTarget, rBlock);
    }
}

/// Calls rBlend with the bytes of a run, block by block; the last block may be a copy.
template <class F>
inline void ForBlocks(unsigned char* pTarget, int nBytes, F&& rBlend)
{
    int n = 0;
    for (; n + BLOCK_BYTES <= nBytes; n += BLOCK_BYTES)
        rBlend(pTarget + n, n, BLOCK_BYTES);
    if (n == nBytes)
        return;
    unsigned char aRest[BLOCK_BYTES] = {};
    const auto nRest = static_cast<std::size_t>(nBytes - n);
    std::memcpy(aRest, pTarget + n, nRest);
    rBlend(aRest, n, nBytes - n);
    std::memcpy(pTarget + n, aRest, nRest);
}

/// The pixels of a block, premultiplied, as layer and weights; a pixel's own alpha stays.
inline void SetPixels(SBlock& rBlock, const std::uint32_t (&anPixels)[BLOCK_PIXELS])
{
    std::uint32_t anLayer[BLOCK_PIXELS];
    std::uint32_t anKeep[BLOCK_PIXELS];
    for (int i = 0; i < BLOCK_PIXELS; ++i) {
        anLayer[i] = anPixels[i] & ~ALPHA_BYTE;
        anKeep[i] = Spread(255 - (anPixels[i] >> 24)) | ALPHA_BYTE;
    }
    std::memcpy(rBlock.aLayer, anLayer, BLOCK_BYTES);
    std::memcpy(rBlock.aKeep, anKeep, BLOCK_BYTES);
}

template <bool bByAlpha>
void BlendRun(unsigned char* pTarget, const std::uint32_t* pLayer, int nPixels)
{
    ForBlocks(pTarget, nPixels * 4, [&](unsigned char* pBytes, int nFirst, int nBytes) {
        std::uint32_t anPixels[BLOCK_PIXELS] = {};
        std::memcpy(anPixels, pLayer + nFirst / 4, static_cast<std::size_t>(nBytes));
        SBlock sBlock;
        SetPixels(sBlock, anPixels);
        BlendPixelBytes<bByAlpha>(pBytes, sBlock);
    });
}

template <bool bByAlpha>
void BlendPlainRun(unsigned char* pTarget, std::uint32_t nPixel, int nPixels)
{
    std::uint32_t anPixels[BLOCK_PIXELS];
    std::fill_n(anPixels, BLOCK_PIXELS, nPixel);
    SBlock sBlock;
    SetPixels(sBlock, anPixels);
    ForBlocks(pTarget, nPixels * 4,
              [&](unsigned char* pBytes, int, int) { BlendPixelBytes<bByAlpha>(pBytes, sBlock); });
}

/// Sets the colours; alpha stays.
void FillRun(unsigned char* pTarget, std::uint32_t nPixel, int nPixels)
{
    const std::uint32_t nColour = nPixel & ~ALPHA_BYTE;
    ForBlocks(pTarget, nPixels * 4, [&](unsigned char* pBytes, int, int) {
        std::uint32_t anPixels[BLOCK_PIXELS];
        std::memcpy(anPixels, pBytes, BLOCK_BYTES);
        for (std::uint32_t& rPixel : anPixels)
            rPixel = (rPixel & ALPHA_BYTE) | nColour;
        std::memcpy(pBytes, anPixels, BLOCK_BYTES);
    });
}

/// A run of a plane of single bytes.
void BlendPlaneRun(unsigned char* pTarget, const unsigned char* pLayer, const unsigned char* pAlpha,
                   const SLayerRun& rRun)
{
    SBlock sBlock;
    if (rRun.bPlain) {
        if (*pAlpha == 255) {
            std::memset(pTarget, *pLayer, static_cast<std::size_t>(rRun.nPixels));
            return;
        }
        std::memset(sBlock.aLayer, *pLayer, BLOCK_BYTES);
        std::memset(sBlock.aKeep, 255 - *pAlpha, BLOCK_BYTES);
        ForBlocks(pTarget, rRun.nPixels,
                  [&](unsigned char* pBytes, int, int) { BlendBytes(pBytes, sBlock); });
        return;
    }
    ForBlocks(pTarget, rRun.nPixels, [&](unsigned char* pBytes, int nFirst, int nBytes) {
        unsigned char aAlpha[BLOCK_BYTES] = {};
        std::memcpy(sBlock.aLayer, pLayer + nFirst, static_cast<std::size_t>(nBytes));
        std::memcpy(aAlpha, pAlpha + nFirst, static_cast<std::size_t>(nBytes));
        for (int i = 0; i < BLOCK_BYTES; ++i)
            sBlock.aKeep[i] = static_cast<unsigned char>(255 - aAlpha[i]);
        BlendBytes(pBytes, sBlock);
    });
}

/// Chroma of NV12: where a run's values are.
struct SChromaValues
{
    const unsigned char* pU;
    const unsigned char* pV;
    const unsigned char* pAlpha;
};

void SetPairs(SBlock& rBlock, const SChromaValues& rValues, int nPlaces, bool bPlain)
{
    for (int i = 0; i < nPlaces; ++i) {
        const int n = bPlain ? 0 : i;
        rBlock.aLayer[2 * i] = rValues.pU[n];
        rBlock.aLayer[2 * i + 1] = rValues.pV[n];
        rBlock.aKeep[2 * i] = rBlock.aKeep[2 * i + 1] = static_cast<unsigned char>(255 - rValues.pAlpha[n]);
    }
}

void BlendPairRun(unsigned char* pTarget, const SChromaValues& rValues, const SLayerRun& rRun)
{
    SBlock sBlock = {};
    if (rRun.bPlain) {
        SetPairs(sBlock, rValues, BLOCK_BYTES / 2, true);
        const bool bOpaque = *rValues.pAlpha == 255;
        ForBlocks(pTarget, 2 * rRun.nPixels, [&](unsigned char* pBytes, int, int) {
            if (bOpaque)
                std::memcpy(pBytes, sBlock.aLayer, BLOCK_BYTES);
            else
                BlendBytes(pBytes, sBlock);
        });
        return;
    }
    ForBlocks(pTarget, 2 * rRun.nPixels, [&](unsigned char* pBytes, int nFirst, int nBytes) {
        const int n = nFirst / 2;
        SetPairs(sBlock, {rValues.pU + n, rValues.pV + n, rValues.pAlpha + n}, nBytes / 2, false);
        BlendBytes(pBytes, sBlock);
    });
}

} // namespace

void CRunLayer::BlendPixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow,
                            bool bByAlpha) const
{
    m_sPixels.Walk(nFirstRow, nEndRow, [&](int y, const SLayerRun& rRun) {
        unsigned char* const pRun = pTarget + y * nStride + std::ptrdiff_t{rRun.x} * 4;
        const std::uint32_t* const pLayer = m_vPixels.data() + rRun.nFirst;
        if (!rRun.bPlain)
            bByAlpha ? BlendRun<true>(pRun, pLayer, rRun.nPixels)
                     : BlendRun<false>(pRun, pLayer, rRun.nPixels);
        else if (bByAlpha)
            BlendPlainRun<true>(pRun, *pLayer, rRun.nPixels);
        else if (*pLayer >= ALPHA_BYTE)
            FillRun(pRun, *pLayer, rRun.nPixels);
        else
            BlendPlainRun<false>(pRun, *pLayer, rRun.nPixels);
    });
}

void CRunLayer::FadePixels(unsigned char* pTarget, std::ptrdiff_t nStride, int nFirstRow, int nEndRow) const
{
    m_sPixels.Walk(nFirstRow, nEndRow, [&](int y, const SLayerRun& rRun) {
        unsigned char* const pRun = pTarget + y * nStride + std::ptrdiff_t{rRun.x} * 4;
        const std::uint32_t* const pLayer = m_vPixels.data() + rRun.nFirst;
        for (int i = 0; i < 4 * rRun.nPixels; ++i) {
            const std::uint32_t nKeep = 255 - (pLayer[rRun.bPlain ? 0 : i / 4] >> 24);
            pRun[i] = static_cast<unsigned char>((pRun[i] * nKeep + 127) / 255);
        }
    });
}

void CRunLayer::BlendYUV(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const
{
    m_sPixels.Walk(nFirstRow, nEndRow, [&](int y, const SLayerRun& rRun) {
        BlendPlaneRun(rTarget.apPlanes[0] + std::ptrdiff_t{y} * rTarget.anStrides[0] + rRun.x,
                      m_vLuma.data() + rRun.nFirst, m_vLumaAlpha.data() + rRun.nFirst, rRun);
    });
    BlendChroma(rTarget, nFirstRow / 2, (nEndRow + 1) / 2);
}

void CRunLayer::BlendChroma(const SFrameTarget& rTarget, int nFirstRow, int nEndRow) const
{
    const bool bPairs = rTarget.eFormat == IMAGE_FORMAT_NV12;
    m_sChroma.Walk(nFirstRow, nEndRow, [&](int y, const SLayerRun& rRun) {
        const SChromaValues sValues = {m_vU.data() + rRun.nFirst, m_vV.data() + rRun.nFirst,
                                       m_vChromaAlpha.data() + rRun.nFirst};
        unsigned char* const pU = rTarget.apPlanes[1] + std::ptrdiff_t{y} * rTarget.anStrides[1];
        if (bPairs) {
            BlendPairRun(pU + std::ptrdiff_t{rRun.x} * 2, sValues, rRun);
            return;
        }
        BlendPlaneRun(pU + rRun.x, sValues.pU, sValues.pAlpha, rRun);
        BlendPlaneRun(rTarget.apPlanes[2] + std::ptrdiff_t{y} * rTarget.anStrides[2] + rRun.x, sValues.pV,
                      sValues.pAlpha, rRun);
    });
}
