#include "lens/Canvas.h"

#include "dewarp/tables/GPUFont.h"

#include <algorithm>
#include <cmath>

/// Pixels of the font's cells for one of the canvas.
static const int FONT_STEP = 4;
static const int CELL_WIDTH = 38;
static const int CELL_HEIGHT = 64;
static const int FIRST_CHAR = 32;

CCanvas::CCanvas(int nWidth, int nHeight)
    : m_nWidth(nWidth), m_nHeight(nHeight),
      m_vPixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4, 255)
{}

std::size_t CCanvas::IndexOf(int x, int y) const
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(x);
}

void CCanvas::Blend(int x, int y, double fCover, unsigned int nColor)
{
    if (x < 0 || y < 0 || x >= m_nWidth || y >= m_nHeight || !(fCover > 0.0))
        return;
    unsigned char* pPixel = &m_vPixels[IndexOf(x, y) * 4];
    for (int i = 0; i < 3; ++i) {
        const double fColor = nColor >> (8 * i) & 255u;
        pPixel[i] =
            static_cast<unsigned char>(std::lround(pPixel[i] + (fColor - pPixel[i]) * std::min(fCover, 1.0)));
    }
}

void CCanvas::Fill(int nLeft, int nTop, int nRight, int nBottom, unsigned int nColor)
{
    for (int y = nTop; y < nBottom; ++y)
        for (int x = nLeft; x < nRight; ++x)
            Blend(x, y, 1.0, nColor);
}

/// How much of each pixel a line covers: all within half its width, nothing a pixel further out.
void CCanvas::Cover(const SPoint& a, const SPoint& b, double fWidth, std::vector<double>& rCover) const
{
    const double fReach = 0.5 * fWidth + 1.0;
    const auto First = [](double f, int nMost) {
        return std::clamp(static_cast<int>(std::floor(f)), 0, nMost);
    };
    const int nLeft = First(std::min(a.x, b.x) - fReach, m_nWidth);
    const int nRight = First(std::max(a.x, b.x) + fReach + 1.0, m_nWidth);
    const int nTop = First(std::min(a.y, b.y) - fReach, m_nHeight);
    const int nBottom = First(std::max(a.y, b.y) + fReach + 1.0, m_nHeight);
    const double fLength = std::hypot(b.x - a.x, b.y - a.y);
    for (int y = nTop; y < nBottom; ++y) {
        for (int x = nLeft; x < nRight; ++x) {
            const double dx = x + 0.5 - a.x;
            const double dy = y + 0.5 - a.y;
            const double fAlong =
                fLength > 0.0
                    ? std::clamp((dx * (b.x - a.x) + dy * (b.y - a.y)) / fLength, 0.0, fLength) / fLength
                    : 0.0;
            const double fOff = std::hypot(dx - fAlong * (b.x - a.x), dy - fAlong * (b.y - a.y));
            double& rOld = rCover[IndexOf(x, y)];
            rOld = std::max(rOld, std::clamp(0.5 * fWidth + 0.5 - fOff, 0.0, 1.0));
        }
    }
}

void CCanvas::Draw(const std::vector<SPoint>& vPoints, double fWidth, unsigned int nColor,
                   const std::vector<double>& vDashes)
{
    double fPeriod = 0.0;
    for (const double fDash : vDashes)
        fPeriod += fDash;
    const auto IsDrawn = [&vDashes, fPeriod](double fAlong) {
        if (!(fPeriod > 0.0))
            return true;
        double fRest = std::fmod(fAlong, fPeriod);
        std::size_t n = 0;
        while (n + 1 < vDashes.size() && fRest >= vDashes[n])
            fRest -= vDashes[n++];
        return n % 2 == 0;
    };
    // Where pieces meet they must not darken what they have drawn already.
    std::vector<double> vCover(static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight));
    double fAlong = 0.0;
    for (std::size_t i = 1; i < vPoints.size(); ++i) {
        if (IsDrawn(fAlong))
            Cover(vPoints[i - 1], vPoints[i], fWidth, vCover);
        fAlong += std::hypot(vPoints[i].x - vPoints[i - 1].x, vPoints[i].y - vPoints[i - 1].y);
    }
    for (int y = 0; y < m_nHeight; ++y)
        for (int x = 0; x < m_nWidth; ++x)
            Blend(x, y, vCover[IndexOf(x, y)], nColor);
}

void CCanvas::WriteChar(double fLeft, double fTop, unsigned char nChar, unsigned int nColor)
{
    const int nCell = nChar >= FIRST_CHAR && nChar < 127 ? nChar - FIRST_CHAR : '?' - FIRST_CHAR;
    const int nCellX = nCell % GPU_FONT::nCols * CELL_WIDTH;
    const int nCellY = nCell / GPU_FONT::nCols * CELL_HEIGHT;
    const int nLeft = static_cast<int>(std::lround(fLeft));
    const int nTop = static_cast<int>(std::lround(fTop));
    for (int y = 0; y < CELL_HEIGHT / FONT_STEP; ++y) {
        for (int x = 0; x * FONT_STEP < CELL_WIDTH; ++x) {
            int nSum = 0;
            for (int i = 0; i < FONT_STEP * FONT_STEP; ++i) {
                const int nX = x * FONT_STEP + i % FONT_STEP;
                const int nY = y * FONT_STEP + i / FONT_STEP;
                if (nX < CELL_WIDTH)
                    nSum += GPU_FONT::pGPU_FONT[((nCellY + nY) * GPU_FONT::nW + nCellX + nX) * 2 + 1];
            }
            Blend(nLeft + x, nTop + y, nSum / (255.0 * FONT_STEP * FONT_STEP), nColor);
        }
    }
}

void CCanvas::Write(double fLeft, double fTop, const std::string& strText, unsigned int nColor)
{
    for (const char nChar : strText) {
        WriteChar(fLeft, fTop, static_cast<unsigned char>(nChar), nColor);
        fLeft += static_cast<double>(CELL_WIDTH) / FONT_STEP;
    }
}

double CCanvas::WidthOf(const std::string& strText)
{
    return static_cast<double>(strText.size()) * CELL_WIDTH / FONT_STEP;
}

SPicture CCanvas::Picture() const
{
    return {m_vPixels.data(), m_nWidth, m_nHeight, m_nWidth * 4};
}
