/// \file
/// What a picture shows where: positions in the frame, for points of the target eight pixels apart, and for
/// single pixels where a grid does not do.
#pragma once

#include "dewarp/mapping/FramePosition.h"
#include "dewarp/records/SGRect.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Side of a cell, pixels.
inline constexpr int CELL_SIDE = 8;
inline constexpr int CELL_PIXELS = CELL_SIDE * CELL_SIDE;

/// A point that shows nothing: so far away that whatever is computed from it shows it.
inline constexpr std::int32_t NOWHERE = -(1 << 29);

/// A position in the frame's first plane: pixels, POSITION_BITS of fraction, 0 in the middle of the first
/// pixel.
struct SGridPoint
{
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// The nearest position; what is absurdly far outside comes nearer, to stay inside what cells can hold.
inline SGridPoint PositionAt(double u, double v)
{
    const auto Nearest = [](double f) {
        const double fFarthest = 32000.0 * POSITION_ONE;
        const double fLimited = f < -fFarthest ? -fFarthest : f > fFarthest ? fFarthest : f;
        // Counted from a point left of everything, so that cutting off the fraction rounds one way.
        return static_cast<std::int32_t>(fLimited + (fFarthest + 0.5)) - static_cast<std::int32_t>(fFarthest);
    };
    return {Nearest(u), Nearest(v)};
}

enum ECellKind : unsigned char
{
    CELL_EMPTY,  ///< nothing is drawn
    CELL_SMOOTH, ///< interpolated between its points, which lie inside the frame with half a pixel to spare
    CELL_RIM,    ///< interpolated likewise, but leaves the frame: samples come from its edge
    CELL_EXACT,  ///< every pixel has its position
};

/// Positions of a cell's pixels in less room, ready to be drawn: of a cell that lies inside the frame and
/// shows 32 x 32 texels at most. Its lines are its rows or its columns, whichever cross fewer rows of the
/// frame; line n begins at its first texel, and its pixels count from there. Pixels that are not covered lie
/// where covered ones do.
struct SExactLines
{
    std::uint16_t aX[CELL_PIXELS]; ///< line by line, POSITION_BITS of fraction
    std::uint16_t aY[CELL_PIXELS];
    std::uint16_t aPlaceX[CELL_PIXELS / 4]; ///< chroma places, row by row, from the cell's first texel
    std::uint16_t aPlaceY[CELL_PIXELS / 4];
    std::uint8_t anFirstX[CELL_SIDE]; ///< each line's first texel, from the cell's
    std::uint8_t anFirstY[CELL_SIDE];
    std::int32_t x; ///< the cell's first texel; even
    std::int32_t y;
    int nRows; ///< of texels that a line crosses, at most; 0: lines reach over more than 16 texels of a row
    bool bColumns; ///< lines are columns
};

/// A cell whose pixels have their own positions. Pixel n, row by row, is drawn where bit n is set.
struct SExactCell
{
    SExactCell() : aPoints() {}

    std::uint64_t nCovered = 0;
    bool bLines = false; ///< sLines is in use
    union {
        SGridPoint aPoints[CELL_PIXELS]; ///< row by row
        SExactLines sLines;
    };
};

/// Inside a frame, with room for everything that is read beside a position.
struct SInside
{
    int nLeft = 0; ///< positions
    int nTop = 0;
    int nRight = 0;
    int nBottom = 0;

    bool Has(const SGridPoint& p) const
    {
        return p.x >= nLeft && p.x < nRight && p.y >= nTop && p.y < nBottom;
    }
};

/// Whether one of the four pixels of a chroma place is covered.
inline bool HasPlace(std::uint64_t nCovered, int nPlace)
{
    return (nCovered >> (nPlace / 4 * 2 * CELL_SIDE + nPlace % 4 * 2) & (3U | 3U << CELL_SIDE)) != 0;
}

/// A bit for each chroma place that HasPlace.
inline std::uint64_t PlacesOf(std::uint64_t nCovered)
{
    std::uint64_t nPlaces = 0;
    for (int n = 0; n < CELL_PIXELS / 4; ++n)
        nPlaces |= std::uint64_t{HasPlace(nCovered, n)} << n;
    return nPlaces;
}

/// Brings a cell's positions into lines where that can be.
void SetLines(SExactCell& rCell, const SInside& rInside);
/// All positions of a cell; where a pixel is not covered, anything.
void ExactPositions(const SExactCell& rCell, SGridPoint* pPositions);
/// Where the chroma of a 2 x 2 block with own positions is taken: their middle, or the first that is covered.
SGridPoint ExactPlace(const SGridPoint* pPoints, std::uint64_t nCovered, int nFirstPixel);

/// The grid of one rectangle of the target. Points stand in the middle of a pixel, every nStep pixels from
/// the first one of the first cell; the last column and row of points belong to cells that are not there any
/// more.
struct SPartGrid
{
    SGRect sRect;     ///< pixels of the target that belong to it
    int nOriginX = 0; ///< first pixel of the first cell; even, at most one beside the rectangle
    int nOriginY = 0;
    int nCols = 0; ///< cells
    int nRows = 0;
    int nStep = CELL_SIDE; ///< pixels between two points: a cell's side, or half of it
    int nPointCols = 0;
    int nPointRows = 0;
    std::vector<SGridPoint> vPoints;
    std::vector<unsigned char> vKinds; ///< ECellKind
    std::vector<SExactCell> vExact;    ///< of the exact cells, row by row
    std::vector<int> vFirstExact;      ///< for each row of cells, index of its first exact cell

    int PointsPerCell() const { return CELL_SIDE / nStep; }
    std::size_t PointIndex(int nCol, int nRow) const
    {
        return static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nPointCols) +
               static_cast<std::size_t>(nCol);
    }
    std::size_t CellIndex(int nCol, int nRow) const
    {
        return static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nCols) +
               static_cast<std::size_t>(nCol);
    }
};
