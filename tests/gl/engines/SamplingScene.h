/// \file
/// Frames and pictures of the tests of sampling.
#pragma once

#include "tests/support/EngineDewarper.h"

#include <random>

inline constexpr ESampling SAMPLINGS[] = {SAMPLING_NEAREST, SAMPLING_LINEAR, SAMPLING_CUBIC,
                                          SAMPLING_LANCZOS};
inline constexpr ESampling KERNELS[] = {SAMPLING_CUBIC, SAMPLING_LANCZOS};

/// A square frame of a lens as the view shows it on a ceiling.
inline SReferenceSetup SetupOf(EViewType eView, int nFrame, int nWidth, int nHeight, double fZoom = 180.0)
{
    SReferenceSetup s;
    s.eView = eView;
    s.nLensType = LENS_DSL419;
    s.nImageWidth = s.nImageHeight = nFrame;
    s.nTargetWidth = nWidth;
    s.nTargetHeight = nHeight;
    s.fZoom = fZoom;
    return s;
}

/// Every texel another colour.
inline STestImage NoisePicture(int nSize, int nSeed)
{
    std::mt19937 oRandom(static_cast<unsigned int>(nSeed));
    STestImage sPicture(nSize, nSize);
    for (int y = 0; y < nSize; ++y)
        for (int x = 0; x < nSize; ++x)
            sPicture.Set(x, y, static_cast<int>(oRandom() % 256), static_cast<int>(oRandom() % 256),
                         static_cast<int>(oRandom() % 256));
    return sPicture;
}

/// A picture of a frame with a sampling.
inline STestImage Draw(CEngineDewarper& rDewarper, CTestFrame& rFrame, ESampling eSampling,
                       bool bMinification)
{
    EXPECT_TRUE(rDewarper->SetSampling(eSampling));
    rDewarper->SetMinification(bMinification);
    EXPECT_TRUE(rDewarper.DrawFrame(rFrame));
    return rDewarper.Picture();
}
