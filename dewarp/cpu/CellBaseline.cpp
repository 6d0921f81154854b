// Cells in plain loops over arrays, which compilers turn into whatever instructions an architecture has for
// several numbers at a time: the kernels of ARM, and of x86 processors without AVX2.

#include "dewarp/cpu/CellTargets.h"

#include <algorithm>
#include <cstring>

namespace
{

/// Numbers of one cell, or of its chroma places.
template <int N>
struct SPlaces
{
    std::int32_t anX[N];
    std::int32_t anY[N];
};

template <int N>
void Load(const SGridPoint* p, SPlaces<N>& s)
{
    for (int n = 0; n < N; ++n) {
        s.anX[n] = p[n].x;
        s.anY[n] = p[n].y;
    }
}

/// Positions in half resolution.
template <int N>
void Halve(const SPlaces<N>& rFull, SPlaces<N>& rHalf)
{
    const std::int32_t nHalf = POSITION_ONE / 2;
    for (int n = 0; n < N; ++n) {
        rHalf.anX[n] = ((rFull.anX[n] + nHalf) >> 1) - nHalf;
        rHalf.anY[n] = ((rFull.anY[n] + nHalf) >> 1) - nHalf;
    }
}

/// Where the texels of places begin, and how much the others count.
template <int N>
struct SOffsets
{
    std::int32_t anOffset[N];
    std::int16_t anRight[N];
    std::int32_t anDown[N];
};

template <int N>
void FindOffsets(const SSamplePlane& rPlane, const SPlaces<N>& s, bool bLinear, SOffsets<N>& o)
{
    const std::int32_t nStride = static_cast<std::int32_t>(rPlane.nStride);
    const std::int32_t nBytes = rPlane.nPixelBytes;
    const std::int32_t nHalf = bLinear ? 0 : POSITION_ONE / 2;
    for (int n = 0; n < N; ++n) {
        const std::int32_t x = s.anX[n] + nHalf;
        const std::int32_t y = s.anY[n] + nHalf;
        o.anOffset[n] = (y >> POSITION_BITS) * nStride + (x >> POSITION_BITS) * nBytes;
        o.anRight[n] =
            static_cast<std::int16_t>(((x & (POSITION_ONE - 1)) * 127 + POSITION_ONE / 2) >> POSITION_BITS);
        o.anDown[n] = y & (POSITION_ONE - 1);
    }
}

/// Samples of one byte of a plane's pixels.
template <int N>
void Sample(const SSamplePlane& rPlane, int nByte, bool bLinear, const SOffsets<N>& o, std::int16_t* pSamples)
{
    const unsigned char* const p = rPlane.pPixels + nByte;
    std::int16_t a[N];
    if (!bLinear) {
        for (int n = 0; n < N; ++n)
            a[n] = p[o.anOffset[n]];
        for (int n = 0; n < N; ++n)
            pSamples[n] = static_cast<std::int16_t>(a[n] * SAMPLE_LEVEL);
        return;
    }
    std::int16_t b[N];
    std::int16_t c[N];
    std::int16_t d[N];
    for (int n = 0; n < N; ++n) {
        const unsigned char* const q = p + o.anOffset[n];
        a[n] = q[0];
        b[n] = q[rPlane.nPixelBytes];
        c[n] = q[rPlane.nStride];
        d[n] = q[rPlane.nStride + rPlane.nPixelBytes];
    }
    for (int n = 0; n < N; ++n) {
        const std::int16_t nRight = o.anRight[n];
        const std::int16_t nLeft = static_cast<std::int16_t>(SAMPLE_LEVEL - nRight);
        const std::int16_t nUpper = static_cast<std::int16_t>(a[n] * nLeft + b[n] * nRight);
        const std::int16_t nLower = static_cast<std::int16_t>(c[n] * nLeft + d[n] * nRight);
        pSamples[n] = static_cast<std::int16_t>(
            nUpper + (((nLower - nUpper) * o.anDown[n] + POSITION_ONE / 2) >> POSITION_BITS));
    }
}

template <int N>
void ToBytes(const std::int16_t* pSamples, unsigned char* pBytes)
{
    for (int n = 0; n < N; ++n)
        pBytes[n] = static_cast<unsigned char>(SampleByte(pSamples[n]));
}

/// U and V of places in full resolution.
template <int N>
void SampleChroma(const SCellJob& rJob, const SPlaces<N>& rFull, std::int16_t* pU, std::int16_t* pV)
{
    SPlaces<N> sHalf;
    SOffsets<N> sOffsets;
    Halve(rFull, sHalf);
    FindOffsets(rJob.aPlanes[1], sHalf, rJob.bLinear, sOffsets);
    const bool bPlanar = rJob.eSource == SOURCE_PLANAR;
    Sample(rJob.aPlanes[1], !bPlanar && rJob.bVFirst ? 1 : 0, rJob.bLinear, sOffsets, pU);
    Sample(rJob.aPlanes[bPlanar ? 2 : 1], bPlanar || rJob.bVFirst ? 0 : 1, rJob.bLinear, sOffsets, pV);
}

void LumaAt(const SCellJob& rJob, const SGridPoint* pPoints, unsigned char* pLuma)
{
    SPlaces<CELL_PIXELS> sPlaces;
    SOffsets<CELL_PIXELS> sOffsets;
    std::int16_t an[CELL_PIXELS];
    Load(pPoints, sPlaces);
    FindOffsets(rJob.aPlanes[0], sPlaces, rJob.bLinear, sOffsets);
    Sample(rJob.aPlanes[0], 0, rJob.bLinear, sOffsets, an);
    ToBytes<CELL_PIXELS>(an, pLuma);
}

void ChromaAt(const SCellJob& rJob, const SGridPoint* pPlaces, unsigned char* pPairs)
{
    constexpr int N = CELL_PIXELS / 4;
    SPlaces<N> sPlaces;
    std::int16_t anU[N];
    std::int16_t anV[N];
    Load(pPlaces, sPlaces);
    SampleChroma(rJob, sPlaces, anU, anV);
    for (int n = 0; n < N; ++n) {
        pPairs[2 * n] = static_cast<unsigned char>(SampleByte(anU[n]));
        pPairs[2 * n + 1] = static_cast<unsigned char>(SampleByte(anV[n]));
    }
}

void PackedAt(const SCellJob& rJob, const SPlaces<CELL_PIXELS>& rPlaces, std::uint32_t* pPixels)
{
    SOffsets<CELL_PIXELS> sOffsets;
    std::int16_t an[CELL_PIXELS];
    std::uint32_t anBytes[4][CELL_PIXELS];
    FindOffsets(rJob.aPlanes[0], rPlaces, rJob.bLinear, sOffsets);
    for (int i = 0; i < 4; ++i) {
        const int nByte = rJob.anChannels[i];
        if (nByte >= 0)
            Sample(rJob.aPlanes[0], nByte, rJob.bLinear, sOffsets, an);
        for (int n = 0; n < CELL_PIXELS; ++n)
            anBytes[i][n] = nByte < 0 ? 255U : static_cast<std::uint32_t>(SampleByte(an[n]));
    }
    for (int i = 0; i < 3 && rJob.bPremultiply; ++i) {
        for (int n = 0; n < CELL_PIXELS; ++n) {
            const std::uint32_t nScaled = anBytes[i][n] * anBytes[3][n] + 128;
            anBytes[i][n] = (nScaled + (nScaled >> 8)) >> 8;
        }
    }
    const std::uint32_t* const pLow = rJob.bRedFirst ? anBytes[0] : anBytes[2];
    const std::uint32_t* const pHigh = rJob.bRedFirst ? anBytes[2] : anBytes[0];
    for (int n = 0; n < CELL_PIXELS; ++n)
        pPixels[n] = pLow[n] | anBytes[1][n] << 8 | pHigh[n] << 16 | anBytes[3][n] << 24;
}

void PixelsAt(const SCellJob& rJob, const SGridPoint* pPoints, std::uint32_t* pPixels)
{
    SPlaces<CELL_PIXELS> sPlaces;
    Load(pPoints, sPlaces);
    if (rJob.eSource == SOURCE_PACKED) {
        PackedAt(rJob, sPlaces, pPixels);
        return;
    }
    SOffsets<CELL_PIXELS> sOffsets;
    std::int16_t anY[CELL_PIXELS];
    FindOffsets(rJob.aPlanes[0], sPlaces, rJob.bLinear, sOffsets);
    Sample(rJob.aPlanes[0], 0, rJob.bLinear, sOffsets, anY);
    if (rJob.eSource == SOURCE_GRAY) {
        for (int n = 0; n < CELL_PIXELS; ++n)
            pPixels[n] = 0xFF000000U | static_cast<std::uint32_t>(SampleByte(anY[n])) * 0x010101U;
        return;
    }
    std::int16_t anU[CELL_PIXELS];
    std::int16_t anV[CELL_PIXELS];
    SampleChroma(rJob, sPlaces, anU, anV);
    const SColourFactors sColours = rJob.sColours;
    for (int n = 0; n < CELL_PIXELS; ++n)
        pPixels[n] = ConvertYUV(sColours, {anY[n], anU[n], anV[n]});
    for (int n = 0; n < CELL_PIXELS && !rJob.bRedFirst; ++n)
        pPixels[n] = Ordered(rJob, pPixels[n]);
}

SCellPoints Next(const SCellPoints& p, int nCell)
{
    return {p.pFirst + static_cast<std::ptrdiff_t>(nCell) * (CELL_SIDE / p.nStep), p.nRow, p.nStep};
}

void Luma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
          std::ptrdiff_t nStride)
{
    SGridPoint aPoints[CELL_PIXELS];
    unsigned char an[CELL_PIXELS];
    for (int n = 0; n < nCells; ++n) {
        PixelPositions(Next(p, n), aPoints);
        LumaAt(rJob, aPoints, an);
        for (int y = 0; y < CELL_SIDE; ++y)
            std::memcpy(pTarget + n * CELL_SIDE + y * nStride, an + y * CELL_SIDE, CELL_SIDE);
    }
}

