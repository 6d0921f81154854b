#include "dewarp/cpu/PlaneSampler.h"

#include "dewarp/cpu/FrameCover.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

const int PHASE_BITS = 8;
const int PHASES = (1 << PHASE_BITS) + 1;
const int WEIGHT_BITS = 14;
// Rows are summed first, and kept with so many bits of fraction.
const int ROW_BITS = 7;
const int MOST_PIXEL_BYTES = 4;

double CubicWeight(double x)
{
    x = std::fabs(x);
    return x < 1.0 ? (1.5 * x - 2.5) * x * x + 1.0 : ((2.5 - 0.5 * x) * x - 4.0) * x + 2.0;
}

double LanczosWeight(double x)
{
    const double PI = 3.14159265358979323846;
    if (std::fabs(x) < 1e-9)
        return 1.0;
    return 3.0 * std::sin(PI * x) * std::sin(PI * x / 3.0) / (PI * PI * x * x);
}

/// Weights of a kernel's texels for every phase; each phase's sum is one exactly.
template <int TAPS>
class CWeights
{
public:
    explicit CWeights(double (*pWeight)(double))
    {
        for (int n = 0; n < PHASES; ++n)
            SetPhase(n, pWeight);
    }
    const std::int16_t* Phase(int n) const { return m_anWeights[static_cast<std::size_t>(n)].data(); }

private:
    void SetPhase(int nPhase, double (*pWeight)(double))
    {
        const int nBefore = TAPS / 2 - 1;
        double af[TAPS];
        double fSum = 0.0;
        for (int i = 0; i < TAPS; ++i) {
            af[i] = pWeight(static_cast<double>(nPhase) / (PHASES - 1) + nBefore - i);
            fSum += af[i];
        }
        auto& rWeights = m_anWeights[static_cast<std::size_t>(nPhase)];
        int nRest = 1 << WEIGHT_BITS;
        for (std::size_t i = 0; i < TAPS; ++i) {
            rWeights[i] = static_cast<std::int16_t>(std::lround(af[i] / fSum * (1 << WEIGHT_BITS)));
            nRest -= rWeights[i];
        }
        auto& rLargest = *std::max_element(rWeights.begin(), rWeights.end());
        rLargest = static_cast<std::int16_t>(rLargest + nRest);
    }

    std::array<std::array<std::int16_t, TAPS>, PHASES> m_anWeights{};
};

template <int TAPS>
const CWeights<TAPS>& Weights()
{
    static const CWeights<TAPS> oWeights(TAPS == 4 ? CubicWeight : LanczosWeight);
    return oWeights;
}

int PhaseOf(std::int32_t nPosition)
{
    const int nBits = POSITION_BITS - PHASE_BITS;
    return ((nPosition & (POSITION_ONE - 1)) + (1 << (nBits - 1))) >> nBits;
}

/// The weighed sum of TAPS x TAPS bytes that are STEP bytes apart, as a sample.
template <int TAPS, int STEP>
int KernelSample(const unsigned char* pFirst, std::ptrdiff_t nStride, const std::int16_t* pAcross,
                 const std::int16_t* pDown)
{
    int nSum = 1 << (ROW_BITS - 1);
    for (int j = 0; j < TAPS; ++j, pFirst += nStride) {
        int nRow = 1 << (WEIGHT_BITS - ROW_BITS - 1);
        for (int i = 0; i < TAPS; ++i)
            nRow += pAcross[i] * pFirst[i * STEP];
        nSum += pDown[j] * (nRow >> (WEIGHT_BITS - ROW_BITS));
    }
    const int nSample = ((nSum >> ROW_BITS) * SAMPLE_LEVEL + (1 << (WEIGHT_BITS - 1))) >> WEIGHT_BITS;
    return std::clamp(nSample, 0, 255 * SAMPLE_LEVEL);
}

/// TAPS x TAPS pixels from a column and row on; beyond the plane it goes on as its edge is.
template <int TAPS>
void CopyEdge(const SSamplePlane& rPlane, int x, int y, unsigned char* pTarget)
{
    for (int j = 0; j < TAPS; ++j) {
        const unsigned char* const pRow =
            rPlane.pPixels + std::clamp(y + j, 0, rPlane.nHeight - 1) * rPlane.nStride;
        for (int i = 0; i < TAPS; ++i) {
            const std::ptrdiff_t nColumn = std::clamp(x + i, 0, rPlane.nWidth - 1);
            for (int n = 0; n < rPlane.nPixelBytes; ++n)
                *pTarget++ = pRow[nColumn * rPlane.nPixelBytes + n];
        }
    }
}

/// Linear samples that a side of a footprint takes: a quarter of a texel more than a whole number does not
/// take another one.
int CountOf(const SGridPoint& rSide)
{
    const std::int64_t nSquare = std::int64_t{rSide.x} * rSide.x + std::int64_t{rSide.y} * rSide.y;
    int n = 1;
    for (; n < MOST_SAMPLES; ++n) {
        const std::int64_t nLongest = std::int64_t{n} * POSITION_ONE + POSITION_ONE / 4;
        if (nSquare <= nLongest * nLongest)
            break;
    }
    return n;
}

