/// \file
/// The drawn frame as bytes.
#pragma once

#include <cstddef>

class CDriverWatch;
class CReport;

/// A read-back belongs to the frame that was drawn: its size and its pixels, or nothing.
/// Units: pixels, bytes. Owns: the buffer, the same for every frame as long as it is large enough.
/// Thread: GL thread, context current, the frame's target bound. Fails: with null.
class CReadBack
{
public:
    CReadBack(CDriverWatch& rWatch, CReport& rReport) : m_rWatch(rWatch), m_rReport(rReport) {}
    ~CReadBack() { delete[] pReadBack; }
    CReadBack(const CReadBack&) = delete;
    CReadBack& operator=(const CReadBack&) = delete;

    /// The target holds a whole frame of that size, or none.
    void SetDrawn(int nWidth, int nHeight);
    void ForgetFrame() { SetDrawn(0, 0); }
    bool HasFrame() const { return m_nWidth > 0 && m_nHeight > 0; }
    unsigned char* Read(int* pSize, int* pWidth, int* pHeight, int* pStride);
    /// The next context may answer otherwise.
    void ForgetDriver();

    unsigned char* pReadBack = nullptr;
    std::size_t nReadBackCapacity = 0;

private:
    bool MakeRoom(std::size_t nBytes);
    bool ReadPixels(unsigned char* pPixels);

    CDriverWatch& m_rWatch;
    CReport& m_rReport;
    int m_nWidth = 0;
    int m_nHeight = 0;
    bool m_bBGRA = true; ///< the driver reads back BGRA; else RGBA is exchanged here
    bool m_bBGRAProven = false;
};
