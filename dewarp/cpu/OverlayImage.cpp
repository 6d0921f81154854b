#include "dewarp/cpu/OverlayImage.h"

#include "dewarp/overlays/OverlayPixels.h"

#include <algorithm>

static const int BLOCK = 16;

int COverlayImage::Set(const unsigned char* pData, int nWidth, int nHeight, const std::vector<SGRect>& vRects,
                       CReport& rReport)
{
    if (pData == nullptr) {
        *this = COverlayImage();
        return 1;
    }
    const bool bNew = m_vPixels.empty() || m_nWidth != nWidth || m_nHeight != nHeight;
    if (bNew && !IsOverlaySizeUsable(nWidth, nHeight, rReport))
        return 0;
    const std::vector<SGRect> vClipped = ClipToImage(vRects, nWidth, nHeight);
    if (bNew) {
        const int nBlockCols = (nWidth + BLOCK - 1) / BLOCK;
        const int nBlockRows = (nHeight + BLOCK - 1) / BLOCK;
        // What needs memory comes first. All of it is transparent until something is copied.
        std::vector<unsigned char> vPixels(static_cast<std::size_t>(nWidth) *
                                           static_cast<std::size_t>(nHeight) * 4);
        m_vBlocks.assign(static_cast<std::size_t>(nBlockCols) * static_cast<std::size_t>(nBlockRows), 0);
        m_vPixels.swap(vPixels);
        m_nWidth = nWidth;
        m_nHeight = nHeight;
        m_nBlockCols = nBlockCols;
    }
    if (vRects.empty()) {
        std::memcpy(m_vPixels.data(), pData, m_vPixels.size());
        Summarise({0, 0, nWidth, nHeight});
        return 1;
    }
    CopyOverlayRects(m_vPixels.data(), pData, nWidth, vClipped);
    for (const SGRect& rRect : vClipped)
        Summarise(rRect);
    return 1;
}

std::uint32_t& COverlayImage::Block(int nCol, int nRow)
{
    return m_vBlocks[static_cast<std::size_t>(nRow) * static_cast<std::size_t>(m_nBlockCols) +
                     static_cast<std::size_t>(nCol)];
}

/// Looks at the blocks that a rectangle touches.
void COverlayImage::Summarise(const SGRect& rRect)
{
    for (int nRow = rRect.y / BLOCK; nRow <= (rRect.y + rRect.height - 1) / BLOCK; ++nRow)
        for (int nCol = rRect.x / BLOCK; nCol <= (rRect.x + rRect.width - 1) / BLOCK; ++nCol)
            Block(nCol, nRow) = BlockState(nCol, nRow);
}

std::uint32_t COverlayImage::BlockState(int nCol, int nRow) const
{
    const int nRight = std::min((nCol + 1) * BLOCK, m_nWidth);
    const int nBottom = std::min((nRow + 1) * BLOCK, m_nHeight);
    const std::uint32_t nFirst = At(nCol * BLOCK, nRow * BLOCK);
    std::uint32_t nAlpha = 0;
    std::uint32_t nDifferent = 0;
    for (int y = nRow * BLOCK; y < nBottom; ++y) {
        for (int x = nCol * BLOCK; x < nRight; ++x) {
            const std::uint32_t n = At(x, y);
            nAlpha |= n >> 24;
            nDifferent |= n ^ nFirst;
        }
    }
    return nAlpha == 0 ? 0 : nDifferent == 0 ? nFirst : LAYER_STATE_MIXED;
}

ELayerClass COverlayImage::Classify(int x0, int y0, int x1, int y1, std::uint32_t& rColour) const
{
    const auto State = [&](int nCol, int nRow) {
        return m_vBlocks[static_cast<std::size_t>(nRow) * static_cast<std::size_t>(m_nBlockCols) +
                         static_cast<std::size_t>(nCol)];
    };
    rColour = State(x0 / BLOCK, y0 / BLOCK);
    for (int nRow = y0 / BLOCK; nRow <= y1 / BLOCK; ++nRow)
        for (int nCol = x0 / BLOCK; nCol <= x1 / BLOCK; ++nCol)
            if (State(nCol, nRow) != rColour)
                return LAYER_MIXED;
    return ClassOfState(rColour);
}

void COverlayImage::Read(int x0, int y0, int x1, int y1, std::uint32_t* pTexels) const
{
    const auto nWidth = static_cast<std::size_t>(x1) - static_cast<std::size_t>(x0) + 1;
    for (int y = y0; y <= y1; ++y, pTexels += nWidth)
        std::memcpy(pTexels, Texel(x0, y), nWidth * 4);
}
