// Positions of exact cells in the form that is drawn fastest.

#include "dewarp/cpu/Grid.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace
{

/// Texels of a row that a line may reach over, its last neighbour included, and rows that are worth it.
const int MOST_TEXELS = 16;
const int MOST_ROWS = 10;
/// Texels that 16 bits count.
const int BLOCK_TEXELS = 32;
/// Positions of a 2 x 2 block farther apart than this do not belong together.
const int FAR_APART = 16 * POSITION_ONE;

/// Where a cell's pixels lie from its first texel on; less half of what 16 bits hold, for instructions that
/// take signed numbers alone.
struct SOffsets
{
    std::int16_t aX[CELL_PIXELS];
    std::int16_t aY[CELL_PIXELS];
};
const int OFFSET_MIDDLE = 0x8000;

/// What eight lines reach over, in texels from the cell's first.
struct SReaches
{
    int anFirstX[CELL_SIDE];
    int anFirstY[CELL_SIDE];
    int nRows = 0; ///< that one of them crosses, at most; MOST_ROWS + 1: more, or one reaches too far
};

/// Lines are columns of the offsets.
void FindReaches(const SOffsets& o, SReaches& r)
{
    std::int16_t anLowX[CELL_SIDE];
    std::int16_t anLowY[CELL_SIDE];
    std::int16_t anHighX[CELL_SIDE];
    std::int16_t anHighY[CELL_SIDE];
    for (int l = 0; l < CELL_SIDE; ++l) {
        anLowX[l] = anHighX[l] = o.aX[l];
        anLowY[l] = anHighY[l] = o.aY[l];
    }
    for (int n = CELL_SIDE; n < CELL_PIXELS; n += CELL_SIDE) {
        for (int l = 0; l < CELL_SIDE; ++l) {
            anLowX[l] = std::min(anLowX[l], o.aX[n + l]);
            anHighX[l] = std::max(anHighX[l], o.aX[n + l]);
            anLowY[l] = std::min(anLowY[l], o.aY[n + l]);
            anHighY[l] = std::max(anHighY[l], o.aY[n + l]);
        }
    }
    const auto Texel = [](int n) { return (n + OFFSET_MIDDLE) >> POSITION_BITS; };
    for (int l = 0; l < CELL_SIDE; ++l) {
        r.anFirstX[l] = Texel(anLowX[l]);
        r.anFirstY[l] = Texel(anLowY[l]);
        const bool bFits = Texel(anHighX[l]) - r.anFirstX[l] + 2 <= MOST_TEXELS;
        r.nRows = std::max(r.nRows, bFits ? Texel(anHighY[l]) - r.anFirstY[l] + 2 : MOST_ROWS + 1);
    }
}

void Transpose(const SOffsets& rFrom, SOffsets& rTo)
{
    for (int l = 0; l < CELL_SIDE; ++l) {
        for (int n = 0; n < CELL_SIDE; ++n) {
            rTo.aX[l * CELL_SIDE + n] = rFrom.aX[n * CELL_SIDE + l];
            rTo.aY[l * CELL_SIDE + n] = rFrom.aY[n * CELL_SIDE + l];
        }
    }
}

/// The lowest and the highest of a cell's positions. Those that nothing covers become one that something
/// does.
void FillGaps(SGridPoint* pPoints, std::uint64_t nCovered, SGridPoint& rLow, SGridPoint& rHigh)
{
    const SGridPoint sAny = pPoints[std::countr_zero(nCovered)];
    if (nCovered != ~std::uint64_t{0}) {
        for (int n = 0; n < CELL_PIXELS; ++n)
            pPoints[n] = (nCovered >> n & 1) != 0 ? pPoints[n] : sAny;
    }
    rLow = rHigh = sAny;
    for (int n = 0; n < CELL_PIXELS; ++n) {
        rLow = {std::min(rLow.x, pPoints[n].x), std::min(rLow.y, pPoints[n].y)};
        rHigh = {std::max(rHigh.x, pPoints[n].x), std::max(rHigh.y, pPoints[n].y)};
    }
}

/// The chroma places of a cell, from its first texel on.
void SetPlaces(const SExactCell& rCell, bool bTogether, SExactLines& s)
{
    const bool bMiddles = bTogether && rCell.nCovered == ~std::uint64_t{0};
    for (int n = 0; n < CELL_PIXELS / 4; ++n) {
        const int i = n / 4 * 2 * CELL_SIDE + n % 4 * 2;
        const SGridPoint* const p = rCell.aPoints + i;
        SGridPoint sPlace = *p;
        if (bMiddles)
            sPlace = {(p[0].x + p[1].x + p[CELL_SIDE].x + p[CELL_SIDE + 1].x + 2) >> 2,
                      (p[0].y + p[1].y + p[CELL_SIDE].y + p[CELL_SIDE + 1].y + 2) >> 2};
        else if (HasPlace(rCell.nCovered, n))
            sPlace = ExactPlace(rCell.aPoints, rCell.nCovered, i);
        s.aPlaceX[n] = static_cast<std::uint16_t>(sPlace.x - s.x * POSITION_ONE);
        s.aPlaceY[n] = static_cast<std::uint16_t>(sPlace.y - s.y * POSITION_ONE);
    }
}

/// The cell's pixels along the columns of some offsets.
void SetPixels(const SOffsets& rLines, const SReaches& r, SExactLines& s)
{
    s.nRows = r.nRows > MOST_ROWS ? 0 : r.nRows;
    for (int l = 0; l < CELL_SIDE; ++l) {
        const int x = s.nRows == 0 ? 0 : r.anFirstX[l];
        const int y = s.nRows == 0 ? 0 : r.anFirstY[l];
        s.anFirstX[l] = static_cast<std::uint8_t>(x);
        s.anFirstY[l] = static_cast<std::uint8_t>(y);
        const int nFromX = OFFSET_MIDDLE - (x << POSITION_BITS);
        const int nFromY = OFFSET_MIDDLE - (y << POSITION_BITS);
        for (int n = 0; n < CELL_SIDE; ++n) {
            s.aX[l * CELL_SIDE + n] = static_cast<std::uint16_t>(rLines.aX[l * CELL_SIDE + n] + nFromX);
            s.aY[l * CELL_SIDE + n] = static_cast<std::uint16_t>(rLines.aY[l * CELL_SIDE + n] + nFromY);
        }
    }
}

} // namespace

