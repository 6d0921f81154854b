// A few small pictures, from planes and from graphic buffers.
#include "Probe.h"

#include "dewarp/android/CustomGPUDewarperVela.h"
#include "dewarp/offscreen/CustomGPUDewarperOffscreen.h"

#include <ui/GraphicBuffer.h>

#include <cstdio>
#include <cstring>
#include <vector>

namespace
{

const int INPUT_SIZE = 160;
const int WIDTH = 128;
const int HEIGHT = 72;

/// NV12 rows of INPUT_SIZE bytes: smooth colours with a mark in one corner.
std::vector<unsigned char> InputPlanes()
{
    std::vector<unsigned char> vPlanes;
    for (int y = 0; y < INPUT_SIZE; ++y)
        for (int x = 0; x < INPUT_SIZE; ++x)
            vPlanes.push_back(
                static_cast<unsigned char>(x < 50 && y < 50 ? 235 : 40 + (x + y) * 120 / INPUT_SIZE));
    for (int y = 0; y < INPUT_SIZE / 2; ++y)
        for (int x = 0; x < INPUT_SIZE / 2; ++x) {
            vPlanes.push_back(static_cast<unsigned char>(60 + x));
            vPlanes.push_back(static_cast<unsigned char>(200 - y));
        }
    return vPlanes;
}

SGPUString Label()
{
    SGPUString sString;
    sString.strText = "arm64";
    sString.nX = 8;
    sString.nY = 8;
    sString.nHeight = 24;
    sString.nColor = 0xFFE000FF;
    return sString;
}

bool DrawPlanes(CProbeFile& rFile, const char* pName, EViewType eView, bool bText)
{
    std::vector<unsigned char> vPlanes = InputPlanes();
    SImageProperties sImage;
    sImage.pPlane0 = vPlanes.data();
    sImage.pPlane1 = vPlanes.data() + INPUT_SIZE * INPUT_SIZE;
    sImage.nWidth = INPUT_SIZE;
    sImage.nHeight = INPUT_SIZE;
    sImage.nStride = INPUT_SIZE;
    sImage.nFormat = IMAGE_FORMAT_NV12;
    CCustomGPUDewarperOffscreen oDewarper;
    oDewarper.SetViewType(eView);
    oDewarper.SetInterpolationType(INTERPOLATION_LINEAR);
    if (bText)
        oDewarper.SetStrings({Label()});
    if (!oDewarper.InitGL(WIDTH, HEIGHT) || !oDewarper.StartGL() ||
        !oDewarper.SetTexture(&sImage, false, nullptr, 0) || !oDewarper.DrawGLScene(true))
        return false;
    int nSize = 0;
    int nWidth = 0;
    int nHeight = 0;
    int nStride = 0;
    const unsigned char* const pImage = oDewarper.GetImage(&nSize, &nWidth, &nHeight, &nStride);
    if (pImage == nullptr || nSize != WIDTH * HEIGHT * 4)
        return false;
    rFile.Add(pName,
              std::string(reinterpret_cast<const char*>(pImage + nSize), static_cast<std::size_t>(nSize)));
    return true;
}

bool DrawBuffers(CProbeFile& rFile, const char* pName)
{
    const uint64_t nUsage =
        android::GraphicBuffer::USAGE_SW_READ_OFTEN | android::GraphicBuffer::USAGE_SW_WRITE_OFTEN;
    android::GraphicBuffer oInput(INPUT_SIZE, INPUT_SIZE, HAL_PIXEL_FORMAT_YCBCR_420_888, 1, nUsage);
    android::GraphicBuffer oOutput(WIDTH, HEIGHT, HAL_PIXEL_FORMAT_YCBCR_420_888, 1, nUsage);
    const std::vector<unsigned char> vPlanes = InputPlanes();
    void* pMemory = nullptr;
    oInput.lock(android::GraphicBuffer::USAGE_SW_WRITE_OFTEN, &pMemory);
    for (int y = 0; y < INPUT_SIZE * 3 / 2; ++y)
        std::memcpy(static_cast<unsigned char*>(pMemory) + static_cast<std::size_t>(y) * oInput.getStride(),
                    vPlanes.data() + y * INPUT_SIZE, INPUT_SIZE);
    oInput.unlock();
    CCustomGPUDewarperVela oDewarper;
    oDewarper.InitGL(WIDTH, HEIGHT);
    oDewarper.SetViewType(VIEW_VCAM);
    if (!oDewarper.StartGL() || !oDewarper.CreateImageF(&oInput, &oOutput) || !oDewarper.DrawGLScene(true))
        return false;
    oDewarper.DestroyImage();
    oOutput.lock(android::GraphicBuffer::USAGE_SW_READ_OFTEN, &pMemory);
    rFile.Add(pName, std::string(static_cast<const char*>(pMemory), oOutput.getStride() * HEIGHT * 3 / 2));
    oOutput.unlock();
    return true;
}

} // namespace

bool DrawPictures(CProbeFile& rFile)
{
    return DrawPlanes(rFile, "virtual camera with text", VIEW_VCAM, true) &&
           DrawPlanes(rFile, "dual panorama", VIEW_PANORAMA_DUAL, false) &&
           DrawPlanes(rFile, "fisheye", VIEW_FISHEYE, false) && DrawBuffers(rFile, "graphic buffers");
}