/// One of some samples that share a side evenly, from the side's middle.
SGridPoint PlaceOnSide(const SGridPoint& rSide, int n, int nSamples)
{
    const int nHalves = 2 * n + 1 - nSamples;
    return {rSide.x * nHalves / (2 * nSamples), rSide.y * nHalves / (2 * nSamples)};
}

/// Half of a distance in a plane of half resolution.
SGridPoint Halved(const SGridPoint& rSide)
{
    return {rSide.x >> 1, rSide.y >> 1};
}

SSpot ChromaSpot(const SCellJob& rJob, const SSpot& rSpot)
{
    return {{ChromaPosition(rSpot.sAt.x, rJob.nFrameWidth), ChromaPosition(rSpot.sAt.y, rJob.nFrameHeight)},
            Halved(rSpot.sAcross),
            Halved(rSpot.sDown)};
}

/// Adds linear samples of some bytes, by the arithmetic of SampleAt.
void AddLinear(const SSamplePlane& rPlane, std::int32_t x, std::int32_t y, const int* pBytes, int nBytes,
               int* pSums)
{
    const int nRight = rPlane.nWidth - 1;
    const int nBottom = rPlane.nHeight - 1;
    x = std::clamp(x, 0, nRight << POSITION_BITS);
    y = std::clamp(y, 0, nBottom << POSITION_BITS);
    const int nX = x >> POSITION_BITS;
    const int nY = y >> POSITION_BITS;
    const unsigned char* const pUpper =
        rPlane.pPixels + static_cast<std::ptrdiff_t>(nY) * rPlane.nStride + nX * rPlane.nPixelBytes;
    const unsigned char* const pLower = nY < nBottom ? pUpper + rPlane.nStride : pUpper;
    const int nNext = nX < nRight ? rPlane.nPixelBytes : 0;
    const int fx = ((x & (POSITION_ONE - 1)) * 127 + POSITION_ONE / 2) >> POSITION_BITS;
    const int fy = y & (POSITION_ONE - 1);
    for (int i = 0; i < nBytes; ++i) {
        const int b = pBytes[i];
        const int nAbove = pUpper[b] * (127 - fx) + pUpper[b + nNext] * fx;
        const int nBelow = pLower[b] * (127 - fx) + pLower[b + nNext] * fx;
        pSums[i] += nAbove + (((nBelow - nAbove) * fy + POSITION_ONE / 2) >> POSITION_BITS);
    }
}

/// Byte of U in the plane of both chroma channels; V is the other one.
int ByteOfU(const SCellJob& rJob)
{
    return rJob.bVFirst ? 1 : 0;
}

} // namespace

int CPlaneSampler::Reach() const
{
    // Chroma reaches twice as far.
    return m_sSampling.eSampling == SAMPLING_LANCZOS ? 8 : 6;
}

bool CPlaneSampler::IsClear(const SSamplePlane& rPlane, int x, int y, int nTexels) const
{
    return m_pCover == nullptr ||
           m_pCover->IsClear(x, y, x + nTexels - 1, y + nTexels - 1, rPlane.nWidth, rPlane.nHeight);
}

template <int TAPS>
bool CPlaneSampler::TakeKernel(const SSamplePlane& rPlane, const SGridPoint& rAt, const int* pBytes,
                               int nBytes, int* pSamples) const
{
    const int nBefore = TAPS / 2 - 1;
    const int x = (rAt.x >> POSITION_BITS) - nBefore;
    const int y = (rAt.y >> POSITION_BITS) - nBefore;
    if (!IsClear(rPlane, x, y, TAPS))
        return false;
    const CWeights<TAPS>& rWeights = Weights<TAPS>();
    const std::int16_t* const pAcross = rWeights.Phase(PhaseOf(rAt.x));
    const std::int16_t* const pDown = rWeights.Phase(PhaseOf(rAt.y));
    const bool bInside = x >= 0 && y >= 0 && x + TAPS <= rPlane.nWidth && y + TAPS <= rPlane.nHeight;
    unsigned char anEdge[TAPS * TAPS * MOST_PIXEL_BYTES];
    const unsigned char* pFirst = anEdge;
    std::ptrdiff_t nStride = std::ptrdiff_t{TAPS} * rPlane.nPixelBytes;
    if (bInside) {
        nStride = rPlane.nStride;
        pFirst = rPlane.pPixels + y * nStride + std::ptrdiff_t{x} * rPlane.nPixelBytes;
    } else {
        CopyEdge<TAPS>(rPlane, x, y, anEdge);
    }
    for (int k = 0; k < nBytes; ++k) {
        const unsigned char* const p = pFirst + pBytes[k];
        switch (rPlane.nPixelBytes) {
        case 1:
            pSamples[k] = KernelSample<TAPS, 1>(p, nStride, pAcross, pDown);
            break;
        case 2:
            pSamples[k] = KernelSample<TAPS, 2>(p, nStride, pAcross, pDown);
            break;
        case 3:
            pSamples[k] = KernelSample<TAPS, 3>(p, nStride, pAcross, pDown);
            break;
        default:
            pSamples[k] = KernelSample<TAPS, 4>(p, nStride, pAcross, pDown);
            break;
        }
    }
    return true;
}

