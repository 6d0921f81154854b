#include "BufferFrames.h"

#include "ToolError.h"

#include "dewarp/records/YUVColour.h"

#include <algorithm>
#include <cstring>

namespace
{

using android::GraphicBuffer;

/// A locked buffer.
class CBufferLock
{
public:
    CBufferLock(GraphicBuffer& rBuffer, uint32_t nUsage) : m_rBuffer(rBuffer)
    {
        if (rBuffer.lockYCbCr(nUsage, &m_sLayout) != 0)
            ThrowFailure("a graphic buffer cannot be locked; try a smaller --size");
    }
    ~CBufferLock() { m_rBuffer.unlock(); }
    CBufferLock(const CBufferLock&) = delete;
    CBufferLock& operator=(const CBufferLock&) = delete;

    unsigned char* LumaRow(int y) const { return Row(m_sLayout.y, y, m_sLayout.ystride); }
    /// U, then V.
    unsigned char* ChromaRow(int y) const { return Row(m_sLayout.cb, y, m_sLayout.cstride); }

private:
    static unsigned char* Row(void* pPlane, int y, std::size_t nStride)
    {
        return static_cast<unsigned char*>(pPlane) + static_cast<std::size_t>(y) * nStride;
    }

    GraphicBuffer& m_rBuffer;
    android_ycbcr m_sLayout = {};
};

const unsigned char* PlaneRow(const SFrame& sFrame, int nPlane, int y)
{
    return sFrame.avPlanes[static_cast<std::size_t>(nPlane)].data() +
           static_cast<std::size_t>(y) * static_cast<std::size_t>(sFrame.GetPlaneStride(nPlane));
}

void CopyPlanes(const CBufferLock& oLock, const SFrame& sFrame)
{
    for (int y = 0; y < sFrame.nHeight; y++)
        std::memcpy(oLock.LumaRow(y), PlaneRow(sFrame, 0, y), static_cast<std::size_t>(sFrame.nWidth));
    const int nPairs = (sFrame.nWidth + 1) / 2;
    const bool bPlanar = sFrame.nFormat == IMAGE_FORMAT_YUV420P;
    const bool bVFirst = sFrame.nFormat == IMAGE_FORMAT_NV21;
    for (int y = 0; y < (sFrame.nHeight + 1) / 2; y++) {
        const unsigned char* const pFirst = PlaneRow(sFrame, 1, y);
        const unsigned char* const pSecond = bPlanar ? PlaneRow(sFrame, 2, y) : pFirst + 1;
        const int nStep = bPlanar ? 1 : 2;
        unsigned char* const pChroma = oLock.ChromaRow(y);
        for (int x = 0; x < nPairs; x++) {
            pChroma[2 * x] = (bVFirst ? pSecond : pFirst)[x * nStep];
            pChroma[2 * x + 1] = (bVFirst ? pFirst : pSecond)[x * nStep];
        }
    }
}

/// 0xRRGGBB00.
unsigned int ColourAt(const SFrame& sFrame, int x, int y)
{
    const int nBytes = GetBytesPerPixel(sFrame.nFormat);
    const unsigned char* const p = PlaneRow(sFrame, 0, y) + static_cast<std::ptrdiff_t>(x) * nBytes;
    const bool bBlueFirst = sFrame.nFormat == IMAGE_FORMAT_BGR24 || sFrame.nFormat == IMAGE_FORMAT_BGRA32;
    const unsigned int nFirst = p[0];
    const unsigned int nSecond = nBytes > 1 ? p[1] : nFirst;
    const unsigned int nThird = nBytes > 1 ? p[2] : nFirst;
    return (bBlueFirst ? nThird : nFirst) << 24 | nSecond << 16 | (bBlueFirst ? nFirst : nThird) << 8;
}

void ConvertColours(const CBufferLock& oLock, const SFrame& sFrame, EYUVSpace eSpace, EYUVRange eRange)
{
    for (int y = 0; y < sFrame.nHeight; y += 2)
        for (int x = 0; x < sFrame.nWidth; x += 2) {
            unsigned int nU = 0;
            unsigned int nV = 0;
            for (int i = 0; i < 4; i++) {
                const int nX = std::min(x + i % 2, sFrame.nWidth - 1);
                const int nY = std::min(y + i / 2, sFrame.nHeight - 1);
                const unsigned int nYUV = ConvertColourToYUV(ColourAt(sFrame, nX, nY), eSpace, eRange);
                oLock.LumaRow(nY)[nX] = static_cast<unsigned char>(nYUV >> 24);
                nU += nYUV >> 16 & 255;
                nV += nYUV >> 8 & 255;
            }
            oLock.ChromaRow(y / 2)[x] = static_cast<unsigned char>((nU + 2) / 4);
            oLock.ChromaRow(y / 2)[x + 1] = static_cast<unsigned char>((nV + 2) / 4);
        }
}

} // namespace

void FillBuffer(GraphicBuffer& rBuffer, const SFrame& sFrame, EYUVSpace eSpace, EYUVRange eRange)
{
    const CBufferLock oLock(rBuffer, GraphicBuffer::USAGE_SW_WRITE_OFTEN);
    if (sFrame.GetPlaneCount() > 1)
        CopyPlanes(oLock, sFrame);
    else
        ConvertColours(oLock, sFrame, eSpace, eRange);
}

std::vector<unsigned char> ReadBuffer(GraphicBuffer& rBuffer, EYUVSpace eSpace, EYUVRange eRange)
{
    const CBufferLock oLock(rBuffer, GraphicBuffer::USAGE_SW_READ_OFTEN);
    const int nWidth = static_cast<int>(rBuffer.getWidth());
    const int nHeight = static_cast<int>(rBuffer.getHeight());
    std::vector<unsigned char> vPixels;
    vPixels.reserve(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4);
    for (int y = 0; y < nHeight; y++) {
        const unsigned char* const pLuma = oLock.LumaRow(y);
        const unsigned char* const pChroma = oLock.ChromaRow(y / 2);
        for (int x = 0; x < nWidth; x++) {
            const unsigned int nYUV = static_cast<unsigned int>(pLuma[x]) << 24 |
                                      static_cast<unsigned int>(pChroma[x / 2 * 2]) << 16 |
                                      static_cast<unsigned int>(pChroma[x / 2 * 2 + 1]) << 8;
            const unsigned int nColour = ConvertYUVToColour(nYUV, eSpace, eRange);
            for (const unsigned int nShift : {8U, 16U, 24U})
                vPixels.push_back(static_cast<unsigned char>(nColour >> nShift));
            vPixels.push_back(255);
        }
    }
    return vPixels;
}
