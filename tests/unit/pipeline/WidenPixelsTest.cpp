// Pixels of 3 bytes made into pixels of 4.
#include "dewarp/gl/WidenPixels.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

/// Planes whose bytes tell where they stand, and which end with the last pixel of the last row.
static std::vector<unsigned char> PlaneOf(int nWidth, int nHeight, int nRowBytes)
{
    std::vector<unsigned char> vPlane(static_cast<std::size_t>((nHeight - 1) * nRowBytes + 3 * nWidth));
    for (std::size_t i = 0; i < vPlane.size(); ++i)
        vPlane[i] = static_cast<unsigned char>(37 * i + 11);
    return vPlane;
}

TEST(WidenPixels, EveryPixelKeepsItsBytesAndGetsAFullFourth)
{
    const int nHeight = 3;
    // Widths around the groups of four that are widened together.
    for (int nWidth = 1; nWidth <= 13; ++nWidth) {
        for (const int nPadding : {0, 1, 2, 5}) {
            const int nRowBytes = 3 * nWidth + nPadding;
            const std::vector<unsigned char> vFrom = PlaneOf(nWidth, nHeight, nRowBytes);
            std::vector<unsigned char> vTo(static_cast<std::size_t>(4 * nWidth * nHeight) + 1, 99);
            WidenPixels(vFrom.data(), nRowBytes, nWidth, nHeight, vTo.data());
            for (int y = 0; y < nHeight; ++y) {
                for (int x = 0; x < nWidth; ++x) {
                    const unsigned char* pFrom = &vFrom[static_cast<std::size_t>(y * nRowBytes + 3 * x)];
                    const unsigned char* pTo = &vTo[static_cast<std::size_t>(4 * (y * nWidth + x))];
                    const bool bKept = pTo[0] == pFrom[0] && pTo[1] == pFrom[1] && pTo[2] == pFrom[2];
                    ASSERT_TRUE(bKept && pTo[3] == 255)
                        << nWidth << " wide, " << nPadding << " bytes of padding, pixel " << x << ", " << y;
                }
            }
            EXPECT_EQ(vTo.back(), 99) << "nothing may be written behind the last pixel";
        }
    }
}
