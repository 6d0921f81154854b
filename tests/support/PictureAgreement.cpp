#include "tests/support/PictureAgreement.h"

#include <cstdlib>

/// True where a neighbour in the picture is drawn, or not, as told; beyond the picture nothing is drawn.
static bool HasNeighbour(const STestImage& sPicture, int x, int y, bool bDrawn)
{
    for (int i = 0; i < 9; ++i) {
        const int nRow = i / 3;
        const int nX = x + i % 3 - 1;
        const int nY = y + nRow - 1;
        const bool bInside = nX >= 0 && nY >= 0 && nX < sPicture.nWidth && nY < sPicture.nHeight;
        if ((bInside && sPicture.At(nX, nY)[3] != 0) == bDrawn)
            return true;
    }
    return false;
}

SAgreement CompareStates(const STestImage& sFirst, const STestImage& sSecond)
{
    SAgreement s;
    s.nPixels = sFirst.nWidth * sFirst.nHeight;
    long long nSum = 0;
    long long nBeyond = 0;
    for (int y = 0; y < sFirst.nHeight; ++y)
        for (int x = 0; x < sFirst.nWidth; ++x) {
            const unsigned char* a = sFirst.At(x, y);
            const unsigned char* b = sSecond.At(x, y);
            if ((a[3] != 0) != (b[3] != 0)) {
                ++(HasNeighbour(sFirst, x, y, b[3] != 0) ? s.nOnEdges : s.nDrawnByOne);
                continue;
            }
            for (int i = 0; i < 4; ++i) {
                const int nDifference = std::abs(a[i] - b[i]);
                nSum += nDifference;
                nBeyond += nDifference > 2 ? 1 : 0;
                if (nDifference > s.nMost) {
                    s.nMost = nDifference;
                    s.nMostX = x;
                    s.nMostY = y;
                }
            }
        }
    s.fMean = static_cast<double>(nSum) / (4.0 * s.nPixels);
    s.fShareBeyond2 = static_cast<double>(nBeyond) / (4.0 * s.nPixels);
    return s;
}
