#include "dewarp/cpu/MaskImage.h"

#include "dewarp/cpu/RunColours.h"

#include <algorithm>
#include <limits>

namespace
{

const int BAND_ROWS = 16;
// Rows whose spans are held at once: polygons may have very many.
const int PAINTED_ROWS = 64;
// Rows that are worth a closer look: sampling them costs more.
const int CLOSE_ROWS = 48;

using TSegments = std::vector<SMaskSegment>;

void AddSegment(TSegments& rSegments, int x, int nEnd, std::uint32_t n)
{
    if (n == 0)
        return;
    if (!rSegments.empty() && rSegments.back().nEnd == x && rSegments.back().nRGBA == n)
        rSegments.back().nEnd = nEnd;
    else
        rSegments.push_back({x, nEnd, n});
}

/// A row that has rJoin(a, b) where the first row has a and the second one b; 0 where there is no segment.
template <class F>
void Join(const TSegments& rFirst, const TSegments& rSecond, TSegments& rResult, F&& rJoin)
{
    const int nNever = std::numeric_limits<int>::max();
    rResult.clear();
    std::size_t i = 0;
    std::size_t k = 0;
    int x = 0;
    while (i < rFirst.size() || k < rSecond.size()) {
        const bool bFirst = i < rFirst.size() && rFirst[i].x <= x;
        const bool bSecond = k < rSecond.size() && rSecond[k].x <= x;
        const int nFirst = i == rFirst.size() ? nNever : bFirst ? rFirst[i].nEnd : rFirst[i].x;
        const int nSecond = k == rSecond.size() ? nNever : bSecond ? rSecond[k].nEnd : rSecond[k].x;
        const int nEnd = std::min(nFirst, nSecond);
        AddSegment(rResult, x, nEnd, rJoin(bFirst ? rFirst[i].nRGBA : 0U, bSecond ? rSecond[k].nRGBA : 0U));
        x = nEnd;
        if (bFirst && nFirst == nEnd)
            ++i;
        if (bSecond && nSecond == nEnd)
            ++k;
    }
}

/// One mask over what is there: bytes R, G, B, A; the mask 0xRRGGBBAA.
std::uint32_t Painted(std::uint32_t nOld, unsigned int nColor)
{
    const std::uint32_t nAlpha = nColor & 255;
    std::uint32_t n = std::max(nOld >> 24, nAlpha) << 24;
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t nBelow = nOld >> (8 * i) & 255;
        const std::uint32_t nAbove = nColor >> (24 - 8 * i) & 255;
        n |= DivideBy255(nBelow * (255 - nAlpha) + nAbove * nAlpha) << (8 * i);
    }
    return n;
}

/// The first segment that ends behind x.
std::size_t FindSegment(const TSegments& rSegments, std::size_t nFirst, std::size_t nEnd, int x)
{
    const auto itFirst = rSegments.begin() + static_cast<std::ptrdiff_t>(nFirst);
    const auto itEnd = rSegments.begin() + static_cast<std::ptrdiff_t>(nEnd);
    const auto it =
        std::upper_bound(itFirst, itEnd, x, [](int n, const SMaskSegment& r) { return n < r.nEnd; });
    return static_cast<std::size_t>(it - rSegments.begin());
}

} // namespace

void CMaskImage::Clear(int nWidth, int nHeight)
{
    m_nWidth = nWidth;
    m_nHeight = nHeight;
    m_nTop = m_nBottom = 0;
    m_vSegments.clear();
    m_vRows.clear();
    m_vBandSegments.clear();
    m_vBands.clear();
}

bool CMaskImage::Paint(const std::vector<SGPolygon>& vPolygons, int nWidth, int nHeight)
{
    Clear(nWidth, nHeight);
    CMaskCoverage oCoverage;
    if (!oCoverage.SetUp(vPolygons, nWidth, nHeight))
        return false;
    // Bands begin at a multiple of their rows.
    m_nTop = oCoverage.FirstRow() / BAND_ROWS * BAND_ROWS;
    PaintRows(oCoverage, vPolygons);
    m_nBottom = m_nTop + static_cast<int>(m_vRows.size());
    m_vRows.push_back(m_vSegments.size());
    SummariseRows();
    return true;
}

void CMaskImage::PaintRows(const CMaskCoverage& rCoverage, const std::vector<SGPolygon>& vPolygons)
{
    std::vector<SMaskSpan> vSpans;
    for (int nFirst = m_nTop; nFirst < rCoverage.EndRow(); nFirst += PAINTED_ROWS) {
        const int nEnd = std::min(nFirst + PAINTED_ROWS, rCoverage.EndRow());
        rCoverage.FindSpans(nFirst, nEnd, vSpans);
        const SMaskSpan* pSpan = vSpans.data();
        const SMaskSpan* const pEnd = pSpan + vSpans.size();
        for (int y = nFirst; y < nEnd; ++y) {
            const SMaskSpan* const pFirst = pSpan;
            while (pSpan != pEnd && pSpan->y == y)
                ++pSpan;
            m_vRows.push_back(m_vSegments.size());
            PaintRow(pFirst, pSpan, vPolygons);
        }
    }
}

