#include "dewarp/lenses/CirclePicture.h"

#include <algorithm>
#include <cmath>

namespace
{

/// Brighter than this, it is a wall or the sky.
constexpr double MOST_LEVEL = 90.0;

/// The brightest parts of a picture are at least this much brighter than what surrounds it.
constexpr double LEAST_CONTRAST = 6.0;

constexpr const char* NO_SURROUND =
    "no dark surround: no fisheye picture, or its rim lies outside of the frame";

/// Rows and columns that a small picture keeps, where the picture has them.
constexpr int LEAST_SIDE = 32;

/// Surrounds are even: the noise of small pixels is below this.
constexpr double MOST_DEVIATION = 15.0;

/// A square at the frame's edge.
struct SCell
{
    double fMean = 0.0;
    double fDeviation = 0.0;
};

SCell MeasureCell(const SSmallPicture& rPicture, int nLeft, int nTop, int nSide)
{
    double fSum = 0.0;
    double fSquares = 0.0;
    for (int nRow = nTop; nRow < nTop + nSide; ++nRow) {
        for (int nCol = nLeft; nCol < nLeft + nSide; ++nCol) {
            const double fLevel = static_cast<double>(rPicture.At(nCol, nRow));
            fSum += fLevel;
            fSquares += fLevel * fLevel;
        }
    }
    const double fCount = static_cast<double>(nSide) * static_cast<double>(nSide);
    SCell sCell;
    sCell.fMean = fSum / fCount;
    sCell.fDeviation = std::sqrt(std::max(0.0, fSquares / fCount - sCell.fMean * sCell.fMean));
    return sCell;
}

/// Squares side by side along all four edges, the darkest first.
std::vector<SCell> MeasureEdge(const SSmallPicture& rPicture)
{
    const int nShort = std::min(rPicture.nCols, rPicture.nRows);
    const int nSide = std::min(nShort, std::max(2, nShort / 40));
    std::vector<SCell> vCells;
    const auto Edge = [&](int nLength, int nDepth, bool bRows) {
        for (int nAt = 0; nAt < nLength; nAt += nSide) {
            const int nStart = std::min(nAt, nLength - nSide);
            for (const int nOther : {0, nDepth - nSide})
                vCells.push_back(bRows ? MeasureCell(rPicture, nOther, nStart, nSide)
                                       : MeasureCell(rPicture, nStart, nOther, nSide));
        }
    };
    Edge(rPicture.nCols, rPicture.nRows, false);
    Edge(rPicture.nRows, rPicture.nCols, true);
    // Where the frame's content ends within a cell, its mean is that of neither side.
    std::erase_if(vCells, [](const SCell& rCell) { return rCell.fDeviation > MOST_DEVIATION; });
    std::sort(vCells.begin(), vCells.end(),
              [](const SCell& rLeft, const SCell& rRight) { return rLeft.fMean < rRight.fMean; });
    return vCells;
}

/// How many cells are as bright as one.
std::size_t CountAlike(const std::vector<SCell>& vCells, std::size_t nCell)
{
    const double fReach = std::max(1.5, vCells[nCell].fDeviation);
    return static_cast<std::size_t>(std::count_if(vCells.begin(), vCells.end(), [&](const SCell& rCell) {
        return std::fabs(rCell.fMean - vCells[nCell].fMean) <= fReach;
    }));
}

/// The darkest cell that is no exception: a box around a time stamp can be darker than all else.
std::size_t DarkestCommon(const std::vector<SCell>& vCells)
{
    std::size_t nMost = 0;
    for (std::size_t i = 0; i < vCells.size() && vCells[i].fMean < vCells[0].fMean + 30.0; ++i)
        nMost = std::max(nMost, CountAlike(vCells, i));
    const std::size_t nNeeded = std::max<std::size_t>(3, nMost / 4);
    for (std::size_t i = 0; i < vCells.size(); ++i) {
        if (CountAlike(vCells, i) >= nNeeded)
            return i;
    }
    return 0;
}

} // namespace

