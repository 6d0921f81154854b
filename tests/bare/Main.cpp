// Draws one NV12 frame into NV12 with whatever engine there is, and says which it is: a grey picture must
// come out grey in the middle. Links the core alone.
#include "dewarp/Dewarper.h"

#include <cstdio>
#include <vector>

int main()
{
    const int nSide = 256;
    const int nWidth = 64;
    const int nHeight = 32;
    std::vector<unsigned char> vLuma(nSide * nSide, 120);
    std::vector<unsigned char> vChroma(nSide * nSide / 2, 128);
    SImageProperties sImage;
    sImage.pPlane0 = vLuma.data();
    sImage.pPlane1 = vChroma.data();
    sImage.nWidth = nSide;
    sImage.nHeight = nSide;
    sImage.nStride = nSide;
    sImage.nFormat = IMAGE_FORMAT_NV12;

    const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(ENGINE_AUTO, nWidth, nHeight);
    if (pDewarper == nullptr)
        return 1;
    std::printf("%s\n", pDewarper->GetEngineText().c_str());
    pDewarper->SetViewType(VIEW_VCAM);
    pDewarper->SetMountType(MOUNT_CEILING);
    pDewarper->SetLensType(LENS_AUTO);
    pDewarper->SetInterpolationType(INTERPOLATION_LINEAR);
    std::vector<unsigned char> vTarget(nWidth * nHeight * 3 / 2);
    SFrameTarget sTarget;
    sTarget.eFormat = IMAGE_FORMAT_NV12;
    sTarget.apPlanes[0] = vTarget.data();
    sTarget.apPlanes[1] = vTarget.data() + nWidth * nHeight;
    sTarget.anStrides[0] = sTarget.anStrides[1] = nWidth;
    if (!pDewarper->SetTexture(&sImage, false, nullptr, 0) || !pDewarper->DrawTo(sTarget))
        return 2;
    const int nY = vTarget[nHeight / 2 * nWidth + nWidth / 2];
    const int nU = sTarget.apPlanes[1][nHeight / 4 * nWidth + nWidth / 2];
    std::printf("%dx%d, middle %d %d\n", nWidth, nHeight, nY, nU);
    return nY == 120 && nU == 128 ? 0 : 3;
}
