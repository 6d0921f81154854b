/// \file
/// Frames at the edge of the memory that there is.
#pragma once

#include "dewarp/records/SImageProperties.h"

#include <cstddef>

/// Bytes with a page before and one behind them that stop the program when they are touched.
/// Owns: its pages.
class CGuardedBytes
{
public:
    CGuardedBytes() = default;
    /// bAtEnd: the last byte is the page's last one; otherwise the first byte is the page's first.
    CGuardedBytes(std::size_t nBytes, bool bAtEnd);
    ~CGuardedBytes();
    CGuardedBytes(const CGuardedBytes&) = delete;
    CGuardedBytes& operator=(const CGuardedBytes&) = delete;
    CGuardedBytes(CGuardedBytes&& rOther) noexcept;
    CGuardedBytes& operator=(CGuardedBytes&& rOther) noexcept;

    unsigned char* Data() { return m_pData; }
    std::size_t Size() const { return m_nBytes; }

private:
    unsigned char* m_pPages = nullptr;
    std::size_t m_nMapped = 0;
    unsigned char* m_pData = nullptr;
    std::size_t m_nBytes = 0;
};

/// A frame of noise whose planes end with the last pixel of their last row, between guards. The same seed
/// gives the same pixels.
class CGuardedFrame
{
public:
    /// nPad: bytes a row has beyond its pixels.
    CGuardedFrame(int nFormat, int nWidth, int nHeight, int nPad, unsigned int nSeed, bool bAtEnd);

    SImageProperties* Image() { return &m_sImage; }

private:
    void AddPlane(int nPlane, int nRowBytes, int nRows, int nStride, unsigned int nSeed, bool bAtEnd);

    SImageProperties m_sImage;
    CGuardedBytes m_aPlanes[3];
};
