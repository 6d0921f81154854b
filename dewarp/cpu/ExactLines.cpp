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

/// What eight positions reach over, in texels.
struct SLine
{
    int nFirstX = 0;
    int nFirstY = 0;
    int nRows = 0;
};

/// Line by line: nAlong words from one pixel of a line to the next, nAcross from one line to the next.
int ReachOfLines(const std::uint16_t* pX, const std::uint16_t* pY, int nAlong, int nAcross,
                 SLine (&as)[CELL_SIDE])
{
    int nMostRows = 0;
    for (int l = 0; l < CELL_SIDE; ++l) {
        int nLowX = 0xFFFF;
        int nLowY = 0xFFFF;
        int nHighX = 0;
        int nHighY = 0;
        for (int n = 0; n < CELL_SIDE; ++n) {
            const int i = l * nAcross + n * nAlong;
            nLowX = std::min<int>(nLowX, pX[i]);
            nLowY = std::min<int>(nLowY, pY[i]);
            nHighX = std::max<int>(nHighX, pX[i]);
            nHighY = std::max<int>(nHighY, pY[i]);
        }
        as[l] = {nLowX >> POSITION_BITS, nLowY >> POSITION_BITS,
                 (nHighY >> POSITION_BITS) - (nLowY >> POSITION_BITS) + 2};
        const bool bFits = (nHighX >> POSITION_BITS) - as[l].nFirstX + 2 <= MOST_TEXELS;
        nMostRows = std::max(nMostRows, bFits ? as[l].nRows : MOST_ROWS + 1);
    }
    return nMostRows;
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
    const SGridPoint sAny = rCell.aPoints[std::countr_zero(rCell.nCovered)];
    SGridPoint aPoints[CELL_PIXELS];
    SGridPoint sLow = sAny;
    SGridPoint sHigh = sAny;
    for (int n = 0; n < CELL_PIXELS; ++n) {
        const SGridPoint p = (rCell.nCovered >> n & 1) != 0 ? rCell.aPoints[n] : sAny;
        aPoints[n] = p;
        sLow = {std::min(sLow.x, p.x), std::min(sLow.y, p.y)};
        sHigh = {std::max(sHigh.x, p.x), std::max(sHigh.y, p.y)};
    }
    SExactLines s;
    s.x = (sLow.x >> POSITION_BITS) & ~1;
    s.y = (sLow.y >> POSITION_BITS) & ~1;
    const int nMost = (BLOCK_TEXELS - 1) * POSITION_ONE;
    // A line reads as many rows as the one with the most rows needs, and more bytes of each.
    const int nLastRow = (sHigh.y >> POSITION_BITS) + MOST_ROWS + 2;
    if (!rInside.Has(sLow) || !rInside.Has(sHigh) || sHigh.x - s.x * POSITION_ONE >= nMost ||
        sHigh.y - s.y * POSITION_ONE >= nMost || nLastRow * POSITION_ONE >= rInside.nBottom)
        return;
    for (int n = 0; n < CELL_PIXELS / 4; ++n) {
        const SGridPoint p = HasPlace(rCell.nCovered, n)
                                 ? ExactPlace(aPoints, rCell.nCovered, n / 4 * 2 * CELL_SIDE + n % 4 * 2)
                                 : sAny;
        s.aPlaceX[n] = static_cast<std::uint16_t>(p.x - s.x * POSITION_ONE);
        s.aPlaceY[n] = static_cast<std::uint16_t>(p.y - s.y * POSITION_ONE);
    }
    std::uint16_t anX[CELL_PIXELS];
    std::uint16_t anY[CELL_PIXELS];
    for (int n = 0; n < CELL_PIXELS; ++n) {
        anX[n] = static_cast<std::uint16_t>(aPoints[n].x - s.x * POSITION_ONE);
        anY[n] = static_cast<std::uint16_t>(aPoints[n].y - s.y * POSITION_ONE);
    }
    SLine asRows[CELL_SIDE];
    SLine asColumns[CELL_SIDE];
    const int nOfRows = ReachOfLines(anX, anY, 1, CELL_SIDE, asRows);
    const int nOfColumns = ReachOfLines(anX, anY, CELL_SIDE, 1, asColumns);
    s.bColumns = nOfColumns < nOfRows;
    s.nRows = std::min(nOfRows, nOfColumns);
    if (s.nRows > MOST_ROWS)
        s.nRows = 0;
    for (int l = 0; l < CELL_SIDE; ++l) {
        const SLine sLine = s.nRows == 0 ? SLine() : s.bColumns ? asColumns[l] : asRows[l];
        s.anFirstX[l] = static_cast<std::uint8_t>(sLine.nFirstX);
        s.anFirstY[l] = static_cast<std::uint8_t>(sLine.nFirstY);
        for (int n = 0; n < CELL_SIDE; ++n) {
            const int i = s.bColumns ? n * CELL_SIDE + l : l * CELL_SIDE + n;
            s.aX[l * CELL_SIDE + n] = static_cast<std::uint16_t>(anX[i] - (sLine.nFirstX << POSITION_BITS));
            s.aY[l * CELL_SIDE + n] = static_cast<std::uint16_t>(anY[i] - (sLine.nFirstY << POSITION_BITS));
        }
    }
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
