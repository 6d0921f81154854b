/// \file
/// Samples that take more than four texels: sharper kernels, and averages over what a pixel covers.
#pragma once

#include "dewarp/cpu/CellKernel.h"
#include "dewarp/records/Enumerations.h"

#include <cstdint>

class CFrameCover;

/// A position and how far it is to those of the neighbours to the right and below: positions of one plane.
struct SSpot
{
    SGridPoint sAt;
    SGridPoint sAcross;
    SGridPoint sDown;
};

/// How pixels are sampled that the cells' kernels do not take.
struct SPlaneSampling
{
    ESampling eSampling = SAMPLING_LINEAR; ///< in force: not SAMPLING_BY_TYPE
    bool bMinification = false;

    /// The cells' kernels do for it.
    bool IsPlain() const { return !bMinification && eSampling <= SAMPLING_LINEAR; }
};

/// Most linear samples along either side of a pixel.
inline constexpr int MOST_SAMPLES = 8;

/// Takes samples of planes, in integers: SAMPLE_LEVEL a level, as SampleAt. Weights of kernels count
/// 16384ths, in steps of a 256th of a texel.
///
/// A footprint is the parallelogram between a pixel's neighbours; it is averaged over 1 to 8 linear samples
/// along either side, as many as it is texels long.
///
/// Texels under a cover are secret. A kernel that would reach one gives way to the linear sample, whose reach
/// is the cover's own; samples of a footprint that would reach one are left out, and where none remains the
/// pixel is sampled as it would be without the average.
/// Owns: nothing. Thread: any. Fails: never.
class CPlaneSampler
{
public:
    /// pCover: null where nothing lies over the frame.
    CPlaneSampler(const SPlaneSampling& rSampling, const CFrameCover* pCover)
        : m_sSampling(rSampling), m_pCover(pCover)
    {}

    /// Samples of some bytes of a plane's pixels at one spot; at most four.
    void Take(const SSamplePlane& rPlane, const SSpot& rSpot, const int* pBytes, int nBytes,
              int* pSamples) const;
    /// Luma, U and V of a spot of the frame.
    SYUVSample TakeYUV(const SCellJob& rJob, const SSpot& rSpot) const;
    /// Luma alone, and chroma alone.
    int TakeLuma(const SCellJob& rJob, const SSpot& rSpot) const;
    void TakeChroma(const SCellJob& rJob, const SSpot& rSpot, SYUVSample& rSample) const;
    /// Bytes of a packed frame: red in the lowest byte, then green, blue, alpha.
    std::uint32_t TakePacked(const SCellJob& rJob, const SSpot& rSpot) const;
    /// Texels of the frame that samples may reach from a position, beside the footprint.
    int Reach() const;

private:
    void TakeBase(const SSamplePlane& rPlane, const SGridPoint& rAt, const int* pBytes, int nBytes,
                  int* pSamples) const;
    template <int TAPS>
    bool TakeKernel(const SSamplePlane& rPlane, const SGridPoint& rAt, const int* pBytes, int nBytes,
                    int* pSamples) const;
    bool IsClear(const SSamplePlane& rPlane, int x, int y, int nTexels) const;

    SPlaneSampling m_sSampling;
    const CFrameCover* m_pCover;
};