void Chroma(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* const* ppTargets,
            const std::ptrdiff_t* pStrides)
{
    SGridPoint aPlaces[CELL_PIXELS / 4];
    unsigned char an[CELL_PIXELS / 4][2];
    for (int n = 0; n < nCells; ++n) {
        ChromaPlaces(Next(p, n), aPlaces);
        ChromaAt(rJob, aPlaces, an[0]);
        for (int i = 0; i < CELL_PIXELS / 4; ++i) {
            const std::ptrdiff_t nRow = i / 4;
            const std::ptrdiff_t nPlace = n * 4 + i % 4;
            if (ppTargets[1] == nullptr) {
                std::memcpy(ppTargets[0] + nRow * pStrides[0] + 2 * nPlace, an[i], 2);
            } else {
                ppTargets[0][nRow * pStrides[0] + nPlace] = an[i][0];
                ppTargets[1][nRow * pStrides[1] + nPlace] = an[i][1];
            }
        }
    }
}

void Pixels(const SCellJob& rJob, const SCellPoints& p, int nCells, unsigned char* pTarget,
            std::ptrdiff_t nStride)
{
    SGridPoint aPoints[CELL_PIXELS];
    std::uint32_t an[CELL_PIXELS];
    for (int n = 0; n < nCells; ++n) {
        PixelPositions(Next(p, n), aPoints);
        PixelsAt(rJob, aPoints, an);
        for (int y = 0; y < CELL_SIDE; ++y)
            std::memcpy(pTarget + std::ptrdiff_t{n} * 32 + y * nStride, an + y * CELL_SIDE, 4 * CELL_SIDE);
    }
}

} // namespace

const SCellKernels* BaselineKernels()
{
    static const SCellKernels sKernels = {"baseline", Luma,   Chroma,   nullptr,
                                          Pixels,     LumaAt, ChromaAt, PixelsAt};
    return &sKernels;
}
