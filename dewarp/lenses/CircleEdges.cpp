#include "dewarp/lenses/CircleEdges.h"

#include <cstddef>

namespace
{

/// A line through the picture, from one of its edges inward.
struct SScan
{
    std::ptrdiff_t nStart = 0;
    std::ptrdiff_t nStep = 0;  ///< to the next pixel of the line
    std::ptrdiff_t nAside = 0; ///< to the next line
    int nLength = 0;
};

/// Bright, and not alone: noise and the dots of small letters are.
bool IsLight(const float* pPixel, std::ptrdiff_t nStep, std::ptrdiff_t nAside, float fThreshold)
{
    if (*pPixel <= fThreshold || pPixel[nStep] <= fThreshold)
        return false;
    const int nBeside = (pPixel[nAside] > fThreshold ? 1 : 0) + (pPixel[-nAside] > fThreshold ? 1 : 0) +
                        (pPixel[nStep + nAside] > fThreshold ? 1 : 0) +
                        (pPixel[nStep - nAside] > fThreshold ? 1 : 0);
    return nBeside >= 2;
}

/// Pixels from the edge to where light begins, between two of them; less than 0 where it does not, or where
/// it is light from the beginning.
double FirstLight(const float* pLevels, const SScan& rScan, float fThreshold)
{
    const float* pPixel = pLevels + rScan.nStart;
    if (IsLight(pPixel, rScan.nStep, rScan.nAside, fThreshold))
        return -1.0;
    for (int i = 1; i < rScan.nLength - 1; ++i) {
        const float* const pBefore = pPixel;
        pPixel += rScan.nStep;
        if (!IsLight(pPixel, rScan.nStep, rScan.nAside, fThreshold))
            continue;
        const float fRise = *pPixel - *pBefore;
        const float fBack = fRise > 0.0f ? (*pPixel - fThreshold) / fRise : 0.0f;
        return static_cast<double>(i) + 0.5 - static_cast<double>(fBack < 1.0f ? fBack : 1.0f);
    }
    return -1.0;
}

} // namespace

std::vector<SRimPoint> FindFirstLight(const SSmallPicture& rPicture, double fThreshold)
{
    std::vector<SRimPoint> vPoints;
    if (rPicture.nCols < 3 || rPicture.nRows < 3)
        return vPoints;
    const float* const pLevels = rPicture.vLevels.data();
    const float fLevel = static_cast<float>(fThreshold);
    const std::ptrdiff_t nPitch = rPicture.nCols;
    // The outermost lines have no neighbours on one side.
    for (int nRow = 1; nRow < rPicture.nRows - 1; ++nRow) {
        const std::ptrdiff_t nLeft = nRow * nPitch;
        const double fRow = static_cast<double>(nRow) + 0.5;
        const double fRight = FirstLight(pLevels, {nLeft, 1, nPitch, rPicture.nCols}, fLevel);
        if (fRight >= 0.0)
            vPoints.push_back({fRight, fRow, 1.0});
        const double fLeft = FirstLight(pLevels, {nLeft + nPitch - 1, -1, nPitch, rPicture.nCols}, fLevel);
        if (fLeft >= 0.0)
            vPoints.push_back({static_cast<double>(rPicture.nCols) - fLeft, fRow, 1.0});
    }
    for (int nCol = 1; nCol < rPicture.nCols - 1; ++nCol) {
        const double fCol = static_cast<double>(nCol) + 0.5;
        const double fDown = FirstLight(pLevels, {nCol, nPitch, 1, rPicture.nRows}, fLevel);
        if (fDown >= 0.0)
            vPoints.push_back({fCol, fDown, 1.0});
        const std::ptrdiff_t nLast = (static_cast<std::ptrdiff_t>(rPicture.nRows) - 1) * nPitch + nCol;
        const double fUp = FirstLight(pLevels, {nLast, -nPitch, 1, rPicture.nRows}, fLevel);
        if (fUp >= 0.0)
            vPoints.push_back({fCol, static_cast<double>(rPicture.nRows) - fUp, 1.0});
    }
    return vPoints;
}