double TakeMedian(std::vector<double>& rNumbers)
{
    if (rNumbers.empty())
        return 0.0;
    const auto itMiddle = rNumbers.begin() + static_cast<std::ptrdiff_t>(rNumbers.size() / 2);
    std::nth_element(rNumbers.begin(), itMiddle, rNumbers.end());
    return *itMiddle;
}

SSmallPicture ShrinkPicture(const SLumaPlane& rPlane, int nLongSide)
{
    SSmallPicture sSmall;
    const int nLong = std::max(rPlane.nWidth, rPlane.nHeight);
    sSmall.nScale = nLong / nLongSide + (nLong % nLongSide != 0 ? 1 : 0);
    sSmall.nScale =
        std::min(sSmall.nScale, std::max(1, std::min(rPlane.nWidth, rPlane.nHeight) / LEAST_SIDE));
    sSmall.nCols = rPlane.nWidth / sSmall.nScale;
    sSmall.nRows = rPlane.nHeight / sSmall.nScale;
    sSmall.vLevels.reserve(static_cast<std::size_t>(sSmall.nCols) * static_cast<std::size_t>(sSmall.nRows));
    const std::size_t nUsed =
        static_cast<std::size_t>(sSmall.nCols) * static_cast<std::size_t>(sSmall.nScale);
    const float fShare = 1.0f / (static_cast<float>(sSmall.nScale) * static_cast<float>(sSmall.nScale));
    std::vector<unsigned> vSums(nUsed);
    for (int nRow = 0; nRow < sSmall.nRows; ++nRow) {
        std::fill(vSums.begin(), vSums.end(), 0u);
        for (int nLine = 0; nLine < sSmall.nScale; ++nLine) {
            const unsigned char* const pRow = rPlane.Row(nRow * sSmall.nScale + nLine);
            for (std::size_t i = 0; i < nUsed; ++i)
                vSums[i] += pRow[i];
        }
        for (std::size_t i = 0; i < nUsed; i += static_cast<std::size_t>(sSmall.nScale)) {
            unsigned nSum = 0;
            for (int nPixel = 0; nPixel < sSmall.nScale; ++nPixel)
                nSum += vSums[i + static_cast<std::size_t>(nPixel)];
            sSmall.vLevels.push_back(static_cast<float>(nSum) * fShare);
        }
    }
    return sSmall;
}

SSurround FindSurround(const SSmallPicture& rPicture)
{
    SSurround sSurround;
    const std::vector<SCell> vCells = MeasureEdge(rPicture);
    if (vCells.empty()) {
        sSurround.strFault = NO_SURROUND;
        return sSurround;
    }
    const std::size_t nCommon = DarkestCommon(vCells);
    std::vector<double> vMeans;
    std::vector<double> vDeviations;
    const double fReach = std::max(1.5, vCells[nCommon].fDeviation);
    for (const SCell& rCell : vCells) {
        if (std::fabs(rCell.fMean - vCells[nCommon].fMean) > fReach)
            continue;
        vMeans.push_back(rCell.fMean);
        vDeviations.push_back(rCell.fDeviation);
    }
    sSurround.fLevel = TakeMedian(vMeans);
    sSurround.fNoise = TakeMedian(vDeviations);
    std::vector<double> vLevels(rPicture.vLevels.begin(), rPicture.vLevels.end());
    const auto itBright = vLevels.begin() + static_cast<std::ptrdiff_t>(vLevels.size() * 49 / 50);
    std::nth_element(vLevels.begin(), itBright, vLevels.end());
    if (sSurround.fLevel > MOST_LEVEL)
        sSurround.strFault = NO_SURROUND;
    else if (*itBright - sSurround.fLevel < LEAST_CONTRAST + 3.0 * sSurround.fNoise)
        sSurround.strFault = "all of the picture is dark";
    return sSurround;
}