SGridPoint ExactPlace(const SGridPoint* pPoints, std::uint64_t nCovered, int nFirstPixel)
{
    const int an[4] = {nFirstPixel, nFirstPixel + 1, nFirstPixel + CELL_SIDE, nFirstPixel + CELL_SIDE + 1};
    const auto Has = [&](int nPixel) { return (nCovered >> nPixel & 1) != 0; };
    const SGridPoint& a = pPoints[an[0]];
    if (Has(an[0]) && Has(an[1]) && Has(an[2]) && Has(an[3])) {
        std::int64_t x = 0;
        std::int64_t y = 0;
        bool bTogether = true;
        for (const int nPixel : an) {
            const SGridPoint& p = pPoints[nPixel];
            x += p.x;
            y += p.y;
            bTogether = bTogether && std::abs(p.x - a.x) < FAR_APART && std::abs(p.y - a.y) < FAR_APART;
        }
        if (bTogether)
            return {static_cast<std::int32_t>((x + 2) >> 2), static_cast<std::int32_t>((y + 2) >> 2)};
    }
    for (const int nPixel : an) {
        if (Has(nPixel))
            return pPoints[nPixel];
    }
    return {NOWHERE, NOWHERE};
}

void SetLines(SExactCell& rCell, const SInside& rInside)
{
    if (rCell.nCovered == 0)
        return;
    SGridPoint sLow;
    SGridPoint sHigh;
    FillGaps(rCell.aPoints, rCell.nCovered, sLow, sHigh);
    SExactLines s;
    s.x = (sLow.x >> POSITION_BITS) & ~1;
    s.y = (sLow.y >> POSITION_BITS) & ~1;
    const SGridPoint sFirst = {s.x * POSITION_ONE, s.y * POSITION_ONE};
    const int nMost = (BLOCK_TEXELS - 1) * POSITION_ONE;
    // A line reads as many rows as the one with the most rows needs, and more bytes of each.
    const int nLastRow = (sHigh.y >> POSITION_BITS) + MOST_ROWS + 2;
    if (!rInside.Has(sLow) || !rInside.Has(sHigh) || sHigh.x - sFirst.x >= nMost ||
        sHigh.y - sFirst.y >= nMost || nLastRow * POSITION_ONE >= rInside.nBottom)
        return;
    SetPlaces(rCell, sHigh.x - sLow.x < FAR_APART && sHigh.y - sLow.y < FAR_APART, s);
    SOffsets sRows;
    for (int n = 0; n < CELL_PIXELS; ++n) {
        sRows.aX[n] = static_cast<std::int16_t>(rCell.aPoints[n].x - sFirst.x - OFFSET_MIDDLE);
        sRows.aY[n] = static_cast<std::int16_t>(rCell.aPoints[n].y - sFirst.y - OFFSET_MIDDLE);
    }
    SOffsets sColumns;
    Transpose(sRows, sColumns);
    SReaches sOfColumns;
    SReaches sOfRows;
    FindReaches(sRows, sOfColumns);
    FindReaches(sColumns, sOfRows);
    s.bColumns = sOfColumns.nRows < sOfRows.nRows;
    if (s.bColumns)
        SetPixels(sColumns, sOfColumns, s);
    else
        SetPixels(sRows, sOfRows, s);
    rCell.sLines = s;
    rCell.bLines = true;
}

void ExactPositions(const SExactCell& rCell, SGridPoint* pPositions)
{
    if (!rCell.bLines) {
        std::copy_n(rCell.aPoints, CELL_PIXELS, pPositions);
        return;
    }
    const SExactLines& s = rCell.sLines;
    for (int l = 0; l < CELL_SIDE; ++l) {
        const int x = (s.x + s.anFirstX[l]) * POSITION_ONE;
        const int y = (s.y + s.anFirstY[l]) * POSITION_ONE;
        for (int n = 0; n < CELL_SIDE; ++n) {
            const int i = s.bColumns ? n * CELL_SIDE + l : l * CELL_SIDE + n;
            pPositions[i] = {x + s.aX[l * CELL_SIDE + n], y + s.aY[l * CELL_SIDE + n]};
        }
    }
}
