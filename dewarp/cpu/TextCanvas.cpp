#include "dewarp/cpu/TextCanvas.h"

#include "dewarp/tables/GPUFont.h"

#include <algorithm>
#include <cstddef>

namespace
{

/// A colour with alpha as the passes count it, 0..1.
struct STextColour
{
    float afRGB[3];
    float fAlpha;
};

STextColour FromPixel(std::uint32_t n)
{
    return {{static_cast<float>(n & 255) / 255.0f, static_cast<float>(n >> 8 & 255) / 255.0f,
             static_cast<float>(n >> 16 & 255) / 255.0f},
            static_cast<float>(n >> 24) / 255.0f};
}

/// To the nearest, halves up; f is not negative.
std::uint32_t ToByte(float f)
{
    const float fByte = f * 255.0f;
    const int n = static_cast<int>(fByte);
    return static_cast<std::uint32_t>(n + (fByte - static_cast<float>(n) >= 0.5f ? 1 : 0));
}

/// A colour's channels in the low bytes of a pixel.
std::uint32_t Channels(const STextColour& rText)
{
    std::uint32_t n = 0;
    for (int i = 0; i < 3; ++i)
        n |= ToByte(std::min(1.0f, rText.afRGB[i])) << (8 * i);
    return n;
}

/// A sample over what is there, by the higher of their alphas; 8 bits a channel.
std::uint32_t Over(std::uint32_t nBelow, const STextColour& rText)
{
    const STextColour sBelow = FromPixel(nBelow);
    const STextColour& rLower = rText.fAlpha >= sBelow.fAlpha ? sBelow : rText;
    const STextColour& rHigher = rText.fAlpha > sBelow.fAlpha ? rText : sBelow;
    std::uint32_t n = ToByte(rHigher.fAlpha) << 24;
    for (int i = 0; i < 3; ++i)
        n |= ToByte(std::min(1.0f, rLower.afRGB[i] * (1.0f - rHigher.fAlpha) + rHigher.afRGB[i])) << (8 * i);
    return n;
}

/// Coverage of a texel of the font. Its luminance is 1 everywhere.
float FontAlpha(int x, int y)
{
    return static_cast<float>(GPU_FONT::pGPU_FONT[(std::ptrdiff_t{y} * GPU_FONT::nW + x) * 2 + 1]);
}

} // namespace

void CTextCanvas::Begin(const SGRect& rRect)
{
    m_sRect = rRect;
    const std::size_t nPixels =
        static_cast<std::size_t>(rRect.width) * static_cast<std::size_t>(rRect.height);
    m_vPixels.assign(nPixels, 0);
    m_vDrawn.assign(nPixels, 0);
}

void CTextCanvas::Draw(const SGPUString& rString, const SPlacedString& rPlaced)
{
    long long x = rPlaced.nX;
    for (const char cCharacter : rString.strText) {
        const int nGlyph = GlyphOf(cCharacter);
        if (nGlyph >= 0 && x < m_sRect.x + m_sRect.width && x + rPlaced.nGlyphWidth > m_sRect.x)
            DrawGlyph(nGlyph, rPlaced, static_cast<int>(x), rString.nColor);
        x += rPlaced.nGlyphWidth;
    }
    TakeOver(rPlaced.sDrawn);
}

/// Of a glyph that nPixels show: the texels of one of them.
CTextCanvas::STap CTextCanvas::TapAt(int nPixel, int nPixels, int nCell, int nCellTexels, int nTexels)
{
    // Without rounding: a share that ought to be nothing would leave colour without alpha behind.
    const int nNumerator = (2 * (nCell * nPixels + nPixel) + 1) * nCellTexels - nPixels;
    const int nDenominator = 2 * nPixels;
    const int nFirst = nNumerator < 0 ? -1 : nNumerator / nDenominator;
    return {std::clamp(nFirst, 0, nTexels - 1), std::clamp(nFirst + 1, 0, nTexels - 1),
            static_cast<float>(nNumerator - nFirst * nDenominator) / static_cast<float>(nDenominator)};
}

