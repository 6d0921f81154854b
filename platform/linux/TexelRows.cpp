#include "platform/linux/TexelRows.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace
{

// 16 bytes in one register of any 64-bit processor; the shuffles below are its interleaving instructions.
using VBytes = unsigned char __attribute__((vector_size(16)));
using VPairs = std::uint16_t __attribute__((vector_size(16)));

const int STEP = 16; // texels at a time

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the first byte of a pair is its lower one");

VBytes LoadBytes(const unsigned char* pBytes)
{
    VBytes v;
    std::memcpy(&v, pBytes, sizeof v);
    return v;
}

template <class V>
void Store(unsigned char* pBytes, V v)
{
    std::memcpy(pBytes, &v, sizeof v);
}

/// a0 b0 a1 b1 ... of the first halves.
VBytes InterleaveLow(VBytes a, VBytes b)
{
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

/// The same of the second halves.
VBytes InterleaveHigh(VBytes a, VBytes b)
{
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

VPairs InterleavePairsLow(VBytes a, VBytes b)
{
    return __builtin_shufflevector(reinterpret_cast<VPairs>(a), reinterpret_cast<VPairs>(b), 0, 8, 1, 9, 2,
                                   10, 3, 11);
}

VPairs InterleavePairsHigh(VBytes a, VBytes b)
{
    return __builtin_shufflevector(reinterpret_cast<VPairs>(a), reinterpret_cast<VPairs>(b), 4, 12, 5, 13, 6,
                                   14, 7, 15);
}

/// a0 a2 a4 ... b0 b2 b4 ...
VBytes Even(VBytes a, VBytes b)
{
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
}

/// a1 a3 a5 ... b1 b3 b5 ...
VBytes Odd(VBytes a, VBytes b)
{
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
}

/// One row's channels, 16 texels of each.
struct SChannels
{
    VBytes vY;
    VBytes vU;
    VBytes vV;
};

SChannels TakeApart(const unsigned char* pTexels)
{
    const VBytes a = LoadBytes(pTexels);
    const VBytes b = LoadBytes(pTexels + 16);
    const VBytes c = LoadBytes(pTexels + 32);
    const VBytes d = LoadBytes(pTexels + 48);
    const VBytes vYVFirst = Even(a, b);
    const VBytes vYVLast = Even(c, d);
    return {Even(vYVFirst, vYVLast), Even(Odd(a, b), Odd(c, d)), Odd(vYVFirst, vYVLast)};
}

/// Rounded means of 2 x 2, eight of them.
VPairs Means(VBytes vUpper, VBytes vLower)
{
    const VPairs a = reinterpret_cast<VPairs>(vUpper);
    const VPairs b = reinterpret_cast<VPairs>(vLower);
    return ((a & 0xFF) + (a >> 8) + (b & 0xFF) + (b >> 8) + 2) >> 2;
}

std::ptrdiff_t TexelOffset(int x)
{
    return static_cast<std::ptrdiff_t>(x) * 4;
}

unsigned char MeanOfFour(int a, int b, int c, int d)
{
    return static_cast<unsigned char>((a + b + c + d + 2) >> 2);
}

} // namespace

void ExpandRow(const unsigned char* pLuma, const unsigned char* pChroma, bool bVFirst, int nWidth,
               unsigned char* pTexels)
{
    const VBytes vOpaque = VBytes{} - 1;
    int x = 0;
    for (; x + STEP <= nWidth; x += STEP) {
        const VBytes vY = LoadBytes(pLuma + x);
        const VPairs vChroma = reinterpret_cast<VPairs>(LoadBytes(pChroma + x));
        // Every chroma value twice.
        const VPairs vFirst = (vChroma & 0xFF) | (vChroma << 8);
        const VPairs vSecond = (vChroma >> 8) | (vChroma & 0xFF00);
        const VBytes vU = reinterpret_cast<VBytes>(bVFirst ? vSecond : vFirst);
        const VBytes vV = reinterpret_cast<VBytes>(bVFirst ? vFirst : vSecond);
        const VBytes vYULow = InterleaveLow(vY, vU);
        const VBytes vYUHigh = InterleaveHigh(vY, vU);
        const VBytes vVALow = InterleaveLow(vV, vOpaque);
        const VBytes vVAHigh = InterleaveHigh(vV, vOpaque);
        unsigned char* const pOut = pTexels + TexelOffset(x);
        Store(pOut, InterleavePairsLow(vYULow, vVALow));
        Store(pOut + 16, InterleavePairsHigh(vYULow, vVALow));
        Store(pOut + 32, InterleavePairsLow(vYUHigh, vVAHigh));
        Store(pOut + 48, InterleavePairsHigh(vYUHigh, vVAHigh));
    }
    for (; x < nWidth; ++x) {
        const unsigned char* const pPair = pChroma + x / 2 * 2;
        unsigned char* const pOut = pTexels + TexelOffset(x);
        pOut[0] = pLuma[x];
        pOut[1] = pPair[bVFirst ? 1 : 0];
        pOut[2] = pPair[bVFirst ? 0 : 1];
        pOut[3] = 255;
    }
}

void PackRows(const unsigned char* pUpper, const unsigned char* pLower, int nWidth, bool bVFirst,
              unsigned char* pUpperLuma, unsigned char* pLowerLuma, unsigned char* pChroma)
{
    int x = 0;
    for (; x + STEP <= nWidth; x += STEP) {
        const SChannels sUpper = TakeApart(pUpper + TexelOffset(x));
        const SChannels sLower = TakeApart(pLower + TexelOffset(x));
        const VPairs vU = Means(sUpper.vU, sLower.vU);
        const VPairs vV = Means(sUpper.vV, sLower.vV);
        Store(pUpperLuma + x, sUpper.vY);
        Store(pLowerLuma + x, sLower.vY);
        Store(pChroma + x, bVFirst ? vV | (vU << 8) : vU | (vV << 8));
    }
    for (; x < nWidth; x += 2) {
        const std::ptrdiff_t nLeft = TexelOffset(x);
        const std::ptrdiff_t nRight = x + 1 < nWidth ? nLeft + 4 : nLeft;
        pUpperLuma[x] = pUpper[nLeft];
        pLowerLuma[x] = pLower[nLeft];
        if (x + 1 < nWidth) {
            pUpperLuma[x + 1] = pUpper[nRight];
            pLowerLuma[x + 1] = pLower[nRight];
        }
        for (int i = 0; i < 2; ++i) {
            const int nChannel = (i == 0) != bVFirst ? 1 : 2;
            pChroma[x + i] = MeanOfFour(pUpper[nLeft + nChannel], pUpper[nRight + nChannel],
                                        pLower[nLeft + nChannel], pLower[nRight + nChannel]);
        }
    }
}
