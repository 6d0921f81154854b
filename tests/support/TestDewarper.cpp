#include "tests/support/TestDewarper.h"

CTestDewarper::CTestDewarper(int nTargetWidth, int nTargetHeight)
{
    m_bStarted = InitGL(nTargetWidth, nTargetHeight) && StartGL();
}

bool CTestDewarper::DrawFrame(CTestFrame& oFrame, unsigned long long nTimestamp)
{
    return SetTexture(oFrame.Image(), false, nullptr, nTimestamp) && DrawGLScene(false);
}

STestImage CTestDewarper::Picture()
{
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pStart = GetImage(&nSize, &nWidth, &nHeight, &nStride);
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

bool CTestDewarper::Apply(const SReferenceSetup& sSetup, CTestFrame& oFrame)
{
    SetViewType(sSetup.eView);
    SetMountType(sSetup.eMount);
    SetLensType(static_cast<ELensType>(sSetup.nLensType));
    SetMountTilt(static_cast<float>(sSetup.fMountTilt));
    SetStrictTiltLimits(sSetup.bStrict);
    SetRotation(sSetup.nRotation);
    SetFlip(sSetup.bFlipHorizontal, sSetup.bFlipVertical);
    SetEyeDistance(static_cast<float>(sSetup.fEyeDistance));
    // A new view or mount brings its own angles with its first frame; ours come after it.
    if (!DrawFrame(oFrame))
        return false;
    AbsolutePTZ(static_cast<float>(sSetup.fPan), static_cast<float>(sSetup.fTilt),
                static_cast<float>(sSetup.fZoom));
    return DrawFrame(oFrame);
}

STestImage AsymmetricPicture(int nWidth, int nHeight)
{
    STestImage sImage(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const bool bMark = x < nWidth / 4 && y < nHeight / 4;
            const bool bDark = x >= nWidth - nWidth / 4 && y >= nHeight - nHeight / 4;
            if (bMark || bDark)
                sImage.Set(x, y, bMark ? 250 : 5, bMark ? 240 : 10, bMark ? 30 : 20);
            else
                sImage.Set(x, y, 40 + 160 * x / nWidth, 40 + 160 * y / nHeight, 90);
        }
    return sImage;
}
