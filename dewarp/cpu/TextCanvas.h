/// \file
/// Strings that share pixels, drawn one over the other.
#pragma once

#include "dewarp/overlays/SGPUString.h"
#include "dewarp/overlays/StringPlacement.h"
#include "dewarp/records/SGRect.h"

#include <cstdint>
#include <vector>

/// Pixels of a rectangle of the target: bytes R, G, B, A from the low one up. A glyph's sample lies over what
/// is there by the higher of their alphas, and each string's rectangle is taken over in a step of its own, as
/// with two textures in turns.
/// Units: pixels of the target. Owns: its pixels; they grow, never shrink. Thread: any, serialised by the
/// host. Fails: throws for lack of memory.
class CTextCanvas
{
public:
    /// Makes the rectangle transparent.
    void Begin(const SGRect& rRect);
    void Draw(const SGPUString& rString, const SPlacedString& rPlaced);
    std::size_t CountBytes() const
    {
        return (m_vPixels.capacity() + m_vDrawn.capacity()) * 4 + m_vColumns.capacity() * sizeof(STap) +
               (m_avMeans[0].capacity() + m_avMeans[1].capacity()) * sizeof(float);
    }
    const std::uint32_t* Row(int y) const { return m_vPixels.data() + Offset(m_sRect.x, y); }

private:
    /// Where a sample lies between two texels of the font: both, and the second one's share.
    struct STap
    {
        int nFirst;
        int nSecond;
        float fShare;
    };
    std::size_t Offset(int x, int y) const
    {
        return static_cast<std::size_t>(y - m_sRect.y) * static_cast<std::size_t>(m_sRect.width) +
               static_cast<std::size_t>(x - m_sRect.x);
    }
    static STap TapAt(int nPixel, int nPixels, int nCell, int nCellTexels, int nTexels);
    void DrawGlyph(int nGlyph, const SPlacedString& rPlaced, int x, unsigned int nColor);
    const float* MeansOf(int nRow);
    void TakeOver(const SGRect& rRect);

    SGRect m_sRect;
    std::vector<std::uint32_t> m_vPixels; ///< what strings are drawn over
    std::vector<std::uint32_t> m_vDrawn;  ///< what they are drawn into
    std::vector<STap> m_vColumns;         ///< of a glyph
    std::vector<float> m_avMeans[2];      ///< coverage of two rows of the font at these columns
    int m_anMeanRows[2] = {-1, -1};       ///< which rows
};
