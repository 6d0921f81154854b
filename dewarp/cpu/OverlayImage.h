/// \file
/// A host's overlay image as layers sample it.
#pragma once

#include "dewarp/cpu/LayerSource.h"
#include "dewarp/records/SGRect.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

class CReport;

/// An RGBA image of the host's, and what its blocks of texels have in common; a source of layers.
/// Units: texels. Owns: a copy of the image. Thread: Set any, serialised by the host; questions on several at
/// once. Fails: Set by its result, or throws for lack of memory and leaves the image as it is then.
class COverlayImage
{
public:
    /// Takes an image, or what the rectangles name of it: what they do not name stays, or is transparent in a
    /// new image. Null removes it. 1 taken, 0 refused.
    int Set(const unsigned char* pData, int nWidth, int nHeight, const std::vector<SGRect>& vRects,
            CReport& rReport);

    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }
    bool IsEmpty() const { return m_vPixels.empty(); }
    std::uint32_t At(int x, int y) const
    {
        std::uint32_t n = 0;
        std::memcpy(&n, Texel(x, y), sizeof n);
        return n;
    }
    ELayerClass Classify(int x0, int y0, int x1, int y1, std::uint32_t& rColour) const;
    void Read(int x0, int y0, int x1, int y1, std::uint32_t* pTexels) const;
    std::size_t CountBytes() const { return m_vPixels.capacity() + m_vBlocks.capacity() * 4; }

private:
    const unsigned char* Texel(int x, int y) const
    {
        return m_vPixels.data() + (static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                                   static_cast<std::size_t>(x)) *
                                      4;
    }
    std::uint32_t& Block(int nCol, int nRow);
    void Summarise(const SGRect& rRect);
    std::uint32_t BlockState(int nCol, int nRow) const;

    int m_nWidth = 0;
    int m_nHeight = 0;
    int m_nBlockCols = 0;
    std::vector<unsigned char> m_vPixels;
    std::vector<std::uint32_t> m_vBlocks; ///< state of BLOCK x BLOCK texels
};
