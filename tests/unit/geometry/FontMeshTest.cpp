#include "MeshChecks.h"

#include <limits>
#include <vector>

TEST(FontMesh, GlyphsFollowTheAtlasRowByRow)
{
    CCustomGPUGeometry oGeometry;
    oGeometry.GenerateFontVertices(608, 384, 16, 6);
    ASSERT_EQ(oGeometry.m_nVertexCount, 576);
    EXPECT_EQ(oGeometry.m_nBufferSize, 576);
    EXPECT_EQ(oGeometry.m_nImageWidth, 608);
    EXPECT_EQ(oGeometry.m_nImageHeight, 384);
    EXPECT_EQ(oGeometry.m_fGeometryAspect, 1.0f);
    const float CORNERS[6][4] = {{-1, 1, 0, 0}, {-1, -1, 0, 1}, {1, -1, 1, 1},
                                 {1, -1, 1, 1}, {1, 1, 1, 0},   {-1, 1, 0, 0}};
    for (int nGlyph = 0; nGlyph < 96; ++nGlyph) {
        const int nRow = nGlyph / 16;
        for (int n = 0; n < 6; ++n) {
            const SMeshVertex s = VertexAt(oGeometry, 6 * nGlyph + n);
            const float* pCorner = CORNERS[n];
            EXPECT_EQ(s.x, pCorner[0]);
            EXPECT_EQ(s.y, pCorner[1]);
            EXPECT_EQ(s.z, 0.0f);
            EXPECT_EQ(s.u, (static_cast<float>(nGlyph % 16) + pCorner[2]) / 16.0f);
            EXPECT_EQ(s.v, static_cast<float>(nRow + static_cast<int>(pCorner[3])) / 6.0f);
        }
    }
}

TEST(FontMesh, AtlasWithoutCellsGivesNoGlyphs)
{
    constexpr int nHuge = std::numeric_limits<int>::max();
    const int GRIDS[][2] = {{0, 6}, {16, 0}, {-16, -6}, {nHuge, nHuge}, {65536, 65536}};
    for (const int* pGrid : GRIDS) {
        CCustomGPUGeometry oGeometry;
        oGeometry.GenerateFontVertices(608, 384, pGrid[0], pGrid[1]);
        EXPECT_EQ(oGeometry.m_nVertexCount, 0);
        EXPECT_EQ(oGeometry.m_nBufferSize, 0);
    }
}
