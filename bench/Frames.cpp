#include "bench/Frames.h"

#include <algorithm>
#include <cstdint>
#include <ctime>

CBenchFrame::CBenchFrame(int nFormat, int nWidth, int nHeight)
{
    const bool bPlanar = nFormat == IMAGE_FORMAT_YUV420P;
    const bool bSemiPlanar = nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21;
    int nPixelBytes = 4;
    if (bPlanar || bSemiPlanar || nFormat == IMAGE_FORMAT_GRAY8)
        nPixelBytes = 1;
    else if (nFormat == IMAGE_FORMAT_RGB24 || nFormat == IMAGE_FORMAT_BGR24)
        nPixelBytes = 3;
    const std::size_t nPixels = static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight);
    m_vPlanes[0].resize(nPixels * static_cast<std::size_t>(nPixelBytes));
    if (bSemiPlanar)
        m_vPlanes[1].resize(nPixels / 2);
    if (bPlanar) {
        m_vPlanes[1].resize(nPixels / 4);
        m_vPlanes[2].resize(nPixels / 4);
    }
    std::uint32_t nState = 1;
    for (std::vector<unsigned char>& rPlane : m_vPlanes) {
        for (std::size_t i = 0; i < rPlane.size(); ++i) {
            nState = nState * 1664525u + 1013904223u;
            rPlane[i] = static_cast<unsigned char>((i >> 6) + (nState >> 28));
        }
    }
    m_sImage.pPlane0 = m_vPlanes[0].data();
    m_sImage.pPlane1 = m_vPlanes[1].empty() ? nullptr : m_vPlanes[1].data();
    m_sImage.pPlane2 = m_vPlanes[2].empty() ? nullptr : m_vPlanes[2].data();
    m_sImage.nWidth = nWidth;
    m_sImage.nHeight = nHeight;
    m_sImage.nStride = nWidth * nPixelBytes;
    m_sImage.nFormat = nFormat;
}

double Median(std::vector<double> vTimes)
{
    if (vTimes.empty())
        return 0.0;
    const auto pMiddle = vTimes.begin() + static_cast<std::ptrdiff_t>(vTimes.size() / 2);
    std::nth_element(vTimes.begin(), pMiddle, vTimes.end());
    return *pMiddle;
}

double ProcessorMilliseconds()
{
    timespec sTime{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &sTime);
    return static_cast<double>(sTime.tv_sec) * 1e3 + static_cast<double>(sTime.tv_nsec) * 1e-6;
}
