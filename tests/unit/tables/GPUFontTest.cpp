#include "dewarp/tables/GPUFont.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

static const int CELL_WIDTH = 38;
static const int CELL_HEIGHT = 64;

static int Alpha(int nCode, int nCol, int nRow)
{
    const int nCell = nCode - 32;
    const int x = nCell % 16 * CELL_WIDTH + nCol;
    const int y = nCell / 16 * CELL_HEIGHT + nRow;
    return GPU_FONT::pGPU_FONT[(y * 608 + x) * 2 + 1];
}

// Rows or columns of a cell that hold ink: first and one past the last.
struct SInk
{
    int nLeft = CELL_WIDTH;
    int nRight = 0;
    int nTop = CELL_HEIGHT;
    int nBottom = 0;
    int nOpaque = 0; ///< pixels fully covered
};

static SInk InkOf(int nCode)
{
    SInk sInk;
    for (int nRow = 0; nRow < CELL_HEIGHT; ++nRow)
        for (int nCol = 0; nCol < CELL_WIDTH; ++nCol) {
            if (Alpha(nCode, nCol, nRow) == 0)
                continue;
            sInk.nLeft = std::min(sInk.nLeft, nCol);
            sInk.nRight = std::max(sInk.nRight, nCol + 1);
            sInk.nTop = std::min(sInk.nTop, nRow);
            sInk.nBottom = std::max(sInk.nBottom, nRow + 1);
            sInk.nOpaque += Alpha(nCode, nCol, nRow) == 255 ? 1 : 0;
        }
    return sInk;
}

static std::vector<int> CellOf(int nCode)
{
    std::vector<int> vAlpha;
    for (int nRow = 0; nRow < CELL_HEIGHT; ++nRow)
        for (int nCol = 0; nCol < CELL_WIDTH; ++nCol)
            vAlpha.push_back(Alpha(nCode, nCol, nRow));
    return vAlpha;
}

TEST(GPUFont, IsAnAtlasOf96CellsOf38By64)
{
    EXPECT_EQ(GPU_FONT::nW, 608);
    EXPECT_EQ(GPU_FONT::nH, 384);
    EXPECT_EQ(GPU_FONT::nCols, 16);
    EXPECT_EQ(GPU_FONT::nRows, 6);
    EXPECT_EQ(GPU_FONT::nW / GPU_FONT::nCols, CELL_WIDTH);
    EXPECT_EQ(GPU_FONT::nH / GPU_FONT::nRows, CELL_HEIGHT);
    EXPECT_EQ(sizeof(GPU_FONT::pGPU_FONT), static_cast<std::size_t>(GPU_FONT::nW * GPU_FONT::nH * 2));
}

TEST(GPUFont, LuminanceIsFullEverywhereSoThatEdgesTakeTheTextsColour)
{
    for (std::size_t i = 0; i < sizeof(GPU_FONT::pGPU_FONT); i += 2)
        ASSERT_EQ(GPU_FONT::pGPU_FONT[i], 255) << i;
}

TEST(GPUFont, SpaceIsEmpty)
{
    const std::vector<int> vCell = CellOf(32);
    EXPECT_EQ(std::count(vCell.begin(), vCell.end(), 0), CELL_WIDTH * CELL_HEIGHT);
}

TEST(GPUFont, TheLastCellIsOpaqueToItsEdge)
{
    const std::vector<int> vCell = CellOf(127);
    EXPECT_EQ(std::count(vCell.begin(), vCell.end(), 255), CELL_WIDTH * CELL_HEIGHT);
}

TEST(GPUFont, EveryCharacterHasInkAndAnEmptyMargin)
{
    for (int nCode = 33; nCode < 127; ++nCode) {
        const SInk sInk = InkOf(nCode);
        EXPECT_GE(sInk.nOpaque, 20) << nCode; // the least are the dot and the quote
        EXPECT_GE(sInk.nLeft, 1) << nCode;
        EXPECT_GE(sInk.nTop, 1) << nCode;
        EXPECT_LE(sInk.nRight, CELL_WIDTH - 1) << nCode;
        EXPECT_LE(sInk.nBottom, CELL_HEIGHT - 1) << nCode;
    }
}

TEST(GPUFont, NoTwoCharactersLookTheSame)
{
    for (int nFirst = 32; nFirst < 128; ++nFirst)
        for (int nSecond = nFirst + 1; nSecond < 128; ++nSecond)
            EXPECT_NE(CellOf(nFirst), CellOf(nSecond)) << nFirst << " " << nSecond;
}

TEST(GPUFont, CharactersAreUprightAndInTheirCells)
{
    // What a few letters must look like, whichever face they come from.
    EXPECT_GT(InkOf('_').nTop, InkOf('A').nBottom - 2);
    EXPECT_LT(InkOf('`').nBottom, InkOf('x').nTop + 1);
    EXPECT_LT(InkOf('-').nBottom - InkOf('-').nTop, 10);
    EXPECT_GT(InkOf('|').nBottom - InkOf('|').nTop, 50);
    EXPECT_GT(InkOf('p').nBottom, InkOf('b').nBottom + 5);
    EXPECT_LT(InkOf('b').nTop, InkOf('p').nTop - 5);
    EXPECT_EQ(InkOf('H').nBottom, InkOf('L').nBottom);
    const SInk sL = InkOf('L');
    EXPECT_EQ(Alpha('L', sL.nLeft + 2, sL.nTop + 2), 255);
    EXPECT_EQ(Alpha('L', sL.nRight - 3, sL.nTop + 2), 0);
    EXPECT_EQ(Alpha('L', sL.nRight - 3, sL.nBottom - 2), 255);
    const SInk s7 = InkOf('7');
    EXPECT_EQ(Alpha('7', s7.nRight - 5, s7.nTop + 2), 255);
    EXPECT_EQ(Alpha('7', s7.nRight - 3, s7.nBottom - 2), 0);
}

TEST(GPUFont, StrokesSurviveHalvingTwice)
{
    // At 16 pixels a texel stands for 4 x 4 of the atlas; stems that are wider never fall between.
    for (const char cLetter : {'I', 'l', '1', '|', 'H', 'T'}) {
        const int nRow = cLetter == 'H' ? 20 : 30;
        int nWidest = 0;
        int nRun = 0;
        for (int nCol = 0; nCol < CELL_WIDTH; ++nCol) {
            nRun = Alpha(cLetter, nCol, nRow) >= 128 ? nRun + 1 : 0;
            nWidest = std::max(nWidest, nRun);
        }
        EXPECT_GE(nWidest, 5) << cLetter;
    }
}
