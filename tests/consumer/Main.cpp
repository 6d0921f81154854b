// Draws one frame with the installed library, as a host with a class of its own does: a gray picture must
// come out gray in the middle.
#include "dewarp/LumorDewarp.h"
#include "platform/LogSink.h"

#include <cstdio>
#include <memory>
#include <vector>

namespace
{

/// A host's own class. What the library keeps behind its pointers is not declared here.
class CCountingDewarper : public CCustomGPUDewarperOffscreen
{
public:
    void IncrementDrawCount() override
    {
        CCustomGPUDewarperOffscreen::IncrementDrawCount();
        nFrames++;
    }

    int nFrames = 0;
};

/// Directly below the class without a context: nothing of it is drawn.
class CBareDewarper : public CCustomGPUDewarper
{
public:
    bool GetTargetWidthHeight(int& nWidth, int& nHeight) override
    {
        nWidth = nHeight = 64;
        return true;
    }
};

/// The middle of the frame as an engine of a host's choice writes it as luma; -1 where it cannot.
int DrawLuma(EDewarpEngine eEngine, SImageProperties& rImage)
{
    const std::unique_ptr<CDewarper> pDewarper = CreateDewarper(eEngine, 64, 32);
    std::vector<unsigned char> vTarget(64 * 32 * 3 / 2);
    if (pDewarper == nullptr || pDewarper->GetEngine() != eEngine ||
        !pDewarper->SetTexture(&rImage, false, nullptr, 0) ||
        !pDewarper->DrawTo(vTarget.data(), 64, IMAGE_FORMAT_NV12))
        return -1;
    return vTarget[16 * 64 + 32];
}

} // namespace

int main()
{
    const int nSide = 256;
    std::vector<unsigned char> vGray(nSide * nSide, 120);
    SImageProperties sImage;
    sImage.pPlane0 = vGray.data();
    sImage.nWidth = nSide;
    sImage.nHeight = nSide;
    sImage.nStride = nSide;
    sImage.nFormat = IMAGE_FORMAT_GRAY8;

    CBareDewarper oBare;
    oBare.AbsolutePTZ(10.0f, 20.0f, 90.0f);
    if (oBare.FindViewType("quad") != VIEW_VCAM_QUAD || AutoDetectLensType(3, 5) != LENS_UNKNOWN)
        return 4;
    CCountingDewarper oDewarper;
    if (!oDewarper.InitGL(64, 32) || !oDewarper.StartGL())
        return 77; // no OpenGL ES here
    oDewarper.SetViewType(VIEW_VCAM);
    oDewarper.SetMountType(MOUNT_CEILING);
    oDewarper.SetLensType(LENS_AUTO);
    if (!oDewarper.SetTexture(&sImage, false, nullptr, 0) || !oDewarper.DrawGLScene(true))
        return 1;
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* pImage = oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pImage == nullptr || nWidth != 64 || nHeight != 32 || oDewarper.nFrames != 1)
        return 2;
    const unsigned char* pMiddle = pImage + nSize + nHeight / 2 * nStride + nWidth / 2 * 4;
    std::printf("%dx%d, middle %d %d %d\n", nWidth, nHeight, pMiddle[0], pMiddle[1], pMiddle[2]);
    if (pMiddle[0] != 120 || pMiddle[1] != 120 || pMiddle[2] != 120)
        return 3;
    return DrawLuma(ENGINE_GL, sImage) == 120 && DrawLuma(ENGINE_CPU, sImage) == 120 ? 0 : 5;
}
