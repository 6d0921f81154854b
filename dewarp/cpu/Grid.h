/// \file
/// What a picture shows where: positions in the frame, for points of the target eight pixels apart, and for
/// single pixels where a grid does not do.
#pragma once

#include "dewarp/records/SGRect.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Side of a cell, pixels.
inline constexpr int CELL_SIDE = 8;
inline constexpr int CELL_PIXELS = CELL_SIDE * CELL_SIDE;
/// Fraction bits of a position. A cell whose texels fit into 16 x 16 steps its positions in 16 bits.
inline constexpr int POSITION_BITS = 11;
inline constexpr int POSITION_ONE = 1 << POSITION_BITS;

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

/// A cell whose pixels have their own positions, row by row. Pixel n is drawn where bit n is set.
struct SExactCell
{
    std::uint64_t nCovered = 0;
    SGridPoint aPoints[CELL_PIXELS];
};

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
