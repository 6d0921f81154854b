/// \file
/// Glyph mesh: one full-viewport quad for each cell of a font atlas, row by row.
#include "dewarp/geometry/CustomGPUGeometry.h"

#include <cstdint>
#include <limits>

void CCustomGPUGeometry::GenerateFontVertices(int nWidth, int nHeight, int nCols, int nRows)
{
    m_nImageWidth = nWidth;
    m_nImageHeight = nHeight;
    m_nVertexCount = 0;
    m_fGeometryAspect = 1.0f;
    if (nCols < 1 || nRows < 1)
        return;
    const std::int64_t nCells = static_cast<std::int64_t>(nCols) * nRows;
    if (nCells > std::numeric_limits<int>::max() / 6)
        return;
    CheckBufferSize(static_cast<int>(nCells) * 6);
    const float fCols = static_cast<float>(nCols);
    const float fRows = static_cast<float>(nRows);
    for (int r = 0; r < nRows; ++r) {
        const float vT = static_cast<float>(r) / fRows;
        const float vB = static_cast<float>(r + 1) / fRows;
        for (int c = 0; c < nCols; ++c) {
            const float uL = static_cast<float>(c) / fCols;
            const float uR = static_cast<float>(c + 1) / fCols;
            AddVertex(-1.0f, 1.0f, 0.0f, uL, vT);
            AddVertex(-1.0f, -1.0f, 0.0f, uL, vB);
            AddVertex(1.0f, -1.0f, 0.0f, uR, vB);
            AddVertex(1.0f, -1.0f, 0.0f, uR, vB);
            AddVertex(1.0f, 1.0f, 0.0f, uR, vT);
            AddVertex(-1.0f, 1.0f, 0.0f, uL, vT);
        }
    }
}
