// Draws one frame with the installed library: a gray picture must come out gray in the middle.
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"
#include "platform/LogSink.h"

#include <cstdio>
#include <vector>

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

    CCustomGPUDewarperOffscreen oDewarper;
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
    if (pImage == nullptr || nWidth != 64 || nHeight != 32)
        return 2;
    const unsigned char* pMiddle = pImage + nSize + nHeight / 2 * nStride + nWidth / 2 * 4;
    std::printf("%dx%d, middle %d %d %d\n", nWidth, nHeight, pMiddle[0], pMiddle[1], pMiddle[2]);
    return pMiddle[0] == 120 && pMiddle[1] == 120 && pMiddle[2] == 120 ? 0 : 3;
}
