/// \file
/// What tests do with a dewarper all the time, whichever class it is of.
#pragma once

#include "tests/support/ReferenceView.h"
#include "tests/support/TestFrame.h"

/// Hands over a frame and draws it.
template <class D>
bool DrawFrameWith(D& rDewarper, CTestFrame& rFrame, unsigned long long nTimestamp = 0)
{
    return rDewarper.SetTexture(rFrame.Image(), false, nullptr, nTimestamp) && rDewarper.DrawGLScene(false);
}

/// What GetImage gives, top row first; empty when there is none.
template <class D>
STestImage PictureOf(D& rDewarper)
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = rDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pStart == nullptr)
        return {};
    const std::size_t nRow = static_cast<std::size_t>(nStride);
    const unsigned char* pRows = pStart + nRow * static_cast<std::size_t>((nHeight + 1) / 2 * 2);
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const unsigned char* pPixel =
                pRows + nRow * static_cast<std::size_t>(y) + 4 * static_cast<std::size_t>(x);
            sImage.Set(x, y, pPixel[2], pPixel[1], pPixel[0], pPixel[3]);
        }
    return sImage;
}

/// Puts view, mount, lens, angles and filter of an exact view in force with one frame.
template <class D>
bool ApplySetup(D& rDewarper, const SReferenceSetup& sSetup, CTestFrame& rFrame)
{
    rDewarper.SetViewType(sSetup.eView);
    rDewarper.SetMountType(sSetup.eMount);
    rDewarper.SetLensType(static_cast<ELensType>(sSetup.nLensType));
    rDewarper.SetMountTilt(static_cast<float>(sSetup.fMountTilt));
    rDewarper.SetStrictTiltLimits(sSetup.bStrict);
    rDewarper.SetRotation(sSetup.nRotation);
    rDewarper.SetFlip(sSetup.bFlipHorizontal, sSetup.bFlipVertical);
    rDewarper.SetEyeDistance(static_cast<float>(sSetup.fEyeDistance));
    // A new view or mount brings its own angles with its first frame; ours come after it.
    if (!DrawFrameWith(rDewarper, rFrame))
        return false;
    rDewarper.AbsolutePTZ(static_cast<float>(sSetup.fPan), static_cast<float>(sSetup.fTilt),
                          static_cast<float>(sSetup.fZoom));
    return DrawFrameWith(rDewarper, rFrame);
}
