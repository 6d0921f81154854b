#include "Frame.h"

int GetBytesPerPixel(int nFormat)
{
    switch (nFormat) {
    case IMAGE_FORMAT_RGB24:
    case IMAGE_FORMAT_BGR24:
        return 3;
    case IMAGE_FORMAT_RGBA32:
    case IMAGE_FORMAT_BGRA32:
        return 4;
    default:
        return 1;
    }
}

void SFrame::Allocate(int nNewFormat, int nNewWidth, int nNewHeight, int nRowBytes)
{
    nFormat = nNewFormat;
    nWidth = nNewWidth;
    nHeight = nNewHeight;
    nStride = nRowBytes > 0 ? nRowBytes : nWidth * GetBytesPerPixel(nFormat);
    // Planar chroma rows are half a first row apart: that must come out whole.
    if (GetPlaneCount() > 1)
        nStride += nStride % 2;
    for (int i = 0; i < GetPlaneCount(); i++)
        avPlanes[static_cast<std::size_t>(i)].assign(
            static_cast<std::size_t>(GetPlaneStride(i)) * static_cast<std::size_t>(GetPlaneRows(i)), 0);
}

int SFrame::GetPlaneCount() const
{
    switch (nFormat) {
    case IMAGE_FORMAT_NV12:
    case IMAGE_FORMAT_NV21:
        return 2;
    case IMAGE_FORMAT_YUV420P:
        return 3;
    default:
        return 1;
    }
}

int SFrame::GetPlaneStride(int nPlane) const
{
    return nPlane > 0 && nFormat == IMAGE_FORMAT_YUV420P ? nStride / 2 : nStride;
}

int SFrame::GetPlaneRows(int nPlane) const
{
    return nPlane > 0 ? (nHeight + 1) / 2 : nHeight;
}

SImageProperties SFrame::Describe()
{
    SImageProperties sImage;
    sImage.pPlane0 = avPlanes[0].data();
    sImage.pPlane1 = GetPlaneCount() > 1 ? avPlanes[1].data() : nullptr;
    sImage.pPlane2 = GetPlaneCount() > 2 ? avPlanes[2].data() : nullptr;
    sImage.nWidth = nWidth;
    sImage.nHeight = nHeight;
    sImage.nStride = nStride;
    sImage.nFormat = nFormat;
    sImage.eYUVSpace = eYUVSpace;
    sImage.eYUVRange = eYUVRange;
    return sImage;
}