void CMaskImage::PaintRow(const SMaskSpan* pFirst, const SMaskSpan* pEnd,
                          const std::vector<SGPolygon>& vPolygons)
{
    m_vRow.clear();
    while (pFirst != pEnd) {
        const int nPolygon = pFirst->nPolygon;
        m_vCovered.clear();
        for (; pFirst != pEnd && pFirst->nPolygon == nPolygon; ++pFirst) {
            const int x = m_vCovered.empty() ? pFirst->x : std::max(pFirst->x, m_vCovered.back().nEnd);
            if (x < pFirst->nEnd)
                AddSegment(m_vCovered, x, pFirst->nEnd, 1);
        }
        const unsigned int nColor = vPolygons[static_cast<std::size_t>(nPolygon)].nColor;
        Join(m_vRow, m_vCovered, m_vNext, [&](std::uint32_t nOld, std::uint32_t nCovered) {
            return nCovered != 0 ? Painted(nOld, nColor) : nOld;
        });
        m_vRow.swap(m_vNext);
    }
    m_vSegments.insert(m_vSegments.end(), m_vRow.begin(), m_vRow.end());
}

void CMaskImage::SummariseRows()
{
    const int nRows = m_nBottom - m_nTop;
    for (int nFirst = 0; nFirst < nRows; nFirst += BAND_ROWS) {
        m_vRow.clear();
        for (int i = nFirst; i < std::min(nFirst + BAND_ROWS, m_nHeight - m_nTop); ++i) {
            m_vCovered.clear();
            if (i < nRows) {
                const SMaskSegment* const pSegments = m_vSegments.data();
                const auto n = static_cast<std::size_t>(i);
                m_vCovered.assign(pSegments + m_vRows[n], pSegments + m_vRows[n + 1]);
            }
            if (i == nFirst) {
                m_vRow = m_vCovered;
                continue;
            }
            Join(m_vRow, m_vCovered, m_vNext, [](std::uint32_t nState, std::uint32_t nColour) {
                return nState == nColour ? nState : LAYER_STATE_MIXED;
            });
            m_vRow.swap(m_vNext);
        }
        m_vBands.push_back(m_vBandSegments.size());
        m_vBandSegments.insert(m_vBandSegments.end(), m_vRow.begin(), m_vRow.end());
    }
    m_vBands.push_back(m_vBandSegments.size());
}

std::uint32_t CMaskImage::At(int x, int y) const
{
    if (y < m_nTop || y >= m_nBottom)
        return 0;
    const auto n = static_cast<std::size_t>(y - m_nTop);
    const std::size_t i = FindSegment(m_vSegments, m_vRows[n], m_vRows[n + 1], x);
    return i < m_vRows[n + 1] && m_vSegments[i].x <= x ? m_vSegments[i].nRGBA : 0;
}

std::uint32_t CMaskImage::StateOf(const TSegments& rSegments, std::size_t nFirst, std::size_t nEnd, int x0,
                                  int x1)
{
    const std::size_t i = FindSegment(rSegments, nFirst, nEnd, x0);
    if (i == nEnd || rSegments[i].x > x1)
        return 0;
    return rSegments[i].x <= x0 && rSegments[i].nEnd > x1 ? rSegments[i].nRGBA : LAYER_STATE_MIXED;
}

ELayerClass CMaskImage::Classify(int x0, int y0, int x1, int y1, std::uint32_t& rColour) const
{
    if (y1 < m_nTop || y0 >= m_nBottom)
        return LAYER_NONE;
    // Rows outside of those that are held are empty.
    const bool bBeyond = y0 < m_nTop || y1 >= m_nBottom;
    const int nFirst = std::max(y0, m_nTop) - m_nTop;
    const int nLast = std::min(y1, m_nBottom - 1) - m_nTop;
    const auto Together = [&](const TSegments& rSegments, const std::vector<std::size_t>& rFirsts, int nFrom,
                              int nTo) {
        std::uint32_t nState = 0;
        for (int i = nFrom; i <= nTo; ++i) {
            const auto n = static_cast<std::size_t>(i);
            const std::uint32_t nNext = StateOf(rSegments, rFirsts[n], rFirsts[n + 1], x0, x1);
            if (i > nFrom && nNext != nState)
                return LAYER_STATE_MIXED;
            nState = nNext;
            if (nState == LAYER_STATE_MIXED)
                break;
        }
        return bBeyond && nState != 0 ? LAYER_STATE_MIXED : nState;
    };
    rColour = Together(m_vBandSegments, m_vBands, nFirst / BAND_ROWS, nLast / BAND_ROWS);
    if (rColour == LAYER_STATE_MIXED && nLast - nFirst < CLOSE_ROWS)
        rColour = Together(m_vSegments, m_vRows, nFirst, nLast);
    return ClassOfState(rColour);
}

void CMaskImage::Read(int x0, int y0, int x1, int y1, std::uint32_t* pTexels) const
{
    const int nWidth = x1 - x0 + 1;
    for (int y = y0; y <= y1; ++y, pTexels += nWidth) {
        std::fill_n(pTexels, nWidth, 0U);
        if (y < m_nTop || y >= m_nBottom)
            continue;
        const auto n = static_cast<std::size_t>(y - m_nTop);
        for (std::size_t i = FindSegment(m_vSegments, m_vRows[n], m_vRows[n + 1], x0);
             i < m_vRows[n + 1] && m_vSegments[i].x <= x1; ++i) {
            const int nLeft = std::max(m_vSegments[i].x, x0) - x0;
            const int nRight = std::min(m_vSegments[i].nEnd, x1 + 1) - x0;
            std::fill(pTexels + nLeft, pTexels + nRight, m_vSegments[i].nRGBA);
        }
    }
}

std::size_t CMaskImage::CountBytes() const
{
    return (m_vSegments.capacity() + m_vBandSegments.capacity()) * sizeof(SMaskSegment) +
           (m_vRows.capacity() + m_vBands.capacity()) * sizeof(std::size_t);
}
