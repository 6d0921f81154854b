// Whole pictures from the exact views.
#include "tests/support/ReferenceView.h"

#include <algorithm>
#include <cmath>

static void SetColour(STestImage& sImage, int x, int y, const FColour& aColour)
{
    int anBytes[3];
    for (std::size_t i = 0; i < 3; ++i)
        anBytes[i] = static_cast<int>(std::lround(std::clamp(aColour[i], 0.0, 1.0) * 255.0));
    sImage.Set(x, y, anBytes[0], anBytes[1], anBytes[2]);
}

STestImage CReferenceView::Render(const FScene& fScene, int nSamples) const
{
    STestImage sImage(m_sSetup.nTargetWidth, m_sSetup.nTargetHeight);
    for (int y = 0; y < sImage.nHeight; ++y)
        for (int x = 0; x < sImage.nWidth; ++x) {
            FColour aSum = {0.0, 0.0, 0.0};
            for (int i = 0; i < nSamples * nSamples; ++i) {
                const int nSubRow = i / nSamples;
                const SReferencePixel sPixel =
                    At(x + (i % nSamples + 0.5) / nSamples, y + (nSubRow + 0.5) / nSamples);
                // Beyond 92 degrees a frame of the scene is black.
                if (!sPixel.bDrawn || sPixel.aRay[2] < -0.0349)
                    continue;
                const FColour aColour =
                    fScene(CameraToWorld(m_sSetup.eMount, sPixel.aRay, m_sSetup.fMountTilt));
                for (std::size_t k = 0; k < 3; ++k)
                    aSum[k] += aColour[k] / (nSamples * nSamples);
            }
            SetColour(sImage, x, y, aSum);
        }
    return sImage;
}

static FColour TexelColour(const STestImage& sInput, int x, int y)
{
    const unsigned char* pPixel =
        sInput.At(std::clamp(x, 0, sInput.nWidth - 1), std::clamp(y, 0, sInput.nHeight - 1));
    return {pPixel[0] / 255.0, pPixel[1] / 255.0, pPixel[2] / 255.0};
}

STestImage CReferenceView::Render(const STestImage& sInput, bool bLinear) const
{
    STestImage sImage(m_sSetup.nTargetWidth, m_sSetup.nTargetHeight);
    for (int y = 0; y < sImage.nHeight; ++y)
        for (int x = 0; x < sImage.nWidth; ++x) {
            const SReferencePixel sPixel = At(x + 0.5, y + 0.5);
            if (!sPixel.bDrawn) {
                sImage.Set(x, y, 0, 0, 0, 0);
                continue;
            }
            const double fX = sPixel.fU * sInput.nWidth - (bLinear ? 0.5 : 0.0);
            const double fY = sPixel.fV * sInput.nHeight - (bLinear ? 0.5 : 0.0);
            const int nX = static_cast<int>(std::floor(fX));
            const int nY = static_cast<int>(std::floor(fY));
            FColour aColour = TexelColour(sInput, nX, nY);
            if (bLinear) {
                const double fRight = fX - nX;
                const double fBelow = fY - nY;
                const FColour aRight = TexelColour(sInput, nX + 1, nY);
                const FColour aBelow = TexelColour(sInput, nX, nY + 1);
                const FColour aBoth = TexelColour(sInput, nX + 1, nY + 1);
                for (std::size_t k = 0; k < 3; ++k)
                    aColour[k] = (aColour[k] * (1.0 - fRight) + aRight[k] * fRight) * (1.0 - fBelow) +
                                 (aBelow[k] * (1.0 - fRight) + aBoth[k] * fRight) * fBelow;
            }
            SetColour(sImage, x, y, aColour);
        }
    return sImage;
}
