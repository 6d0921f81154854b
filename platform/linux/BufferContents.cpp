#include "platform/linux/BufferContents.h"

#include "platform/linux/TexelRows.h"

#include <GLES3/gl31.h>

namespace
{

const uint32_t MAX_SIZE = 16384;
const int STRIDE_STEP = 64; // pixels, as allocators of Android's devices commonly align

int AlignedStride(int nWidth)
{
    return (nWidth + STRIDE_STEP - 1) / STRIDE_STEP * STRIDE_STEP;
}

std::size_t Rows(int nRows, int nRowBytes)
{
    return static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nRowBytes);
}

} // namespace

bool CBufferContents::IsPossible(uint32_t nWidth, uint32_t nHeight, int nFormat)
{
    return nWidth > 0 && nHeight > 0 && nWidth <= MAX_SIZE && nHeight <= MAX_SIZE &&
           (nFormat == HAL_PIXEL_FORMAT_RGBA_8888 || nFormat == HAL_PIXEL_FORMAT_YCBCR_420_888 ||
            nFormat == HAL_PIXEL_FORMAT_YCRCB_420_SP);
}

CBufferContents::CBufferContents(int nWidth, int nHeight, int nFormat)
    : m_nWidth(nWidth), m_nHeight(nHeight), m_nStride(AlignedStride(nWidth)), m_nFormat(nFormat)
{
    if (IsYUV()) {
        m_vPlanes.resize(LumaSize() + Rows((nHeight + 1) / 2, m_nStride));
        m_vTexels.resize(Rows(nHeight, nWidth * 4));
    } else {
        m_vPlanes.resize(Rows(nHeight, m_nStride * 4));
    }
}

std::size_t CBufferContents::LumaSize() const
{
    return Rows(m_nHeight, m_nStride);
}

unsigned char* CBufferContents::Lock(bool bWrite)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    if (m_bLocked)
        return nullptr;
    if (m_bPlanesStale)
        Pack();
    m_bPlanesStale = false;
    m_bLocked = true;
    m_bLockedForWriting = bWrite;
    return m_vPlanes.data();
}

bool CBufferContents::Unlock()
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    if (!m_bLocked)
        return false;
    m_bLocked = false;
    if (m_bLockedForWriting) {
        if (IsYUV())
            Expand();
        ++m_nVersion;
    }
    return true;
}

void CBufferContents::Upload(unsigned long long& nHeld)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    if (nHeld == m_nVersion)
        return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, TexelStride());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, m_nWidth, m_nHeight, GL_RGBA, GL_UNSIGNED_BYTE, Texels());
    nHeld = m_nVersion;
}

void CBufferContents::ReadBack(unsigned long long& nHeld)
{
    const std::lock_guard<std::mutex> oLock(m_oMutex);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, TexelStride());
    glReadPixels(0, 0, m_nWidth, m_nHeight, GL_RGBA, GL_UNSIGNED_BYTE, Texels());
    m_bPlanesStale = IsYUV();
    nHeld = ++m_nVersion;
}

unsigned char* CBufferContents::Texels()
{
    return IsYUV() ? m_vTexels.data() : m_vPlanes.data();
}

void CBufferContents::Expand()
{
    for (int y = 0; y < m_nHeight; ++y)
        ExpandRow(m_vPlanes.data() + Rows(y, m_nStride), Chroma() + Rows(y / 2, m_nStride),
                  m_nFormat == HAL_PIXEL_FORMAT_YCRCB_420_SP, m_nWidth,
                  m_vTexels.data() + Rows(y, m_nWidth * 4));
}

void CBufferContents::Pack()
{
    for (int y = 0; y < m_nHeight; y += 2) {
        const int nLower = y + 1 < m_nHeight ? y + 1 : y;
        PackRows(m_vTexels.data() + Rows(y, m_nWidth * 4), m_vTexels.data() + Rows(nLower, m_nWidth * 4),
                 m_nWidth, m_nFormat == HAL_PIXEL_FORMAT_YCRCB_420_SP, m_vPlanes.data() + Rows(y, m_nStride),
                 m_vPlanes.data() + Rows(nLower, m_nStride), Chroma() + Rows(y / 2, m_nStride));
    }
}
