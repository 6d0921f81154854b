#include "tests/cpu/GuardedFrame.h"

#include "tests/support/TestFrame.h"

#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

CGuardedBytes::CGuardedBytes(std::size_t nBytes, bool bAtEnd) : m_nBytes(nBytes)
{
    const std::size_t nPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t nInside = (nBytes + nPage - 1) / nPage * nPage;
    m_nMapped = nInside + 2 * nPage;
    void* const pPages = mmap(nullptr, m_nMapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pPages == MAP_FAILED)
        std::abort();
    m_pPages = static_cast<unsigned char*>(pPages);
    if (mprotect(m_pPages + nPage, nInside, PROT_READ | PROT_WRITE) != 0)
        std::abort();
    m_pData = m_pPages + nPage + (bAtEnd ? nInside - nBytes : 0);
}

CGuardedBytes::~CGuardedBytes()
{
    if (m_pPages != nullptr)
        munmap(m_pPages, m_nMapped);
}

CGuardedBytes::CGuardedBytes(CGuardedBytes&& rOther) noexcept
{
    *this = std::move(rOther);
}

CGuardedBytes& CGuardedBytes::operator=(CGuardedBytes&& rOther) noexcept
{
    std::swap(m_pPages, rOther.m_pPages);
    std::swap(m_nMapped, rOther.m_nMapped);
    std::swap(m_pData, rOther.m_pData);
    std::swap(m_nBytes, rOther.m_nBytes);
    return *this;
}

CGuardedFrame::CGuardedFrame(int nFormat, int nWidth, int nHeight, int nPad, unsigned int nSeed, bool bAtEnd)
{
    m_sImage.nFormat = nFormat;
    m_sImage.nWidth = nWidth;
    m_sImage.nHeight = nHeight;
    m_sImage.nStride = nWidth * BytesPerPixel(nFormat) + nPad;
    AddPlane(0, nWidth * BytesPerPixel(nFormat), nHeight, m_sImage.nStride, nSeed, bAtEnd);
    if (nFormat == IMAGE_FORMAT_NV12 || nFormat == IMAGE_FORMAT_NV21)
        AddPlane(1, nWidth / 2 * 2, nHeight / 2, m_sImage.nStride, nSeed, bAtEnd);
    if (nFormat == IMAGE_FORMAT_YUV420P)
        for (int i = 1; i < 3; ++i)
            AddPlane(i, nWidth / 2, nHeight / 2, m_sImage.nStride / 2, nSeed, bAtEnd);
    m_sImage.pPlane0 = m_aPlanes[0].Data();
    m_sImage.pPlane1 = m_aPlanes[1].Data();
    m_sImage.pPlane2 = m_aPlanes[2].Data();
}

void CGuardedFrame::AddPlane(int nPlane, int nRowBytes, int nRows, int nStride, unsigned int nSeed,
                             bool bAtEnd)
{
    const std::size_t nBytes = static_cast<std::size_t>(nRows - 1) * static_cast<std::size_t>(nStride) +
                               static_cast<std::size_t>(nRowBytes);
    CGuardedBytes oBytes(nBytes, bAtEnd);
    std::uint32_t nState = nSeed * 3 + static_cast<std::uint32_t>(nPlane);
    for (std::size_t i = 0; i < nBytes; ++i) {
        nState = nState * 1664525U + 1013904223U;
        oBytes.Data()[i] = static_cast<unsigned char>(nState >> 24);
    }
    m_aPlanes[nPlane] = std::move(oBytes);
}
