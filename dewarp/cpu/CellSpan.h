/// \file
/// Where a cell lies on the target.
#pragma once

#include "dewarp/cpu/FrameDraw.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Chroma of what is not drawn.
inline constexpr unsigned char NEUTRAL_CHROMA = 128;

/// The pixels of one cell that lie inside its part.
struct SCellSpan
{
    SCellSpan(const SPartGrid& rGrid, int nRow, int nCol)
        : nX(rGrid.nOriginX + nCol * CELL_SIDE), nY(rGrid.nOriginY + nRow * CELL_SIDE),
          nLeft(std::max(rGrid.sRect.x - nX, 0)), nTop(std::max(rGrid.sRect.y - nY, 0)),
          nRight(std::min(rGrid.sRect.x + rGrid.sRect.width - nX, CELL_SIDE)),
          nBottom(std::min(rGrid.sRect.y + rGrid.sRect.height - nY, CELL_SIDE))
    {}
    bool IsWhole() const { return nLeft == 0 && nTop == 0 && nRight == CELL_SIDE && nBottom == CELL_SIDE; }
    std::uint64_t Pixels() const
    {
        const std::uint64_t nRow = ((std::uint64_t{1} << (nRight - nLeft)) - 1) << nLeft;
        std::uint64_t nAll = 0;
        for (int y = nTop; y < nBottom; ++y)
            nAll |= nRow << (y * CELL_SIDE);
        return nAll;
    }

    int nX; ///< of the cell's first pixel
    int nY;
    int nLeft; ///< within the cell
    int nTop;
    int nRight;
    int nBottom;
    int nFirstPlaceX = 0; ///< 1: the first column of chroma places belongs to another part
    int nFirstPlaceY = 0;
};

/// A row of a plane; y counts rows of the picture.
inline unsigned char* TargetRow(const SFrameJob& rJob, int nPlane, int y)
{
    const int nRow = y - (nPlane == 0 ? rJob.nFirstRow : rJob.nFirstRow / 2);
    return rJob.sTarget.apPlanes[nPlane] + static_cast<std::ptrdiff_t>(nRow) * rJob.sTarget.anStrides[nPlane];
}