void CTextCanvas::DrawGlyph(int nGlyph, const SPlacedString& rPlaced, int x, unsigned int nColor)
{
    const int nCellWidth = GPU_FONT::nW / GPU_FONT::nCols;
    const int nCellHeight = GPU_FONT::nH / GPU_FONT::nRows;
    const int nTop = static_cast<int>(rPlaced.nY);
    const int nLeft = std::max(x, m_sRect.x);
    const int nRight = std::min(x + rPlaced.nGlyphWidth, m_sRect.x + m_sRect.width);
    const int nBottom = std::min(nTop + rPlaced.nHeight, m_sRect.y + m_sRect.height);
    m_vColumns.clear();
    for (int i = nLeft; i < nRight; ++i)
        m_vColumns.push_back(
            TapAt(i - x, rPlaced.nGlyphWidth, nGlyph % GPU_FONT::nCols, nCellWidth, GPU_FONT::nW));
    // The font's alpha comes in bytes.
    const float fAlpha = static_cast<float>(nColor & 255) / (255.0f * 255.0f);
    STextColour sText = FromPixel((nColor >> 24 & 255) | (nColor >> 8 & 0xFF00) | (nColor << 8 & 0xFF0000));
    const std::uint32_t nChannels = Channels(sText);
    m_anMeanRows[0] = m_anMeanRows[1] = -1;
    for (int y = std::max(nTop, m_sRect.y); y < nBottom; ++y) {
        const STap sRow =
            TapAt(y - nTop, rPlaced.nHeight, nGlyph / GPU_FONT::nCols, nCellHeight, GPU_FONT::nH);
        const float* const pUpper = MeansOf(sRow.nFirst);
        const float* const pLower = MeansOf(sRow.nSecond);
        const std::uint32_t* const pBelow = m_vPixels.data() + Offset(nLeft, y);
        std::uint32_t* const pDrawn = m_vDrawn.data() + Offset(nLeft, y);
        for (std::size_t i = 0; i < m_vColumns.size(); ++i) {
            sText.fAlpha = (pUpper[i] + (pLower[i] - pUpper[i]) * sRow.fShare) * fAlpha;
            // Over nothing, which most pixels are, the text is what it is.
            if (pBelow[i] == 0)
                pDrawn[i] = sText.fAlpha > 0.0f ? ToByte(sText.fAlpha) << 24 | nChannels : 0;
            else
                pDrawn[i] = Over(pBelow[i], sText);
        }
    }
}

/// A row of the font between the columns of a glyph's pixels. Rows beside each other are kept.
const float* CTextCanvas::MeansOf(int nRow)
{
    const std::size_t n = static_cast<std::size_t>(nRow & 1);
    std::vector<float>& rMeans = m_avMeans[n];
    if (m_anMeanRows[n] == nRow)
        return rMeans.data();
    m_anMeanRows[n] = nRow;
    rMeans.resize(m_vColumns.size());
    for (std::size_t i = 0; i < rMeans.size(); ++i) {
        const STap& s = m_vColumns[i];
        const float f = FontAlpha(s.nFirst, nRow);
        rMeans[i] = f + (FontAlpha(s.nSecond, nRow) - f) * s.fShare;
    }
    return rMeans.data();
}

/// What was drawn becomes what is there, under nothing: a step that text without alpha does not survive
/// unchanged.
void CTextCanvas::TakeOver(const SGRect& rRect)
{
    const int nLeft = std::max(rRect.x, m_sRect.x);
    const int nRight = std::min(rRect.x + rRect.width, m_sRect.x + m_sRect.width);
    const int nBottom = std::min(rRect.y + rRect.height, m_sRect.y + m_sRect.height);
    for (int y = std::max(rRect.y, m_sRect.y); y < nBottom; ++y) {
        for (int x = nLeft; x < nRight; ++x) {
            const std::uint32_t n = m_vDrawn[Offset(x, y)];
            m_vPixels[Offset(x, y)] = n >> 24 != 0 ? n : n == 0 ? 0 : Over(n, STextColour{});
        }
    }
}