/// What a pixel is sampled with that is not averaged.
void CPlaneSampler::TakeBase(const SSamplePlane& rPlane, const SGridPoint& rAt, const int* pBytes, int nBytes,
                             int* pSamples) const
{
    if (m_sSampling.eSampling == SAMPLING_CUBIC && TakeKernel<4>(rPlane, rAt, pBytes, nBytes, pSamples))
        return;
    if (m_sSampling.eSampling == SAMPLING_LANCZOS && TakeKernel<6>(rPlane, rAt, pBytes, nBytes, pSamples))
        return;
    if (m_sSampling.eSampling == SAMPLING_NEAREST) {
        for (int i = 0; i < nBytes; ++i)
            pSamples[i] = SampleAt(rPlane, pBytes[i], rAt.x, rAt.y, false);
        return;
    }
    std::fill_n(pSamples, nBytes, 0);
    AddLinear(rPlane, rAt.x, rAt.y, pBytes, nBytes, pSamples);
}

void CPlaneSampler::Take(const SSamplePlane& rPlane, const SSpot& rSpot, const int* pBytes, int nBytes,
                         int* pSamples) const
{
    const int nAcross = m_sSampling.bMinification ? CountOf(rSpot.sAcross) : 1;
    const int nDown = m_sSampling.bMinification ? CountOf(rSpot.sDown) : 1;
    if (nAcross * nDown == 1) {
        TakeBase(rPlane, rSpot.sAt, pBytes, nBytes, pSamples);
        return;
    }
    SGridPoint asColumns[MOST_SAMPLES];
    for (int i = 0; i < nAcross; ++i)
        asColumns[i] = PlaceOnSide(rSpot.sAcross, i, nAcross);
    int anSums[4] = {};
    int nTaken = 0;
    for (int j = 0; j < nDown; ++j) {
        const SGridPoint sRow = PlaceOnSide(rSpot.sDown, j, nDown);
        for (int i = 0; i < nAcross; ++i) {
            const std::int32_t x = rSpot.sAt.x + sRow.x + asColumns[i].x;
            const std::int32_t y = rSpot.sAt.y + sRow.y + asColumns[i].y;
            if (!IsClear(rPlane, x >> POSITION_BITS, y >> POSITION_BITS, 2))
                continue;
            AddLinear(rPlane, x, y, pBytes, nBytes, anSums);
            ++nTaken;
        }
    }
    if (nTaken == 0) {
        TakeBase(rPlane, rSpot.sAt, pBytes, nBytes, pSamples);
        return;
    }
    for (int i = 0; i < nBytes; ++i)
        pSamples[i] = (anSums[i] + nTaken / 2) / nTaken;
}

int CPlaneSampler::TakeLuma(const SCellJob& rJob, const SSpot& rSpot) const
{
    const int nByte = 0;
    int nSample = 0;
    Take(rJob.aPlanes[0], rSpot, &nByte, 1, &nSample);
    return nSample;
}

SYUVSample CPlaneSampler::TakeYUV(const SCellJob& rJob, const SSpot& rSpot) const
{
    SYUVSample s;
    s.y = TakeLuma(rJob, rSpot);
    if (rJob.eSource == SOURCE_GRAY)
        return s;
    TakeChroma(rJob, rSpot, s);
    return s;
}

void CPlaneSampler::TakeChroma(const SCellJob& rJob, const SSpot& rSpot, SYUVSample& rSample) const
{
    const SSpot sSpot = ChromaSpot(rJob, rSpot);
    const int anBytes[2] = {ByteOfU(rJob), 1 - ByteOfU(rJob)};
    int anSamples[2];
    if (rJob.eSource == SOURCE_PLANAR) {
        const int nByte = 0;
        Take(rJob.aPlanes[1], sSpot, &nByte, 1, &anSamples[0]);
        Take(rJob.aPlanes[2], sSpot, &nByte, 1, &anSamples[1]);
    } else {
        Take(rJob.aPlanes[1], sSpot, anBytes, 2, anSamples);
    }
    rSample.u = anSamples[0];
    rSample.v = anSamples[1];
}

std::uint32_t CPlaneSampler::TakePacked(const SCellJob& rJob, const SSpot& rSpot) const
{
    const int nChannels = rJob.anChannels[3] >= 0 ? 4 : 3;
    int anSamples[4] = {0, 0, 0, 255 * SAMPLE_LEVEL};
    Take(rJob.aPlanes[0], rSpot, rJob.anChannels, nChannels, anSamples);
    return PackSamples(rJob, anSamples);
}
